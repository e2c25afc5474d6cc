// Pictures of items, drawn here: a shape by name or by kind in the item's colour, marks for what parts of the name say, and
// one for what would look the same even so. And pictures for the images that forms name; nothing is fetched.
import { svg } from "/dom.js";
import { row, rows } from "/items.js";
import { shapes } from "/pictures.js";
import { likely } from "/pictures.guessed.js";
import { families, marks, spots } from "/pictures.marks.js";
import { named } from "/pictures.named.js";
import { signs } from "/pictures.signs.js";
import { dot } from "/pictures.tools.js";

const fixed = {
  w: "#8a6238", v: "#5b3f22", x: "#f4f1ea", k: "#2b2b2e", g: "#4d9a3a", s: "#b9bdc4", e: "#6d727b", r: "#d3382f",
  y: "#f2c14e", o: "rgba(215,235,245,.45)",
};
const drawn = new Map();

function mixed(color, other, share) {
  const parts = [1, 3, 5].map((at) => {
    const own = parseInt(color.slice(at, at + 2), 16), added = parseInt(other.slice(at, at + 2), 16);
    return Math.round(own + (added - own) * share);
  });
  return `rgb(${parts.join(",")})`;
}

// Whether darker lines show on it.
const luminous = (color) => [1, 3, 5].reduce((sum, at) => sum + parseInt(color.slice(at, at + 2), 16), 0) > 150;

function hash(text) {
  let value = 7;
  for (const letter of text) value = (value * 31 + letter.codePointAt(0)) >>> 0;
  return value;
}

// Two letters that a reader finds in the name: "Ender Chest" is EC, "Saddle" is Sa.
function initials(name) {
  const element = name.match(/^minecraft:element_(\d+)$/);
  if (element) return element[1];
  const words = name.replace(/^.*:/, "").split(/[_ ]/).filter(Boolean);
  return words.length > 1 ? (words[0][0] + words[1][0]).toUpperCase() : (words[0] ?? "?").slice(0, 2);
}

function tile(name, color) {
  const text = svg("text", { x: 8, y: 11, "text-anchor": "middle", "font-size": 7, "font-weight": 700, fill: "#fff",
                             stroke: "rgba(0,0,0,.55)", "stroke-width": 1.4, "paint-order": "stroke" });
  text.textContent = initials(name);
  return [
    svg("rect", { x: 1.5, y: 1.5, width: 13, height: 13, rx: [1, 3.5, 6.5][hash(name) % 3], fill: color,
                  stroke: "rgba(0,0,0,.5)", "stroke-width": 0.7 }),
    text,
  ];
}

// What the marks are looked up by: a variant is called by its own name.
function slug(found, aux, name) {
  const variant = found?.variants?.find((one) => one.aux === aux);
  return variant ? variant.en.toLowerCase().replace(/\W+/g, "_") : name.replace(/^minecraft:/, "");
}

function colourof(found, aux) {
  const color = found?.variants?.find((one) => one.aux === aux)?.color || found?.color;
  return /^#[0-9a-f]{6}$/i.test(color ?? "") ? color : "#7d8793";
}

function egg(called) {
  const value = hash(called), fill = `hsl(${value % 360} 62% ${42 + (value >>> 9) % 30}%)`;
  return spots[(value >>> 5) % spots.length].map(([x, y]) => [fill, dot("", x, y, 1.4)]);
}

const cut = (part) => (part[0] === "#" ? [part.slice(0, 7), part.slice(7)] : [part[0], part.slice(1)]);

