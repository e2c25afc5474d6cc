// Everybody the server has seen, with money and state.
import * as api from "/api.js";
import { confirmed } from "/confirm.js";
import { h, select } from "/dom.js";
import { Outcome } from "/opparts.js";
import { t } from "/strings.js";

export class Players {
  constructor(context) {
    this.context = context;
    this.rows = new Map();
    this.outcome = new Outcome();
    this.list = h("ul", { class: "playerlist" });
    this.empty = h("p", { class: "hint", t: "nobody" });
    this.element = h("section", {}, this.empty, this.list, this.outcome.element);
  }

  inform(players) {
    this.empty.hidden = players.length > 0;
    for (const player of players) {
      if (!this.rows.has(player.name)) {
        const made = this.row(player.name);
        this.rows.set(player.name, made);
        this.list.append(made.element);
      }
      this.draw(this.rows.get(player.name), player);
    }
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
             element: h("li", { "data-row": name }, h("div", { class: "rowhead" }, h("b", {}, name), state, show), h("div", { class: "rowbody" }, form, level, life)) };
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
