// ---- A window on the x axis that several plots share ----

class Zoom {
  constructor(ticks, describe, marked) {
    Object.assign(this, {ticks, describe, marked, plots: [], from: Infinity, to: -Infinity, least: Infinity, cursor: null,
      a: 0, b: 1});
  }
  add(plot) {
    const x = plot.x;
    this.plots.push(plot);
    if (!x.length) return;
    this.from = Math.min(this.from, x[0]);
    this.to = Math.max(this.to, x[x.length - 1]);
    if (x.length > 1) this.least = Math.min(this.least, (x[x.length - 1] - x[0]) / (x.length - 1) * 4);
    this.a = this.from;
    this.b = this.to;
    if (this.to > this.from) return;
    const around = this.ticks === timeTicks ? 1800 : 0.5; // a single point stands in the middle
    this.a -= around;
    this.b += around;
  }
  set(a, b) {
    if (!(this.to > this.from)) return;
    const span = Math.min(Math.max(b - a, this.least), this.to - this.from);
    const middle = (a + b) / 2;
    this.a = Math.max(this.from, Math.min(this.to - span, middle - span / 2));
    this.b = this.a + span;
    this.later("redraw");
  }
  point(x) {
    this.cursor = x;
    this.later("move");
  }
  later(what) {
    if (!this.waiting) {
      requestAnimationFrame(() => {
        const redraw = this.waiting === "redraw";
        this.waiting = null;
        if (redraw) refresh(this.plots);
        else this.plots.forEach(plot => plot.read());
        this.tell();
      });
    }
    if (this.waiting !== "redraw") this.waiting = what;
  }
  move(share) {
    const by = (this.b - this.a) * share;
    this.set(this.a + by, this.b + by);
  }
  scale(by) {
    const middle = this.cursor !== null && this.cursor > this.a && this.cursor < this.b ? this.cursor : (this.a + this.b) / 2;
    this.set(middle - (middle - this.a) * by, middle + (this.b - middle) * by);
  }
  all() { this.set(this.from, this.to); }
  tell() {
    if (!this.shown || !(this.to >= this.from)) return;
    const fine = this.b - this.a < 60;
    const [from, to] = [this.describe(this.a, fine), this.describe(this.b, fine)];
    const sameDay = from.length > 16 && from.slice(0, 15) === to.slice(0, 15);
    this.shown.textContent = `${from} \u2013 ${sameDay ? to.split(" ").pop() : to}`;
    this.under.textContent = this.cursor === null ? "" : this.describe(this.cursor, fine) + this.nearby();
  }
  nearby() { // what happened at the cursor
    const near = (this.b - this.a) / 250;
    const found = this.marked.filter(mark => mark[0] - near <= this.cursor && this.cursor <= mark[1] + near);
    const more = found.length > 2 ? ` and ${found.length - 2} more` : "";
    return found.length ? ": " + found.slice(0, 2).map(mark => mark[2]).join("; ") + more : "";
  }
  controls() {
    const button = (textContent, title, onclick) => element("button", {type: "button", textContent, title, onclick});
    this.shown = element("span", {className: "span", role: "status"});
    this.under = element("span", {className: "under"});
    return element("div", {className: "controls"},
      element("span", {className: "buttons"},
        button("earlier", "Half a window back", () => this.move(-0.5)),
        button("later", "Half a window on", () => this.move(0.5)),
        button("closer", "Half of the window", () => this.scale(0.5)),
        button("wider", "Twice the window", () => this.scale(2)),
        button("all", "Everything", () => this.all())),
      this.shown, this.under);
  }
  key(event) {
    const acts = {"+": () => this.scale(0.5), "=": () => this.scale(0.5), "-": () => this.scale(2), "0": () => this.all(),
      PageUp: () => this.move(-0.5), PageDown: () => this.move(0.5), Escape: () => this.point(null)};
    if (!acts[event.key] || event.ctrlKey || event.metaKey || event.altKey) return false;
    acts[event.key]();
    return true;
  }
}

// ---- What all plots have in common: a dygraph of a set size, and a layer above it for the pointer ----

class Plot {
  constructor(figure, name, height) {
    this.inner = element("div", {className: "inner"});
    this.cursorLine = element("div", {className: "cursor", hidden: true});
    this.selection = element("div", {className: "selection", hidden: true});
    this.layer = element("div", {className: "layer"}, this.cursorLine, this.selection);
    this.host = element("div", {className: "plot", tabIndex: 0}, this.inner, this.layer);
    this.host.setAttribute("role", "img");
    this.host.setAttribute("aria-label", name);
    this.height = height;
    this.host.style.height = height + "px";
    figure.append(this.host);
    all.push(this);
  }
  draw() {
    const width = this.host.clientWidth;
    if (!width) return;
    const height = Math.round(this.height * (paper ? 0.78 : 1));
    const options = Object.assign({
      gridLineColor: theme.grid, axisLineColor: theme.soft, pixelRatio: paper ? 2 : null, legend: "never",
      labelsDiv: element("div"), interactionModel: {}, highlightCircleSize: 0, rightGap: 8, gridLineWidth: 0.7,
      xRangePad: 0,
    }, this.options(width));
    if (this.graph && (this.width !== width || this.tall !== height || this.onPaper !== paper)) {
      this.graph.destroy();
      this.graph = null;
    }
    if (this.graph) {
      this.graph.updateOptions(options);
    } else {
      Object.assign(this, {width, tall: height, onPaper: paper});
      this.inner.style.width = width + "px";
      this.inner.style.height = this.host.style.height = height + "px";
      this.graph = new Dygraph(this.inner, options.file, options);
    }
    this.area = this.graph.getArea();
  }
  renew() {
    this.draw();
    this.read();
  }
  read() {}
  placeCursor(x) {
    this.cursorLine.style.left = this.graph.toDomXCoord(x) + "px";
    this.cursorLine.style.height = this.area.h + "px";
  }
}

// Draws the plots that are in sight at once, and the others a few at a time when that leaves time for it:
// zooming stays quick however many there are. On paper all are in sight.
const stale = new Set();
let next = 0;
function refresh(plots) {
  const seen = plots.filter(plot => {
    const box = plot.host.getBoundingClientRect();
    stale.add(plot);
    return paper || (box.bottom > 0 && box.top < innerHeight);
  });
  root.dataset.charts = "waiting";
  for (const plot of seen) {
    stale.delete(plot);
    plot.renew();
  }
  clearTimeout(next);
  next = setTimeout(function rest() {
    for (const until = performance.now() + 120; stale.size && performance.now() < until;) {
      const [plot] = stale;
      stale.delete(plot);
      plot.renew();
    }
    if (stale.size) {
      next = setTimeout(rest, 0);
      return;
    }
    root.dataset.charts = "drawn";
    performance.mark("charts drawn");
  }, 20);
}

const axis = (ticker, width) => ({ticker, axisLabelWidth: width, axisLabelFontSize: 12});
