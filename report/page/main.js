// The page of a plan: what was chosen, and everything that follows from it.

const plan = planOf(pageData);
const state = { show: "reserved", classType: -1, level: plan.levels.length - 1, chosen: null };
let switched = null;

const map = new NetworkMap(select("map"), plan, choose);
drawLegend(select("legend"));
select("summary").text(summaryOf(plan));

fillSelect("class", [[-1, "the fullest"], ...plan.classes.map((name, i) => [i, name])], -1,
  (value) => { state.classType = value; refresh(); });
fillSelect("level", plan.levels.map((name, i) => [i, i === 0 ? name : `${name} and above`]), state.level,
  (value) => { state.level = value; refresh(); });
fillSelect("failure", [[-1, "none"], ...plan.failures.map((failure) => [failure.id, failure.name])], -1,
  (value) => { fail(value < 0 ? null : plan.failures[value]); refresh(); });
listen(select("show"), "change", (event) => { state.show = event.target.value; refresh(); });

const shareNow = (link) => shareShown(plan, link, state, switched);

// A tab with a table of records of a kind.
const tableTab = (name, kind, columns, records) => ({
  name,
  draw: (parent) => new Table(parent, columns, records, ({ id }) => choose({ kind, id }),
    ({ id }) => `${kind}${id}`),
});
const tabs = new Tabs([
  tableTab("LSPs", "lsp", lspColumns(plan), plan.lsps),
  tableTab("Links", "link", linkColumns(plan, shareNow), plan.links),
  tableTab("Failures", "failure", failureColumns, plan.failures),
  tableTab("Refusals", "refusal", refusalColumns(plan), plan.demands.filter((demand) => !demand.links)),
  { name: "Charts", draw: (parent) => drawCharts(parent, plan) },
], markChosen);

function markChosen() {
  tabs.table?.mark(state.chosen ? `${state.chosen.kind}${state.chosen.id}` : null);
}

function fail(failure) {
  switched = failure ? switchOver(plan, failure) : null;
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
  if (kind === "lsp") describeLsp(details, plan, plan.demands[id], switched);
  else if (kind === "link")
    describeLink(details, plan, plan.links[id], state.level, switched?.use ?? plan.usualUse);
  else if (kind === "refusal") describeRefusal(details, plan, plan.demands[id]);
  else if (kind === "node") details.append("h2").text(plan.nodes[id].name);
  else if (!switched) details.append("p").attr("class", "quiet")
    .text("Choose an LSP, a link or a failure, here or on the map.");
  if (switched && kind !== "lsp") describeFailure(details, plan, switched);
}

function highlightChosen() {
  const { kind, id } = state.chosen ?? {};
  if (kind === "lsp") map.highlightLsp(plan.demands[id], switched);
  else if (kind === "link") map.highlight([], [plan.links[id]]);
  else if (kind === "node") map.highlight([], [], [plan.nodes[id]]);
  else if (kind === "refusal") map.highlightRefusal(plan.demands[id]);
  else map.highlight([], [], switched?.failure.nodes ?? []);
}

function refresh() {
  map.colour(shareNow, switched?.failure ?? null);
  highlightChosen();
  drawDetails();
  if (tabs.name === "Links") tabs.table.redraw(); // it has a column of what is shown
  markChosen();
}

listen(select("zoom-in"), "click", () => map.zoomBy(1.6));
listen(select("zoom-out"), "click", () => map.zoomBy(1 / 1.6));
listen(select("zoom-fit"), "click", () => map.fit());
window.addEventListener("keydown", (event) => {
  if (event.key !== "Escape") return;
  fail(null);
  refresh();
});

tabs.open(0);
refresh();
