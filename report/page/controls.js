// Choices above a map, and tabs.

// options: [value, text]; onChange(value) has numbers as numbers.
function fillSelect(id, options, value, onChange) {
  listen(select(id), "change", (event) => onChange(Number(event.target.value)))
    .selectAll("option").data(options).join("option")
    .attr("value", (option) => option[0]).text((option) => option[1]);
  select(id).property("value", value);
}

class Tabs {
  // tabs: { name, draw: panel => Table or nothing }; onOpen() is called when one was opened.
  constructor(tabs, onOpen) {
    this.tabs = tabs;
    this.onOpen = onOpen;
    this.at = 0;
    this.table = null;
    this.buttons = select("tabs").selectAll("button").data(tabs).join("button").attr("role", "tab")
      .text((tab) => tab.name);
    listen(this.buttons, "click", (_, tab) => this.open(tabs.indexOf(tab)));
    listen(this.buttons, "keydown", (event) => this.onKey(event));
    window.addEventListener("beforeprint", () => this.table?.draw(true));
  }

  get name() { return this.tabs[this.at].name; }

  open(index) {
    this.at = index;
    this.buttons.attr("aria-selected", (_, i) => i === index)
      .attr("tabindex", (_, i) => (i === index ? 0 : -1));
    const panel = select("panel");
    panel.selectAll("*").remove();
    panel.attr("aria-label", this.name);
    this.table = this.tabs[index].draw(panel) ?? null;
    this.onOpen();
  }

  onKey(event) {
    const step = { ArrowRight: 1, ArrowLeft: -1 }[event.key];
    if (step === undefined) return;
    this.open((this.at + step + this.tabs.length) % this.tabs.length);
    this.buttons.nodes()[this.at].focus();
  }
}

listen(select("show-licence"), "click", () => {
  const licence = document.getElementById("licence");
  licence.hidden = !licence.hidden;
});
