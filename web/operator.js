// The operator's side: who is here and what he owns, gifts, scores, the server's time and its log, as tabs. `context`
// is what the page shares with them: players() as last read, reload(), opencard(name), onpage(name), close().
import { h } from "/dom.js";
import { whenhere } from "/items.js";
import { Give } from "/opgive.js";
import { Log } from "/oplog.js";
import { Players } from "/opplayers.js";
import { Scores } from "/opscores.js";
import { Time } from "/optime.js";
import { remember, remembered } from "/settings.js";

const tabs = [["players", Players], ["give", Give], ["scores", Scores], ["time", Time], ["log", Log]];

export class Operator {
  constructor(context) {
    this.pages = tabs.map(([key, Page]) => ({ key, page: new Page(context) }));
    this.log = this.pages.at(-1).page;
    this.time = this.pages.at(-2).page;
    this.buttons = this.pages.map(({ key, page }, number) => {
      page.element.id = `panel-${key}`;
      page.element.setAttribute("role", "tabpanel");
      return h("button", { type: "button", role: "tab", id: `tab-${key}`, "aria-controls": `panel-${key}`, t: key,
                           on: { click: () => this.show(key), keydown: (event) => this.keys(event, number) } });
    });
    const close = h("button", { type: "button", class: "icon", ttitle: "closeoperator", tlabel: "closeoperator", on: { click: context.close } }, "✕");
    this.element = h("aside", { class: "operator", tlabel: "operator" },
      h("div", { class: "operatorhead" }, h("div", { class: "tabs", role: "tablist", tlabel: "operator" }, ...this.buttons), close), ...this.pages.map(({ page }) => page.element));
    this.show(remembered("tab", "players"));
    whenhere(() => this.relabel());
  }

  show(key) {
    const chosen = this.pages.some((one) => one.key === key) ? key : "players";
    for (const [number, { key: own, page }] of this.pages.entries()) {
      page.element.hidden = own !== chosen;
      this.buttons[number].setAttribute("aria-selected", String(own === chosen));
      this.buttons[number].tabIndex = own === chosen ? 0 : -1;
      if (own === chosen) page.shown?.();
    }
    remember("tab", chosen);
  }

  // Brings it before the eyes and under the keys.
  reveal() {
    const { top } = this.element.getBoundingClientRect();
    if (top < 0 || top > innerHeight / 2) this.element.scrollIntoView();
    this.buttons.find((button) => button.tabIndex === 0).focus({ preventScroll: true });
  }

  keys(event, number) {
    const step = { ArrowLeft: -1, ArrowRight: 1 }[event.key];
    if (!step) return;
    const next = (number + step + this.pages.length) % this.pages.length;
    this.show(this.pages[next].key);
    this.buttons[next].focus();
  }

  inform(players) {
    for (const { page } of this.pages) page.inform?.(players);
  }

  relabel() {
    for (const { page } of this.pages) page.relabel?.();
  }
}
