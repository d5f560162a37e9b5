// Charts: how full links are, how well LSPs are protected, what sharing saves.

function usesChart(parent, plan, width) {
  const height = 170;
  const margin = { top: 8, right: 10, bottom: 26, left: 42 };
  const block = parent.append("div").attr("class", "chart");
  block.append("h3").text("Links, the fullest first: without failure, and in the worst one");
  const finite = (share) => Math.min(share ?? 1.2, 1.2);
  const series = [
    { name: "worst", colour: "var(--u4)", values: d3.sort(plan.peaks.map((peak) => finite(peak[1])), d3.descending) },
    { name: "without failure", colour: "var(--u2)", values: d3.sort(plan.peaks.map((peak) => finite(peak[0])), d3.descending) },
  ];
  const svg = block.append("svg").attr("viewBox", `0 0 ${width} ${height}`).attr("width", "100%")
    .attr("role", "img").attr("aria-label", "Use of links");
  const x = d3.scaleLinear().domain([0, Math.max(1, plan.links.length - 1)])
    .range([margin.left, width - margin.right]);
  const top = Math.max(1, d3.max(series[0].values) ?? 1);
  const y = d3.scaleLinear().domain([0, top]).range([height - margin.bottom, margin.top]);
  svg.append("g").attr("class", "axis").attr("transform", `translate(0,${height - margin.bottom})`)
    .call(d3.axisBottom(x).ticks(6).tickFormat(d3.format("d")));
  svg.append("g").attr("class", "axis").attr("transform", `translate(${margin.left},0)`)
    .call(d3.axisLeft(y).ticks(5, "%"));
  const area = d3.area().x((_, i) => x(i)).y0(y(0)).y1((value) => y(value));
  for (const one of series) svg.append("path").attr("d", area(one.values)).style("fill", one.colour);
  for (const one of series) {
    block.append("span").attr("class", "key").style("background", one.colour);
    block.append("span").text(one.name);
  }
}

// rows: { name, parts: [number] }; parts: { name, colour }
function barsChart(parent, width, title, rows, parts, show) {
  const rowSize = 24;
  const left = 90;
  const block = parent.append("div").attr("class", "chart");
  block.append("h3").text(title);
  const svg = block.append("svg").attr("viewBox", `0 0 ${width} ${rows.length * rowSize + 4}`)
    .attr("width", "100%").attr("role", "img").attr("aria-label", title);
  const largest = d3.max(rows, (row) => d3.sum(row.parts)) || 1;
  const x = d3.scaleLinear().domain([0, largest]).range([left, width - 90]);
  rows.forEach((row, i) => {
    let sum = 0;
    const y = i * rowSize + 3;
    svg.append("text").attr("x", left - 6).attr("y", y + 13).attr("text-anchor", "end").text(row.name);
    row.parts.forEach((value, part) => {
      svg.append("rect").attr("x", x(sum)).attr("y", y).attr("height", rowSize - 7)
        .attr("width", x(sum + value) - x(sum)).style("fill", parts[part].colour)
        .append("title").text(`${parts[part].name}: ${show(value)}`);
      sum += value;
    });
    svg.append("text").attr("x", x(sum) + 5).attr("y", y + 13).text(show(sum));
  });
  for (const part of parts) {
    block.append("span").attr("class", "key").style("background", part.colour);
    block.append("span").text(part.name);
  }
}

function drawCharts(parent, plan) {
  const width = 560;
  const { figures } = plan;
  usesChart(parent, plan, width);
  barsChart(parent, width, "LSPs protected against the failure of",
    figures.levels.map((level, i) => ({ name: plan.levels[i], parts: level.coverage })),
    [{ name: "links and nodes", colour: "var(--u2)" }, { name: "all links", colour: "var(--u1)" },
      { name: "some links", colour: "var(--u3)" }, { name: "nothing", colour: "var(--u0)" }], format);
  barsChart(parent, width, "Bandwidth reserved, all links added up",
    [{ name: "for LSPs", parts: [figures.primary, 0, 0] },
      { name: "if not shared", parts: [0, figures.dedicated, 0] },
      { name: "as shared", parts: [0, 0, figures.shared] }],
    [{ name: "LSPs", colour: "var(--u1)" }, { name: "backups, each its own", colour: "var(--u3)" },
      { name: "backups, sharing", colour: "var(--u2)" }], plan.bandwidth);
}
