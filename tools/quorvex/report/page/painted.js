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
