// What several tabs of the operator's side share.
import { h, labelledfield, select } from "/dom.js";

// A select of players that keeps its choice when the list changes.
export function playerselect() {
  const field = select([], "");
  const fill = (players) => {
    const names = players.map((player) => player.name), before = field.value;
    if (names.join("\n") === [...field.options].map((option) => option.value).join("\n")) return;
    field.replaceChildren(...names.map((name) => h("option", { value: name }, name)));
    if (names.includes(before)) field.value = before;
  };
  return { field, fill, shown: labelledfield("player", field) };
}

// A line below a tab's controls that says what came of the last one.
export class Outcome {
  constructor() {
    this.element = h("p", { class: "outcome", role: "status" });
  }

  async of(work) {
    try {
      this.tell((await work()) ?? "", false);
    } catch (error) {
      this.tell(error.message, true);
    }
  }

  tell(text, bad) {
    this.element.textContent = text;
    this.element.classList.toggle("bad", bad);
  }
}
