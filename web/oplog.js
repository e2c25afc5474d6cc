// The server's log as it is written, in the colours of its levels; it can be held still to read.
import { coloured } from "/colours.js";
import { h, select, setlabel } from "/dom.js";

const levels = ["Debug", "Info", "Warn", "Error", "Fatal"];
const mostlines = 1000;

export class Log {
  constructor() {
    this.held = null;  // lines that came while it stands still, or null
    this.last = 0;
    this.lines = h("div", { role: "log", tlabel: "log" });
    this.empty = h("p", { class: "hint", t: "logempty" });
    this.level = select(levels.map((name, number) => [String(number), name]), "0", { tlabel: "loglevel", ttitle: "loglevel", on: { change: () => this.sift() } });
    this.hold = h("button", { type: "button", t: "logpause", on: { click: () => this.turn() } });
    const clear = h("button", { type: "button", t: "logclear", on: { click: () => this.lines.replaceChildren() } });
    this.element = h("section", { class: "log" }, h("div", { class: "logtools" }, this.level, this.hold, clear), this.empty,
      h("div", { class: "loglines", tabindex: 0, tlabel: "log" }, this.lines));
    this.sift();
  }

  add(lines) {
    const fresh = lines.filter((line) => line.number > this.last);
    if (fresh.length === 0) return;
    this.last = fresh.at(-1).number;
    if (this.held) this.held = [...this.held, ...fresh].slice(-mostlines);
    else this.write(fresh);
  }

  write(lines) {
    const at = this.lines;
    this.empty.hidden = true;
    at.append(...lines.map((line) => h("div", { class: `logline level-${line.level}` },
      h("span", { class: "when" }, line.time.slice(-8)), h("span", { class: "level" }, levels[line.level] ?? "?"),
      h("span", { class: "title" }, line.title), h("span", { class: "message" }, coloured(line.message)))));
    while (at.childElementCount > mostlines) at.firstChild.remove();
  }

  turn() {
    const waiting = this.held;
    this.held = waiting ? null : [];
    if (waiting) this.write(waiting);
    setlabel(this.hold, "t", this.held ? "logresume" : "logpause");
  }

  sift() {
    this.lines.dataset.from = this.level.value;
  }
}
