// The map: links side by side with the way back, wide where they begin, coloured by use.

const steps = [0.2, 0.4, 0.6, 0.8, 1 + 1e-9];
const colourOf = (share) => `var(--u${share === null ? 5 : d3.bisectLeft(steps, share)})`;

class NetworkMap {
  constructor(svg, plan, onChoose) {
    this.svg = svg;
    this.plan = plan;
    this.onChoose = onChoose;
    this.view = d3.zoomIdentity;
    this.onView = null; // called with a view after zooming and panning
    const { width, height } = plan.map;
    svg.attr("viewBox", `0 0 ${width} ${height}`).attr("preserveAspectRatio", "xMidYMid meet");
    this.land = svg.append("g").attr("aria-hidden", true);
    this.linkLayer = svg.append("g");
    this.ways = svg.append("g");
    this.nodeLayer = svg.append("g");
    this.nameLayer = svg.append("g").attr("aria-hidden", true);
    this.drawLand();
    this.zoom = d3.zoom().scaleExtent([0.5, 60])
      .on("zoom", () => {
        this.view = d3.zoomTransform(svg.node());
        this.place();
        this.onView?.(this.view);
      });
    svg.call(this.zoom).on("dblclick.zoom", null);
    this.linkShapes = this.linkLayer.selectAll("path").data(plan.links).join("path")
      .attr("class", "link");
    listen(this.linkShapes, "click", (_, link) => onChoose({ kind: "link", id: link.id }));
    this.linkShapes.append("title");
    this.nodeShapes = this.nodeLayer.selectAll("circle").data(plan.nodes).join("circle")
      .attr("class", "node");
    listen(this.nodeShapes, "click", (_, node) => onChoose({ kind: "node", id: node.id }));
    this.nodeShapes.append("title").text((node) => node.name);
    this.degree = plan.nodes.map(() => 0);
    for (const link of plan.links) this.degree[link.from.id] += 1;
    this.place();
    new ResizeObserver(() => this.place()).observe(svg.node());
  }

  drawLand() {
    const lineOf = ([, points]) => {
      const pieces = [];
      for (let i = 0; i < points.length; i += 2) pieces.push(`${points[i]},${points[i + 1]}`);
      return `M${pieces.join("L")}`;
    };
    for (const kind of ["state", "border", "coast"]) {
      const lines = this.plan.map.land.filter((line) => line[0] === kind);
      this.land.append("path").attr("class", kind).attr("d", lines.map(lineOf).join(""));
    }
  }

  // How many units of the drawing a pixel of the screen is.
  get unit() {
    const box = this.svg.node().getBoundingClientRect();
    return Math.max(this.plan.map.width / (box.width || 1), this.plan.map.height / (box.height || 1));
  }

  at(node) { return this.view.apply([node.x, node.y]); }

  shapeOf(link) {
    const [x0, y0] = this.at(link.from);
    const [x1, y1] = this.at(link.to);
    const length = Math.hypot(x1 - x0, y1 - y0) || 1;
    const across = [(y0 - y1) / length, (x1 - x0) / length];
    const unit = this.linkUnit;
    const gap = link.back ? 0.5 * unit : -1.6 * unit;
    const point = (x, y, side) => `${(x + across[0] * side).toFixed(2)},${(y + across[1] * side).toFixed(2)}`;
    return `M${point(x0, y0, gap)}L${point(x0, y0, gap + 3.6 * unit)}L${point(x1, y1, gap + 1.2 * unit)}L${point(x1, y1, gap)}Z`;
  }

  place() {
    const unit = this.unit;
    const crowd = Math.min(1.5, Math.max(0.7, 14 / Math.sqrt(this.plan.nodes.length) * this.view.k ** 0.4));
    this.linkUnit = unit * crowd;
    this.land.attr("transform", this.view);
    this.linkShapes.attr("d", (link) => this.shapeOf(link));
    this.nodeShapes.attr("cx", (node) => this.at(node)[0]).attr("cy", (node) => this.at(node)[1])
      .attr("r", (crowd < 1 ? 2.6 : 3.6) * unit * crowd).style("stroke-width", unit);
    this.linkShapes.style("stroke-width", 0.5 * unit);
    this.placeWays();
    this.placeNames(unit);
  }

