// What was chosen, and everything that follows from it.

const state = { show: "reserved", classType: -1, level: plan.levels.length - 1, chosen: null, tab: 0 };
let switched = null;

const select = (id) => d3.select(`#${id}`);
const map = new NetworkMap(select("map"), choose);
drawLegend(select("legend"));

function fillSelect(id, options, value, onChange) {
  listen(select(id), "change", (event) => { onChange(Number(event.target.value)); refresh(); })
    .selectAll("option").data(options).join("option")
    .attr("value", (option) => option[0]).text((option) => option[1]);
  select(id).property("value", value);
}

fillSelect("class", [[-1, "the fullest"], ...plan.classes.map((name, i) => [i, name])], -1,
  (value) => { state.classType = value; });
fillSelect("level", plan.levels.map((name, i) => [i, i === 0 ? name : `${name} and above`]), state.level,
  (value) => { state.level = value; });
fillSelect("failure", [[-1, "none"], ...plan.failures.map((failure) => [failure.id, failure.name])], -1,
  (value) => fail(value < 0 ? null : plan.failures[value]));
listen(select("show"), "change", (event) => { state.show = event.target.value; refresh(); });

function shareIn(link, c) {
  if (switched) return shareOf(switched.use[link.id][c], link.capacity[c]);
  const table = state.show === "carried" ? link.primary : link.total;
  return shareOf(sumUpTo(table[c], state.level), link.capacity[c]);
}

// How full a link is, as the choices have it.
function shareNow(link) {
  if (!switched && state.show === "worst") return plan.peaks[link.id][1];
  return state.classType >= 0 ? shareIn(link, state.classType)
    : d3.max(plan.classes, (_, c) => shareIn(link, c));
}

const tabs = [
  { name: "LSPs", draw: (parent) => new Table(parent, lspColumns, plan.lsps,
    (lsp) => choose({ kind: "lsp", id: lsp.id }), (lsp) => `lsp${lsp.id}`) },
  { name: "Links", draw: (parent) => new Table(parent, linkColumns(shareNow), plan.links,
    (link) => choose({ kind: "link", id: link.id }), (link) => `link${link.id}`) },
  { name: "Failures", draw: (parent) => new Table(parent, failureColumns, plan.failures,
    (failure) => choose({ kind: "failure", id: failure.id }), (failure) => `failure${failure.id}`) },
  { name: "Refusals", draw: (parent) => new Table(parent, refusalColumns,
    plan.demands.filter((demand) => !demand.links),
    (demand) => choose({ kind: "refusal", id: demand.id }), (demand) => `refusal${demand.id}`) },
  { name: "Charts", draw: (parent) => drawCharts(parent) },
];
let table = null;

function openTab(index) {
  state.tab = index;
  select("tabs").selectAll("button").attr("aria-selected", (_, i) => i === index)
    .attr("tabindex", (_, i) => (i === index ? 0 : -1));
  const panel = select("panel");
  panel.selectAll("*").remove();
  panel.attr("aria-label", tabs[index].name);
  table = tabs[index].draw(panel) ?? null;
  if (table && state.chosen) table.mark(`${state.chosen.kind}${state.chosen.id}`);
}

const tabButtons = select("tabs").selectAll("button").data(tabs).join("button").attr("role", "tab")
  .text((tab) => tab.name);
listen(tabButtons, "click", (_, tab) => openTab(tabs.indexOf(tab)));
listen(tabButtons, "keydown", (event) => {
  const step = { ArrowRight: 1, ArrowLeft: -1 }[event.key];
  if (step === undefined) return;
  openTab((state.tab + step + tabs.length) % tabs.length);
  tabButtons.nodes()[state.tab].focus();
});

function fail(failure) {
  switched = failure ? switchOver(failure) : null;
  select("failure").property("value", failure ? failure.id : -1);
  state.chosen = failure ? { kind: "failure", id: failure.id } : null;
}

function choose(what) {
  if (what.kind === "failure") fail(plan.failures[what.id]);
  else state.chosen = what;
  refresh();
}

function drawDetails() {
  const details = select("details");
  details.selectAll("*").remove();
  const { kind, id } = state.chosen ?? {};
  if (kind === "lsp") describeLsp(details, plan.demands[id], switched);
  else if (kind === "link") describeLink(details, plan.links[id], state.level, switched?.use ?? usualUse);
  else if (kind === "refusal") describeRefusal(details, plan.demands[id]);
  else if (kind === "node") details.append("h2").text(plan.nodes[id].name);
  else if (!switched) details.append("p").attr("class", "quiet")
    .text("Choose an LSP, a link or a failure, here or on the map.");
  if (switched && kind !== "lsp") describeFailure(details, switched);
}

function highlightChosen() {
  const { kind, id } = state.chosen ?? {};
  if (kind === "lsp") {
    const lsp = plan.demands[id];
    const now = switched?.fates.find((one) => one.lsp === lsp);
    const backups = lsp.backups.map((backup) => ({ links: backup.links, kind: "backup" }));
    if (now) map.highlight(now.way ? [{ links: now.way, kind: "path" }] : [], now.way ?? lsp.links);
    else map.highlight([{ links: lsp.links, kind: "path" }, ...backups]);
  } else if (kind === "link") map.highlight([], [plan.links[id]]);
  else if (kind === "node") map.highlight([], [], [plan.nodes[id]]);
  else if (kind === "refusal") {
    const demand = plan.demands[id];
    map.highlight([], (demand.inTheWay ?? []).map(([link]) => plan.links[link]), [demand.from, demand.to]);
  } else map.highlight([], [], switched?.failure.nodes ?? []);
}

function refresh() {
  map.colour(shareNow, switched?.failure ?? null);
  highlightChosen();
  drawDetails();
  if (tabs[state.tab].name === "Links") table.redraw(); // it has a column of what is shown
  if (table) table.mark(state.chosen ? `${state.chosen.kind}${state.chosen.id}` : null);
}

listen(select("zoom-in"), "click", () => map.zoomBy(1.6));
listen(select("zoom-out"), "click", () => map.zoomBy(1 / 1.6));
listen(select("zoom-fit"), "click", () => map.fit());
listen(select("show-licence"), "click", () => {
  const licence = document.getElementById("licence");
  licence.hidden = !licence.hidden;
});
window.addEventListener("keydown", (event) => {
  if (event.key !== "Escape") return;
  fail(null);
  refresh();
});
window.addEventListener("beforeprint", () => table?.draw(true));

{
  const placed = plan.lsps.length;
  const lost = plan.failures.filter((failure) => failure.lost > 0).length;
  select("summary").text(`${plan.nodes.length} nodes, ${plan.links.length} links, ${placed} of ` +
    `${plan.demands.length} demands placed, ${plan.figures.backups} backups; ` +
    `${lost} of ${plan.failures.length} failures lose LSPs`);
}
openTab(0);
refresh();
