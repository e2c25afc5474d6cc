// Makes assets/game-VERSION of a folder of the game's public data: node scripts/gamedata.mjs FOLDER VERSION. What the
// server has no use for is left out; assets/game-VERSION/README.md says what the files hold and where they are from.
import { copyFileSync, mkdirSync, readFileSync, writeFileSync } from "node:fs";

const [, , source, version] = process.argv;
const target = new URL(`../assets/game-${version}/`, import.meta.url).pathname;
const bytes = (name) => readFileSync(`${source}/${name}`);
const json = (name) => JSON.parse(bytes(name));
const byvalue = (map) => new Map(Object.entries(map).map(([name, id]) => [id, name]));

// Network NBT, as far as block states use it.
function* blockstates(data) {
  let at = 0;
  const varint = () => {
    for (let value = 0, shift = 0; ; shift += 7) {
      const byte = data[at++];
      value += (byte & 127) * 2 ** shift;
      if (byte < 128) return value;
    }
  };
  const text = () => {
    const length = varint();
    return data.toString("utf8", at, (at += length));
  };
  const payloads = {
    1: () => data[at++],
    3: () => { const value = varint(); return value % 2 ? -(value + 1) / 2 : value / 2; },
    8: text,
    10: () => {
      const tag = {};
      for (let kind; (kind = data[at++]) !== 0;) { const key = text(); tag[key] = payloads[kind](); }
      return tag;
    },
  };
  while (at < data.length) {
    const kind = data[at++];
    text();
    yield payloads[kind]();
  }
}

// Which state an item's aux value stands for: the property whose values it counts, times a step, and the flags above.
const counted = [/_type(_\d)?$/, /^color$/, /^coral_color$/, /^damage$/, /^huge_mushroom_bits$/, /^facing_direction$/];
const steps = { "minecraft:anvil": 4, "minecraft:chemistry_table": 4 };
const flags = { "minecraft:wood": ["stripped_bit", 8], "minecraft:coral": ["dead_bit", 8], "minecraft:coral_block": ["dead_bit", 8] };
function auxof(name, state, values) {
  const keys = Object.keys(state);
  const key = counted.map((pattern) => keys.find((one) => pattern.test(one))).find(Boolean);
  const [flag, weight] = flags[name] ?? [];
  for (const one of keys) if (one !== key && one !== flag && state[one] !== values[one][0]) return null;
  if (key === undefined) return 0;
  return values[key].indexOf(state[key]) * (steps[name] ?? 1) + (flag && state[flag] ? weight : 0);
}

// The creative list tells old numbers; names were changed since.
const items = json("required_item_list.json");
const olditems = byvalue(json("item_id_map.json")), oldblocks = byvalue(json("block_id_map.json"));
const { simple, complex } = json("r16_to_current_item_map.json");
const creative = json("creativeitems.json").map(({ id, damage = 0, nbt_b64 }) => {
  const old = olditems.get(id) ?? oldblocks.get(id < 0 ? 255 - id : id);
  const split = complex[old]?.[damage];
  const name = split ?? simple[old] ?? old;
  if (!(name in items)) throw new Error(`the creative list names ${id}:${damage}, which is no item`);
  const data = nbt_b64 ? [Buffer.from(nbt_b64, "base64").toString("hex")] : [];
  return [name, split ? 0 : damage, ...data];
});
// Other aux values mean nothing, or how a block stands, which an item does not show.
const meant = new Set(creative.map(([name, aux]) => `${name} ${aux}`));


const blocks = new Map();
for (const { name, states } of blockstates(bytes("canonical_block_states.nbt")))
  blocks.set(name, [...(blocks.get(name) ?? []), states]);
const blocklines = [...blocks].map(([name, states]) => {
  const values = {};
  for (const state of states) for (const [key, value] of Object.entries(state))
    if (!(values[key] ??= []).includes(value)) values[key].push(value);
  const auxes = states.map((state, place) => [auxof(name, state, values), place]).filter(([aux]) => aux && meant.has(`${name} ${aux}`));
  return [name, states.length, ...auxes.map(([aux, place]) => `${aux}:${place}`)].join(" ");
});

const itemlines = Object.entries(items).map(([name, item]) =>
  [name, item.runtime_id, ...(item.component_based ? ["component"] : [])].join(" "));
mkdirSync(target, { recursive: true });
for (const [name, lines] of Object.entries({ items: itemlines, blocks: blocklines, creative: creative.map((row) => row.join(" ")) }))
  writeFileSync(`${target}${name}.txt`, lines.join("\n").replaceAll("minecraft:", "") + "\n");
for (const name of ["biome_definitions.nbt", "entity_identifiers.nbt", "LICENSE"]) copyFileSync(`${source}/${name}`, target + name);
