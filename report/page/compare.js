// Two plans side by side: what is chosen is shown in both, and lists tell what differs.

const sides = ["before", "after"].map((key, i) => ({
  key, name: pageData.names[i], plan: planOf(pageData[key]), map: null, switched: null,
}));
const [before, after] = sides;
const state = { show: "reserved", className: null, levelName: null, failure: null, chosen: null,
  onlyChanged: false };

// Things of both plans with the same name: those of the second first, then what is in the first alone.
function paired(listOf) {
  const pairs = new Map(listOf(after.plan).map((one) => [one.name, [null, one]]));
  for (const one of listOf(before.plan)) {
    const pair = pairs.get(one.name);
    if (pair) pair[0] = one;
    else pairs.set(one.name, [one, null]);
  }
  return [...pairs].map(([name, pair], id) => ({ id, name, pair }));
}

const links = paired((plan) => plan.links);
const failures = paired((plan) => plan.failures);
const demands = pageData.changes.map(([change, name, first, second], id) => ({
  id, name, change,
  pair: [first, second].map((place, i) => (place === null ? null : sides[i].plan.demands[place])),
}));

// The choices as indices of a plan; a class that it does not have is as good as empty.
function choiceFor(plan) {
  const level = plan.levels.indexOf(state.levelName);
  return {
    show: state.show,
    classType: state.className === null ? -1 : plan.classes.indexOf(state.className),
    level: level < 0 ? plan.levels.length - 1 : level,
  };
}

function shareIn({ plan, switched }, link) {
  const choice = choiceFor(plan);
  if (state.className !== null && choice.classType < 0) return 0;
  return shareShown(plan, link, choice, switched) ?? Infinity;
}

const shareOn = (pair, i) => (pair[i] ? shareIn(sides[i], pair[i]) : 0);
function growth({ pair }) {
  const [first, second] = [shareOn(pair, 0), shareOn(pair, 1)];
  return first === second ? 0 : second - first;
}
const differs = (link) => !link.pair[0] || !link.pair[1] || Math.abs(growth(link)) > 1e-9;
const changedLinks = (i) => links.filter(differs).map((link) => link.pair[i]).filter(Boolean);

const signed = (value) => (value > 0 ? "+" : "") + percent(value);
const hops = (demand) => demand?.links?.length ?? 0;
const changedDemandColumns = [
  textColumn("LSP", (demand) => demand.name, "minmax(90px, 1.4fr)"),
  textColumn("change", (demand) => demand.change, "minmax(90px, 1.4fr)"),
  numberColumn("bandwidth", ({ pair }) => pair[0]?.bandwidth ?? 0),
  numberColumn("after", ({ pair }) => pair[1]?.bandwidth ?? 0),
  numberColumn("hops", ({ pair }) => hops(pair[0])),
  numberColumn("after", ({ pair }) => hops(pair[1])),
  numberColumn("backups", ({ pair }) => pair[0]?.backups.length ?? 0),
  numberColumn("after", ({ pair }) => pair[1]?.backups.length ?? 0),
];
const pairedLinkColumns = [
  textColumn("link", (link) => link.name, "minmax(130px, 2fr)"),
  numberColumn("now shown", ({ pair }) => shareOn(pair, 0), percent),
  numberColumn("after", ({ pair }) => shareOn(pair, 1), percent),
  numberColumn("change", growth, signed),
  numberColumn("LSPs", ({ pair }) => pair[0]?.lsps.length ?? 0),
  numberColumn("after", ({ pair }) => pair[1]?.lsps.length ?? 0),
];
const pairedFailureColumns = [
  textColumn("failure", (failure) => failure.name, "minmax(130px, 2fr)"),
  ...["hit", "lost"].flatMap((what) => [
    numberColumn(what, ({ pair }) => pair[0]?.[what] ?? 0),
    numberColumn("after", ({ pair }) => pair[1]?.[what] ?? 0)]),
  numberColumn("bandwidth", ({ pair }) => pair[0]?.lostBandwidth ?? 0),
  numberColumn("after", ({ pair }) => pair[1]?.lostBandwidth ?? 0),
  numberColumn("too full", ({ pair }) => pair[0]?.overloads ?? 0),
  numberColumn("after", ({ pair }) => pair[1]?.overloads ?? 0),
];

const sum = (values) => d3.sum(values.filter(Boolean));
function figuresOf({ plan }) {
  const { figures, failures: all } = plan;
  const fates = ["demanded", "placed", "refused", "preempted"].flatMap((what) => [
    [what === "demanded" ? "demands" : `demands ${what}`,
      sum(figures.levels.map((level) => level[what][0])), format],
    [`bandwidth ${what}`, sum(figures.levels.map((level) => level[what][1])), plan.bandwidth]]);
  const covers = ["links and nodes", "all links", "some links", "nothing"].map((what, i) => [
    `LSPs protected against ${what}`, sum(figures.levels.map((level) => level.coverage[i])), format]);
  return [...fates, ...covers,
    ["reserved for LSPs", figures.primary, plan.bandwidth],
    ["backups", figures.backups, format],
    ["reserved for backups, as they share", figures.shared, plan.bandwidth],
    ["reserved for backups, if none were shared", figures.dedicated, plan.bandwidth],
    ["failures that lose LSPs", all.filter((failure) => failure.lost > 0).length, format],
    ["bandwidth lost, all failures added up", sum(all.map((failure) => failure.lostBandwidth)), plan.bandwidth]];
}