  // Names where there is room for them, those of nodes with many links first.
  placeNames(unit) {
    const { width, height } = this.plan.map;
    const size = 11.5 * unit;
    const taken = [];
    const shown = [];
    const wanted = this.named ?? new Set();
    const most = 45 * Math.max(1, this.view.k);
    const nodes = wanted.size > 0 ? [...wanted] : this.plan.nodes;
    const order = d3.sort(nodes, (a, b) => this.degree[b.id] - this.degree[a.id]);
    for (const node of order) {
      const [x, y] = this.at(node);
      if (x < 0 || y < 0 || x > width || y > height) continue;
      const long = node.name.length * size * 0.58;
      const places = [[x + 7 * unit, y + size * 0.35], [x - 7 * unit - long, y + size * 0.35],
        [x - long / 2, y - 8 * unit], [x - long / 2, y + 8 * unit + size * 0.8]];
      for (const [left, base] of places) {
        const box = [left - 2 * unit, base - size, left + long + 2 * unit, base + size * 0.3];
        const isFree = box[0] >= 0 && box[2] <= width && !taken.some((other) => box[0] < other[2] && other[0] < box[2] &&
          box[1] < other[3] && other[1] < box[3]);
        if (!isFree) continue;
        taken.push(box);
        shown.push({ node, left, base });
        break;
      }
      if (shown.length >= most) break;
    }
    this.nameLayer.selectAll("text").data(shown, (one) => one.node.id).join("text")
      .attr("class", "name").attr("x", (one) => one.left).attr("y", (one) => one.base)
      .style("font-size", `${size}px`).style("stroke-width", `${3 * unit}px`)
      .text((one) => one.node.name);
  }

  // share: link => how full, failure: or null.
  colour(share, failure) {
    const failed = new Set(failure?.links);
    const failedNodes = new Set(failure?.nodes);
    this.linkShapes.classed("failed", (link) => failed.has(link))
      .style("fill", (link) => (failed.has(link) ? null : colourOf(share(link))));
    this.linkShapes.select("title").text((link) => `${link.name}: ` +
      (failed.has(link) ? "failed" : percent(share(link))));
    this.nodeShapes.classed("failed", (node) => failedNodes.has(node));
  }

  // ways: { links, kind: "path" or "backup" }; others: whether all else steps back.
  highlight(ways, links = [], nodes = []) {
    const bright = new Set([...links, ...ways.flatMap((way) => way.links)]);
    this.shownWays = ways;
    this.linkShapes.classed("faint", (link) => bright.size > 0 && !bright.has(link));
    const ends = (some) => [...some].flatMap((link) => [link.from, link.to]);
    const paths = ways.filter((way) => way.kind === "path").flatMap((way) => way.links);
    this.named = new Set([...nodes, ...ends([...links, ...paths])]);
    const seen = new Set([...this.named, ...ends(bright)]);
    this.nodeShapes.classed("faint", (node) => bright.size > 0 && !seen.has(node));
    this.place();
  }

  // The path of an LSP and its backups, or the way it goes after a switch that concerns it.
  highlightLsp(lsp, switched) {
    const now = switched?.fates.find((one) => one.lsp === lsp);
    const backups = lsp.backups.map((backup) => ({ links: backup.links, kind: "backup" }));
    if (now) this.highlight(now.way ? [{ links: now.way, kind: "path" }] : [], now.way ?? lsp.links);
    else this.highlight([{ links: lsp.links, kind: "path" }, ...backups]);
  }

  highlightRefusal(demand) {
    const inTheWay = (demand.inTheWay ?? []).map(([link]) => this.plan.links[link]);
    this.highlight([], inTheWay, [demand.from, demand.to]);
  }

  placeWays() {
    const unit = this.unit;
    const lineOf = (way) => `M${[way.links[0].from, ...way.links.map((link) => link.to)]
      .map((node) => this.at(node).map((value) => value.toFixed(2)).join(",")).join("L")}`;
    this.ways.selectAll("path").data(this.shownWays ?? []).join("path")
      .attr("class", (way) => `way ${way.kind}`).attr("d", lineOf)
      .style("stroke-width", (way) => (way.kind === "path" ? 6 : 1.8) * unit)
      .style("opacity", (way) => (way.kind === "path" ? 0.6 : 0.85))
      .style("stroke-dasharray", (way) => (way.kind === "path" ? null : `${6 * unit} ${4 * unit}`));
  }

  zoomBy(factor) { this.svg.transition().duration(200).call(this.zoom.scaleBy, factor); }
  show(view) { if (`${view}` !== `${this.view}`) this.svg.call(this.zoom.transform, view); }
  fit() { this.svg.transition().duration(200).call(this.zoom.transform, d3.zoomIdentity); }
}

function drawLegend(parent) {
  const texts = ["0", "20", "40", "60", "80", "over 100 %"];
  const ranges = ["to 20 %", "20 to 40 %", "40 to 60 %", "60 to 80 %", "80 to 100 %", "over 100 %"];
  texts.forEach((_, i) => {
    const entry = parent.append("span");
    entry.append("i").style("background", `var(--u${i})`);
    entry.append("span").text(ranges[i]);
  });
  parent.append("span").text("A link is wide where it begins, and on its right-hand side.");
}
