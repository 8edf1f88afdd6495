// Draws the charts of a report from the numbers that the page carries in #data. Line charts, bars and
// the tolerance chart are dygraphs, which here only paints: pointer, keys, legends and the choice of
// points are ours, so that all trends move together, a long recording stays quick, and no text of a
// recording ever becomes markup. The files here are one function on the page, in this order: base,
// plot, lines, painted, page.

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
