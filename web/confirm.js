// Asks before something that is not taken back by another click.
import { h } from "/dom.js";
import { t } from "/strings.js";

// Whether the answer is yes. `key` is the question; `action` labels the button that does it.
export const confirmed = (key, values, action) => confirmedtext(t(key, values), t(action));

// The same with a question and a label that stand.
export function confirmedtext(question, label) {
  return new Promise((answer) => {
    let yes = false;
    const end = (given) => () => {
      yes = given;
      dialogue.close();
    };
    const no = h("button", { type: "button", t: "cancel", on: { click: end(false) } });
    const dialogue = h("dialog", { class: "ask", role: "alertdialog", "aria-label": question, on: { close: () => { dialogue.remove(); answer(yes); } } },
      h("p", {}, question),
      h("footer", {}, no, h("button", { type: "button", class: "main", "data-action": "yes", on: { click: end(true) } }, label)));
    document.body.append(dialogue);
    dialogue.showModal();
    no.focus();
  });
}
