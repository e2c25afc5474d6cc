// Asks before something that is not taken back by another click.
import { h } from "/dom.js";
import { t } from "/strings.js";

// Whether the answer is yes. `key` is the question; `action` labels the button that does it.
export function confirmed(key, values, action) {
  return new Promise((answer) => {
    let yes = false;
    const end = (given) => () => {
      yes = given;
      dialogue.close();
    };
    const no = h("button", { type: "button", t: "cancel", on: { click: end(false) } });
    const dialogue = h("dialog", { class: "ask", role: "alertdialog", "aria-label": t(key, values), on: { close: () => { dialogue.remove(); answer(yes); } } },
      h("p", {}, t(key, values)),
      h("footer", {}, no, h("button", { type: "button", class: "main", "data-action": "yes", t: action, on: { click: end(true) } })));
    document.body.append(dialogue);
    dialogue.showModal();
    no.focus();
  });
}