// Parts as [fill, path]; "~" is a line. `alike`: how many that look the same came before.
function parts(called, name, kind, alike) {
  const shape = named[name] ?? named[called] ?? shapes[name] ?? families.find(([pattern]) => pattern.test(called))?.[1] ?? shapes[kind];
  if (!shape) return null;
  const marked = marks.filter(([pattern, on]) => (on === null || on === kind) && !(name in named) && pattern.test(called)).flatMap(([, , more]) => more);
  const pips = Array.from({ length: alike }, (_, n) => ["x", dot("", 2 + 2.4 * (n % 6), 14 - 2.4 * Math.floor(n / 6), 0.9)]);
  return [...[...shape, ...marked].map(cut), ...(kind === "egg" && called.endsWith("_spawn_egg") ? egg(called) : []), ...pips];
}

// How many of the table have the same parts and the same colour and come before: that number is written on each by dots.
const likeness = new Map();
function countlikenesses() {
  const before = new Map();
  for (const found of rows())
    for (const { aux } of found.variants?.length ? found.variants : [{ aux: 0 }]) {
      const seen = likely(found), called = slug(seen, aux, seen.item), made = parts(called, slug(null, 0, seen.item), seen.kind, 0);
      const key = `${colourof(seen, aux)} ${made ? JSON.stringify(made) : found.item + aux}`;
      likeness.set(`${found.item}/${aux}`, before.get(key) ?? 0);
      before.set(key, (before.get(key) ?? 0) + 1);
    }
}

function drawing(name, aux) {
  const seen = likely(row(name)), color = colourof(seen, aux), called = slug(seen, aux, seen?.item ?? name);
  const made = parts(called, slug(null, 0, seen?.item ?? name), seen?.kind, likeness.get(`${name}/${aux}`) ?? 0);
  if (made) return painted(made, color);
  const picture = canvas();
  picture.append(...tile(name, color));
  return picture;
}

const canvas = () => svg("svg", { viewBox: "0 0 16 16", "aria-hidden": "true", class: "picture" });

function painted(made, color) {
  const picture = canvas();
  const fills = { ...fixed, m: color, l: mixed(color, "#ffffff", 0.32), d: mixed(color, "#000000", 0.32) };
  // One outline around everything keeps dark things apart from a dark slot and light ones from a light one.
  picture.append(svg("path", { d: made.filter(([fill]) => fill !== "~").map(([, path]) => path).join(""), class: "outline" }));
  const line = { fill: "none", stroke: mixed(color, luminous(color) ? "#000000" : "#ffffff", 0.36), "stroke-width": 0.8, "stroke-linecap": "round" };
  for (const [fill, path] of made) picture.append(svg("path", { d: path, ...(fill === "~" ? line : { fill: fills[fill] ?? fill }) }));
  return picture;
}

export function picture(name, aux = 0) {
  if (rows().length === 0) return svg("svg", { class: "picture" });  // the table is still on its way
  if (likeness.size === 0) countlikenesses();
  const key = `${name}/${aux}`;
  if (!drawn.has(key)) drawn.set(key, drawing(name, aux));
  return drawn.get(key).cloneNode(true);
}

// A picture for the image of a form's button. Nothing is fetched: a texture that is called like an item is drawn as
// that item, any other gets a sign or a plain tile.
export function texture(image) {
  const base = String(image?.data ?? "").replace(/^.*\//, "").replace(/\.\w+$/, "");
  const [, kind, which] = base.match(/^(planks|log|wool|bed)_(.+)$/) ?? [];  // "bed_light_blue" is a bed of that colour
  const variant = kind && row(`minecraft:${kind}`)?.variants?.find((one) => one.en.toLowerCase().replace(/\W+/g, "_").startsWith(`${which}_`));
  if (variant) return picture(`minecraft:${kind}`, variant.aux);
  for (const name of [base, `${which}_${kind}`, base.replace(/_\d+$/, "")])
    if (row(`minecraft:${name}`)) return picture(`minecraft:${name}`);
  if (base in signs) return painted(signs[base].map(cut), "#2f9a78");
  const picked = canvas();
  picked.append(...tile(base.replace(/^icon_/, "") || "?", ["#5d7290", "#7a6a94", "#4f8377", "#94704f"][hash(base) % 4]));
  return picked;
}
