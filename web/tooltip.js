// One tooltip for all slots: the item's name and lore as the game writes them. It follows the pointer's slot or the
// focused one, and a long press on a touch screen.
import { coloured } from "/colours.js";
import { h } from "/dom.js";
import { row, shownname } from "/items.js";
import { t } from "/strings.js";

const box = h("div", { class: "tooltip", id: "tooltip", role: "tooltip", hidden: true });
let owner = null;

function fill(item) {
  const durability = row(item.item)?.durability ?? 0;
  const notes = [item.aux ? `${item.item} · ${item.aux}` : item.item];
  if (durability > 0) notes.push(t("wear", { left: durability - item.damage, all: durability }));
  if (item.locked) notes.push(t("locked"));
  box.replaceChildren(
    h("div", { class: item.shines ? "itemname shines" : "itemname" }, coloured(shownname(item))),
    ...item.lore.map((line) => h("div", { class: "lore" }, coloured(line))),
    h("div", { class: "notes" }, notes.join("  ·  ")));
}

function place(element) {
  const at = element.getBoundingClientRect(), size = box.getBoundingClientRect();
  const gap = 8, wide = document.documentElement.clientWidth;
  const right = at.right + gap + size.width <= wide;
  const left = right ? at.right + gap : Math.max(gap, Math.min(at.left, wide - size.width - gap));
  let top = right ? at.top : at.bottom + gap;
  if (top + size.height > window.innerHeight - gap)
    top = right ? window.innerHeight - size.height - gap : at.top - size.height - gap;
  box.style.left = `${left}px`;
  box.style.top = `${Math.max(gap, top)}px`;
}

export function show(element, item) {
  if (!item) return hide();
  if (!box.isConnected) document.querySelector("main").append(box);
  owner?.removeAttribute("aria-describedby");
  owner = element;
  element.setAttribute("aria-describedby", "tooltip");
  fill(item);
  box.hidden = false;
  place(element);
}

export function hide() {
  box.hidden = true;
  owner?.removeAttribute("aria-describedby");
  owner = null;
}

export const shownfor = () => owner;
addEventListener("scroll", (event) => event.target.contains(owner) && hide(), { passive: true, capture: true });
