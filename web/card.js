// One player's column: who he is and what he has, his screen, the form in front of him, the command line and what he
// hears. Holds the client's state as the server streams it.
import * as api from "/api.js";
import { Chat } from "/chat.js";
import { CommandLine } from "/commandline.js";
import { h, setlabel } from "/dom.js";
import { focusform, formdialogue } from "/forms.js";
import { patched } from "/jsonpatch.js";
import { notice } from "/notices.js";
import { Screen } from "/screen.js";
import { t } from "/strings.js";

// A colour of his own for a player without a face.
function tint(name) {
  let value = 0;
  for (const letter of name) value = (value * 31 + letter.codePointAt(0)) % 360;
  return `hsl(${value} 38% 38%)`;
}

export class Card {
  // on.hide(card), on.leave(card)
  constructor(player, on) {
    this.player = player;
    this.heard = 0;  // the number of the last thing written to the log
    this.state = null;
    this.formtext = "null";  // the form in front, as JSON
    const report = (error) => notice(error);
    this.report = report;
    this.screen = new Screen(player, { report, escape: () => this.escape() });
    this.chat = new Chat();
    this.commands = new CommandLine(player, { report });
    this.money = h("span", { class: "money", hidden: true });
    this.dead = h("span", { class: "badge bad", t: "dead", hidden: true });
    this.menumark = h("span", { class: "menumark", role: "status" });
    this.level = h("span", { class: "badge" });
    this.creative = h("span", { class: "badge", t: "gamemode1", hidden: true });
    this.closebutton = h("button", { type: "button", class: "quiet", t: "closemenu", hidden: true, on: { click: () => this.closemenu() } });
    this.formplace = h("div", { class: "formplace" });
    const avatar = h("span", { class: "avatar", "aria-hidden": "true" }, [...player.name][0].toUpperCase());
    avatar.style.background = tint(player.name);
    this.element = h("article", { class: "card", "data-player": player.name, "aria-label": player.name, tabindex: -1 },
      h("header", { class: "cardhead" }, avatar,
        h("div", { class: "who" }, h("h2", {}, player.name), h("div", { class: "badges" },
          h("span", { class: "badge" }, player.language), h("span", { class: "badge", t: player.touch ? "touch" : "desktop" }),
          this.level, this.creative, this.dead)),
        this.money,
        h("button", { type: "button", class: "icon", ttitle: "hide", tlabel: "hide", on: { click: () => on.hide(this) } }, "–"),
        h("button", { type: "button", class: "icon", ttitle: "leave", tlabel: "leave", on: { click: () => on.leave(this) } }, "✕")),
      this.chat.toasts,
      h("div", { class: "cardbody" }, this.formplace,
        h("section", { class: "screen" },
          h("div", { class: "screenhead" }, this.menumark, this.closebutton),
          this.screen.element,
          h("p", { class: "hint keys", t: player.touch ? "doubletap" : "keys" })),
        h("div", { class: "talk" }, this.commands.element, this.chat.element)));
    this.screen.element.setAttribute("aria-label", t("screenof", { name: player.name }));
  }

  // The first picture, with everything that was heard before.
  begin({ heard, ...state }) {
    for (const what of heard) this.hear(what.number, what, false);
    this.draw(state);
  }

  hear(number, what, fresh) {
    if (number <= this.heard) return;  // a connection that was taken up again repeats
    this.heard = number;
    this.chat.hear(what, fresh);
  }

  patch(patch) {
    this.draw(patched(this.state, patch));
  }

  draw(state) {
    this.state = state;
    this.screen.draw(state.slots);
    const open = state.open !== null;
    this.element.classList.toggle("menuopen", open);
    this.menumark.textContent = t(open ? "menuopen" : "nomenu");
    this.closebutton.hidden = !open;
    this.creative.hidden = state.gametype !== 1;
    this.drawform(state.form);
  }

  // A form may come under the number of the one before, and a patch changes it in place: its text tells them apart.
  drawform(form) {
    const text = JSON.stringify(form);
    if (text === this.formtext) return;
    this.formtext = text;
    this.showform(form);
  }

  showform(form) {
    const washere = this.element.contains(document.activeElement) || document.activeElement === document.body;
    this.element.classList.toggle("hasform", form !== null);
    if (form === null) {
      this.formplace.replaceChildren();
      if (washere) this.screen.focuscell.element.focus({ preventScroll: true });
      return;
    }
    const dialogue = formdialogue(form, (answer) => this.answer(form.id, answer), () => this.player.money ?? null);
    this.formplace.replaceChildren(dialogue);
    if (washere) focusform(dialogue);
    dialogue.scrollIntoView({ block: "nearest" });
  }

  async answer(id, given) {
    const answered = this.formtext;
    try {
      await api.answer(this.player.name, id, given);
      if (this.formtext !== answered) return;
      // Either the news is still on its way, or the market asks the very same again, which is no news to the stream.
      const { form } = await api.look(this.player.name);
      if (this.formtext === answered && JSON.stringify(form) === answered) this.showform(form);
    } catch (error) {
      this.report(error);
      throw error;
    }
  }

  // What the operator's table knows of him.
  inform(player) {
    const { money, alive, permission } = this.player = player;
    setlabel(this.level, "t", `level${permission}`);
    this.level.hidden = permission === 0;
    this.money.hidden = money === null || money === undefined;
    const text = money?.toLocaleString("en") ?? "";
    if (this.money.dataset.amount !== text) {
      if (this.money.dataset.amount !== undefined) this.money.classList.add("changed");
      this.money.dataset.amount = text;
      this.money.replaceChildren(h("span", { class: "sign sign-coin", "aria-hidden": "true" }, "¤"), text);
      this.money.title = t("coins", { amount: text });
      setTimeout(() => this.money.classList.remove("changed"), 1200);
    }
    this.dead.hidden = alive !== false;
  }

  setpaused(on) {
    this.commands.setpaused(on);
  }

  closemenu() {
    api.close(this.player.name).catch(this.report);
  }

  escape() {
    if (this.state?.form) this.answer(this.state.form.id, null).catch(() => {});
    else if (this.state?.open) this.closemenu();
  }

  relabel() {
    this.screen.relabel();
    this.commands.relabel();
    this.screen.element.setAttribute("aria-label", t("screenof", { name: this.player.name }));
    this.menumark.textContent = t(this.state?.open ? "menuopen" : "nomenu");
  }
}
