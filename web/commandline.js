// A line to type commands into, with the server's own completions, the lines typed before, and buttons for the common
// ones.
import * as api from "/api.js";
import { calmly, h } from "/dom.js";
import { t } from "/strings.js";

const common = ["ordomart", "ordomart buy", "ordomart recycle", "ordomart myshop", "ordomart ordomenu", "ordomart formmenu"];
const started = ["ordomart search "];  // wants more words
const mostkept = 50, mostoffered = 12, typingtime = 120;

export class CommandLine {
  constructor(player, { report }) {
    this.player = player;
    this.report = report;
    this.typed = [];
    this.at = 0;
    this.offers = [];
    this.chosen = -1;
    this.paused = false;
    this.waiting = [];  // sent since the server stands still
    const id = `complete-${player.xuid}`;
    this.list = h("ul", { class: "offers", role: "listbox", id, hidden: true });
    this.waits = h("div", { class: "waits hint", role: "status" });
    this.hint = h("div", { class: "usage hint", "aria-live": "polite" });
    this.field = h("input", {
      type: "text", autocomplete: "off", autocapitalize: "off", spellcheck: "false", role: "combobox",
      "aria-controls": id, "aria-expanded": "false", "aria-autocomplete": "list", tlabel: "command", tplaceholder: "commandhint",
      on: { input: () => this.ask(), keydown: (event) => this.keys(event), blur: () => this.offer([]), focus: () => this.ask() },
    });
    this.ask = calmly(typingtime, () => this.complete());
    const submit = (event) => {
      event.preventDefault();
      this.send(this.field.value);
    };
    this.element = h("div", { class: "commands" },
      h("div", { class: "quick", role: "group", tlabel: "quick" },
        ...common.map((line) => this.button(line, () => this.send(line))),
        ...started.map((line) => this.button(`${line.trim()} …`, () => this.start(line)))),
      h("form", { class: "commandline", on: { submit } }, h("span", { class: "slash", "aria-hidden": "true" }, "/"), this.field,
        h("button", { type: "submit", t: "send" }), this.list),
      this.waits, this.hint);
  }

  // A server that stands still takes everything in and answers nothing.
  setpaused(on) {
    this.paused = on;
    this.waiting = [];
    this.relabel();
  }

  relabel() {
    const lines = this.waiting.map((line) => `/${line}`).join(", ");
    this.waits.textContent = !this.paused ? "" : lines === "" ? t("allwaits") : t("commandswait", { lines });
  }

  button(text, click) {
    return h("button", { type: "button", class: "chip", on: { click } }, text);
  }

  start(line) {
    this.field.value = line;
    this.field.focus();
    this.ask();
  }

  send(text) {
    const line = text.trim().replace(/^\//, "");
    if (line === "") return;
    this.typed = [...this.typed.filter((one) => one !== line), line].slice(-mostkept);
    this.at = this.typed.length;
    this.field.value = "";
    this.offer([]);
    this.hint.textContent = "";
    if (this.paused) this.waiting.push(line);
    this.relabel();
    api.command(this.player.name, line).catch(this.report);
  }

  // ---- completion

  async complete() {
    const line = this.field.value.replace(/^\//, "");
    if (document.activeElement !== this.field || line === "") {
      this.hint.textContent = "";
      return this.offer([]);
    }
    try {
      const { completions } = await api.complete(line, this.player.name);
      if (line !== this.field.value.replace(/^\//, "") || document.activeElement !== this.field) return;  // typed on
      this.hint.textContent = completions.filter((one) => one.text === "").map((one) => one.hint).join("   ");
      this.offer(completions.filter((one) => one.text !== "").slice(0, mostoffered));
    } catch (error) {
      this.report(error);
    }
  }

  offer(offers) {
    this.offers = offers;
    this.chosen = -1;
    this.list.hidden = offers.length === 0;
    this.field.setAttribute("aria-expanded", String(offers.length > 0));
    this.field.removeAttribute("aria-activedescendant");
    this.list.replaceChildren(...offers.map((one, number) =>
      h("li", { role: "option", id: `${this.list.id}-${number}`, "aria-selected": "false",
                on: { pointerdown: (event) => { event.preventDefault(); this.take(number); } } },
        h("b", {}, one.text), one.hint && one.hint !== one.text ? h("small", {}, one.hint) : null)));
  }

  choose(number) {
    const count = this.offers.length;
    this.chosen = (number + count) % count;
    for (const [at, entry] of [...this.list.children].entries()) {
      entry.setAttribute("aria-selected", String(at === this.chosen));
      if (at === this.chosen) entry.scrollIntoView({ block: "nearest" });
    }
    this.field.setAttribute("aria-activedescendant", this.list.children[this.chosen].id);
  }

  // Puts the word in place of the one being typed.
  take(number) {
    const line = this.field.value, start = line.lastIndexOf(" ") + 1;
    this.field.value = `${line.slice(0, start)}${this.offers[number].text} `;
    this.offer([]);
    this.ask();
  }

  keys(event) {
    const open = this.offers.length > 0;
    if (event.key === "Tab" && open && !event.shiftKey) this.take(Math.max(this.chosen, 0));
    else if (event.key === "Enter" && open && this.chosen >= 0) this.take(this.chosen);
    else if (event.key === "Escape" && open) this.offer([]);
    else if (event.key === "ArrowDown" && open) this.choose(this.chosen + 1);
    else if (event.key === "ArrowUp" && open) this.choose(this.chosen < 0 ? -1 : this.chosen - 1);
    else if (event.key === "ArrowUp" && this.at > 0) this.recall(this.at - 1);
    else if (event.key === "ArrowDown" && this.at < this.typed.length) this.recall(this.at + 1);
    else return;
    event.preventDefault();
    event.stopPropagation();
  }

  recall(at) {
    this.at = at;
    this.field.value = this.typed[at] ?? "";
  }
}
