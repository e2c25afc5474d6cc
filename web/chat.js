// What a player hears, as a log: chat, command replies, toasts and sounds. Toasts also stand over his card for a while.
import { coloured } from "/colours.js";
import { h } from "/dom.js";
import { play } from "/sounds.js";

const mostlines = 300, toasttime = 5000, mosttoasts = 3;

const lines = {
  chat: (what) => [coloured(what.text)],
  reply: (what) => [h("span", { class: "mark", "aria-hidden": "true" }, what.success ? "›" : "!"), coloured(what.text)],
  toast: (what) => [h("span", { class: "mark", "aria-hidden": "true" }, "⚑"), h("b", {}, coloured(what.title)), " ", coloured(what.text)],
  sound: (what) => [h("span", { class: "mark", "aria-hidden": "true" }, "♪"), what.name],
};

export class Chat {
  constructor() {
    this.log = h("div", { role: "log", tlabel: "chat" });
    this.empty = h("p", { class: "hint", t: "chatempty" });
    this.element = h("div", { class: "chat" }, this.empty, h("div", { class: "lines", tabindex: 0, tlabel: "chat" }, this.log));
    this.toasts = h("div", { class: "toasts", role: "status" });
  }

  // `fresh`: just now, so that it is seen and heard as well as written down.
  hear(what, fresh) {
    if (!(what.kind in lines)) return;
    const refused = what.kind === "reply" && !what.success ? " refused" : "";
    this.log.append(h("div", { class: `line line-${what.kind}${refused}` }, ...lines[what.kind](what)));
    while (this.log.childElementCount > mostlines) this.log.firstChild.remove();
    this.empty.hidden = true;
    if (!fresh) return;
    if (what.kind === "toast") this.toast(what);
    if (what.kind === "sound") play(what.name, what.volume, what.pitch);
  }

  toast(what) {
    const box = h("div", { class: "toast" }, h("b", {}, coloured(what.title)), h("span", {}, coloured(what.text)));
    this.toasts.append(box);
    while (this.toasts.childElementCount > mosttoasts) this.toasts.firstChild.remove();
    setTimeout(() => box.remove(), toasttime);
  }
}
