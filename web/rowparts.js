// What the page reads out of a button's text in a form: the item that is named there in brackets, for its picture, and the
// price at the end, so that prices stand in a column. A text that is not of that kind is shown as it is.
import { plain } from "/colours.js";
import { called } from "/items.js";

const price = /\d+ [^\d/][^/]*\/\S+$/;  // a number, its unit, and for what
const gap = "   ";

// { text, price }: the codes of the game are kept in both. Only a part that brings its own colours can be moved.
export function splitprice(text) {
  const at = text.lastIndexOf(`${gap}\u00A7`);
  if (at < 0 || at < text.lastIndexOf("\n") || !price.test(plain(text.slice(at)))) return { text, price: null };
  return { text: text.slice(0, at), price: text.slice(at + gap.length) };
}

// { item, aux } of the item that the last brackets of the first line name, or null.
export function itemofrow(text) {
  const [line] = plain(text).split("\n"), end = line.lastIndexOf(")");
  for (let at = line.lastIndexOf("(", end); end > 0 && at >= 0; at = at > 0 ? line.lastIndexOf("(", at - 1) : -1) {
    const found = called(line.slice(at + 1, end));
    if (found) return found;  // a name may have brackets of its own
  }
  return null;
}
