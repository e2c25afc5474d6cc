// Pictures of items, drawn here: a shape by name or by kind in the item's colour, marks for what parts of the name say, and
// one for what would look the same even so. And pictures for the images that forms name; nothing is fetched.
import { svg } from "/dom.js";
import { row, rows } from "/items.js";
import { shapes } from "/pictures.js";
import { families, marks, spots } from "/pictures.marks.js";
import { named } from "/pictures.named.js";
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

// Parts as [fill, path]; "~" is a line. `alike`: how many that look the same came before.
function parts(called, name, kind, alike) {
  const shape = named[name] ?? named[called] ?? shapes[name] ?? families.find(([pattern]) => pattern.test(called))?.[1] ?? shapes[kind];
  if (!shape) return null;
  const marked = marks.filter(([pattern, on]) => (on === null || on === kind) && !(name in named) && pattern.test(called)).flatMap(([, , more]) => more);
  const cut = (part) => (part[0] === "#" ? [part.slice(0, 7), part.slice(7)] : [part[0], part.slice(1)]);
  const pips = Array.from({ length: alike }, (_, n) => ["x", dot("", 2 + 2.4 * (n % 6), 14 - 2.4 * Math.floor(n / 6), 0.9)]);
  return [...[...shape, ...marked].map(cut), ...(kind === "egg" && called.endsWith("_spawn_egg") ? egg(called) : []), ...pips];
}

// How many of the table have the same parts and the same colour and come before: that number is written on each by dots.
const likeness = new Map();
function countlikenesses() {
  const before = new Map();
  for (const found of rows())
    for (const { aux } of found.variants?.length ? found.variants : [{ aux: 0 }]) {
      const called = slug(found, aux, found.item), made = parts(called, slug(null, 0, found.item), found.kind, 0);
      const key = `${colourof(found, aux)} ${made ? JSON.stringify(made) : found.item + aux}`;
      likeness.set(`${found.item}/${aux}`, before.get(key) ?? 0);
      before.set(key, (before.get(key) ?? 0) + 1);
    }
}

function drawing(name, aux) {
  const found = row(name), color = colourof(found, aux), called = slug(found, aux, name);
  const picture = svg("svg", { viewBox: "0 0 16 16", "aria-hidden": "true", class: "picture" });
  const made = parts(called, slug(null, 0, name), found?.kind, likeness.get(`${name}/${aux}`) ?? 0);
  if (!made) {
    picture.append(...tile(name, color));
    return picture;
  }
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

// Signs for the textures that the market's forms name and that are no item.
const texturesigns = {
  book_shiftleft_default: "M10 3v10L4 8z",
  book_shiftright_default: "M6 3v10l6-5z",
  icon_multiplayer: "M5.5 3.5a2 2 0 110 4 2 2 0 010-4zM10.5 3.5a2 2 0 110 4 2 2 0 010-4zM2 13c0-3 1.5-4.5 3.5-4.5S8.5 10 8.5 13zM9.2 13c0-1.8-.4-3.2-1-4.1.6-.3 1.3-.4 2.3-.4 2 0 3.5 1.5 3.5 4.5z",
  Friend2: "M8 2.5a3 3 0 110 6 3 3 0 010-6zM2.5 14c0-3.5 2.5-4.5 5.5-4.5s5.5 1 5.5 4.5z",
  op: "M8 2l1.8 3.8 4.2.5-3.1 2.9.8 4.2L8 11.3l-3.7 2.1.8-4.2L2 6.3l4.2-.5z",
  icon_blackfriday: "M8.2 2H14v5.8L7.6 14.2 1.8 8.4zM11.4 3.6a1 1 0 100 2 1 1 0 000-2z",
  icon_deals: "M2 6.5L5 3v2h7a2 2 0 012 2v1.5h-2V7.5H5v2zM14 10l-3 3.5v-2H4a2 2 0 01-2-2V8h2v1h7V7z",
  ImpulseSquare: "M2 6l1.2-3.5h9.6L14 6v1.2a1.6 1.6 0 01-3 0 1.6 1.6 0 01-3 0 1.6 1.6 0 01-3 0 1.6 1.6 0 01-3 0zM3 9.6h10V14h-3v-3H7.5v3H3z",
  Language18: "M2.5 3h2v2h-2zM6 3h7.5v2H6zM2.5 7h2v2h-2zM6 7h7.5v2H6zM2.5 11h2v2h-2zM6 11h7.5v2H6z",
  settings_glyph_color_2x: "M7 1.8h2l.4 1.7 1.2.5 1.5-.9 1.4 1.4-.9 1.5.5 1.2 1.7.4v2l-1.7.4-.5 1.2.9 1.5-1.4 1.4-1.5-.9-1.2.5L9 15.4H7l-.4-1.7-1.2-.5-1.5.9-1.4-1.4.9-1.5L2.9 10l-1.7-.4v-2l1.7-.4.5-1.2-.9-1.5 1.4-1.4 1.5.9 1.2-.5zM8 6.2a2.4 2.4 0 100 4.8 2.4 2.4 0 000-4.8z",
  creative_icon: "M3 13L10 6l1.5 1.5L4.5 14.5zM12 1.5l.8 1.7 1.7.8-1.7.8-.8 1.7-.8-1.7L9.5 4l1.7-.8z",
};

// A picture for the image of a form's button. Nothing is fetched: a texture that is called like an item is drawn as
// that item, any other gets a sign or a plain tile.
export function texture(image) {
  const base = String(image?.data ?? "").replace(/^.*\//, "").replace(/\.\w+$/, "");
  const [, kind, which] = base.match(/^(planks|log|wool|bed)_(.+)$/) ?? [];  // "bed_light_blue" is a bed of that colour
  const variant = kind && row(`minecraft:${kind}`)?.variants?.find((one) => one.en.toLowerCase().replace(/\W+/g, "_").startsWith(`${which}_`));
  if (variant) return picture(`minecraft:${kind}`, variant.aux);
  for (const name of [base, `${which}_${kind}`, base.replace(/_\d+$/, "")])
    if (row(`minecraft:${name}`)) return picture(`minecraft:${name}`);
  const picked = svg("svg", { viewBox: "0 0 16 16", "aria-hidden": "true", class: "picture" });
  if (base in texturesigns) picked.append(svg("path", { d: texturesigns[base], class: "texturesign" }));
  else picked.append(...tile(base.replace(/^icon_/, "") || "?", ["#5d7290", "#7a6a94", "#4f8377", "#94704f"][hash(base) % 4]));
  return picked;
}
