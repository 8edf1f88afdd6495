// Draws the charts of a report from the numbers that the page carries in #data. Line charts, bars and
// the tolerance chart are dygraphs, which here only paints: pointer, keys, legends and the choice of
// points are this file's, so that all trends move together, a long recording stays quick, and no text
// of a recording ever becomes markup.
(function () {
  "use strict";
  const data = JSON.parse(document.getElementById("data").textContent);
  const root = document.documentElement;
  const MARKS = {dip: "dip", swell: "swell", interruption: "interruption", change: "rapid change"};
  const DAYS = ["Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"];
  const MONTHS = ["Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"];
  // A phase is told by its stroke as well as by its colour.
  const STYLES = {
    1: {color: "c1", dash: []}, 2: {color: "c2", dash: [7, 2.5]}, 3: {color: "c3", dash: [2.5, 2]},
    n: {color: "cn", dash: [7, 2, 2, 2]}, t: {color: "ct", dash: [14, 2.5]},
    x: {color: "cx", dash: [7, 2, 2, 2, 2, 2]}, y: {color: "cy", dash: [2, 4]},
  };
  const all = []; // every chart's plots, in the order of the page
  let theme = {};
  let paper = false;

  function element(name, attributes, ...children) {
    const made = document.createElement(name);
    for (const key of Object.keys(attributes || {})) {
      if (key in made) made[key] = attributes[key];
      else made.setAttribute(key, attributes[key]);
    }
    made.append(...children);
    return made;
  }

  function drawing(name, attributes, parent) {
    const made = document.createElementNS("http://www.w3.org/2000/svg", name);
    for (const key of Object.keys(attributes)) made.setAttribute(key, attributes[key]);
    if (parent) parent.append(made);
    return made;
  }

  function readTheme() {
    const style = getComputedStyle(root);
    theme = {};
    for (const name of ["c1", "c2", "c3", "cn", "ct", "cx", "cy", "ink", "soft", "grid", "limit", "mark", "back"]) {
      theme[name] = style.getPropertyValue("--" + name).trim();
    }
    theme.font = "11px " + getComputedStyle(document.body).fontFamily;
  }

  // ---- Numbers and times as text ----

  const two = number => String(number).padStart(2, "0");

  function day(seconds, withYear) {
    const date = new Date(seconds * 1000);
    const text = `${DAYS[date.getUTCDay()]} ${date.getUTCDate()} ${MONTHS[date.getUTCMonth()]}`;
    return withYear ? `${text} ${date.getUTCFullYear()}` : text;
  }

  function clock(seconds, step) {
    const date = new Date(Math.round(seconds * 1e6) / 1e3);
    let text = two(date.getUTCHours()) + ":" + two(date.getUTCMinutes());
    if (step < 60) text += ":" + two(date.getUTCSeconds());
    if (step < 1) text += "." + String(date.getUTCMilliseconds()).padStart(3, "0");
    return text;
  }

  function niceStep(least) {
    const power = Math.pow(10, Math.floor(Math.log10(least)));
    return [1, 2, 5, 10].find(factor => factor * power >= least * 0.9999) * power;
  }

  const fixed = (value, decimals) => value.toFixed(decimals).replace("-", "\u2212");
  const decimalsOf = step => Math.max(0, Math.min(9, Math.ceil(-Math.log10(step) - 1e-9)));

  function numberTicks(from, to, pixels, apart, scale) {
    const step = niceStep((to - from) / Math.max(1, pixels / apart));
    const ticks = [];
    for (let i = Math.ceil(from / step - 1e-9); i * step <= to + step * 1e-9; i++) {
      ticks.push({v: i * step, label: scale(i * step, step)});
    }
    return ticks;
  }

  function plainScale(value, step) {
    const size = Math.abs(value);
    for (const [unit, letter] of [[1e9, "G"], [1e6, "M"], [1e3, "k"]]) {
      if (size >= 10 * unit || (size >= unit && step >= unit / 10)) {
        return fixed(value / unit, decimalsOf(step / unit)) + " " + letter;
      }
    }
    return fixed(value, decimalsOf(step));
  }

  const valueTicks = (from, to, pixels) => numberTicks(from, to, pixels, paper ? 24 : 30, plainScale);

  const STEPS = [0.001, 0.002, 0.005, 0.01, 0.02, 0.05, 0.1, 0.2, 0.5, 1, 2, 5, 10, 15, 30, 60, 120, 300, 600,
    900, 1800, 3600, 7200, 10800, 21600, 43200, ...[1, 2, 7, 14, 28, 56, 112, 364, 728, 3640].map(d => d * 86400)];
  const MONDAY = 345600; // the first since 1970: ticks of weeks stand on Mondays

  function timeTicks(from, to, pixels) {
    const narrow = pixels < 420;
    const wide = step => (step < 1 ? 92 : step < 60 ? 74 : step < 86400 ? 66 : narrow ? 56 : 80);
    const step = STEPS.find(s => (to - from) / s * wide(s) <= pixels) || STEPS[STEPS.length - 1];
    const origin = step >= 604800 ? MONDAY : 0;
    const date = at => (step >= 5e6 ? day(at, true).slice(4) : narrow ? day(at).slice(4) : day(at));
    const ticks = [];
    for (let i = Math.ceil((from - origin) / step - 1e-9); i * step + origin <= to; i++) {
      const at = i * step + origin;
      ticks.push({v: at, label: at % 86400 === 0 ? date(at) : clock(at, step)});
    }
    return ticks;
  }

  // Decimals that show what the values hold, but no more than five figures.
  function decimalsFor(series) {
    let most = 0, decimals = 0;
    for (const {values} of series) {
      for (let i = 0; i < values.length; i += 1 + (values.length >> 9)) {
        const value = Math.abs(values[i]);
        if (!isFinite(value)) continue;
        most = Math.max(most, value);
        while (decimals < 6 && Math.abs(value - Number(value.toFixed(decimals))) > 1e-9 * value) decimals++;
      }
    }
    return Math.min(decimals, most > 0 ? Math.max(0, 4 - Math.floor(Math.log10(most))) : 0);
  }

  // ---- Series ----

  function numbers(values) {
    const made = new Float64Array(values.length);
    for (let i = 0; i < made.length; i++) made[i] = values[i] === null ? NaN : values[i];
    return made;
  }

  function styled(series) {
    const taken = new Set();
    return series.map(one => {
      const digit = /(?:^|[^a-z0-9])[a-z]{0,3}([123])[123]?(?![0-9])/i.exec(one.label);
      const neutral = /(?:^|[^a-z])[uipqs]?n$|neutral/i.test(one.label);
      let key = digit ? digit[1] : neutral ? "n" : "t";
      if (taken.has(key)) key = Object.keys(STYLES).find(other => !taken.has(other)) || key;
      taken.add(key);
      return Object.assign({style: STYLES[key], shown: true}, one);
    });
  }

  function sample(style, filled) {
    const svg = drawing("svg", {width: 34, height: 12, "aria-hidden": "true"});
    if (filled) {
      drawing("rect", {x: 4, y: 1, width: 26, height: 10, style: `fill:var(--${style.color})`}, svg);
    } else {
      drawing("line", {x1: 1, y1: 6, x2: 33, y2: 6, "stroke-dasharray": style.dash.join(" "),
        style: `stroke:var(--${style.color});stroke-width:2`}, svg);
    }
    return svg;
  }

  function shapePath(kind, x, y, r) {
    if (kind === "dip") return [[x - r, y - r], [x + r, y - r], [x, y + r]];
    if (kind === "swell") return [[x - r, y + r], [x + r, y + r], [x, y - r]];
    if (kind === "change") return [[x, y - r], [x + r, y], [x, y + r], [x - r, y]];
    return [[x - r, y - r], [x + r, y - r], [x + r, y + r], [x - r, y + r]];
  }

  const hollow = kind => kind === "change" || kind === "swell";

  function paintShape(context, kind, x, y, r) {
    context.beginPath();
    for (const [px, py] of shapePath(kind, x, y, r)) context.lineTo(px, py);
    context.closePath();
    context.fillStyle = hollow(kind) ? theme.back : context.strokeStyle;
    context.fill();
    context.stroke();
  }

  function shapeSample(kind) {
    const svg = drawing("svg", {width: 14, height: 14, "aria-hidden": "true"});
    drawing("polygon", {points: shapePath(kind, 7, 7, 4.5).map(p => p.join()).join(" "),
      style: `fill:var(--${hollow(kind) ? "back" : "mark"});stroke:var(--mark);stroke-width:1.5`}, svg);
    return svg;
  }

  const legendBox = (...items) => element("div", {className: "legend", role: "group", ariaLabel: "Shown"}, ...items);

  function legendItem(sampled, text, onChange) {
    const box = element("input", {type: "checkbox", checked: true, onchange: () => onChange(box.checked)});
    const value = element("span", {className: "value"});
    const item = element("label", {className: "item"}, box, sampled, element("b", {textContent: text}), value);
    return {item, value};
  }

  const note = (sampled, text) => element("span", {className: "item"}, sampled, element("span", {textContent: text}));

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

  // ---- Lines: trends and waveforms ----

  // A band is one outline for each stretch without gaps: dygraphs' own, a quadrangle for each pair of
  // points, takes several times as long.
  function paintBand(event) {
    const {drawingContext: context, plotArea: area, points} = event;
    const y = share => area.y + share * area.h;
    context.fillStyle = event.color;
    context.globalAlpha = 0.17;
    for (let i = 0; i < points.length; i++) {
      const first = i;
      context.beginPath();
      for (; i < points.length && points[i].yval !== null && !isNaN(points[i].yval); i++) context.lineTo(points[i].canvasx, y(points[i].y_top));
      for (let k = i - 1; k >= first; k--) context.lineTo(points[k].canvasx, y(points[k].y_bottom));
      if (i > first + 1) context.fill();
    }
    context.globalAlpha = 1;
  }

  class Lines extends Plot {
    constructor(figure, name, spec) {
      super(figure, name, spec.height);
      Object.assign(this, spec);
      this.name = name;
      this.banded = this.series.some(one => one.low && one.high);
      this.decimals = decimalsFor(this.series);
      this.readings = [];
      this.zoom.add(this);
      this.pointers = new Map();
      this.listen();
    }
    index(x) { // of the first point at or after x
      let low = 0, high = this.x.length;
      while (low < high) {
        const middle = (low + high) >> 1;
        if (this.x[middle] < x) low = middle + 1;
        else high = middle;
      }
      return low;
    }
    // The rows to draw. Where there are more points than pixels, two rows for each stretch of points:
    // its least and its greatest value in their order, so that no spike is lost.
    rows(width) {
      const {x, series, zoom, banded} = this;
      const first = Math.max(0, this.index(zoom.a) - 1);
      const last = Math.min(x.length, this.index(zoom.b) + 1);
      const step = Math.ceil((last - first) / width);
      for (const one of series) one.least = Infinity, one.most = -Infinity;
      const cell = (value, least, most) => (isNaN(value) ? (banded ? [null, null, null] : null) : banded ? [least, value, most] : value);
      const rows = [];
      const pair = step > 2;
      const stretch = pair ? step : 1;
      for (let i = pair ? first - first % step : first; i < last; i += stretch) {
        const end = Math.min(i + stretch, x.length);
        const one = [x[i]], other = pair ? [x[(i + end) >> 1]] : null;
        for (const s of series) {
          let least = NaN, most = NaN, lowest = Infinity, highest = -Infinity, leastAt = i, mostAt = i;
          for (let k = i; k < end; k++) {
            const value = s.values[k];
            if (value !== value) continue;
            if (!(value >= least)) least = value, leastAt = k;
            if (!(value <= most)) most = value, mostAt = k;
            const l = banded && s.low && s.low[k] < value ? s.low[k] : value;
            const h = banded && s.high && s.high[k] > value ? s.high[k] : value;
            if (l < lowest) lowest = l;
            if (h > highest) highest = h;
          }
          if (lowest < s.least) s.least = lowest;
          if (highest > s.most) s.most = highest;
          one.push(cell(leastAt <= mostAt ? least : most, lowest, highest));
          if (pair) other.push(cell(leastAt <= mostAt ? most : least, lowest, highest));
        }
        rows.push(one);
        if (pair && other[0] > one[0]) rows.push(other);
      }
      const seen = series.filter(s => s.shown);
      const low = Math.min(Infinity, ...seen.map(s => s.least)), high = Math.max(-Infinity, ...seen.map(s => s.most));
      if (!rows.length) rows.push([zoom.a, ...series.map(() => cell(NaN))]);
      return {rows, low, high};
    }
    // Limits widen the range where the data come near them, but not so far that the data become flat.
    range(low, high) {
      if (!(low <= high)) return [0, 1];
      let [from, to] = [low, high];
      const span = Math.max(high - low, Math.abs(high) * 1e-4, 1e-9);
      for (const {at} of this.lines) {
        const away = at > high ? at - high : at < low ? low - at : 0;
        if (away <= Math.abs(at) * 0.15 && away <= 5 * span) {
          from = Math.min(from, at);
          to = Math.max(to, at);
        }
      }
      if (from >= 0 && from < 0.4 * to) from = 0;
      const pad = (to - from) * 0.06 || Math.abs(to) * 0.01 || 1;
      const top = this.marks.length ? (to - from + 2 * pad) * 15 / (this.height - 40) : 0;
      return [from === 0 ? 0 : from - pad, to + pad + top];
    }
    options(width) {
      const {rows, low, high} = this.rows(width);
      const named = {};
      this.series.forEach(({style}, i) => (named[i] = {strokePattern: style.dash.length ? style.dash : null}));
      return {
        file: rows,
        labels: ["x", ...this.series.map((_, i) => String(i))],
        colors: this.series.map(one => theme[one.style.color]),
        series: named,
        visibility: this.series.map(one => one.shown),
        customBars: this.banded,
        plotter: this.banded ? [paintBand, Dygraph.Plotters.linePlotter] : Dygraph.Plotters.linePlotter,
        strokeWidth: rows.length > 1500 ? 1 : 1.4,
        pointSize: 2.5,
        dateWindow: [this.zoom.a, this.zoom.b],
        valueRange: this.range(low, high),
        underlayCallback: (context, area, graph) => this.under(context, area, graph),
        axes: {x: axis((a, b, pixels) => this.zoom.ticks(a, b, pixels), 100),
          y: axis(valueTicks, 50)},
      };
    }
    under(context, area, graph) {
      context.save();
      context.font = theme.font;
      const marked = this.marks.filter(mark => mark[1] >= this.zoom.a && mark[0] <= this.zoom.b);
      context.strokeStyle = context.fillStyle = theme.mark;
      context.lineWidth = 1;
      for (const [from, to] of marked) {
        const left = graph.toDomXCoord(from), wide = graph.toDomXCoord(to) - left;
        context.globalAlpha = wide > 2 ? 0.16 : 0.4;
        context.fillRect(wide > 2 ? left : Math.round(left), area.y, Math.max(1, wide), area.h);
      }
      context.globalAlpha = 1;
      const lastAt = {};
      for (const [from, to, , kind] of marked) {
        const x = Math.min(Math.max(graph.toDomXCoord((from + to) / 2), area.x + 6), area.x + area.w - 6);
        if (x - lastAt[kind] < 8) continue;
        lastAt[kind] = x;
        paintShape(context, kind, x, area.y + 7, 4);
      }
      context.strokeStyle = theme.limit;
      context.textAlign = "right";
      for (const line of this.lines) {
        const y = graph.toDomYCoord(line.at);
        if (y < area.y || y > area.y + area.h) continue;
        context.setLineDash([4, 4]);
        context.lineWidth = 1.2;
        context.beginPath();
        context.moveTo(area.x, y);
        context.lineTo(area.x + area.w, y);
        context.stroke();
        context.setLineDash([]);
        context.lineWidth = 3;
        context.strokeStyle = theme.back;
        context.fillStyle = theme.limit;
        const at = y - area.y < 28 ? y + 12 : y - 4;
        context.strokeText(line.label, area.x + area.w - 4, at);
        context.fillText(line.label, area.x + area.w - 4, at);
        context.strokeStyle = theme.limit;
      }
      context.restore();
    }
    // Values at the cursor, or else the least and the greatest in the window.
    read() {
      if (!this.graph) return;
      const at = this.zoom.cursor;
      const inside = at !== null && at >= this.zoom.a && at <= this.zoom.b;
      this.cursorLine.hidden = !inside;
      let i = -1;
      if (inside && this.x.length) {
        i = Math.min(this.index(at), this.x.length - 1);
        if (i > 0 && at - this.x[i - 1] < this.x[i] - at) i--;
        this.placeCursor(this.x[i]);
      }
      const text = value => (isFinite(value) ? fixed(value, this.decimals) : "\u2013");
      this.series.forEach((one, k) => {
        if (!this.readings[k]) return;
        let said;
        if (i < 0) {
          said = one.least <= one.most ? `${text(one.least)} \u2026 ${text(one.most)} ${this.unit}` : "\u2013";
        } else {
          said = `${text(one.values[i])} ${this.unit}`;
          if (one.low && one.high && isFinite(one.values[i])) said += ` (${text(one.low[i])} \u2026 ${text(one.high[i])})`;
        }
        this.readings[k].textContent = said;
      });
    }
    // Dragging a mouse marks a stretch to zoom to, with Shift it moves the window; one finger moves it,
    // two scale it. Up and down stay the page's own.
    listen() {
      const {layer, zoom, pointers, selection} = this;
      const place = event => event.clientX - layer.getBoundingClientRect().left;
      const value = pixel => zoom.a + (pixel - this.area.x) / this.area.w * (zoom.b - zoom.a);
      let start = null;
      const begin = moves => {
        start = {a: zoom.a, b: zoom.b, at: [...pointers.values()], moves};
      };
      layer.addEventListener("pointerdown", event => {
        if (!this.graph || event.button > 0) return;
        layer.setPointerCapture(event.pointerId);
        pointers.set(event.pointerId, place(event));
        begin(event.pointerType !== "mouse" || event.shiftKey);
      });
      layer.addEventListener("pointermove", event => {
        if (!this.graph) return;
        const x = place(event);
        zoom.point(value(x));
        if (!pointers.has(event.pointerId)) return;
        pointers.set(event.pointerId, x);
        const now = [...pointers.values()];
        const perPixel = (start.b - start.a) / this.area.w;
        if (now.length === 2) {
          const share = Math.abs(start.at[0] - start.at[1]) / Math.max(20, Math.abs(now[0] - now[1]));
          const held = start.a + ((start.at[0] + start.at[1]) / 2 - this.area.x) * perPixel;
          const left = held - ((now[0] + now[1]) / 2 - this.area.x) * perPixel * share;
          zoom.set(left, left + (start.b - start.a) * share);
        } else if (start.moves) {
          const by = (start.at[0] - x) * perPixel;
          zoom.set(start.a + by, start.b + by);
        } else {
          const [left, right] = [Math.max(this.area.x, Math.min(start.at[0], x)), Math.min(this.area.x + this.area.w, Math.max(start.at[0], x))];
          selection.hidden = right - left < 5;
          selection.style.left = left + "px";
          selection.style.width = Math.max(0, right - left) + "px";
          selection.style.height = this.area.h + "px";
        }
      });
      const end = event => {
        if (!pointers.has(event.pointerId)) return;
        const x = pointers.get(event.pointerId);
        pointers.delete(event.pointerId);
        if (!selection.hidden && event.type === "pointerup") {
          zoom.set(value(Math.min(start.at[0], x)), value(Math.max(start.at[0], x)));
        }
        selection.hidden = true;
        begin(start.moves);
      };
      layer.addEventListener("pointerup", end);
      layer.addEventListener("pointercancel", end);
      layer.addEventListener("pointerleave", () => zoom.point(null));
      layer.addEventListener("dblclick", () => zoom.all());
      this.host.addEventListener("blur", () => zoom.point(null));
      this.host.addEventListener("keydown", event => {
        const by = {ArrowLeft: -1, ArrowRight: 1}[event.key];
        if (by && !event.altKey && !event.ctrlKey && !event.metaKey && this.x.length) {
          const many = event.shiftKey ? 10 : 1;
          const from = zoom.cursor === null ? (zoom.a + zoom.b) / 2 : zoom.cursor;
          const next = Math.min(this.x.length - 1, Math.max(0, this.index(from - 1e-9) + by * many));
          if (this.x[next] < zoom.a || this.x[next] > zoom.b) zoom.move(by * 0.5);
          zoom.point(this.x[next]);
        } else if (!zoom.key(event)) {
          return;
        }
        event.preventDefault();
      });
    }
  }

  const describeTime = (at, fine) => `${day(at, true)} ${clock(at, fine ? 0.5 : 60)}`;

  function absolute(times) {
    const made = new Float64Array(times.length);
    let sum = 0;
    times.forEach((step, i) => {
      sum += step;
      made[i] = sum;
    });
    return made;
  }
  const times = (data.times || []).map(absolute);
  const marks = (data.marks || []).slice().sort((a, b) => a[0] - b[0]);

  function prepared(series) {
    return styled(series).map(one => Object.assign(one, {values: numbers(one.values),
      low: one.low && numbers(one.low), high: one.high && numbers(one.high)}));
  }

  function lineLegend(plots) {
    const items = [];
    for (const plot of plots) {
      plot.series.forEach((one, k) => {
        const made = legendItem(sample(one.style), one.label, shown => {
          one.shown = shown;
          plot.draw();
          plot.read();
        });
        plot.readings[k] = made.value;
        items.push(made.item);
      });
      for (const line of plot.lines) {
        items.push(note(sample({color: "limit", dash: [4, 4]}), `${line.label}: ${line.at} ${plot.unit}`));
      }
    }
    const box = legendBox(...items);
    box.classList.add("values");
    box.classList.toggle("banded", plots.some(plot => plot.banded));
    return box;
  }

  const markNotes = within => Object.keys(MARKS).filter(kind => within.some(mark => mark[3] === kind))
    .map(kind => note(shapeSample(kind), MARKS[kind]));

  const trends = new Zoom(timeTicks, describeTime, marks);

  function trend(figure, name, chart) {
    const plot = new Lines(figure, name, {zoom: trends, x: times[chart.time], series: prepared(chart.series),
      unit: chart.unit, lines: chart.lines || [], marks, height: 190});
    plot.host.before(lineLegend([plot]));
  }

  function wave(figure, name, chart) {
    const groups = chart.groups.map(group => Object.assign({}, group, {series: prepared(group.series)}));
    const timed = chart.time !== undefined;
    const count = Math.max(0, ...groups.map(group => Math.max(0, ...group.series.map(one => one.values.length))));
    const x = timed ? times[chart.time] : numbers(chart.x || Array.from({length: count}, (_, i) => chart.from + i * chart.step));
    const unit = chart.xunit || "";
    const small = unit === "s" && x.length && Math.max(Math.abs(x[0]), Math.abs(x[x.length - 1])) < 1;
    const scale = small ? 1000 : 1, shownUnit = small ? "ms" : unit;
    const ticks = (a, b, pixels) => numberTicks(a * scale, b * scale, pixels, 70, plainScale)
      .map(tick => ({v: tick.v / scale, label: `${tick.label} ${shownUnit}`}));
    const describe = (at, fine) => `${fixed(at * scale, fine ? 3 : 1)} ${shownUnit}`;
    const zoom = timed ? new Zoom(timeTicks, describeTime, marks) : new Zoom(ticks, describe, []);
    const within = timed && x.length ? marks.filter(mark => mark[1] >= x[0] && mark[0] <= x[x.length - 1]) : [];
    const plots = groups.map((group, i) => new Lines(figure, `${name}, ${group.unit}`, {zoom, x, series: group.series,
      unit: group.unit, lines: (chart.lines || []).filter(line => (line.unit ? line.unit === group.unit : i === 0)),
      marks: within, height: groups.length > 1 ? 170 : 220}));
    plots[0].host.before(zoom.controls());
    plots.forEach(plot => plot.host.before(lineLegend([plot])));
    if (within.length) plots[0].host.before(legendBox(...markNotes(within)));
    zoom.tell();
  }

  // ---- What is painted by hand on a dygraph's axes: bars and the tolerance chart ----

  class Painted extends Plot {
    constructor(figure, name, height, spec) {
      super(figure, name, height);
      Object.assign(this, spec);
      this.reading = element("p", {className: "reading"});
      this.chosen = -1;
      figure.append(this.reading);
      const say = i => {
        this.chosen = i;
        this.reading.textContent = i < 0 ? this.idle : this.text(i);
        this.cursorLine.hidden = i < 0 || !this.graph;
        if (!this.cursorLine.hidden) this.placeCursor(this.position(i));
      };
      say(-1);
      this.layer.addEventListener("pointermove", event => {
        if (!this.graph) return;
        const box = this.layer.getBoundingClientRect();
        say(this.nearest(event.clientX - box.left, event.clientY - box.top));
      });
      this.layer.addEventListener("pointerleave", () => say(-1));
      this.host.addEventListener("blur", () => say(-1));
      this.host.addEventListener("keydown", event => {
        const by = {ArrowLeft: -1, ArrowRight: 1}[event.key];
        if (!by || !this.count) return;
        say((this.chosen + by + this.count) % this.count);
        event.preventDefault();
      });
    }
    options(width) {
      const spec = this.frame(width);
      return {
        file: [[spec.x[0], spec.y[0]], [spec.x[1], spec.y[0]]], labels: ["x", "0"], colors: [theme.ink],
        dateWindow: spec.x, valueRange: spec.y,
        plotter: event => this.paint(event.drawingContext, event.plotArea, event.dygraph),
        axes: {x: axis(spec.xTicks, 60), y: axis(spec.yTicks, 50)},
      };
    }
  }

  function bars(figure, name, chart) {
    const series = styled(chart.series);
    const limits = chart.limits || [];
    const decimals = decimalsFor(series.concat(series.map(one => ({values: one.most || []}))));
    const plot = new Painted(figure, name, 250, {
      count: chart.orders.length,
      idle: "Filled: 95 % value." + (series.some(one => one.most) ? " Tick above: maximum." : "") + (limits.some(limit => limit !== null) ? " Line across: limit." : ""),
      position: i => i,
      text: i => `order ${chart.orders[i]}: ` + series.filter(one => one.shown).map(one => `${one.label} ` +
        (one.values[i] === null ? "\u2013" : one.values[i].toFixed(decimals)) +
        (one.most && one.most[i] !== null ? ` (at most ${one.most[i].toFixed(decimals)})` : "")).join(", ") +
        ` ${chart.unit}` + (limits[i] === null || limits[i] === undefined ? "" : `; limit ${limits[i]} ${chart.unit}`),
      nearest: pixel => {
        const at = Math.round(plot.graph.toDataXCoord(pixel));
        return at >= 0 && at < chart.orders.length ? at : -1;
      },
      frame: width => {
        let top = 0;
        series.forEach(one => one.shown && [one.values, one.most || []].forEach(list => list.forEach(v => (top = Math.max(top, v)))));
        limits.forEach(limit => (top = Math.max(top, limit)));
        const every = Math.max(1, Math.ceil(chart.orders.length * 26 / Math.max(100, width - 60)));
        return {x: [-0.6, chart.orders.length - 0.4], y: [0, top * 1.06 || 1],
          xTicks: () => chart.orders.map((order, i) => ({v: i, label: String(order)})).filter((_, i) => i % every === 0),
          yTicks: valueTicks};
      },
      paint: (context, area, graph) => {
        const shown = series.filter(one => one.shown);
        const group = (graph.toDomXCoord(1) - graph.toDomXCoord(0)) * 0.8;
        const wide = group / Math.max(1, shown.length);
        const zero = graph.toDomYCoord(0);
        shown.forEach((one, k) => {
          context.fillStyle = context.strokeStyle = theme[one.style.color];
          context.lineWidth = 1.4;
          chart.orders.forEach((_, i) => {
            const left = graph.toDomXCoord(i) - group / 2 + k * wide;
            const gap = wide > 4 ? 1 : 0;
            if (one.values[i] !== null) {
              const y = graph.toDomYCoord(one.values[i]);
              context.fillRect(left, y, wide - gap, zero - y);
            }
            if (one.most && one.most[i] !== null) {
              const y = graph.toDomYCoord(one.most[i]), middle = left + (wide - gap) / 2;
              context.beginPath();
              context.moveTo(left, y);
              context.lineTo(left + wide - gap, y);
              context.moveTo(middle, y);
              context.lineTo(middle, graph.toDomYCoord(Math.min(one.values[i] || 0, one.most[i])));
              context.stroke();
            }
          });
        });
        context.strokeStyle = theme.limit;
        context.lineWidth = 2;
        limits.forEach((limit, i) => {
          if (limit === null) return;
          const x = graph.toDomXCoord(i), y = graph.toDomYCoord(limit);
          context.beginPath();
          context.moveTo(x - group * 0.58, y);
          context.lineTo(x + group * 0.58, y);
          context.stroke();
        });
      },
    });
    const items = series.map(one => legendItem(sample(one.style, true), one.label, shown => {
      one.shown = shown;
      plot.draw();
    }).item);
    if (limits.some(limit => limit !== null)) items.push(note(sample({color: "limit", dash: []}), "limit"));
    plot.host.before(legendBox(...items));
  }

  function tolerance(figure, name, chart) {
    // Both axes are logarithms, and what lies beyond an axis is drawn at its end.
    const points = chart.points.map(([seconds, percent, label, kind]) => ({seconds, percent, label, kind,
      x: Math.log10(Math.max(seconds, 1e-4)), y: Math.log10(Math.min(Math.max(percent, 1), 500))})).sort((a, b) => a.x - b.x);
    const right = Math.max(3, ...points.map(point => Math.ceil(point.x)));
    const hidden = new Set();
    let curve = (chart.curves || [])[0] || null;
    const durations = [[-4, "0.1 ms"], [-3, "1 ms"], [-2, "10 ms"], [-1, "0.1 s"], [0, "1 s"], [1, "10 s"], [2, "100 s"], [3, "1000 s"],
      [4, "3 h"], [5, "28 h"]];
    const plot = new Painted(figure, name, 340, {
      count: points.length,
      idle: points.length ? "Longer events stand further right, deeper dips further down." : "No events.",
      position: i => points[i].x,
      text: i => `${points[i].label}: ${points[i].percent} % for ${Number(points[i].seconds.toPrecision(4))} s`,
      nearest: (x, y) => {
        let found = -1, least = 20 * 20;
        points.forEach((point, i) => {
          const away = Math.pow(plot.graph.toDomXCoord(point.x) - x, 2) + Math.pow(plot.graph.toDomYCoord(point.y) - y, 2);
          if (away < least && !hidden.has(point.kind)) least = away, found = i;
        });
        return found;
      },
      frame: width => ({x: [-4.1, right + 0.1], y: [-0.06, 2.73],
        xTicks: () => durations.filter(([at], i) => at <= right && (width > 560 || i % 2 === 1)).map(([v, label]) => ({v, label})),
        yTicks: () => [1, 2, 5, 10, 20, 40, 70, 100, 200, 500].map(v => ({v: Math.log10(v), label: v + " %"}))}),
      paint: (context, area, graph) => {
        const x = at => graph.toDomXCoord(at), y = at => graph.toDomYCoord(at);
        for (const border of curve ? [curve.upper, curve.lower] : []) {
          if (!border || !border.length) continue;
          context.beginPath();
          border.forEach(([seconds, pu]) => context.lineTo(x(Math.log10(Math.max(seconds, 5e-5))),
            y(Math.log10(Math.min(Math.max(pu * 100, 0.87), 540)))));
          const end = border[border.length - 1];
          context.lineTo(x(right + 1), y(Math.log10(Math.max(end[1] * 100, 0.87))));
          context.strokeStyle = theme.limit;
          context.lineWidth = 1.8;
          context.stroke();
        }
        context.strokeStyle = theme.mark;
        context.lineWidth = 1.5;
        for (const point of points) {
          if (!hidden.has(point.kind)) paintShape(context, point.kind, x(point.x), y(point.y), 4.5);
        }
      },
    });
    const items = Object.keys(MARKS).filter(kind => points.some(point => point.kind === kind)).map(kind => {
      const count = points.filter(point => point.kind === kind).length;
      return legendItem(shapeSample(kind), `${MARKS[kind]} (${count})`, shown => {
        if (shown) hidden.delete(kind);
        else hidden.add(kind);
        plot.draw();
      }).item;
    });
    plot.host.before(legendBox(...items));
    if (!(chart.curves || []).length) return;
    const told = element("span", {className: "under", textContent: curve.note || ""});
    const choice = (text, value) => {
      const radio = element("input", {type: "radio", name: "curve-" + chart.id, checked: value === curve, onchange: () => {
        curve = value;
        told.textContent = value && value.note || "";
        plot.draw();
      }});
      return element("label", {className: "item"}, radio, element("span", {textContent: text}));
    };
    plot.host.before(element("div", {className: "legend", role: "radiogroup", ariaLabel: "Curve"},
      ...chart.curves.map(one => choice(one.name, one)), choice("no curve", null), told));
  }

  // ---- Phasors ----

  function phasors(figure, name, chart) {
    const svg = drawing("svg", {viewBox: "-160 -150 320 300", class: "phasors", role: "img", "aria-label": name});
    for (const r of [60, 120]) drawing("circle", {r, class: "grid"}, svg);
    for (let degrees = 0; degrees < 360; degrees += 30) {
      const [c, s] = [Math.cos(degrees * Math.PI / 180), Math.sin(degrees * Math.PI / 180)];
      drawing("line", {x1: 0, y1: 0, x2: 124 * c, y2: -124 * s, class: "grid"}, svg);
    }
    const current = unit => unit === "A";
    const longest = kind => Math.max(...chart.vectors.filter(v => current(v.unit) === kind).map(v => v.size), 1e-12);
    const scales = {true: 80 / longest(true), false: 120 / longest(false)};
    const placed = [];
    for (const vector of styled(chart.vectors.filter(v => !current(v.unit))).concat(styled(chart.vectors.filter(v => current(v.unit))))) {
      const small = current(vector.unit);
      const length = vector.size * scales[small];
      if (!(length >= 0)) continue;
      const angle = -vector.angle * Math.PI / 180, c = Math.cos(angle), s = Math.sin(angle);
      const at = (along, across) => `${(along * c - across * s).toFixed(1)},${(along * s + across * c).toFixed(1)}`;
      const head = Math.min(small ? 9 : 11, length);
      const colour = `var(--${vector.style.color})`;
      const [x2, y2] = at(Math.max(0, length - head), 0).split(",");
      drawing("line", {x1: 0, y1: 0, x2, y2, "stroke-dasharray": vector.style.dash.join(" "),
        style: `stroke:${colour};stroke-width:${small ? 1.6 : 2.4}`}, svg);
      drawing("polygon", {points: [at(length, 0), at(length - head, -4.5), at(length - head, 4.5)].join(" "),
        style: `stroke:${colour};stroke-width:1.4;fill:${small ? "var(--back)" : colour}`}, svg);
      // A label goes to the tip, or further round where another stands already.
      const spot = turn => [(length + 14) * Math.cos(angle + turn), (length + 14) * Math.sin(angle + turn)];
      const free = ([x, y]) => placed.every(([px, py]) => Math.abs(px - x) > 24 || Math.abs(py - y) > 13);
      const turns = [0, 0.14, -0.14, 0.28, -0.28, 0.42, -0.42, 0.6, -0.6].map(turn => turn * 110 / (length + 14));
      const spotted = turns.map(spot).find(free) || spot(0);
      placed.push(spotted);
      drawing("text", {x: spotted[0].toFixed(1), y: (spotted[1] + 4).toFixed(1), "text-anchor": "middle",
        "paint-order": "stroke"}, svg).textContent = vector.label;
    }
    figure.append(svg);
  }

  // ---- The page ----

  readTheme();
  const kinds = {trend, wave, bars, tolerance, phasors};
  for (const chart of data.charts || []) {
    const figure = document.getElementById(chart.id);
    const caption = figure && figure.querySelector("figcaption");
    if (figure && kinds[chart.kind]) kinds[chart.kind](figure, caption ? caption.textContent : chart.id, chart);
  }
  const holder = document.querySelector("#trends .window");
  if (holder && trends.plots.length) {
    holder.append(trends.controls());
    holder.after(legendBox(...markNotes(marks)));
    trends.tell();
  }

  refresh(all);

  document.addEventListener("toggle", event => {
    for (const plot of all) {
      if (event.target.contains(plot.host)) plot.renew();
    }
  }, true);

  let waiting = 0, lastWidth = root.clientWidth;
  window.addEventListener("resize", () => {
    clearTimeout(waiting);
    waiting = setTimeout(() => {
      if (paper || root.clientWidth === lastWidth) return;
      lastWidth = root.clientWidth;
      refresh(all);
    }, 120);
  });

  matchMedia("(prefers-color-scheme: dark)").addEventListener("change", () => {
    readTheme();
    refresh(all);
  });

  // A table's own scrolling is reached by keyboard too.
  for (const wide of document.querySelectorAll(".wide")) wide.tabIndex = 0;

  let closed = [];
  function onPaper(begins) {
    if (begins === paper) return;
    paper = begins;
    root.classList.toggle("paper", paper);
    if (paper) closed = [...document.querySelectorAll("details:not([open])")];
    for (const details of closed) details.open = paper;
    readTheme();
    refresh(all);
  }
  window.addEventListener("beforeprint", () => onPaper(true));
  window.addEventListener("afterprint", () => onPaper(false));
})();
