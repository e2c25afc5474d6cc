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
    this.speed = h("input", { type: "number", min: 0.1, max: 1000, step: "any", required: true, value: "20" });
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
    const count = h("input", { type: "number", min: 1, max: 100000, required: true, value: "1" });
    const move = h("input", { type: "number", step: 1, required: true, value: "1000" });
    const pair = (key, field, action, work) => h("form", { class: "pair", on: { submit: (event) => {
      event.preventDefault();
      this.outcome.of(() => work(Number(field.value)));
    } } }, labelledfield(key, field), h("button", { type: "submit", t: action }));
    return h("div", { class: "stackform", hidden: true }, h("p", { class: "hint", t: "manual" }),
      pair("count", count, "runticks", async (ticks) => t("tickis", await api.ticks(ticks))),
      pair("moveclock", move, "set", (milliseconds) => api.clock(milliseconds).then(() => "")));
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
