// The item table of the server: what items are called, and which item is called so. It is long, so the page stands before it
// is here.
import * as api from "/api.js";
import { language } from "/strings.js";

const table = new Map();
const named = new Map();  // what is called so: { item, aux }, or null for a name of several
const waiting = [];
let list = [];

// The table is long, and the page is shown before it is here: what needs it is given to `whenhere`.
export async function load() {
  list = await api.items();
  for (const row of list) {
    table.set(row.item, row);
    for (const one of row.variants?.length ? row.variants : [row])
      for (const name of new Set([one.en, one.zh])) callso(name, { item: row.item, aux: one.aux ?? 0 });
    for (const name of new Set([row.en, row.zh])) if (row.variants?.length) callso(name, { item: row.item, aux: 0 });
  }
  for (const work of waiting.splice(0)) work();
}

export function whenhere(work) {
  if (list.length > 0) work();
  else waiting.push(work);
}

function callso(name, what) {
  const before = named.get(name);
  if (before === undefined) named.set(name, what);
  else if (before?.item !== what.item) named.set(name, null);
}

// The one item of the table that is called `name` in a language that it knows.
export const called = (name) => named.get(name) ?? null;

export const rows = () => list;
export const row = (name) => table.get(name);

export function nameof(name, aux = 0) {
  const found = table.get(name);
  if (!found) return name;
  const variant = found.variants?.find((one) => one.aux === aux);
  return (variant ?? found)[language()] || found.en;
}

// The name that a stack shows. A client that knows one name for all colours of wool is told the colour here.
export function shownname({ item, aux, name }) {
  const found = table.get(item), variant = found?.variants?.find((one) => one.aux === aux);
  for (const each of variant ? ["en", "zh"] : []) if (name === found[each]) return variant[each];
  return name || item;
}
