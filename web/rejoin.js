// Players of this page who are on the server no longer, because it was started anew or because they left while the page
// was away: says so, and offers to join them again as they were.
import * as api from "/api.js";
import { h } from "/dom.js";
import { notice } from "/notices.js";
import { t } from "/strings.js";

export class Rejoin {
  // on.joined(names), on.changed()
  constructor(on) {
    this.on = on;
    this.players = [];
    this.why = "";
    this.text = h("p", {});
    this.go = h("button", { type: "button", class: "main", on: { click: () => this.join() } });
    const forget = h("button", { type: "button", t: "notnow", on: { click: () => this.keep([]) } });
    this.element = h("section", { class: "again", tlabel: "again" }, h("div", { role: "alert" }, this.text), this.go, forget);
    this.relabel();
  }

  names() {
    return this.players.map((player) => player.name);
  }

  // `why`: "restarted" or "werehere".
  offer(players, why) {
    this.why = why;
    this.keep([...this.players.filter(({ name }) => !players.some((one) => one.name === name)), ...players]);
  }

  // He is here again, by whatever way.
  settle(name) {
    if (this.names().includes(name)) this.keep(this.players.filter((player) => player.name !== name));
  }

  keep(players) {
    this.players = players;
    this.relabel();
    this.on.changed();
  }

  async join() {
    this.go.disabled = true;
    const joined = [];
    try {
      const here = new Set((await api.players()).filter((player) => player.joined).map((player) => player.name));
      for (const { name, xuid, language, touch, permission } of this.players) {
        if (!here.has(name)) await api.join({ name, xuid, language, device: touch ? "touch" : "desktop", permission });
        joined.push(name);
      }
    } catch (error) {
      notice(error);
    }
    this.go.disabled = false;
    this.on.joined(joined);
  }

  relabel() {
    this.element.hidden = this.players.length === 0;
    const names = this.names().join(", ");
    this.text.textContent = this.why === "" ? "" : t(this.why, { names });
    this.go.textContent = t("joinagain", { names });
  }
}
