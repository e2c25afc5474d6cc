// The inventory screen of one client: armour, the 27 slots, the hotbar, the other hand and what hangs on the cursor.
// Slots are drawn from the client's state; a click goes to the server and comes back as a changed state.
import * as api from "/api.js";
import { plain } from "/colours.js";
import { h, svg } from "/dom.js";
import { picture } from "/drawing.js";
import { row, shownname, whenhere } from "/items.js";
import { t } from "/strings.js";
import * as tooltip from "/tooltip.js";

const doubletaptime = 450, longpresstime = 450;

// The slots by rows, as the arrow keys walk them. `slot` is the client's number, `index` the place in its state.
const range = (container, area, from, count) =>
  Array.from({ length: count }, (_, i) => ({ container, area, slot: from + i, index: from + i }));
const armor = range("armor", "armor", 0, 4);
const layout = [
  [armor[0], ...range("inventory", "inventory", 9, 9)],
  [armor[1], ...range("inventory", "inventory", 18, 9)],
  [armor[2], ...range("inventory", "inventory", 27, 9)],
  [armor[3], ...range("hotbar", "inventory", 0, 9)],
  [{ container: "offhand", area: "offhand", slot: 1, index: 0 }, { container: "cursor", area: "cursor", slot: 0, index: 0 }],
];
const ghosts = {
  armor: ["M3 9c0-4 2-6 5-6s5 2 5 6v3h-3V9H6v3H3z", "M2 3l4-1c0 1.5 4 1.5 4 0l4 1v4h-2v7H4V7H2z",
          "M4 2h8l1 12H9.5L8 7l-1.5 7H3z", "M2 4h4v8H1v-2h1zM10 4h4v6h1v2h-5z"],
  offhand: ["M3 3h10v5c0 3-2 5-5 6-3-1-5-3-5-6z"],
};

export class Screen {
  // `report(error)` tells the player of a call that failed; `escape()` is what the Escape key does.
  constructor(player, { report, escape }) {
    this.player = player;
    this.report = report;
    this.escape = escape;
    this.cells = layout.map((cells) => cells.map((place) => this.cell(place)));
    this.last = null;  // the last tap, to know a double one
    const [offhand, cursor] = this.cells[4];
    this.cursorname = h("span", { class: "cursorname" });
    this.drop = h("button", { type: "button", class: "quiet drop", t: "drop", ttitle: "drophint", on: { click: () => this.dropany() } });
    this.element = h("div", { class: "slots", role: "group", on: { keydown: (event) => this.keys(event) } },
      ...this.cells.slice(0, 4).flat().map((cell) => cell.element),
      offhand.element, cursor.element, this.cursorname, this.drop);
    this.focuscell = this.cells[0][1];
    this.focuscell.element.tabIndex = 0;
    whenhere(() => this.relabel());
  }

  cell(place) {
    const cell = { ...place, item: undefined };
    const { area, container } = place;
    cell.element = h("button", {
      type: "button", class: `slot slot-${container}`, tabindex: -1, "data-slot": `${container}.${place.slot}`,
      on: {
        click: () => this.press(cell),
        contextmenu: (event) => this.contextmenu(event, cell),
        pointerenter: (event) => event.pointerType === "mouse" && tooltip.show(cell.element, cell.item),
        pointerleave: () => tooltip.hide(),
        pointerdown: (event) => this.pointerdown(event, cell),
        pointerup: () => clearTimeout(this.longpress),
        pointercancel: () => clearTimeout(this.longpress),
        focus: () => this.focused(cell),
        blur: () => tooltip.hide(),
      },
    });
    const ghost = ghosts[area]?.[area === "armor" ? place.index : 0];
    cell.ghost = ghost ? svg("svg", { viewBox: "0 0 16 16", class: "ghost", "aria-hidden": "true" }, svg("path", { d: ghost })) : null;
    return cell;
  }

  // Draws the slots of the state that are not as drawn already.
  draw(slots) {
    for (const cell of this.cells.flat()) {
      const item = slots[cell.area][cell.index] ?? null;
      const seen = item === null ? "" : JSON.stringify(item);
      if (cell.seen === seen) continue;
      cell.seen = seen;
      cell.item = item;
      this.drawcell(cell);
      if (tooltip.shownfor() === cell.element) tooltip.show(cell.element, item);
    }
    const held = slots.cursor[0];
    this.element.classList.toggle("holding", held !== null);
    this.cursorname.replaceChildren(h("small", { t: "cursor" }), h("span", {}, held ? plain(shownname(held)) : "–"));
  }

