// Items that the table has by the game's key alone, without a name, a kind or a colour of their own: what they look like
// is guessed from what they are called. Most are drawn as the item that is called nearly so, or in the shape that the end
// of the name tells; of the others nothing is known but the name.
import { row, rows } from "/items.js";

const isbare = ({ en }) => /^(tile|item)\..*\.name$/.test(en);

// What the name of a technical block has beside that of the item it belongs to.
const before = /^item\.|^(lit|unlit|powered|unpowered|flowing|invisible|frosted|hard|moving)_/;
const behind = /_(inverted|stem|body_with_berries|head_with_berries)$|(?<=o)es$|s$|\d$/;
// [the end of the name, kind]
const ends = [
  [/_sign$/, "sign"], [/slab\d?$/, "slab"], [/_stairs$/, "stairs"], [/trapdoor$/, "trapdoor"], [/door$/, "door"], [/_button$/, "button"],
  [/_plate$/, "plate"], [/_fence$/, "fence"], [/_planks$|_mosaic$/, "planks"], [/_sapling$/, "sapling"], [/_pane$/, "pane"], [/_glass$/, "glass"],
  [/_banner$/, "banner"], [/candle_cake$/, "candle"], [/torch/, "torch"], [/_vines|_bush$|reeds$|kelp$/, "plant"], [/spawn_egg$/, "egg"],
  [/coral_fan/, "coral"], [/fire$/, "flower"],
];

const slug = (text) => text.toLowerCase().replace(/\W+/g, "_");

// Of a wood or a dye that the name begins with, else one of the name's own.
function colourby(name) {
  const [first, second] = name.split("_"), wanted = [`${first}_${second}`, first === "darkoak" ? "dark_oak" : first];
  for (const start of wanted)
    for (const found of rows())
      for (const one of found.variants?.length ? found.variants : [found])
        if (one.color && [`${start}_planks`, `${start}_wool`].includes(slug(one.en))) return one.color;
  let value = 11;
  for (const letter of name) value = (value * 37 + letter.codePointAt(0)) >>> 0;
  return `#${[0, 8, 16].map((shift) => (64 + (value >>> shift) % 150).toString(16)).join("")}`;
}

// The row that an item is drawn by: its own unless it is bare.
export function likely(found) {
  if (!found || !isbare(found)) return found;
  const name = found.item.replace(/^minecraft:/, ""), short = name.replace(before, "");
  const near = [short, short.replace(behind, "")].map((one) => row(`minecraft:${one}`)).find((one) => one && !isbare(one));
  if (near) return near;
  const kind = ends.find(([end]) => end.test(name))?.[1] ?? "unknown";
  return { ...found, kind, color: colourby(name.replace(/^item\./, "")) };
}
