// What an answer comes to: the page's own help beside a form that asks for one number and names one price. It reads what
// the form tells and counts nothing that is told twice or otherwise, so that it says what is right or nothing.
import { plain } from "/colours.js";
import { h } from "/dom.js";
import { t } from "/strings.js";

const pricelike = /^\s*(\d{1,12}) [^\d/][^/]*\/\S+\s*$/;  // a line of its own: a number, its unit, and for what
const purselike = /: ?(-?\d{1,15})\s*\u00A4$/;  // ends with the game's coin
const asked = ["input", "slider", "toggle", "dropdown", "step_slider"];

const only = (found) => (found.length === 1 ? BigInt(found[0][1]) : null);

// { price, purse, typed } as the form tells them, purse null where it tells none; or null for a form of another kind.
// `typed`: the number is typed freely, so it is bought and paid for; what a slider moves is the player's own already.
export function readprices({ type, content }) {
  if (type !== "custom_form" || !Array.isArray(content)) return null;
  const fields = content.filter((element) => asked.includes(element.type));
  if (fields.length !== 1 || !["input", "slider"].includes(fields[0].type)) return null;
  const lines = content.filter((element) => element.type === "label").flatMap((element) => plain(element.text ?? "").split("\n"));
  const matches = (pattern) => lines.map((line) => line.match(pattern)).filter(Boolean);
  const price = only(matches(pricelike));
  return price === null ? null : { price, purse: only(matches(purselike)), typed: fields[0].type === "input" };
}

// The line for what is in the field now. `balance`: what the card shows, which moves on while the form stands; it is
// believed to be the purse that the form tells once the two have been seen alike.
export class Total {
  constructor(form, balance) {
    this.prices = readprices(form);
    this.balance = balance;
    this.same = false;
    this.element = this.prices && h("output", { class: "total", hidden: true });
  }

  update(text) {
    if (!this.prices) return;
    const { price, purse, typed } = this.prices, shown = this.balance();
    const balance = Number.isSafeInteger(shown) ? BigInt(shown) : null;
    const count = /^\s*[1-9]\d{0,8}\s*$/.test(text) ? BigInt(text.trim()) : null;
    this.element.hidden = count === null;
    if (count === null) return;
    if (balance !== null && balance === purse) this.same = true;
    const number = (value) => value.toLocaleString("en");
    const total = count * price, values = { count: number(count), price: number(price), total: number(total) };
    const left = typed && this.same && balance !== null ? balance - total : null;
    const key = left === null ? "total" : left < 0n ? "totalshort" : "totalleaves";
    this.element.textContent = t(key, { ...values, left: number(left !== null && left < 0n ? -left : left ?? 0n) });
    this.element.classList.toggle("short", left !== null && left < 0n);
  }
}
