// A table of which only the rows in sight are drawn: it can have thousands.

const rowHeight = 27;

class Table {
  // columns: { name, of: record => text or number, isNumber, show: value => text, width, isBad }
  constructor(parent, columns, records, onChoose, keyOf) {
    this.columns = columns;
    this.all = records;
    this.rows = records;
    this.onChoose = onChoose;
    this.keyOf = keyOf;
    this.chosen = null;
    this.sortedBy = null;
    const widths = columns.map((column) => column.width ?? "minmax(70px, 1fr)").join(" ");
    parent.style("--columns", widths);
    const search = parent.append("div").attr("class", "search");
    listen(search.append("input").attr("type", "search").attr("placeholder", "Search")
      .attr("aria-label", "Search"), "input", (event) => this.search(event.target.value));
    this.count = search.append("span");
    this.view = parent.append("div").attr("class", "rows").attr("tabindex", 0).attr("role", "grid");
    listen(this.view, "scroll", () => this.draw());
    listen(this.view, "keydown", (event) => this.onKey(event));
    const head = this.view.append("div").attr("class", "grid head").attr("role", "row")
      .style("grid-template-columns", widths);
    columns.forEach((column, i) => listen(head.append("button").attr("role", "columnheader")
      .classed("number", Boolean(column.isNumber)).text(column.name).attr("title", column.name),
    "click", () => this.sort(i)));
    this.head = head;
    this.body = this.view.append("div").style("position", "relative");
    this.widths = widths;
    this.refresh();
  }

  textOf(column, record) {
    const value = column.of(record);
    return column.show ? column.show(value) : value;
  }

  search(words) {
    const wanted = words.toLowerCase().split(/\s+/).filter(Boolean);
    this.rows = this.all.filter((record) => {
      const text = this.columns.map((column) => this.textOf(column, record)).join(" ").toLowerCase();
      return wanted.every((word) => text.includes(word));
    });
    this.order();
    this.refresh();
  }

  sort(column) {
    const isAgain = this.sortedBy?.column === column;
    const isDown = isAgain ? !this.sortedBy.isDown : Boolean(this.columns[column].isNumber);
    this.sortedBy = { column, isDown };
    this.head.selectAll("button").attr("aria-sort",
      (_, i) => (i === column ? (isDown ? "descending" : "ascending") : null));
    this.order();
    this.refresh();
  }

  order() {
    if (!this.sortedBy) return;
    const { column, isDown } = this.sortedBy;
    const compare = isDown ? d3.descending : d3.ascending;
    this.rows = d3.sort(this.rows, (a, b) => compare(this.columns[column].of(a), this.columns[column].of(b)));
  }

  refresh() {
    this.count.text(this.rows.length === this.all.length ? `${this.all.length}`
      : `${this.rows.length} of ${this.all.length}`);
    this.body.style("height", `${this.rows.length * rowHeight}px`);
    this.draw();
  }

  draw(isForPrint = false) {
    const view = this.view.node();
    const first = isForPrint ? 0 : Math.max(0, Math.floor(view.scrollTop / rowHeight) - 5);
    const count = isForPrint ? 40 : Math.ceil(view.clientHeight / rowHeight) + 10;
    const shown = this.rows.slice(first, first + count);
    const rows = this.body.selectAll("div.cells").data(shown, (record) => this.keyOf(record))
      .join((enter) => {
        const row = enter.append("div").attr("class", "grid cells").attr("role", "row")
          .style("grid-template-columns", this.widths);
        listen(row, "click", (_, record) => this.choose(record));
        for (const column of this.columns) {
          row.append("span").attr("role", "gridcell").classed("number", Boolean(column.isNumber))
            .classed("bad", (record) => Boolean(column.isBad?.(record)))
            .text((record) => this.textOf(column, record))
            .attr("title", (record) => this.textOf(column, record));
        }
        return row;
      });
    rows.style("top", (_, i) => `${(first + i) * rowHeight}px`)
      .classed("chosen", (record) => this.keyOf(record) === this.chosen)
      .attr("aria-selected", (record) => this.keyOf(record) === this.chosen);
  }

  redraw() {
    this.body.selectAll("*").remove();
    this.draw();
  }

  choose(record) {
    this.chosen = this.keyOf(record);
    this.draw();
    this.onChoose(record);
  }

  mark(key) {
    this.chosen = key;
    this.draw();
  }

  onKey(event) {
    const step = { ArrowDown: 1, ArrowUp: -1, PageDown: 10, PageUp: -10 }[event.key];
    if (step === undefined || this.rows.length === 0) return;
    event.preventDefault();
    const at = this.rows.findIndex((record) => this.keyOf(record) === this.chosen);
    const next = Math.min(Math.max(at + step, 0), this.rows.length - 1);
    const view = this.view.node();
    const top = next * rowHeight;
    if (top < view.scrollTop) view.scrollTop = top;
    if (top > view.scrollTop + view.clientHeight - 3 * rowHeight)
      view.scrollTop = top - view.clientHeight + 3 * rowHeight;
    this.choose(this.rows[next]);
  }
}