function drawFigures(parent) {
  const table = parent.append("table").attr("class", "figures");
  table.append("thead").append("tr").selectAll("th")
    .data(["", before.name, after.name, "change"]).join("th").text((name) => name);
  const [first, second] = sides.map(figuresOf);
  const rows = table.append("tbody").selectAll("tr").data(first).join("tr");
  rows.append("th").text(([name]) => name);
  rows.append("td").text(([, value, show]) => show(value));
  rows.append("td").text(([, , show], i) => show(second[i][1]));
  rows.append("td").text(([, value], i) => {
    const change = second[i][1] - value;
    return change === 0 ? "" : (change > 0 ? "+" : "") + format(change);
  });
}

const tableTab = (name, kind, columns, records) => ({
  name,
  draw: (parent) => new Table(parent, columns, records, (record) => choose(kind, record),
    ({ id }) => `${kind}${id}`),
});
const tabs = new Tabs([
  tableTab("LSPs that differ", "lsp", changedDemandColumns, demands),
  tableTab("Links", "link", pairedLinkColumns, links),
  tableTab("Failures", "failure", pairedFailureColumns, failures),
  { name: "Figures", draw: drawFigures },
], markChosen);

function markChosen() {
  tabs.table?.mark(state.chosen ? `${state.chosen.kind}${state.chosen.record.id}` : null);
}

function fail(failure) {
  state.failure = failure;
  sides.forEach((side, i) => {
    const own = failure?.pair[i];
    side.switched = own ? switchOver(side.plan, own) : null;
  });
  select("failure").property("value", failure ? failure.id : -1);
}

function choose(kind, record) {
  if (kind === "failure") fail(record);
  state.chosen = record ? { kind, record } : null;
  refresh();
}

// What was clicked on one of the maps, as a record of both plans.
function chooseOnMap({ kind, id }, i) {
  if (kind === "link") choose("link", links.find(({ pair }) => pair[i] === sides[i].plan.links[id]));
}

function highlightIn({ map, switched }, i) {
  const { kind, record } = state.chosen ?? {};
  const own = record?.pair[i];
  if (kind === "lsp" && own) {
    if (own.links) map.highlightLsp(own, switched);
    else map.highlightRefusal(own);
  } else if (kind === "link" && own) map.highlight([], [own]);
  else if (state.onlyChanged) map.highlight([], changedLinks(i));
  else map.highlight([], [], switched?.failure.nodes ?? []);
}

function describeIn({ key, plan, switched }, i) {
  const details = select(`${key}-details`);
  details.selectAll("*").remove();
  const { kind, record } = state.chosen ?? {};
  const own = record?.pair[i];
  if (record && !own) details.append("p").attr("class", "quiet").text(`${record.name} is not in this plan.`);
  else if (kind === "lsp" && own.links) describeLsp(details, plan, own, switched);
  else if (kind === "lsp") describeRefusal(details, plan, own);
  else if (kind === "link")
    describeLink(details, plan, own, choiceFor(plan).level, switched?.use ?? plan.usualUse);
  if (switched && kind !== "lsp") describeFailure(details, plan, switched);
  else if (!record) details.append("p").attr("class", "quiet").text("Choose an LSP, a link or a failure below.");
}

function refresh() {
  sides.forEach((side, i) => {
    side.map.colour((link) => shareIn(side, link), side.switched?.failure ?? null);
    highlightIn(side, i);
    describeIn(side, i);
  });
  if (tabs.name === "Links") tabs.table.redraw();
  markChosen();
}

sides.forEach((side, i) => {
  side.map = new NetworkMap(select(`${side.key}-map`), side.plan, (what) => chooseOnMap(what, i));
  side.map.onView = (view) => sides[1 - i].map.show(view);
  select(`${side.key}-name`).text(side.name);
  select(`${side.key}-summary`).text(summaryOf(side.plan));
});
drawLegend(select("legend"));

const namesOf = (key) => [...new Set(sides.flatMap(({ plan }) => plan[key]))];
const classNames = namesOf("classes");
const levelNames = namesOf("levels");
fillSelect("class", [[-1, "the fullest"], ...classNames.map((name, i) => [i, name])], -1,
  (value) => { state.className = classNames[value] ?? null; refresh(); });
fillSelect("level", levelNames.map((name, i) => [i, i === 0 ? name : `${name} and above`]),
  levelNames.length - 1, (value) => { state.levelName = levelNames[value]; refresh(); });
fillSelect("failure", [[-1, "none"], ...failures.map(({ id, name }) => [id, name])], -1,
  (value) => choose("failure", failures[value] ?? null));
listen(select("show"), "change", (event) => { state.show = event.target.value; refresh(); });
select("for-two").attr("hidden", null);
listen(select("only-changed"), "change", (event) => { state.onlyChanged = event.target.checked; refresh(); });
listen(select("zoom-in"), "click", () => after.map.zoomBy(1.6));
listen(select("zoom-out"), "click", () => after.map.zoomBy(1 / 1.6));
listen(select("zoom-fit"), "click", () => after.map.fit());
window.addEventListener("keydown", (event) => {
  if (event.key !== "Escape") return;
  fail(null);
  choose(null, null);
});

select("summary").text(`${demands.length} LSPs differ, ` +
  `${links.filter(differs).length} of ${links.length} links reserve more or less`);
tabs.open(0);
refresh();
