// What is said in words: details of what was chosen, and the lists.

const namesAlong = (nodes) => nodes.map((node) => node.name).join(" > ");
const wayNames = (links) => namesAlong([links[0].from, ...links.map((link) => link.to)]);

function describeLsp(parent, plan, demand, switched) {
  parent.append("h2").text(`LSP ${demand.name}`);
  parent.append("p").text(`${plan.levels[demand.level]}, ${plan.classes[demand.classType]}, ` +
    `${plan.bandwidth(demand.bandwidth)}` + (demand.score === undefined ? "" : `, score ${format(demand.score)}`));
  parent.append("p").text(wayNames(demand.links));
  const fate = switched?.fates.find((one) => one.lsp === demand);
  if (fate) {
    const words = { local: "goes on over its local backups", global: "goes on over its global backup",
      lost: "is lost", ended: "ends: its first or last node has failed" };
    parent.append("p").classed("bad", !fate.way).attr("id", "fate")
      .text(`When ${switched.failure.name} fails it ${words[fate.fate]}.`);
  }
  if (demand.unprotected)
    parent.append("p").attr("class", "bad").text(`Not protected: ${demand.unprotected}`);
  const list = parent.append("ul");
  for (const backup of demand.backups) {
    const nodes = backup.avoided.map((node) => node.name).join(", ");
    list.append("li").text(`${backup.isLocal ? "Local" : "Global"} backup ${wayNames(backup.links)}`)
      .append("div").attr("class", "quiet")
      .text(`for ${backup.protects.map((link) => link.name).join(", ")}` + (nodes ? ` and ${nodes}` : ""));
  }
}

function describeLink(parent, plan, link, level, use) {
  parent.append("h2").text(link.name);
  plan.classes.forEach((name, c) => {
    const primary = sumUpTo(link.primary[c], level);
    const total = sumUpTo(link.total[c], level);
    parent.append("p").attr("class", "of-class").text(`${name}: ${plan.bandwidth(total)} of ${plan.bandwidth(link.capacity[c])} reserved, ` +
      `${plan.bandwidth(primary)} for LSPs, ${plan.bandwidth(total - primary)} shared by backups; ` +
      `carries ${plan.bandwidth(use[link.id][c])}`);
    const levels = plan.levels.map((of, p) => `${of} ${format(link.total[c][p] ?? 0)}`);
    parent.append("p").attr("class", "quiet").text(`at each level: ${levels.join(", ")}`);
  });
  parent.append("p").text(`${link.lsps.length} LSPs and ${link.backups.length} backups use it.`);
}

function describeFailure(parent, plan, switched) {
  const { failure, fates } = switched;
  const count = (fate) => fates.filter((one) => one.fate === fate).length;
  const lost = d3.sum(fates, (one) => (one.fate === "lost" ? one.lsp.bandwidth : 0));
  parent.append("h2").text(`${failure.name} fails`);
  parent.append("p").attr("id", "switch").text(`${fates.length} LSPs are hit: ${count("local")} go on over local ` +
    `backups, ${count("global")} over global ones, ${count("lost")} are lost (${plan.bandwidth(lost)}), ` +
    `${count("ended")} end there.`);
}

const textColumn = (name, of, width) => ({ name, of, width });
const numberColumn = (name, of, show = format) => ({ name, of, show, isNumber: true,
  width: "minmax(82px, 1fr)" });

const lspColumns = (plan) => [
  textColumn("LSP", (lsp) => lsp.name, "minmax(60px, 1.2fr)"),
  textColumn("from", (lsp) => lsp.from.name, "minmax(70px, 1.3fr)"),
  textColumn("to", (lsp) => lsp.to.name, "minmax(70px, 1.3fr)"),
  textColumn("level", (lsp) => plan.levels[lsp.level], "minmax(50px, 1fr)"),
  ...(plan.classes.length > 1 ? [textColumn("class", (lsp) => plan.classes[lsp.classType])] : []),
  numberColumn("bandwidth", (lsp) => lsp.bandwidth),
  { ...numberColumn("hops", (lsp) => lsp.links.length), width: "52px" },
  { ...numberColumn("backups", (lsp) => lsp.backups.length), width: "72px" },
];
const failureColumns = [
  textColumn("failure", (failure) => failure.name, "minmax(130px, 2fr)"),
  { ...textColumn("of", (failure) => failure.kind), width: "64px" },
  { ...numberColumn("hit", (failure) => failure.hit), width: "58px" },
  { ...numberColumn("lost", (failure) => failure.lost), isBad: (failure) => failure.lost > 0, width: "58px" },
  numberColumn("bandwidth", (failure) => failure.lostBandwidth),
  { ...numberColumn("too full", (failure) => failure.overloads), isBad: (failure) => failure.overloads > 0 },
];
const refusalColumns = (plan) => [
  textColumn("demand", (demand) => demand.name, "minmax(110px, 2fr)"),
  textColumn("level", (demand) => plan.levels[demand.level]),
  numberColumn("bandwidth", (demand) => demand.bandwidth),
  textColumn("reason", (demand) => demand.reason),
  numberColumn("would fit", (demand) => demand.largest ?? 0),
];

function linkColumns(plan, shareNow) {
  return [
    textColumn("link", (link) => link.name, "minmax(130px, 2fr)"),
    numberColumn("now shown", (link) => shareNow(link) ?? Infinity, percent),
    numberColumn("reserved", (link) => d3.max(plan.classes, (_, c) => shareOf(d3.sum(link.total[c]), link.capacity[c])), percent),
    numberColumn("worst", (link) => plan.peaks[link.id][1] ?? Infinity, percent),
    numberColumn("LSPs", (link) => link.lsps.length),
  ];
}

function describeRefusal(parent, plan, demand) {
  parent.append("h2").text(`Demand ${demand.name}`);
  parent.append("p").text(`${demand.from.name} to ${demand.to.name}, ${plan.levels[demand.level]}, ` +
    `${plan.classes[demand.classType]}, ${plan.bandwidth(demand.bandwidth)}`);
  const by = demand.by === undefined ? "" : ` by ${plan.demands[demand.by].name}`;
  parent.append("p").attr("class", "bad").text(demand.sentence || demand.reason + by);
  const list = parent.append("ul");
  for (const [link, room] of demand.inTheWay ?? [])
    list.append("li").text(`${plan.links[link].name} has room for ${plan.bandwidth(room)}`);
}
