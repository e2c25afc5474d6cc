// The bustling market: a button that says whether it is on, and a dialogue that tells what it does before it does it.
import * as api from "/api.js";
import { h, labelledfield, setlabel } from "/dom.js";
import { Outcome } from "/opparts.js";
import { t } from "/strings.js";

const usual = 12;

export class Bustle {
  // `begun` is called when it has been started here.
  constructor({ begun }) {
    this.begun = begun;
    this.state = null;
    this.buttons = [];
  }

  // One of the places where it is turned on and off. The market's state stands on it unless it only invites.
  button(properties, invites = false) {
    const element = h("button", { type: "button", ...properties, on: { click: () => this.ask() } });
    this.buttons.push({ element, invites });
    this.draw();
    return element;
  }

  draw() {
    for (const { element, invites } of this.buttons) {
      const on = (this.state?.players ?? 0) > 0;
      element.textContent = on && !invites ? t("bustleon", this.state) : t("bustle");
      if (!invites) element.setAttribute("aria-pressed", String(on));
      // Where there can be none, nobody is invited to it; the desk's button tells why.
      else element.hidden = this.state === null || this.state.refusal !== "";
    }
  }

  take(state) {
    this.state = state;
    this.draw();
    return state;
  }

  async refresh() {
    this.take(await api.bustle());
  }

  async ask() {
    const outcome = new Outcome();
    const number = h("input", { type: "number", min: 1, max: this.state?.most, required: true, value: String(usual) });
    const text = h("p", {}), told = h("p", { class: "hint", role: "status" });
    const stop = h("button", { type: "button", t: "bustlestop", on: { click: () => outcome.of(() => act(api.stopbustle)) } });
    const start = h("button", { type: "submit", class: "main", t: "bustlestart" });
    const act = async (work) => {
      const wason = this.state.players > 0;
      this.take(await work());
      dialogue.close();
      if (!wason && this.state.players > 0) this.begun();
    };
    const submit = (event) => {
      event.preventDefault();
      outcome.of(() => act(() => api.startbustle(Number(number.value))));
    };
    const field = labelledfield("bustleplayers", number);
    const dialogue = h("dialog", { class: "ask", "data-dialogue": "bustle", tlabel: "bustle", on: { close: () => dialogue.remove() } },
      h("form", { class: "stackform", on: { submit } }, h("h2", { t: "bustle" }), text, field, told, outcome.element,
        h("footer", {}, h("button", { type: "button", t: "cancel", on: { click: () => dialogue.close() } }), stop, start)));
    document.body.append(dialogue);
    dialogue.showModal();
    try {
      await this.refresh();
    } catch (error) {
      return outcome.tell(error.message, true);
    }
    const { players, most, refusal } = this.state, on = players > 0;
    number.max = most;
    if (on) number.value = players;
    text.textContent = refusal ? t("bustlerefused") : t("bustletext");
    told.textContent = on ? t("bustlegoes", this.state) : "";
    told.hidden = !on;
    field.hidden = start.hidden = refusal !== "";
    stop.hidden = !on;
    setlabel(start, "t", on ? "bustlechange" : "bustlestart");
    (refusal ? dialogue.querySelector("footer button") : number).focus();
  }
}
