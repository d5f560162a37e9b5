// What a failure does to the plan: every LSP on its path is followed around what has failed, on its
// local backups, else beside it on its global one.

function wayAround(lsp, failed) {
  const way = [];
  for (let at = 0; at < lsp.links.length;) {
    if (!failed.has(lsp.links[at])) {
      way.push(lsp.links[at++]);
      continue;
    }
    const backup = lsp.backups.find((one) => one.isLocal && one.from === at &&
      !one.links.some((link) => failed.has(link)));
    if (!backup) return null;
    way.push(...backup.links);
    at = backup.to;
  }
  return way;
}

function fateOf(lsp, failure, failed) {
  if (failure.nodes.includes(lsp.from) || failure.nodes.includes(lsp.to)) return { fate: "ended" };
  const around = wayAround(lsp, failed);
  if (around) return { fate: "local", way: around };
  const beside = lsp.backups.find((one) => !one.isLocal && !one.links.some((link) => failed.has(link)));
  return beside ? { fate: "global", way: beside.links } : { fate: "lost" };
}

// What every link carries after the switch, by class, and what became of the LSPs that were hit.
function switchOver(plan, failure) {
  const failed = new Set(failure.links);
  const hit = new Set(failure.links.flatMap((link) => link.lsps));
  const use = plan.usualUse.map((ofLink) => [...ofLink]);
  const fates = [];
  for (const lsp of [...hit].sort((a, b) => a.id - b.id)) {
    const { fate, way } = fateOf(lsp, failure, failed);
    for (const link of lsp.links) use[link.id][lsp.classType] -= lsp.bandwidth;
    for (const link of way ?? []) use[link.id][lsp.classType] += lsp.bandwidth;
    fates.push({ lsp, fate, way: way ?? null });
  }
  return { failure, use, fates };
}