  drawcell({ element, item, ghost, area, slot }) {
    const parts = [];
    if (item) {
      parts.push(picture(item.item, item.aux));
      if (item.shines) parts.push(h("span", { class: "shine" }));
      const durability = row(item.item)?.durability ?? 0;
      if (durability > 0 && item.damage > 0) parts.push(this.wearbar(1 - item.damage / durability));
      if (item.count !== 1) parts.push(h("span", { class: "count" }, String(item.count)));
      if (item.locked) parts.push(svg("svg", { viewBox: "0 0 8 8", class: "lock", "aria-hidden": "true" },
        svg("path", { d: "M1.5 3.5h5v4h-5zM2.5 3.5V2.2a1.5 1.5 0 013 0v1.3h-.8V2.2a.7.7 0 00-1.4 0v1.3z" })));
    } else if (ghost) {
      parts.push(ghost);
    }
    element.replaceChildren(...parts);
    element.classList.toggle("full", Boolean(item));
    element.setAttribute("aria-label", item
      ? `${t(area)} ${slot}: ${plain(shownname(item))}, ${item.count}${item.locked ? `, ${t("locked")}` : ""}`
      : `${t(area)} ${slot}: ${t("emptyslot")}`);
  }

  wearbar(left) {
    const bar = h("span", { class: "wear" }, h("span"));
    bar.firstChild.style.width = `${Math.max(4, Math.round(left * 100))}%`;
    bar.firstChild.style.background = `hsl(${Math.round(left * 120)} 75% 45%)`;
    return bar;
  }

  // ---- what a person does

  press(cell) {
    this.moveto(cell);
    if (this.pressed) {  // the end of a long press is no click
      this.pressed = false;
      return;
    }
    if (!this.player.touch) return this.act(cell, "click");
    tooltip.show(cell.element, cell.item);
    const now = performance.now();
    const twice = this.last?.cell === cell && now - this.last.time < doubletaptime;
    this.last = twice ? null : { cell, time: now };
    if (twice) this.act(cell, "click");
  }

  contextmenu(event, cell) {
    event.preventDefault();
    if (event.pointerType !== "touch") this.act(cell, "rightclick");
  }

  pointerdown(event, cell) {
    this.pressed = false;
    if (event.pointerType === "mouse") return;
    clearTimeout(this.longpress);
    this.longpress = setTimeout(() => {
      this.pressed = true;
      tooltip.show(cell.element, cell.item);
    }, longpresstime);
  }

  focused(cell) {
    this.moveto(cell);
    if (cell.element.matches(":focus-visible")) tooltip.show(cell.element, cell.item);
  }

  // One slot of the screen is in the order of the Tab key; the arrows move it.
  moveto(cell) {
    this.focuscell.element.tabIndex = -1;
    this.focuscell = cell;
    cell.element.tabIndex = 0;
  }

  keys(event) {
    const rowat = this.cells.findIndex((cells) => cells.includes(this.focuscell));
    const columnat = this.cells[rowat].indexOf(this.focuscell);
    const moves = { ArrowLeft: [0, -1], ArrowRight: [0, 1], ArrowUp: [-1, 0], ArrowDown: [1, 0] };
    const onslot = event.target === this.focuscell.element;
    if (onslot && moves[event.key]) {
      const [down, right] = moves[event.key];
      const cells = this.cells[rowat + down];
      const next = cells?.[Math.min(columnat + right, down ? cells.length - 1 : columnat + right)];
      next?.element.focus();
    } else if (onslot && event.key === "Enter") {
      this.act(this.focuscell, event.shiftKey ? "rightclick" : "click");
    } else if (onslot && (event.key === "q" || event.key === "Q")) {
      this.act(this.focuscell, "drop");
    } else if (event.key === "Escape") {
      this.escape();
    } else {
      return;
    }
    event.preventDefault();
  }

  dropany() {
    const cursor = this.cells[4][1];
    this.act(cursor.item ? cursor : this.focuscell, "drop");
  }

  act(cell, how) {
    api.click(this.player.name, cell.container, cell.slot, how).catch(this.report);
  }

  relabel() {
    for (const cell of this.cells.flat()) this.drawcell(cell);
  }
}
