// The server's time: its speed and pause, or ticks by call where it was started so.
import * as api from "/api.js";
import { h, labelledfield, setlabel } from "/dom.js";
import { Outcome } from "/opparts.js";
import { t } from "/strings.js";

const speeds = [1, 5, 20, 100];

export class Time {
  constructor() {
    this.outcome = new Outcome();
    this.now = { speed: 20, paused: false };
    this.told = h("p", { class: "timestate", role: "status" });
    this.speed = h("input", { type: "number", min: 0.1, max: 1000, step: "any", value: "20" });
    this.pause = h("button", { type: "button", t: "pause", on: { click: () => this.change({ paused: !this.now.paused }) } });
    const submit = (event) => {
      event.preventDefault();
      this.change({ ticks: Number(this.speed.value) });
    };
    this.running = h("form", { class: "stackform", on: { submit } },
      h("div", { class: "fields" }, labelledfield("speed", this.speed)),
      h("div", { class: "quick" }, ...speeds.map((n) => h("button", { type: "button", class: "chip", on: { click: () => this.change({ ticks: n }) } }, String(n)))),
      h("footer", {}, this.pause, h("button", { type: "submit", class: "main", t: "set" })));
    this.manual = this.manualform();
    this.element = h("section", {}, this.told, this.running, this.manual, this.outcome.element);
  }

  manualform() {
    const count = h("input", { type: "number", min: 1, max: 100000, value: "1" });
    const move = h("input", { type: "number", step: 1, value: "1000" });
    const ticks = () => this.outcome.of(async () => t("tickis", await api.ticks(Number(count.value))));
    const clock = () => this.outcome.of(() => api.clock(Number(move.value)).then(() => ""));
    return h("div", { class: "stackform", hidden: true }, h("p", { class: "hint", t: "manual" }),
      h("div", { class: "pair" }, labelledfield("count", count), h("button", { type: "button", t: "runticks", on: { click: ticks } })),
      h("div", { class: "pair" }, labelledfield("moveclock", move), h("button", { type: "button", t: "set", on: { click: clock } })));
  }

  change(asked) {
    this.outcome.of(async () => {
      this.draw(await api.speed(asked));
      return "";
    });
  }

  async shown() {
    this.outcome.of(async () => {
      const server = await api.server();
      this.running.hidden = server.manual;
      this.manual.hidden = !server.manual;
      this.draw(server);
      return "";
    });
  }

  draw({ speed, paused }) {
    this.now = { speed, paused };
    if (document.activeElement !== this.speed) this.speed.value = speed;
    this.relabel();
  }

  relabel() {
    this.told.textContent = this.now.paused ? t("paused") : t("running", { speed: this.now.speed });
    this.told.classList.toggle("bad", this.now.paused);
    setlabel(this.pause, "t", this.now.paused ? "resume" : "pause");
  }
}
