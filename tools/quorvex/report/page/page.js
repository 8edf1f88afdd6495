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
