// A series as a picture: lines above, bars beneath them, one time below both. The numbers stand in a table beside it, so
// that the picture may be one thing for whoever does not see it.
import { h } from "/dom.js";
import { shown } from "/deskvalues.js";

let library = null;

// Read when the first plot is drawn.
function load() {
  library ??= new Promise((loaded, failed) => {
    const script = h("script", { src: "/vendor/uplot.min.js", on: { load: () => loaded(globalThis.uPlot), error: () => failed(new Error("uplot.min.js")) } });
    document.head.append(h("link", { rel: "stylesheet", href: "/vendor/uplot.css" }), script);
  });
  return library;
}

const colours = ["--accent", "--plot2", "--plot3", "--focus"];
const heights = { line: 260, bar: 130 };

export class Plot {
  constructor(title) {
    this.plots = [];
    this.element = h("div", { class: "plot", role: "img", "aria-label": title });
    this.resized = new ResizeObserver(() => this.fit());
    this.resized.observe(this.element);
    // The canvas knows no stylesheet: it is painted anew when the theme is another.
    this.repaint = () => this.paint();
    this.dark = matchMedia("(prefers-color-scheme: dark)");
    this.dark.addEventListener("change", this.repaint);
    this.themed = new MutationObserver(this.repaint);
    this.themed.observe(document.documentElement, { attributeFilter: ["data-theme"] });
  }

  async draw(columns, rows) {
    const [x, ...others] = columns;
    const marks = rows.length > 0 && rows.every((row) => typeof row[x.name] === "number");
    this.data = marks && { x, rows, parts: ["line", "bar"].map((draw) => [draw, others.filter((column) => column.draw === draw)]) };
    this.uplot = await load();
    this.paint();
  }

  paint() {
    for (const plot of this.plots.splice(0)) plot.destroy();
    if (!this.data || !this.uplot || !this.element.isConnected) return;
    const { x, rows, parts } = this.data;
    for (const [draw, columns] of parts) if (columns.length > 0) this.plots.push(this.part(draw, columns, x, rows));
  }

  part(draw, columns, x, rows) {
    const style = getComputedStyle(this.element), colour = (name) => style.getPropertyValue("color") && resolved(this.element, name);
    const axis = { stroke: colour("--muted"), grid: { stroke: colour("--line"), width: 1 }, ticks: { stroke: colour("--line"), width: 1 }, font: "12px system-ui" };
    const narrow = new Intl.NumberFormat("en", { notation: "compact" });
    const series = columns.map((column, number) => ({
      label: shown(column.title, {}), stroke: colour(colours[number % colours.length]), width: 2,
      dash: number > 0 ? [2 + 4 * number, 4] : undefined, spanGaps: true,
      points: { show: rows.length < 60, size: 5 },
      value: (plot, value) => (value === null ? "–" : shown(value, column)),
      ...(draw === "bar" && { paths: this.uplot.paths.bars({ size: [0.7, 40] }), fill: colour("--ghost"), stroke: colour("--ghost"), dash: undefined, points: { show: false } }),
    }));
    const data = [rows.map((row) => row[x.name]), ...columns.map((column) => rows.map((row) => row[column.name] ?? null))];
    // Half a step beside the first and the last, so that no bar is cut.
    const [first, last] = [data[0][0], data[0].at(-1)], beside = (last > first ? (last - first) / (rows.length - 1) : 86400) / 2;
    return new this.uplot({
      width: this.element.clientWidth, height: heights[draw],
      tzDate: (seconds) => this.uplot.tzDate(new Date(seconds * 1000), "Etc/UTC"),
      cursor: { sync: { key: "desk" }, drag: { x: false, y: false } },
      scales: { x: { time: ["time", "day"].includes(x.kind), range: [first - beside, last + beside] }, y: { range: (plot, low, high) => [0, high > 0 ? high * 1.05 : 1] } },
      axes: [{ ...axis, values: (plot, marks) => marks.map((mark) => shorttime(mark, x)) }, { ...axis, size: 58, values: (plot, marks) => marks.map((mark) => narrow.format(mark)) }],
      series: [{ label: shown(x.title, {}), value: (plot, value) => (value === null ? "–" : shown(value, x)) }, ...series],
    }, data, this.element);
  }

  fit() {
    for (const plot of this.plots)
      if (plot.width !== this.element.clientWidth && this.element.clientWidth > 0) plot.setSize({ width: this.element.clientWidth, height: plot.height });
  }

  end() {
    this.resized.disconnect();
    this.themed.disconnect();
    this.dark.removeEventListener("change", this.repaint);
    for (const plot of this.plots.splice(0)) plot.destroy();
  }
}

const shorttime = (mark, x) => (x.kind === "day" ? new Date(mark * 1000).toISOString().slice(5, 10) : shown(mark, x));

// What a custom property comes to in the theme of the moment.
function resolved(place, name) {
  const probe = h("span", { hidden: true });
  probe.style.color = `var(${name})`;
  place.append(probe);
  const { color } = getComputedStyle(probe);
  probe.remove();
  return color;
}
