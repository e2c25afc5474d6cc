// The bustling market: a button that says whether it is on, and a dialogue that tells what it does before it does it.
import * as api from "/api.js";
import { h, labelledfield } from "/dom.js";
import { notice } from "/notices.js";
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
    try {
      await this.refresh();
    } catch (error) {
      return notice(error);
    }
    const { players, most, refusal } = this.state, on = players > 0, possible = refusal === "";
    const outcome = new Outcome();
    const number = h("input", { type: "number", min: 1, max: most, required: true, value: String(on ? players : usual) });
    const act = (work) => outcome.of(async () => {
      this.take(await work());
      dialogue.close();
      if (!on && this.state.players > 0) this.begun();
    });
    const submit = (event) => {
      event.preventDefault();
      act(() => api.startbustle(Number(number.value)));
    };
    const cancel = h("button", { type: "button", t: possible ? "cancel" : "close", on: { click: () => dialogue.close() } });
    const dialogue = h("dialog", { class: "ask", "data-dialogue": "bustle", tlabel: "bustle", on: { close: () => dialogue.remove() } },
      h("form", { class: "stackform", on: { submit } }, h("h2", { t: "bustle" }), h("p", { t: possible ? "bustletext" : "bustlerefused" }),
        on ? h("p", { role: "status" }, t("bustlegoes", this.state)) : null, possible ? labelledfield("bustleplayers", number) : null, outcome.element,
        h("footer", {}, cancel, on ? h("button", { type: "button", t: "bustlestop", on: { click: () => act(api.stopbustle) } }) : null,
          possible ? h("button", { type: "submit", class: "main", t: on ? "bustlechange" : "bustlestart" }) : null)));
    document.body.append(dialogue);
    dialogue.showModal();
    (possible ? number : cancel).focus();
  }
}
