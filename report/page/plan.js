// A plan, with names for everything that the data keeps in lists.

const pageData = JSON.parse(document.getElementById("data").textContent);

function planOf(data) {
  const nodes = data.map.nodes.map(([name, x, y], id) => ({ id, name, x, y }));
  const links = data.links.map(([from, to, capacity, primary, total], id) => ({
    id, from: nodes[from], to: nodes[to], capacity, primary, total,
    name: `${nodes[from].name} > ${nodes[to].name}`, lsps: [], backups: [],
  }));
  const linksOut = nodes.map(() => []);
  for (const link of links) linksOut[link.from.id].push(link);
  for (const link of links) {
    link.back = linksOut[link.to.id].find((other) => other.to === link.from) ?? null;
  }

  // The inverse of the letters in data.cpp.
  function numberOf(letter) {
    let code = letter.codePointAt(0);
    if (code >= 0xff) code -= 0x80;
    if (code > 0x5c) code -= 1;
    if (code > 0x3c) code -= 1;
    return code - 0x30;
  }

  function linksAlong(from, letters) {
    const way = [];
    let at = from;
    for (const letter of letters) {
      const link = linksOut[at.id][numberOf(letter)];
      way.push(link);
      at = link.to;
    }
    return way;
  }

  function backupOf(lsp, text) {
    const [, from, kind, letters] = /^(\d+)([lg])(.*)$/su.exec(text);
    const position = Number(from);
    const way = linksAlong(lsp.nodes[position], letters);
    const inner = new Set(way.slice(0, -1).map((link) => link.to));
    const isLocal = kind === "l";
    const protects = isLocal ? [lsp.links[position]] : lsp.links.slice(position);
    const avoided = protects.map((link) => link.to)
      .filter((node) => node !== lsp.nodes.at(-1) && !inner.has(node) && node !== way.at(-1).to);
    return {
      lsp, isLocal, from: position, to: lsp.nodes.indexOf(way.at(-1).to), links: way, protects,
      avoided,
    };
  }

  const demands = data.demands.map(([name, from, to, classType, level, bandwidth, what], id) => {
    const demand = {
      id, name, from: nodes[from], to: nodes[to], classType, level, bandwidth, ...what,
      links: null, nodes: null, backups: [],
    };
    if (what.path === undefined) return demand;
    demand.links = linksAlong(demand.from, what.path);
    demand.nodes = [demand.from, ...demand.links.map((link) => link.to)];
    demand.backups = (what.backups ?? []).map((text) => backupOf(demand, text));
    for (const link of demand.links) link.lsps.push(demand);
    for (const backup of demand.backups) for (const link of backup.links) link.backups.push(backup);
    return demand;
  });

  const failures = data.failures.map(
    ([name, kind, failedLinks, failedNodes, hit, local, global, lost, ended, overloads], id) => ({
      id, name, kind, links: failedLinks.map((link) => links[link]),
      nodes: failedNodes.map((node) => nodes[node]), hit: hit[0], hitBandwidth: hit[1], local,
      global, lost: lost[0], lostBandwidth: lost[1], ended, overloads,
    }));

  const lsps = demands.filter((demand) => demand.links);
  // What links carry without a failure, by class.
  const usualUse = links.map(() => data.classes.map(() => 0));
  for (const lsp of lsps) for (const link of lsp.links) usualUse[link.id][lsp.classType] += lsp.bandwidth;

  return {
    nodes, links, demands, failures, lsps, usualUse, map: data.map, classes: data.classes,
    levels: data.levels, figures: data.figures, peaks: data.peaks,
    bandwidth: (value) => `${format(value)}${data.unit ? ` ${data.unit}` : ""}`,
  };
}

// Has `handle(event, datum)` called; what D3 hands to listeners depends on its version.
function listen(selection, type, handle) {
  selection.each(function (datum) {
    this.addEventListener(type, (event) => handle(event, datum));
  });
  return selection;
}

const select = (id) => d3.select(`#${id}`);
const sumUpTo = (levels, last) => d3.sum(levels.slice(0, last + 1));
const format = d3.format(",.6~g");
const percent = (share) => (share === null || share === Infinity ? "over all" : `${(100 * share).toFixed(1)} %`);
const shareOf = (use, capacity) => (use <= 0 ? 0 : capacity > 0 ? use / capacity : Infinity);

// How full a link is, as the choices have it: `show` says what counts, `classType` -1 is the
// fullest class, `level` the last one counted; what is carried after a switch goes before all that.
function shareShown(plan, link, { show, classType, level }, switched) {
  if (!switched && show === "worst") return plan.peaks[link.id][1];
  const shareIn = (c) => {
    if (switched) return shareOf(switched.use[link.id][c], link.capacity[c]);
    const table = show === "carried" ? link.primary : link.total;
    return shareOf(sumUpTo(table[c], level), link.capacity[c]);
  };
  return classType >= 0 ? shareIn(classType) : d3.max(plan.classes, (_, c) => shareIn(c));
}

function summaryOf(plan) {
  const lost = plan.failures.filter((failure) => failure.lost > 0).length;
  return `${plan.nodes.length} nodes, ${plan.links.length} links, ${plan.lsps.length} of ` +
    `${plan.demands.length} demands placed, ${plan.figures.backups} backups; ` +
    `${lost} of ${plan.failures.length} failures lose LSPs`;
}
