// Everybody the server has seen, with money and state, as a table: those who play first, and those who are called as asked.
import * as api from "/api.js";
import { confirmed } from "/confirm.js";
import { h, select, setlabel } from "/dom.js";
import { Outcome } from "/opparts.js";
import { t } from "/strings.js";

export class Players {
  constructor(context) {
    this.context = context;
    this.rows = new Map();
    this.outcome = new Outcome();
    this.search = h("input", { type: "search", autocomplete: "off", class: "findplayer", tplaceholder: "findplayer", tlabel: "findplayer", on: { input: () => this.sift() } });
    this.list = h("tbody", {});
    this.table = h("table", { class: "playertable" },
      h("thead", {}, h("tr", {}, ...["player", "money", "levelshort", "doing"].map((key) => h("th", { scope: "col", t: key })))), this.list);
    this.empty = h("p", { class: "hint", t: "nobody" });
    this.element = h("section", {}, this.search, this.empty, this.table, this.outcome.element);
  }

  // Shows the rows that are asked for.
  sift() {
    const asked = this.search.value.trim().toLowerCase();
    let shown = 0;
    for (const [name, { element }] of this.rows) {
      element.hidden = !name.toLowerCase().includes(asked);
      if (!element.hidden) shown++;
    }
    this.table.hidden = shown === 0;
    this.empty.hidden = shown > 0;
    setlabel(this.empty, "t", this.rows.size > 0 ? "nosuchplayer" : "nobody");
  }

  inform(players) {
    for (const player of players) {
      if (!this.rows.has(player.name)) {
        const made = this.row(player.name);
        this.rows.set(player.name, made);
      }
      this.draw(this.rows.get(player.name), player);
    }
    this.sift();
    this.order(players);
  }

  // Whoever plays comes first. Rows that stand right are left alone: to move one takes the focus from it.
  order(players) {
    const rows = [...players].sort((one, other) => other.online - one.online).map(({ name }) => this.rows.get(name).element);
    for (const [number, row] of rows.entries())
      if (this.list.children[number] !== row && !row.contains(document.activeElement)) this.list.insertBefore(row, this.list.children[number] ?? null);
  }

  row(name) {
    const act = (work) => this.outcome.of(async () => {
      await work();
      await this.context.reload();
    });
    const money = h("input", { type: "number", step: 1, required: true, tlabel: "money", class: "amount" });
    const setmoney = (event) => {
      event.preventDefault();
      money.blur();
      act(() => api.putmoney(name, Number(money.value)));
    };
    const form = h("form", { on: { submit: setmoney } }, money, h("button", { type: "submit", t: "set" }));
    const state = h("span", { class: "state" });
    const level = select([0, 1, 2, 3, 4].map((n) => [String(n), String(n)]), "0", {
      tlabel: "permission", ttitle: "permission", on: { change: () => act(() => api.permission(name, Number(level.value))) } });
    const kill = async () => (await confirmed("killsure", { name }, "killplayer")) && act(() => api.kill(name));
    const life = h("button", { type: "button", on: { click: () => (this.rows.get(name).alive ? kill() : act(() => api.revive(name))) } });
    const show = h("button", { type: "button", t: "show", on: { click: () => this.context.opencard(name) } });
    return { money, form, state, level, life, show,
             element: h("tr", { "data-row": name }, h("th", { scope: "row" }, h("b", {}, name), state), h("td", {}, form), h("td", {}, level),
               h("td", {}, h("div", { class: "doing" }, show, life))) };
  }

  draw(row, player) {
    row.alive = player.alive;
    row.state.textContent = t(!player.alive && player.online ? "dead" : player.online ? "playing" : "away");
    row.state.dataset.state = player.online ? "here" : "away";
    if (player.money === null) row.form.hidden = true;
    else if (document.activeElement !== row.money) row.money.value = player.money;
    row.level.value = String(player.permission);
    row.level.disabled = !player.online;
    row.life.textContent = t(player.alive ? "killplayer" : "reviveplayer");
    row.life.disabled = !player.online;
    row.show.hidden = !player.joined;
  }

  relabel() {
    this.inform(this.context.players());
  }
}
