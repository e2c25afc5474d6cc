// The desk: what the server and its plug-in show to operators, view by view. What a view means it says itself; the page
// knows none of them. `context` is what the page shares: players() as last read, the bustle.
import * as api from "/api.js";
import { View } from "/deskview.js";
import { said } from "/deskvalues.js";
import { h, select } from "/dom.js";
import { whenhere } from "/items.js";
import { remember, remembered } from "/settings.js";
import { t } from "/strings.js";

const leastlevel = 1;

export class Desk {
  constructor(context) {
    this.context = context;
    this.views = [];
    this.nav = h("nav", { class: "desknav", tlabel: "deskviews" });
    this.actor = select([], "", {});
    this.place = h("div", { class: "deskplace" });
    this.message = h("p", { class: "hint", role: "status" });
    this.element = h("section", { class: "desk", hidden: true, tlabel: "desk" },
      h("header", { class: "deskhead" }, h("h2", { t: "desk" }), context.bustle.button({}), h("label", { class: "actor" }, h("span", { t: "deskactor" }), this.actor)),
      this.message, this.nav, this.place);
    whenhere(() => this.relabel());
  }

  async show() {
    this.element.hidden = false;
    this.inform();
    try {
      if (this.views.length === 0) await this.load();
      this.choose(this.chosen?.description.name ?? remembered("view", ""));
    } catch (error) {
      this.message.textContent = error.message;
    }
  }

  hide() {
    this.element.hidden = true;
    this.chosen?.hide();
  }

  async load() {
    const context = { players: this.context.players, actor: () => this.actor.value };
    this.views = (await api.views()).map((description) => new View(description, context));
    this.message.textContent = this.views.length === 0 ? t("desknothing") : "";
    this.drawnav();
  }

  drawnav() {
    const groups = new Map();
    for (const { description } of this.views) {
      const group = said(description.group);
      if (!groups.has(group)) groups.set(group, []);
      groups.get(group).push(h("button", { type: "button", "data-view": description.name, on: { click: () => this.choose(description.name) } }, said(description.title)));
    }
    this.nav.replaceChildren(...[...groups].map(([group, buttons]) => h("div", { role: "group", "aria-label": group || t("desk") }, h("span", { class: "hint" }, group), ...buttons)));
    this.mark();
  }

  mark() {
    for (const button of this.nav.querySelectorAll("button")) {
      if (button.dataset.view === this.chosen?.description.name) {
        button.setAttribute("aria-current", "page");
        const { offsetLeft, offsetWidth } = button;
        this.nav.scrollLeft = offsetLeft - this.nav.offsetLeft - (this.nav.clientWidth - offsetWidth) / 2;
      } else button.removeAttribute("aria-current");
    }
  }

  choose(name) {
    const view = this.views.find((one) => one.description.name === name) ?? this.views[0];
    if (!view) return;
    this.chosen?.hide();
    this.chosen = view;
    remember("view", view.description.name);
    this.place.replaceChildren(view.element);
    this.mark();
    view.show();
  }

  // Who can run commands: the players on this page who may.
  inform() {
    if (!this.element.hidden) this.context.bustle.refresh().catch(() => {});
    const able = this.context.players().filter(({ joined, online, permission }) => joined && online && permission >= leastlevel).map(({ name }) => name);
    const before = this.actor.value;
    if (JSON.stringify(able) === this.able) return;
    this.able = JSON.stringify(able);
    this.actor.replaceChildren(...(able.length > 0 ? able.map((name) => h("option", { value: name }, name)) : [h("option", { value: "" }, t("desknoactor"))]));
    this.actor.value = able.includes(before) ? before : able[0] ?? "";
  }

  relabel() {
    this.able = "";
    this.inform();
    this.drawnav();
    this.context.bustle.draw();
    for (const view of this.views) view.relabel();
  }
}
