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
