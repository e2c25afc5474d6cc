// Reads and sets a player's score.
import * as api from "/api.js";
import { h, labelledfield } from "/dom.js";
import { Outcome, playerselect } from "/opparts.js";
import { t } from "/strings.js";

export class Scores {
  constructor(context) {
    this.outcome = new Outcome();
    this.player = playerselect(context);
    const objective = h("input", { type: "text", required: true, value: "money", autocomplete: "off" });
    const value = h("input", { type: "number", step: 1, required: true, value: "0" });
    const given = () => ({ name: this.player.field.value, objective: objective.value.trim() });
    const read = async () => {
      const { name, objective: asked } = given();
      value.value = await api.score(name, asked);
      return t("scoreis", { name, objective: asked, value: value.value });
    };
    const write = async () => {
      const { name, objective: asked } = given();
      await api.putscore(name, asked, Number(value.value));
      return read();
    };
    const submit = (event) => {
      event.preventDefault();
      this.outcome.of(write);
    };
    this.element = h("section", {}, h("form", { class: "stackform", on: { submit } },
      h("div", { class: "fields" }, this.player.shown, labelledfield("objective", objective), labelledfield("value", value)),
      h("footer", {}, h("button", { type: "button", t: "readscore", on: { click: () => this.outcome.of(read) } }),
        h("button", { type: "submit", class: "main", t: "set" }))), this.outcome.element);
  }

  inform(players) {
    this.player.fill(players);
  }
}
