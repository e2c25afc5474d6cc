// What several tabs of the operator's side share.
import { h, labelledfield, select } from "/dom.js";
import { t } from "/strings.js";

// A select of players, those with a card on the page first; `onpage(name)` knows them. It begins with one of these and
// never goes to another by itself: while the chosen one is away nobody is chosen.
export function playerselect({ onpage }) {
  const field = select([], "", { required: true });
  let drawn = "", chosen = "";
  const fill = (players) => {
    const names = players.map((player) => player.name);
    const here = names.filter(onpage), away = names.filter((name) => !onpage(name));
    const rows = [["", t("chooseplayer")], ...here.map((name) => [name, name]), ...away.map((name) => [name, t("notonpage", { name })])];
    if (JSON.stringify(rows) === drawn) return;
    chosen = field.value || chosen || here[0] || "";
    drawn = JSON.stringify(rows);
    field.replaceChildren(...rows.map(([value, text]) => h("option", { value }, text)));
    field.value = names.includes(chosen) ? chosen : "";
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
