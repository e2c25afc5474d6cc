// Walks one player through the menus of menus.mjs by the page, through every door once, and reads everything that he is
// shown. The server runs with --manual: whoever waits lets its time pass, so that the market's pauses cost nothing.
import assert from "node:assert/strict";

import { lastmenu, outside } from "./menus.mjs";

// Texts that are keys for everybody, until an operator gives them words.
const barekeys = ["managemenu", "command.reload.success", "sellshop.zerostate"];
const unfilled = /undefined|\bNaN\b|\[object|\{\d*\}|\{[a-z]+\}|§$/;
const patience = 15000, ticksatonce = 5;
const mostlost = 3;  // clicks of a walk that meet a picture which is just being painted anew, and count for nothing
const coolness = 2000;  // after which the market opens the next menu

// What stands on the card, read in one go.
const look = (element) => {
  const text = (node) => node?.textContent.trim() ?? null;
  const form = element.querySelector("[role=dialog]");
  return {
    open: element.classList.contains("menuopen"),
    slots: Object.fromEntries([...element.querySelectorAll(".slot.full")].map((slot) => [slot.dataset.slot, slot.ariaLabel.replace(/^.*?\d: /s, "")])),
    form: form && {
      old: "walked" in form.dataset, title: text(form.querySelector("h3")),
      buttons: [...form.querySelectorAll(".formbuttontext, .modalbuttons button")].map(text),
    },
  };
};

// Without the travels of the mouse, which other tests have and which take most of the time. A form that stands now is
// known again as the old one.
const click = (element, { selector, number = 0, times = 1 }) => {
  const form = element.querySelector("[role=dialog]"), place = element.querySelectorAll(selector)[number];
  if (form) form.dataset.walked = "";
  while (times-- > 0) place.click();
};

export class Walk {
  // `texts`: of the player's language, by key. `chestsonly`: forms are passed on the way, and not gone through by all of
  // their doors. `seen(place)` is awaited at each place that is seen for the first time.
  constructor(server, player, menus, { texts, touch, chinese, chestsonly = false, seen = () => {} }) {
    Object.assign(this, { server, player, menus, texts, touch, chinese, chestsonly, seen });
    this.at = outside;
    this.last = outside;
    this.heard = 0;
    this.lost = 0;
    this.shown = new Set();
    this.untried = new Map(Object.keys(menus).map((name) => [name, new Set(this.doors(name).filter((door) => this.matters(name, door)))]));
  }

  text(key) {
    return this.texts[key] ?? key;
  }

  // ---- the table

  doors(name) {
    const { typed, title, doors = {}, rows, closes, sends, answers = {} } = this.menus[name];
    if (name === outside) return Object.keys(typed);
    return [...(sends ? ["sends"] : []), ...Object.keys(doors), ...Object.keys(answers), ...(rows ? ["rows"] : []), ...(title ? closes ? ["closes"] : [] : ["close"])];
  }

  // Closing a container is the same everywhere; what the owner has walked already is the way of the operator.
  matters(name, door) {
    const { walked, doors, closable, title, typed } = this.menus[name];
    if (this.chestsonly && (title || typed)) return false;
    return walked ? door in doors : door !== "close" || closable;
  }

  leadsto(name, door) {
    const menu = this.menus[name];
    let place = { sends: menu.sends, rows: menu.rows, closes: menu.closes, close: outside }[door];
    if (name === outside) place = menu.typed[door];
    else if (place === undefined) place = menu.answers?.[door] ?? menu.doors[door].to ?? menu.doors[door];
    if (place === lastmenu) return this.last;
    if (place === "") return name;
    return place === "+sign" ? `${name}+sign` : place;
  }

  // The doors to the nearest place with one that nobody went through, and that one.
  way() {
    const ways = new Map([[this.at, []]]);
    for (const [name, way] of ways) {
      const [door] = this.untried.get(name) ?? assert.fail(`no menu is called ${name}`);
      if (door !== undefined) return [...way, door];
      for (const each of this.doors(name)) {
        const next = this.leadsto(name, each);
        if (!ways.has(next)) ways.set(next, [...way, each]);
      }
    }
    return [];
  }

  async all() {
    this.card = await this.player.card.elementHandle();
    this.now = await this.card.evaluate(look);
    for (let way = this.way(); way.length > 0; way = this.way()) for (const door of way) await this.through(door);
    return this.shown;
  }

  // ---- a door

  async through(door) {
    const from = this.at, to = this.leadsto(from, door), how = `${from} > ${door} > ${to}`;
    await this.server.call("POST", "/api/clock", { milliseconds: coolness });
    await this.press(door, this.now);
    this.untried.get(from).delete(door);
    const came = from === to && !this.menus[from].doors?.[door]?.silent ? await this.stirs() : await this.comes(to);
    if (!came && await this.waslost(from) && ++this.lost <= mostlost) await this.press(door, this.now);
    await this.arrived(to, how);
    this.at = to;
    if (this.menus[to].ismenu) this.last = to;
  }

  // The page stands as it stood, and the market has not been heard since: it heard of no click either.
  async waslost(from) {
    return !await this.hears() && this.difference(from, this.now) === null;
  }

  // Whether the market has said or sounded something since the last door.
  async hears() {
    const { heard } = await this.server.call("GET", `/api/players/${encodeURIComponent(this.player.name)}?heard=${this.heard}`);
    return heard.length > 0;
  }

  // A door that leads back to where he stands shows nothing new; the market answers it all the same.
  async stirs() {
    return this.until(() => this.hears());
  }

  async press(door, { form, slots }) {
    const { player, server } = this, menu = this.menus[this.at], button = (text) => form.buttons.indexOf(text);
    const clicks = (selector, number, times) => this.card.evaluate(click, { selector, number, times });
    if (this.at === outside) return player.types(door);
    if (door === "close") return clicks("[data-t=closemenu]");
    if (door === "closes") return clicks("[role=dialog] [data-tlabel=close]");
    if (door === "sends") {
      for (const [number, value] of Object.entries(menu.typed ?? {})) {
        if (typeof value === "number") await player.form.locator("select").nth(Number(number)).selectOption({ index: value });
        else await player.form.locator("input[type=text]").nth(Number(number)).fill(value);
      }
      return clicks("[role=dialog] [data-t=submit]");
    }
    if (door === "rows") {
      const row = form.buttons.findIndex((text) => !/EMPTY|上一页|下一页/.test(text));
      assert.ok(row >= 0, `${this.at} has no rows: ${JSON.stringify(form)}`);
      return clicks(".formbutton", row);
    }
    if (door in (menu.answers ?? {})) return clicks(".modalbuttons button", button(door));
    if (menu.title) return clicks(".formbutton", button(this.text(door)));
    if (door === "cursor") return clicks("[data-t=drop]");
    if (door === "creative") {
      const { entries } = await server.call("GET", `/api/players/${encodeURIComponent(player.name)}/creative`);
      return server.call("POST", `/api/players/${encodeURIComponent(player.name)}/creative`, { entry: entries[7].entry });
    }
    const slot = door.endsWith("?") ? Object.keys(slots).find((each) => each.startsWith(door.slice(0, -1))) : door;
    assert.ok(slots[slot], `${this.at}: nothing on ${door}: ${JSON.stringify(slots)}`);
    return clicks(`[data-slot="${slot}"]`, 0, this.touch ? 2 : 1);
  }

  // Whether the place is seen before his patience ends.
  async comes(to) {
    return this.until(() => this.difference(to, this.now) === null);
  }

  async until(holds) {
    for (const late = Date.now() + patience; Date.now() < late;) {
      await this.server.call("POST", "/api/ticks", { count: ticksatonce });
      this.now = await this.card.evaluate(look);
      if (await holds()) return true;
      await new Promise((done) => { setTimeout(done, 25); });
    }
    return false;
  }

  async arrived(to, how) {
    const name = encodeURIComponent(this.player.name);
    if (!await this.comes(to)) {
      const { heard } = await this.server.call("GET", `/api/players/${name}`);
      assert.fail(`${how}: ${this.difference(to, this.now)}\n${JSON.stringify(this.now)}\n${JSON.stringify(heard.slice(-6))}`);
    }
    const state = await this.server.call("GET", `/api/players/${name}?heard=${this.heard}`);
    this.heard = state.heard.at(-1)?.number ?? this.heard;
    this.reads(state, how);
    if (this.shown.has(to)) return;
    this.shown.add(to);
    this.covers(to, this.now);
    await this.seen(to);
  }

  // What is not yet as the place has it; null when all is.
  difference(to, { open, form, slots }) {
    if (form?.old) return "the old form stands";
    if (to === outside) return form || open ? "something is open" : null;
    const menu = this.menus[to];
    if (menu.title) {
      if (form?.title !== this.text(menu.title)) return `no form "${this.text(menu.title)}"`;
      return menu.doors && Object.keys(menu.doors).some((key) => !form.buttons.includes(this.text(key))) ? "a button is missing" : null;
    }
    if (form || !open) return "no menu";
    const sign = slots["offhand.1"] ?? "";
    if (menu.sign && !sign.startsWith(this.text(menu.sign))) return `no sign "${this.text(menu.sign)}"`;
    if (!this.touch && Boolean(menu.oncursor) !== Boolean(slots["cursor.0"])) return "the cursor is wrong";
    for (const [slot, { text }] of Object.entries(menu.doors))
      if (/^(armor|hotbar)\.\d$/.test(slot) && (!slots[slot] || (text && !slots[slot].startsWith(this.text(text))))) return `not on ${slot}: ${text}`;
    return null;
  }

  // Nothing to press is left out of the table.
  covers(to, { form, slots }) {
    const menu = this.menus[to];
    if (to === outside || menu.walked || menu.more || menu.ownstacks) return;
    const missed = menu.title
      ? menu.rows || menu.answers ? [] : form.buttons.filter((text) => !Object.keys(menu.doors ?? {}).some((key) => this.text(key) === text))
      : Object.keys(slots).filter((slot) => !/^(inventory|cursor)/.test(slot) && !(slot in menu.doors));
    assert.deepEqual(missed, [], `${to} shows what the table does not know`);
  }

  // Every text of the player's screen.
  reads({ slots, form, heard }, how) {
    const stacks = Object.values(slots).flat().filter(Boolean);
    const texts = [...stacks.flatMap(({ name, lore }) => [name, ...(lore ?? [])]), ...heard.filter(({ kind }) => kind !== "sound").flatMap(({ kind, ...rest }) => Object.values(rest))];
    const collect = (value, key) => {
      if (value && typeof value === "object") for (const [name, each] of Object.entries(value)) collect(each, name);
      else if (key !== "image" && key !== "type" && key !== "data") texts.push(value);
    };
    if (form) {
      collect(form.json);
      const { title, content } = form.json;
      assert.ok(title?.replace(/§./g, "").trim(), `${how}: a form without a title`);
      for (const { text } of form.json.buttons ?? []) assert.ok(text.trim(), `${how}: a button without a text in ${JSON.stringify(content)}`);
      if (this.chinese && !barekeys.includes(title) && title !== "Filter Settings") assert.match(title, /\p{Script=Han}/u, how);
    }
    for (const text of texts.filter((each) => typeof each === "string")) {
      assert.doesNotMatch(text, unfilled, how);
      for (const word of text.match(/[\w.]+\w/g) ?? [])
        if (word in this.texts && word.includes(".") && this.texts[word] !== word) assert.fail(`${how}: ${word} has not been translated in ${text}`);
    }
  }
}
