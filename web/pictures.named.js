// Items that their kind does not tell from the others of it, by name; written as pictures.js is.
import { box, cube, dot, dots, on, sides } from "/pictures.tools.js";

const leaf = "gM8.2 4.5C8 2.5 9.3 1 12 1c.2 2-1.2 3.5-3.8 3.5z";
const carrot = ["mM10.3 4.2l1.8 1.8C10.5 10 6.5 13.5 1.8 14.6 2.7 9.8 6 5.8 10.3 4.2z", "dM8 6.2l1.8 1.2-.4.8-2-1.3zM5.6 8.8l1.8 1-.5.8-1.9-1.1z",
                "gM10 4.5L9.5 1.2l1.6 1 .4-1.4 1.2 1.8 1.9-.6-.7 1.7 1.8.6-1.9 1.2.6 1.5-3.4-.6z"];
const tuber = ["mM2.2 10.5C1.5 6.5 4 4 7.5 3.2c3.5-.8 6.2 1 6.4 4.4.2 3.6-2.4 5.8-6 6.4-3 .5-5.2-.8-5.7-3.5z", "lM4.3 7.5C5 5.8 6.6 4.9 8.3 4.8L8 6c-1.3.2-2.3.9-2.8 2z"];
const eyes = (fill) => dots(fill, 0.8, [6, 7], [10.3, 6.3], [8, 10.5]);
const wedge = ["gM1.5 6C3 11 6.5 14 14.5 12.5L13 11C8.5 11.5 5 9.5 3.3 5.3z", "mM3.3 5.3L14 2.8 13 11C8.5 11.5 5 9.5 3.3 5.3z"];
const pips = ["kM6.5 6.5l1 .3-.5 1.2zM9.5 5.5l1 .3-.5 1.2zM10.5 8.5l1 .3-.6 1.2zM8 9l1 .3-.5 1z"];
const berries = [...dots("m", 2.6, [5, 10.5], [10.8, 11.3], [8.5, 6.5]), ...dots("l", 0.8, [4.4, 9.8], [10.2, 10.5], [7.9, 5.8]), "gM8 4.6C8 2.5 6 1.2 3.5 1.3 3.6 3.4 5.5 4.6 8 4.6zM8.5 4.6c0-2 1.6-3.2 4-3.1-.1 2-1.7 3.1-4 3.1z"];
const drumstick = ["xM2.2 12.2L6 8.5 7.6 10l-3.8 3.8.2 1.2-1.4.3-.5-1.2-1.2-.4.2-1.5z", "mM5.5 6C6 3 8.7 1.2 11.5 1.8c2.7.6 3.8 3.3 2.5 6-1.3 2.7-4.4 3.8-7 2.9C5.6 10 5.2 8 5.5 6z", "lM7.5 5.8c.5-1.6 1.8-2.5 3.4-2.5v1.1C9.8 4.5 9 5.1 8.6 6.2z"];
const steak = ["mM2 8.5C1.5 4.5 5 2 9 2.3c3.7.3 5.7 2.5 5.2 5.7-.5 3.4-3.7 6-7.4 5.8C4 13.6 2.3 11.5 2 8.5z", "xM3.5 8.3c-.2-2.7 2-4.7 5.3-4.6l.1 1C6.3 4.7 4.7 6.2 4.8 8.4z", "dM8.5 7.5l3.2-1 .4 1.2-3.2 1zM7.8 10.2l3-1 .4 1.2-3 1z"];
const chop = ["mM1.8 7C2.3 3.8 5.5 2 8.8 2.7c4 .8 6 3.8 5 7.3-.8 2.7-3 3.8-5 2.6C7 11.6 6.5 9.8 4.8 9.7 2.8 9.6 1.5 8.6 1.8 7z", "lM4 6.5C4.8 4.8 6.6 4.2 8.4 4.6l-.3 1C6.7 5.4 5.6 5.9 5 7z", dot("x", 10.8, 8.4, 1.2)];
const leg = ["xM10.5 1.5l1.3.3.6-.9 1.2.7-.2 1.3 1 .8-.7 1.2-1.3-.1-2 2.2-1.8-1.6z", "mM9.4 4.3l2.6 2.3C12 11 9.5 14 6 14.2c-3 .2-4.7-2-4.2-4.7C2.4 6.3 5.6 4 9.4 4.3z", "lM3.7 9.5c.4-1.7 1.7-2.9 3.5-3.3l.2 1C6 7.6 5.1 8.5 4.8 9.8z"];
const flesh = ["mM2 6l3-2.5L8 4l2.5-2 3 2.5L13 8l1.2 3-3 1.2-1.5 2.3L7 13l-3 1-1.2-3L1.5 9z", ...dots("#6b7a3d", 1, [5.5, 7], [10.3, 6.2], [8, 10.8])];
const lump = ["mM2 9.5L4 4.5l4-2.3 4.5 2L14.3 9l-2.5 4.3L7 14.5 3 13z", "lM4 4.5l4-2.3 1 3-3 2.3z", "dM14.3 9l-2.5 4.3L7 14.5l1.5-4.2 3.5-2z"];
const raw = ["mM1.5 10L3 6.5l3 .3L8 3l3.5.5 1 3.2 2.3 2.6-2 4.2-5 1-4.5-1z", "lM3 6.5l3 .3 1 2.4-3.5 1zM8 3l3.5.5-1.7 2.7-2.3.3z", "dM14.8 9.3l-2 4.2-5 1L9.5 11zM10 8l2.5-1.3 1.2 1.5-2 1.2z"];
const mushroom = ["xM6.3 8h3.4v6.5H6.3z", "mM1.8 8.5C1.8 4.5 4.5 2 8 2s6.2 2.5 6.2 6.5z"];
const roots = ["mM7.5 2h1v4l3-2.5.7.8L9 8l3.5 1.5-.4 1L8.6 9.2l.9 5.3-1 .2-.9-4.6-3.4 4-.8-.7L6.3 9l-3.8.8-.2-1 4-.9-2.5-3 .8-.7 2.9 3z"];
const tall = ["mM7 15C6.5 9 7 5 8 1c1 4 1.5 8 1 14zM4 15C4 11 3 7.5 1.5 4.5 4.5 7 6 11 6 15zM12 15c0-4 1-7.5 2.5-10.5C11.5 7 10 11 10 15z", "dM7.7 15L8 5l.4 10z"];
const hanging = ["mM3.5 1h1.5v9H3.5zM7.3 1h1.5v13.5H7.3zM11 1h1.5v7H11z", ...dots("l", 1.3, [3, 4], [5.5, 7], [6.8, 5], [9.3, 9], [7, 12], [12.8, 3.5], [10.6, 6])];
const climbing = ["mM6.8 15c-1.5-3 3-4.5 1.5-7.5-1.2-2.5-2.5-4 .5-6.5l.9.9C8 4 9 5 10 7c1.6 3.3-3 4.8-1.6 7.7z", ...dots("l", 1.3, [5.5, 4.5], [11.5, 6], [5.5, 11], [10.8, 12])];
const plate = ["sM1 10.5l7-3.3 7 3.3-7 3.3z", "eM1 10.5l7 3.3v1.6l-7-3.3z", "eM15 10.5l-7 3.3v1.6l7-3.3z"];
const stub = (x, y, lit = "r") => [box("w", x, y, 1.4, 4), box(lit, x, y - 1, 1.4, 1.6)];
const holed = (mouth) => [...cube(), on("left", "k", 0.25, 0.25, 0.5, 0.5), ...mouth];
const pistonhead = (fill) => [on("top", fill, 0, 0, 1, 1), ...sides("#b08a58", 0, 0, 1, 0.28), on("left", "s", 0, 0.28, 1, 0.72), on("right", "e", 0, 0.28, 1, 0.72), ...sides("k", 0.42, 0.28, 0.16, 0.12)];
const face = (fill) => [on("left", fill, 0.14, 0.2, 0.24, 0.22), on("left", fill, 0.62, 0.2, 0.24, 0.22), on("left", fill, 0.2, 0.62, 0.6, 0.16)];
const ribs = [...sides("d", 0.18, 0, 0.08, 1), ...sides("d", 0.46, 0, 0.08, 1), ...sides("d", 0.74, 0, 0.08, 1)];
const furnace = (mouth, brow = "e") => [...cube("s"), on("left", brow, 0.1, 0.15, 0.8, 0.12), on("left", mouth, 0.2, 0.5, 0.6, 0.36), on("left", "k", 0.1, 0.36, 0.8, 0.08)];
const soil = (green) => [on("top", green, 0, 0, 1, 1), on("left", "#866043", 0, 0, 1, 1), on("right", "#6b4d35", 0, 0, 1, 1), ...sides(green, 0, 0, 1, 0.26), ...sides(green, 0.1, 0.26, 0.2, 0.12), ...sides(green, 0.6, 0.26, 0.22, 0.14)];
const station = (top, ...more) => [on("top", top, 0, 0, 1, 1), on("left", "m", 0, 0, 1, 1), on("right", "d", 0, 0, 1, 1), ...sides("l", 0, 0, 1, 0.14), ...more];
const rails = (metal, ...between) => ["wM1.5 3.5h13v1.8h-13zM1.5 7.2h13V9h-13zM1.5 11h13v1.8h-13z", ...between, `${metal}M3.5 1.5h1.7v13H3.5zM10.8 1.5h1.7v13h-1.7z`];
const spines = ["#a5402f", "#3d6ae0", "#4d9a3a"];
const books = ["left", "right"].flatMap((side) => [0.12, 0.56].flatMap((v) => [on(side, "k", 0.08, v, 0.84, 0.34), ...[0, 1, 2, 0, 1].map((n, i) => on(side, spines[n], 0.1 + 0.16 * i, v + 0.02 * n, 0.13, 0.32 - 0.02 * n))]));
const flame = (fill) => [`${fill}M8 1.5c2.8 2.6 4.3 5 3.8 7.2-.4 2-2 3-3.8 3s-3.5-1-3.9-3c-.4-2 .7-3.4 2-4.7.2 1 .6 1.6 1.2 1.9C7 4.2 7.3 2.8 8 1.5z`];
const logs = ["wM1.5 11.5l12-1.5.4 1.8-12 1.7zM2 9.8l12.5 2.4-.4 1.8L1.7 11.6z"];
const fishin = (fill) => ["sM2.5 6h11L12 15H4z", "xM2.5 5.5h11v1h-11z", `${fill}M5 6.5C5 4 6.2 2.6 8 2.6L10.5 1v2.2c1 .8 1.3 2 1.3 3.3z`, "kM7 4.5h.9v.9H7z"];
const cart = ["eM1 7h14L13.5 12h-11z", ...dots("k", 1.6, [4.3, 13], [11.7, 13])];
const rod = (bait) => ["wM13.3 1.2l1.3 1.3L3 14.5 1.6 13z", "xM13.4 2.5h.7v7h-.7z", ...bait];
const booklike = (mark) => ["mM2.5 2.5L12 1v12L2.5 14.5z", "xM3.5 14.3L12.5 13V2l1 .5V14l-9.5 1.4z", ...mark];
const framed = (inner) => ["mM1.5 1.5h13v13h-13z", "wM2.8 2.8h10.4v10.4H2.8z", ...inner];
const bud = (height) => [`mM8 ${14 - height}l1.8 ${height * 0.4}L9.3 14H6.7l-.5-${(height * 0.6).toFixed(1)}z`, `lM8 ${14 - height}L7.8 14H6.7l-.5-${(height * 0.6).toFixed(1)}z`, "dM3.5 14h9v1h-9z"];
const shard = ["mM10.5 1l2.7 4L8 14.5 4 15l-1-3.5z", "lM10.5 1L5.5 11 4 15l-1-3.5z", "dM13.2 5L8 14.5 6.5 12z"];
const head = ["mM2.5 3h11v11h-11z", "lM2.5 3h11v1.2h-11z"];
const frog = [...cube(), on("top", "l", 0.3, 0.3, 0.4, 0.4), ...sides("d", 0.12, 0.12, 0.76, 0.08), ...sides("d", 0.12, 0.8, 0.76, 0.08)];
const rays = [...cube("m", "l", "m"), ...sides("x", 0.3, 0.3, 0.4, 0.4), on("top", "x", 0.3, 0.3, 0.4, 0.4)];

export const named = {
  cookie: [dot("m", 8, 8, 6.5), "lM3.5 6.5C4.3 4.3 6 3 8.3 2.8v1.1C6.5 4.2 5.3 5.2 4.6 6.9z", ...dots("#4a2c16", 1.1, [6, 6.4], [10.2, 5.3], [8.6, 9], [5.2, 10.3], [11.6, 9.4], [8.2, 12.4])],
  cake: ["xM1.5 5.5L8 3l6.5 2.5L8 8.2z", "mM1.5 5.5L8 8.2V14l-6.5-3z", "dM14.5 5.5L8 8.2V14l6.5-3z", "#b5703fM1.5 9.2L8 12v2l-6.5-3zM14.5 9.2L8 12v2l6.5-3z", ...dots("r", 0.8, [5, 5.4], [8, 4.3], [11, 5.5], [8, 6.6])],
  pumpkin_pie: ["wM1 8.5h14l-2 5H3z", "mM1 8.5C2 5.5 4.5 4 8 4s6 1.5 7 4.5z", "lM4 7.3c.7-1.2 2-1.8 3.6-1.9v1c-1 .1-1.8.5-2.3 1.2zM9.5 6h1.2v1.2H9.5z"],
  carrot, golden_carrot: [...carrot, "xM4 11l.5 1.2 1.2.5-1.2.5L4 14.4l-.5-1.2-1.2-.5 1.2-.5zM7.5 6.3l.4.9.9.4-.9.4-.4.9-.4-.9-.9-.4.9-.4z"],
  potato: [...tuber, ...eyes("d")], baked_potato: [...tuber, "xM5 8.7l6.2-2.4.6 1.4L5.7 10z", "yM6.6 8.7l3.4-1.3.3.7-3.3 1.3z"],
  poisonous_potato: [...tuber, ...eyes("#4d9a3a"), "gM12 3.5l1.5-1.8 1 1.3-1.3 1.3z"],
  beetroot: ["mM8 6c3 0 4.8 1.7 4.8 4 0 2.5-2.6 3.4-4.3 5.2h-1C5.8 13.4 3.2 12.5 3.2 10c0-2.3 1.8-4 4.8-4z", "gM7.3 6.2C5 5.5 3.8 3.6 4 1c2.3.7 3.5 2.5 3.6 5zM8.5 6.2C8.2 3.7 9.5 1.7 12 1c.2 2.6-1 4.5-3.5 5.2z", "lM5 9.5c.2-1 1-1.7 2-1.9v1c-.6.2-.9.6-1 1.2z"],
  spider_eye: [dot("m", 8, 8, 5.5), ...dots("#f4dfe2", 1.6, [6, 6.5], [10.5, 7.5], [7, 10.5]), ...dots("k", 0.7, [6, 6.5], [10.5, 7.5], [7, 10.5])],
  fermented_spider_eye: [dot("m", 8, 9, 5.2), ...dots("#b7c08a", 1.5, [6, 8], [10.3, 9]), ...dots("k", 0.6, [6, 8], [10.3, 9]), "wM7 1h1.5v3.5H7z", dot("#9a6b4f", 7.7, 2, 1.8)],
  dried_kelp: ["mM3 3.5l9-2 1.5 9.5-9 3z", "lM4 4.5l7-1.5.2 1-7 1.6zM4.6 8l7-1.8.2 1-7 1.9z", "dM5 11.2l7-2 .3 1.2-7 2.1z"],
  golden_apple: ["mM8 4.5c3-1.5 6 .3 6 4.2 0 3.6-2.5 6.3-4.3 6.3-.8 0-1.1-.4-1.7-.4s-.9.4-1.7.4C4.5 15 2 12.3 2 8.7c0-3.9 3-5.7 6-4.2z", "xM4 7.5c.4-1.2 1.3-1.8 2.3-1.9-.8.8-1.3 2-1.3 3.2H3.9z", "dM12.5 8.5c0 2.5-1.5 4.3-3 4.8 3.3-.3 4.5-2.9 4.3-5.4z", "wM7.5 4.8C7.5 3.3 7.9 2 9 1l.8.6c-.9.8-1.2 1.9-1.2 3.2z", leaf],
  enchanted_golden_apple: ["mM8 4.5c3-1.5 6 .3 6 4.2 0 3.6-2.5 6.3-4.3 6.3-.8 0-1.1-.4-1.7-.4s-.9.4-1.7.4C4.5 15 2 12.3 2 8.7c0-3.9 3-5.7 6-4.2z", leaf, "#9a4fd0M8 6l1.1 2.4 2.4.4-1.8 1.7.5 2.5L8 11.7 5.8 13l.5-2.5-1.8-1.7 2.4-.4z"],
  golden_rail: rails("y", box("r", 6.8, 1.5, 2.4, 13)), detector_rail: rails("s", box("#a08a70", 5.4, 5.5, 5.2, 5)), activator_rail: rails("s", box("r", 7, 1.5, 2, 5), box("r", 7, 9.5, 2, 5)),
  crying_obsidian: [...cube(), ...sides("#a03ff0", 0.2, 0.2, 0.12, 0.3), ...sides("#a03ff0", 0.6, 0.45, 0.12, 0.35)], gilded_blackstone: [...cube(), ...sides("y", 0.15, 0.25, 0.2, 0.14), ...sides("y", 0.6, 0.55, 0.25, 0.14)], dirt_with_roots: [...cube(), ...sides("x", 0.2, 0.1, 0.07, 0.4), ...sides("x", 0.55, 0.35, 0.07, 0.45)],
  melon_slice: [...wedge, ...pips], glistering_melon_slice: [...wedge, "xM7 5l.5 1.3 1.3.5-1.3.5L7 8.6l-.5-1.3-1.3-.5 1.3-.5zM10.7 5.6l.5 1.1 1.1.5-1.1.5-.5 1.1-.5-1.1-1.1-.5 1.1-.5z"],
  sweet_berries: berries, glow_berries: ["gM7.5 1h1.2v4H7.5z", dot("m", 8, 9, 4.5), "xM6 7.5a3 3 0 012-1.3v1.2a2 2 0 00-1 .8zM7.3 12h1.6v2H7.3z", "gM8.5 2.5c1.2-1.3 3-1.6 5-1-1 1.7-2.8 2.3-5 1z"],
  chorus_fruit: [...dots("m", 3, [5, 5.5], [11, 5.5], [8, 10.5]), ...dots("l", 0.9, [4.2, 4.6], [10.2, 4.6], [7.2, 9.6]), "dM6.5 6.5h3l-1.5 2z"],
  popped_chorus_fruit: ["mM3 4l3-2 2 2 2.5-2.2L13.5 4 12 8l2 3.5-3.5 1L8 15l-2.5-2.5L2 11.5 4 8z", ...dots("x", 0.9, [6.2, 6.3], [9.8, 6.5], [8, 10])],
  bowl: ["mM1.5 6.5h13c0 4.5-2.5 7.5-6.5 7.5S1.5 11 1.5 6.5z", "dM2.6 6.5h10.8C13 8 11 8.6 8 8.6S3 8 2.6 6.5z"],
  beef: steak, cooked_beef: steak, porkchop: chop, cooked_porkchop: chop, chicken: drumstick, cooked_chicken: drumstick, mutton: leg, cooked_mutton: leg, rotten_flesh: flesh,
  pufferfish: [dot("m", 8, 8, 5), "yM8 .8l.8 2.4H7.2zM8 15.2l.8-2.4H7.2zM.8 8l2.4-.8v1.6zM15.2 8l-2.4-.8v1.6zM2.9 2.9l2.3 1.2L4.1 5.2zM13.1 2.9l-2.3 1.2 1.1 1.1zM2.9 13.1l2.3-1.2-1.1-1.1zM13.1 13.1l-2.3-1.2 1.1-1.1z", dot("x", 8, 10.3, 2), ...dots("k", 0.8, [5.8, 6.8], [10.2, 6.8])],
  tropical_fish: ["mM1 8c2-3.3 6.5-4.3 10-1.7L14.5 4l-.8 4 .8 4L11 9.7C7.5 12.3 3 11.3 1 8z", "xM5 4.9h1.5v6.3H5zM8.7 5.2h1.4v5.6H8.7z", "kM3.2 7h1.2v1.2H3.2z"],
  coal: [...lump, "eM5 5.3l2-1.2.4 1-1.6 1zM4 9.5l1.2-.4.3 1.2-1.1.3z"],
  charcoal: ["mM1.5 11L9.5 2l4.5 3-7.5 9.5z", "lM1.5 11L9.5 2l1 .7-8 9zM5 8.5l3.5 3-.6.8-3.5-3z", dot("d", 11.2, 4.3, 1.5), "#d8631fM5 11l1.3-1 .5.6-1.2 1z"],
  lapis_lazuli: [...dots("m", 2.6, [5, 5], [11, 6], [6, 11], [11, 12]), ...dots("l", 0.9, [4.3, 4.2], [10.3, 5.2], [5.3, 10.2], [10.3, 11.2]), "dM7 7h2.2v2H7z"],
  quartz: ["mM2 11l3-8 3 2 1.5-3.5 4 9.5-2 3.5h-8z", "xM5 3l1 7-2.5 3.5L2 11zM9.5 1.5L10 10l-1.5 4h-1L8 5z", "dM13.5 11l-2 3.5H10L11 10z"],
  amethyst_shard: shard, echo_shard: ["mM12.5 1L14 8l-5 7H5.5l-3-4L7 8z", "lM12.5 1L9 8.5 5.5 15l-3-4L7 8z", "#2fb0b8M9.5 6.2l1.3-.8-.6 3-1.2.7zM5.8 10.5l1-1.5.6.8-1 1.7z"], prismarine_shard: ["mM8 1l3 5 3.5 2-5 1.5L8 15l-2-5.5L1.5 8 6 6z", "lM8 1v7L1.5 8 6 6z", "dM8 15V8l6.5 0-5 1.5z"],
  flint: ["mM9 1.5l4 4.5-1.5 6L7 14.5 3 11l2-6z", "lM9 1.5L7.5 7 3 11l2-6z", "sM9 1.5l1.5 3.5L7.5 7z"],
  prismarine_crystals: ["mM4 2l1.8 2.5L4 7 2.2 4.5zM11 1l2.3 3L11 7 8.7 4zM6.5 7.5L9 11l-2.5 3.5L4 11zM12 9l1.6 2.3L12 13.6l-1.6-2.3z", "xM4 2v5L2.2 4.5zM11 1v6L8.7 4zM6.5 7.5v7L4 11zM12 9v4.6l-1.6-2.3z"],
  end_crystal: ["kM3 12h10v3H3z", "oM8 1l5 5-5 5-5-5z", "mM8 3.3L10.7 6 8 8.7 5.3 6z", "xM8 3.3V6H5.3z", "xM8 1l5 5h-.9L8 1.9 3.9 6H3z"],
  small_amethyst_bud: bud(5), medium_amethyst_bud: bud(8), large_amethyst_bud: bud(11), amethyst_cluster: ["mM8 1l2 5-.5 8h-3L6 6zM3 6l2 2.5.5 5.5H4zM13 6l-2 2.5-.5 5.5H12z", "lM8 1L7.7 14H6.5L6 6zM3 6l1.3 8H4z", "dM2.5 14h11v1h-11z"],
  raw_iron: raw, raw_gold: raw, raw_copper: raw, netherite_scrap: ["mM2 6l4-3 3 2 4-2.5 1.5 5-3 2.5 1 3.5-5-1-3 2-2-3.5L1.5 9z", "lM2 6l4-3 1.5 2.5-3 2zM9 5l4-2.5-1 3.5z", "dM7.5 9l3 1-1.5 2zM4 9.5l2-1 .5 2z"],
  redstone: ["mM3 4h2v2H3zM7 2h2.5v2H7zM11 5h2v2.5h-2zM5.5 7H8v2H5.5zM2 9.5h2.5v2H2zM9 9h2v2H9zM6 12h2.5v2H6zM11.5 11.5h2v2h-2z", "lM3 4h1v1H3zM7 2h1v1H7zM11 5h1v1h-1zM5.5 7h1v1h-1zM9 9h1v1H9zM6 12h1v1H6z"],
  brick: ["lM3 5l8-1.5 3.5 2L6 7.3z", "mM3 5l3 2.3V12L3 9.5z", "dM6 7.3l8.5-1.8v4.7L6 12z"], netherbrick: ["lM3 5l8-1.5 3.5 2L6 7.3z", "mM3 5l3 2.3V12L3 9.5z", "dM6 7.3l8.5-1.8v4.7L6 12z", "#6b2f35M8 8.2l4-.8v1l-4 .8z"],
  rabbit_foot: ["mM5 1.5h4l.5 6.5c3 .3 4.5 2 4.5 4.5 0 1.2-.8 2-2 2H4.5c-1 0-1.5-.8-1.3-2z", "lM5 1.5h1.5L5.7 12H3.3zM10 12h1v2.5h-1zM12 12h.9v2.3H12z"],
  ghast_tear: ["mM8 1c3 4.2 4.8 6.5 4.8 9.2A4.8 4.8 0 018 15a4.8 4.8 0 01-4.8-4.8C3.2 7.5 5 5.2 8 1z", "xM5 10c0-1.6.7-3 1.8-4.5l.6.5C6.6 7.4 6.2 8.6 6.3 10z"],
  phantom_membrane: ["mM1.5 4C6 4.5 8 3.5 10 1.5c3 .5 4.5 2 4.5 4.5-2.5 1-3.5 3-3.5 6L7.5 10 5 14 3.5 9.5 1 8z", "dM2 4.3l9.3 7.3-.5.6L2 5.2zM10 2l-.4 8.7-.8-.3L9.2 2.5z"],
  totem_of_undying: ["mM5 1.5h6V6h3.5v2.5L11 9v3.5L9.5 15h-3L5 12.5V9l-3.5-.5V6H5z", "#2f9a5aM6 3.2h1.5v1.5H6zM8.5 3.2H10v1.5H8.5z", "dM6.8 7h2.4v1.5H6.8zM5 12.3h6v.8H5z"],
  clay_ball: [dot("m", 8, 8.5, 5.2), "dM11.8 5.2A5 5 0 015 12.5c4.3.4 7-2.7 6.8-7.3z", ...dots("l", 0.8, [6, 6.5], [8.3, 5.8])],
  snowball: [dot("m", 8, 8, 5.6), "#c9dde6M12.2 5a5.6 5.6 0 01-7.5 7.6c4.6.3 7.5-2.8 7.5-7.6z", ...dots("#dcebf1", 0.8, [6, 6], [8.5, 8.2], [5.6, 9])],
  slime_ball: ["mM3 5l3-2.8h4L13.3 5l.5 5-2.5 3.7H5L2.2 10z", "lM4.2 5.7l2.3-2h2.2l-2 2.3-1 3.3-1.5.2z", dot("d", 9.5, 9.5, 1.6)],
  magma_cream: [dot("m", 8, 8, 5.8), ...dots("g", 1.3, [5.6, 5.6], [10.6, 7], [6.8, 11]), "yM8 7l1.2 1.2L8 9.4 6.8 8.2z"],
  ender_eye: [dot("m", 8, 8, 6), dot("l", 8, 8, 3.6), "kM8 4.3c1 1 1.5 2.3 1.5 3.7S9 10.7 8 11.7C7 10.7 6.5 9.4 6.5 8S7 5.3 8 4.3z"],
  heart_of_the_sea: ["mM8 2l5.5 2.5 1 5L8 14.5l-6.5-5 1-5z", "lM8 2v5L1.5 9.5l1-5z", "xM8 5l2 2-2 2-2-2z", "dM8 14.5L14.5 9.5 8 9z"],
  fire_charge: [dot("k", 8, 9.5, 5), ...flame("m").map((part) => part.replace("M8 1.5", "M8 1.2")), dot("y", 8, 9.2, 1.6)],
  chain: ["mM6.5 1h3v4h-3zM6.5 6h3v4h-3zM6.5 11h3v4h-3z", "xM7.5 2h1v2h-1zM7.5 7h1v2h-1zM7.5 12h1v2h-1z", "dM7.4 4.5h1.2v2H7.4zM7.4 9.5h1.2v2H7.4z"],
  web: ["mM7.6 1h.8v14h-.8zM1 7.6h14v.8H1zM2.5 3.1l.6-.6 10.4 10.4-.6.6zM12.9 2.5l.6.6L3.1 13.5l-.6-.6z", "mM8 3.8L12.2 8 8 12.2 3.8 8zm0 1.1L4.9 8 8 11.1 11.1 8z"],
  firework_star: [dot("m", 8, 8, 5.5), ...dots("y", 1, [6, 6], [10, 7.3], [7.2, 10.3])], scute: ["mM4 1.5h8l2.5 5L11 14H5L1.5 6.5z", "lM4 1.5h8L8 7z", "dM11 14H5l3-7z"],
  nautilus_shell: [dot("m", 8, 8, 6), "dM8 4a4 4 0 014 4 3 3 0 01-6 0 2 2 0 013-1.7 1 1 0 00-1.6 1c0 .9.7 1.4 1.5 1.4A2 2 0 0010.6 7 2.8 2.8 0 008 5a3 3 0 00-3 3H4a4 4 0 014-4z", "lM3 6.5C3.8 4.3 5.5 3 7.5 2.8v1C6 4.2 4.8 5.2 4 7z"],
  ink_sac: ["mM6.5 2h3v2.2c3 1 4.5 3.3 4.5 6 0 3-2.5 4.6-6 4.6s-6-1.6-6-4.6c0-2.7 1.5-5 4.5-6z", "lM4.5 9.5C4.8 7.8 5.8 6.7 7.2 6.3l.3 1c-1 .4-1.6 1.2-1.8 2.4z", "eM6 1.5h4v1.3H6z"],
  glow_ink_sac: ["mM6.5 2h3v2.2c3 1 4.5 3.3 4.5 6 0 3-2.5 4.6-6 4.6s-6-1.6-6-4.6c0-2.7 1.5-5 4.5-6z", ...dots("y", 0.9, [5.5, 9], [9.8, 8], [8, 12]), "eM6 1.5h4v1.3H6z"],
  bone_meal: ["xM1 13.5c1.5-3 3-3.5 4-4 .3-2.5 2-4 3.5-4S11 7 11.3 9.2c1.5.3 2.7 1.8 3.7 4.3z", "sM9 11l2-.8 1 1.8h-3zM5 11l1.5-.6.5 1.4H5z", "gM12 2h1v4h-1zM10.5 3.5h4v1h-4z"],
  sugar: ["mM2 12l3-6 6-1 3.5 6-3 3H4.5z", "xM5 6l6-1-2 3.5H6.5z", "sM14.5 11l-3 3H8l1-5.5z"],
  blaze_powder: ["mM1 13.5c1.5-3 3-3.5 4-4 .3-2.5 2-4 3.5-4S11 7 11.3 9.2c1.5.3 2.7 1.8 3.7 4.3z", "rM7 8l1 2.5 1.5-1 .5 3H6z", "yM4 3h1v1H4zM11 2.5h1v1h-1zM8 2h1v1.5H8z"],
  gunpowder: ["mM1 13.5c1.5-3 3-3.5 4-4 .3-2.5 2-4 3.5-4S11 7 11.3 9.2c1.5.3 2.7 1.8 3.7 4.3z", ...dots("k", 0.6, [5, 11.5], [7.5, 9.5], [10, 11], [8, 12.5], [12, 12.5], [8, 7.3])],
  writable_book: booklike(["xM11 6l3.5-5 .8.6L12 7zM10.7 7.2l.3-1.2 1 .7z"]), written_book: booklike(["yM4.5 5l5-.8v1.1l-5 .8zM4.5 7.5l5-.8v1.1l-5 .8z", "rM6 10l2.5-.4v3l-1.3-.8L6 13z"]),
  enchanted_book: booklike(["#d9a0ffM7.2 4.5l.9 2 2 .2-1.5 1.5.5 2.2-1.9-1-1.9 1.4.4-2.3L4.2 7.3l2.1-.6z"]),
  painting: framed(["#7fb2d8M2.8 2.8h10.4v5.5H2.8z", "#6f9a4dM2.8 13.2V9l3-2.5 3 2.5 2-1.5 2.4 1.8v3.9z", dot("y", 11, 5, 1.1)]), frame: framed([]), glow_frame: framed([dot("y", 8, 8, 2.6)]),
  flower_pot: ["mM3 6h10l-1.5 8.5h-7z", "dM3 6h10v2H3z", "vM4.3 6.3h7.4v.9H4.3z"],
  brown_mushroom: mushroom, red_mushroom: [...mushroom, ...dots("x", 1, [5, 6], [8.5, 4.2], [11, 6.5])], crimson_fungus: [...mushroom, ...dots("y", 0.9, [5.5, 5.5], [10, 6])], warped_fungus: [...mushroom, ...dots("#f0702f", 0.9, [5.5, 6], [10.3, 5])],
  cactus: ["mM5 1.5h6V15H5z", "dM6.5 2h.8v12.5h-.8zM9 2h.8v12.5H9z", "xM4.3 4h1.4v.6H4.3zM10.3 6h1.4v.6h-1.4zM4.3 9h1.4v.6H4.3zM10.3 11.5h1.4v.6h-1.4z"],
  sugar_cane: ["mM3 1h2v14H3zM7 3h2v12H7zM11 .5h2V15h-2z", "dM3 5h2v.7H3zM3 10h2v.7H3zM7 7h2v.7H7zM7 11.5h2v.7H7zM11 4.5h2v.7h-2zM11 9h2v.7h-2z"],
  bamboo: ["mM6.5 1H9v14H6.5z", "dM6 4.5h3.5v.8H6zM6 8.5h3.5v.8H6zM6 12h3.5v.8H6z", "lM9 4.3c1.5-2 3.3-2.7 5-2.5-1 2-2.8 3-5 2.5zM6.5 8.2C5 6.3 3.5 5.7 1.8 6c1 1.9 2.7 2.8 4.7 2.2z"],
  kelp: climbing, seagrass: tall, tallgrass: tall, vine: hanging, weeping_vines: hanging, twisting_vines: climbing, hanging_roots: hanging, crimson_roots: roots, warped_roots: roots, nether_sprouts: tall, deadbush: ["mM7.5 15V9.5L4 6l.7-.7L7.5 8V2h1v5l3-3.5.7.7-3.7 4.8 4-1 .3.9-4.3 1.6V15z"],
  sea_pickle: ["mM3 7h4v8H3zM9 4h4v11H9z", "yM3.8 5h2.4v2.3H3.8zM9.8 2h2.4v2.3H9.8z", "dM6 7h1v8H6zM12 4h1v11h-1z"],
  waterlily: ["mM1 9c0-2.5 3-4.5 7-4.5 1.5 0 3 .3 4 .8L8.5 9l6.3-1.5c.8 3-2.3 6-6.8 6S1 11.5 1 9z", "lM3 8.5C3.5 7 5.5 6 7.8 6v.8C6 6.9 4.7 7.5 4 8.8z"],
  glow_lichen: [...dots("m", 2.2, [4, 4], [10, 3.5], [7, 8], [12, 10], [4, 12]), ...dots("#bfe8d8", 0.8, [4, 4], [10, 3.5], [7, 8], [12, 10], [4, 12])], sculk_vein: ["mM1.5 2h4l1 3 4-2 4 1.5-2 3 1.5 5-4 .5-1.5 2-3-2.5-4 1 1-4.5-2-3z", ...dots("#3fd0d8", 0.7, [4, 4], [9, 6], [12, 11], [6, 10])],
  azalea: ["wM7.3 9h1.4v6H7.3z", "mM2 9C1.5 5 4 2.5 8 2.5S14.5 5 14 9l-3 1.5H5z", "lM4 7c.5-1.5 2-2.5 3.5-2.5v1C6.3 5.7 5.5 6.3 5 7.4z"], flowering_azalea: ["wM7.3 9h1.4v6H7.3z", "gM2 9C1.5 5 4 2.5 8 2.5S14.5 5 14 9l-3 1.5H5z", ...dots("m", 1.3, [4.5, 7], [8, 4.6], [11.5, 7.2], [8, 8.6])],
  big_dripleaf: ["gM7.3 6h1.4v9H7.3z", "mM1 5.5C2.5 2.5 5 1.5 8 1.5s5.5 1 7 4L8 8z", "dM7.7 1.5h.6V8h-.6z"], small_dripleaf_block: ["gM7.5 5h1v10h-1z", "mM8 8C6 4.5 4 3.5 1.5 3.5 2 6.5 4.5 8.5 8 8zM8 12c2-3.5 4-4.5 6.5-4.5C14 10.5 11.5 12.5 8 12z"],
  chorus_plant: ["mM6.5 5h3v10h-3zM2.5 5h4v3h-4zM9.5 8h4v3h-4zM2.5 1.5h3V6h-3zM10.5 3.5h3V9h-3z", "lM6.5 5h1v10h-1zM2.5 1.5h1V6h-1z"], nether_wart: ["mM3 9h2.5v6H3zM6.8 7h2.5v8H6.8zM10.6 9h2.5v6h-2.5z", ...dots("m", 2, [4.2, 8], [8, 5.5], [11.8, 8]), ...dots("l", 0.7, [3.7, 7.3], [7.5, 4.8], [11.3, 7.3])],
  ladder: ["mM3 1h2v14H3zM11 1h2v14h-2z", "lM3 3h10v1.5H3zM3 7h10v1.5H3zM3 11h10v1.5H3z"], scaffolding: ["mM2 2h12v2.5H2zM3 4.5h1.5V15H3zM11.5 4.5H13V15h-1.5z", "lM4.5 9h7v1h-7z", "dM2 4h12v.8H2z"],
  rabbit: ["mM3 4.5L6 3l2 1.5L10.5 3l2.5 2-.5 3 1.5 4-3 2-3-1.5L5 14l-3-2 1.5-4z", "lM5 5.5l1.5-1 1.2 1L6 8.5z", dot("x", 3.6, 12, 1)], cooked_rabbit: ["mM3 4.5L6 3l2 1.5L10.5 3l2.5 2-.5 3 1.5 4-3 2-3-1.5L5 14l-3-2 1.5-4z", "lM5 5.5l1.5-1 1.2 1L6 8.5z", dot("x", 3.6, 12, 1)],
  // redstone and what moves
  repeater: [...plate, ...stub(4, 7), ...stub(10, 7)], comparator: [...plate, ...stub(3.5, 7.5), ...stub(11, 7.5), ...stub(7.3, 4.5, "x")], lever: ["sM3 11h10v3.5H3z", "eM3 13.3h10v1.2H3z", "mM7 11.5l4-10 1.7.7-4 10z"],
  tripwire_hook: ["mM3.5 2h4v12h-4z", "sM7.5 6h4v1.5h-4z", "dM11 5.5a2 2 0 110 4h-1V8h1a.6.6 0 100-1.2h-1V5.5z"], piston: pistonhead("#b08a58"), sticky_piston: pistonhead("#7cc35f"),
  dispenser: holed([on("left", "m", 0.42, 0.42, 0.16, 0.16)]), dropper: holed([]), hopper: ["mM1.5 2h13v5H12l-1.5 3.5h-5L4 7H1.5z", "kM2.8 2h10.4v1.5H2.8z", "dM6.5 10.5h3V15h-3z"],
  observer: [...cube(), ...face("k"), on("right", "r", 0.35, 0.4, 0.3, 0.25)], daylight_detector: ["#9ab8d8M1 8.5L8 5l7 3.5L8 12z", "mM1 8.5L8 12v2.5L1 11z", "dM15 8.5L8 12v2.5l7-3.5z", "#dfeaf5M8 5.8l5.3 2.7-.8.4L8 6.6 3.5 8.9l-.8-.4z"],
  sculk_sensor: ["#0c1d24M1.5 10L8 7l6.5 3L8 13.5z", "mM1.5 10L8 13.5V15l-6.5-3zM14.5 10L8 13.5V15l6.5-3z", "#2fb0b8M4 3l1.2 5.5-1 .4zM12 3l-1.2 5.5 1 .4zM7 1.5l.6 6H6.8zM9 1.5l-.6 6h.8z"],
  // light
  glowstone: rays, lit_pumpkin: [...cube(), ...face("y")], shroomlight: [...cube(), ...sides("y", 0.3, 0.3, 0.25, 0.25), ...sides("l", 0.6, 0.6, 0.2, 0.2)], redstone_lamp: [...cube(), ...sides("y", 0.25, 0.25, 0.5, 0.5), on("top", "y", 0.25, 0.25, 0.5, 0.5)], sea_lantern: rays, ochre_froglight: [...frog, ...sides("#e8c860", 0.36, 0.3, 0.28, 0.4)], verdant_froglight: [...frog, ...sides("#7fc08a", 0.36, 0.3, 0.28, 0.4)], pearlescent_froglight: [...frog, ...sides("#c79ac8", 0.36, 0.3, 0.28, 0.4)],
  beacon: ["oM8 1.2l6.3 3.2V11.7L8 15l-6.3-3.3V4.4z", "mM8 5l3 1.5v4L8 12l-3-1.5v-4z", "xM8 5l3 1.5L8 8 5 6.5z", "kM3 12.3L8 15l5-2.7-5-2.3z"], conduit: ["mM3 5l5-2.5L13 5v6l-5 2.5L3 11z", dot("#2fb0d8", 8, 8, 2), "dM3 5l5 2.5L13 5v1L8 8.5 3 6z"], light_block: [dot("m", 8, 8, 3.5), "yM7.5 1h1v2.5h-1zM7.5 12.5h1V15h-1zM1 7.5h2.5v1H1zM12.5 7.5H15v1h-2.5zM3 3.7l.7-.7 1.8 1.8-.7.7zM10.5 11.2l.7-.7 1.8 1.8-.7.7zM12.3 3l.7.7-1.8 1.8-.7-.7zM4.8 10.5l.7.7-1.8 1.8-.7-.7z"],
  campfire: [...logs, ...flame("#f08a1d"), ...dots("y", 1.5, [8, 9])], soul_campfire: [...logs, ...flame("#3fd0d8"), ...dots("x", 1.5, [8, 9])], end_rod: ["mM7 1h2v11H7z", "lM7 1h1v11H7z", "#b78fb8M5 12h6v3H5z"], redstone_torch: [box("w", 7.2, 6, 1.8, 9), box("m", 6.4, 2.5, 3.4, 3.8), box("l", 6.4, 2.5, 1.4, 1.4)],
  // blocks with a face
  grass: soil("#5d9c34"), podzol: soil("#5b3f18"), mycelium: soil("#8a7d80"), crimson_nylium: soil("#a5282f").map((part) => part.replace("#866043", "#612626").replace("#6b4d35", "#4a1c1c")), warped_nylium: soil("#2b8a78").map((part) => part.replace("#866043", "#612626").replace("#6b4d35", "#4a1c1c")), grass_path: soil("#a58a48"),
  farmland: [...soil("#5a3a22"), on("top", "k", 0.15, 0, 0.1, 1), on("top", "k", 0.45, 0, 0.1, 1), on("top", "k", 0.75, 0, 0.1, 1)],
  crafting_table: station("#c09a5f", on("top", "v", 0.3, 0, 0.07, 1), on("top", "v", 0.63, 0, 0.07, 1), on("top", "v", 0, 0.3, 1, 0.07), on("top", "v", 0, 0.63, 1, 0.07), on("left", "s", 0.2, 0.3, 0.14, 0.45), on("right", "s", 0.5, 0.3, 0.3, 0.14)),
  furnace: furnace("k"), blast_furnace: furnace("#f0902f", "s"), smoker: furnace("#d8631f", "w"), bookshelf: [...cube("#a2834f", "#a2834f", "#7d6339"), ...books], lectern: ["mM3 3l8-2 2 5-8 2z", "xM4.5 3.5l5.8-1.4 1.3 3.3-5.7 1.5z", "dM7 7h2.5v6H7z", "mM4 12.5h8.5V15H4z"],
  tnt: [...cube("#d8d0c4", "#c8342a", "#9a251e"), ...sides("x", 0, 0.36, 1, 0.3), on("left", "k", 0.15, 0.42, 0.2, 0.07), on("left", "k", 0.22, 0.42, 0.07, 0.2), on("left", "k", 0.45, 0.42, 0.07, 0.2), on("left", "k", 0.65, 0.42, 0.2, 0.07), on("left", "k", 0.72, 0.42, 0.07, 0.2)],
  pumpkin: [...cube(), ...ribs, on("top", "g", 0.42, 0.42, 0.16, 0.16)], carved_pumpkin: [...cube(), ...face("k")], melon_block: [...cube(), ...ribs.map((part) => part.replace(/^d/, "#c5cf5a"))], hay_block: [...cube("y"), ...ribs, ...sides("r", 0, 0.4, 1, 0.14)], jukebox: [...station("v"), on("top", "k", 0.3, 0.46, 0.4, 0.1)], noteblock: [...station("v"), on("left", "k", 0.5, 0.25, 0.08, 0.45), on("left", "k", 0.3, 0.6, 0.26, 0.18)],
  anvil: ["mM2 2.5h12v3l-3.5 1.2v3L13 12v2.5H3V12l2.5-2.3v-3L2 5.5z", "lM2 2.5h12v1.2H2z"], cauldron: ["mM2 3h12v9.5H2z", "#3d6ae0M3.5 3h9v2h-9z", "kM3 12.5h2V15H3zM11 12.5h2V15h-2z"], brewing_stand: ["eM2 12.5h12V15H2z", "yM7.3 1.5h1.4v11H7.3z", "oM3 6h3v6H3zM10 6h3v6h-3z", "mM3 9h3v3H3zM10 9h3v3h-3z"], enchanting_table: ["kM2 8h12v6.5H2z", "rM2 7h12v2H2z", "xM4.5 3l3.5 1.5L11.5 3v3L8 7.5 4.5 6z", ...dots("#4aedd9", 0.9, [3.2, 8], [12.8, 8])], bell: ["mM5 4.5C5.5 3 6.5 2.5 8 2.5s2.5.5 3 2L12 11l1.5 1.5h-11L4 11z", "wM2 1h12v1.5H2z", dot("d", 8, 13.5, 1.2)], grindstone: ["wM2 7h2v8H2zM12 7h2v8h-2z", dot("m", 8, 6.5, 4.6), dot("d", 8, 6.5, 1.2)],
  loom: station("x", on("left", "#8a6238", 0.2, 0.3, 0.6, 0.08), on("left", "x", 0.26, 0.38, 0.48, 0.5)), cartography_table: station("#e8dfc0", on("top", "#6f9a4d", 0.2, 0.2, 0.4, 0.4)), fletching_table: station("#e8e0c8", on("left", "k", 0.3, 0.3, 0.4, 0.4), on("left", "r", 0.42, 0.42, 0.16, 0.16)), smithing_table: station("#2f3138", on("left", "w", 0, 0.45, 1, 0.5)), stonecutter_block: [...station("s"), "sM4 4a4 4 0 018 0z"], composter: [on("top", "k", 0, 0, 1, 1), on("top", "g", 0.15, 0.15, 0.7, 0.7), on("left", "m", 0, 0, 1, 1), on("right", "d", 0, 0, 1, 1), ...ribs], mob_spawner: [...cube(), ...sides("k", 0.1, 0.1, 0.24, 0.24), ...sides("k", 0.55, 0.1, 0.3, 0.3), ...sides("k", 0.1, 0.55, 0.3, 0.3), ...sides("r", 0.6, 0.6, 0.2, 0.2)],
  bee_nest: [...cube(), on("left", "k", 0.35, 0.5, 0.3, 0.25), ...sides("d", 0, 0.25, 1, 0.1)], beehive: [...cube("#c9a565"), on("left", "k", 0.2, 0.55, 0.6, 0.12), ...sides("d", 0, 0.2, 1, 0.08), ...sides("d", 0, 0.8, 1, 0.08)], target: [...cube("x", "x", "s"), ...sides("r", 0.15, 0.15, 0.7, 0.7), ...sides("x", 0.3, 0.3, 0.4, 0.4), ...sides("r", 0.42, 0.42, 0.16, 0.16)], slime: ["oM8 1.2l6.3 3.2V11.7L8 15l-6.3-3.3V4.4z", "#7ec86bM8 1.2l6.3 3.2V11.7L8 15l-6.3-3.3V4.4z", "lM8 5l3 1.5v4L8 12l-3-1.5v-4z"],
  honey_block: [...cube(), ...sides("y", 0.2, 0.2, 0.6, 0.6)], honeycomb_block: [...cube(), ...sides("y", 0.1, 0.12, 0.3, 0.26), ...sides("y", 0.55, 0.3, 0.3, 0.26), ...sides("y", 0.15, 0.6, 0.3, 0.26)], barrier: [dot("m", 8, 8, 6.5), dot("x", 8, 8, 4.6), "mM4 5.2L5.2 4 12 10.8 10.8 12z"], allow: [...cube(), ...["xM3 9l1.3.8L5.5 9l.8.7-2 2.2L2.3 9.8z"]], deny: [...cube(), ...["xM2.5 8.5l4 4.5-.6.7-4-4.5zM6 9.8l.6.9-3.7 1.5-.5-.9z"]],
  // chests, carts, buckets, boats
  ender_chest: ["mM1.5 3h13v11h-13z", "dM1.5 6.6h13v1h-13z", dot("#58c69c", 8, 7.4, 2), dot("k", 8, 7.4, 0.8)], barrel: ["mM3 2h10c1.5 4 1.5 8.5 0 12.5H3C1.5 10.5 1.5 6 3 2z", "eM2.3 5h11.4v1H2.3zM2.3 10.5h11.4v1H2.3z", "dM6 2h.7v12.5H6zM9.5 2h.7v12.5h-.7z"], trapped_chest: ["mM1.5 3h13v11h-13z", "dM1.5 6.6h13v1h-13z", "lM1.5 3h13v1.2h-13z", "rM7 5.8h2v3.4H7z"],
  chest_minecart: [box("#a5702f", 3.5, 1.5, 9, 6), box("s", 7, 3.5, 2, 2), ...cart], hopper_minecart: ["kM3 1.5h10L11 7H5z", ...cart], tnt_minecart: [box("r", 3.5, 1.5, 9, 6), box("x", 3.5, 3.5, 9, 1.8), ...cart], command_block_minecart: [box("#b5805a", 3.5, 1.5, 9, 6), box("x", 6.5, 3, 3, 2.5), ...cart],
  cod_bucket: fishin("#c0a68a"), salmon_bucket: fishin("#b0443d"), tropical_fish_bucket: fishin("#f28a1c"), pufferfish_bucket: fishin("#f0c832"), axolotl_bucket: [...fishin("#f0a0c0"), "#c8508aM4 4.5l-2-1 .3-1 2.5.8zM12.3 3.5l2-1.3.5.9-2 1.3z"], tadpole_bucket: fishin("#6b5030"), bucket: ["sM2.5 4h11L12 14.5H4z", "kM3.5 4.5h9l-.2 2H3.8z", "xM2.5 3.5h11v1h-11z"],
  fishing_rod: rod(["eM12.6 9.5h2v1.2h-2zM12.6 10.7h.8v2h2v-2h.6v2.8h-3.4z"]), carrot_on_a_stick: rod(["mM12.3 9.5h2.8L13.7 15z", "gM12.5 8l1.2 1.7L15 8z"]), warped_fungus_on_a_stick: rod([box("x", 13.2, 11.5, 1.2, 3), "mM11.5 12c0-2 1-3 2.3-3s2.2 1 2.2 3z"]),
  lightning_rod: ["mM7 4h2v11H7z", "lM5.5 1h5v4h-5z", "dM6 14h4v1H6z"], blaze_rod: ["mM11.5 2l2.5 2.5L4.5 14 2 11.5z", "xM11.5 2l.9.9-9.5 9.5-.9-.9z", ...dots("y", 0.8, [6, 11], [9, 8], [12, 5])],
  armor_stand: ["mM7.2 3h1.6v9H7.2zM3 4.5h10V6H3z", dot("m", 8, 2.3, 1.5), "sM3 12.5h10V15H3z"], filled_map: ["yM2 2l4 1.2L10 2l4 1.2v11L10 13l-4 1.2L2 13z", "#6f9a4dM4 6l3 1 2-1.5 3 2-1 3-3 .5-3.5-1z", "rM9 7h1.6v1.6H9z", "#3d7ae0M3 10h3v2.5L3 11.6z"], empty_map: ["mM2 2l4 1.2L10 2l4 1.2v11L10 13l-4 1.2L2 13z", "dM5.8 3.2h.5v10.8h-.5zM9.8 2.2h.5V13h-.5z"], lodestone_compass: [dot("m", 8, 8, 6.5), dot("#2f3138", 8, 8, 4.7), "rM8.7 8.7L11 4.5 7.3 7.3z", "xM7.3 7.3L5 11.5l3.7-2.8z"], recovery_compass: [dot("m", 8, 8, 6.5), dot("k", 8, 8, 4.7), "#3fd0d8M8.7 8.7L11 4.5 7.3 7.3z", "#3fd0d8M7.3 7.3L5 11.5l3.7-2.8z"],
  disc_fragment_5: ["kM3 13V4l5-2.5L13 6l-4 2.5L11 13z", "mM8 5l2 2-2 2z"], egg: ["mM8 1.5c2.8 0 5 4.3 5 7.8 0 3.3-2.2 5.4-5 5.4s-5-2.1-5-5.4c0-3.5 2.2-7.8 5-7.8z", "xM6.5 4C5.5 5.3 5 6.8 4.8 8.3L6 8.5c.2-1.5.6-2.8 1.5-4z"], dragon_egg: ["#1b1322M8 1.5c2.8 0 5.5 4.3 5.5 8.5 0 3-2.2 5-5.5 5s-5.5-2-5.5-5c0-4.2 2.7-8.5 5.5-8.5z", "#7a3fb0M6 5h1.2v1H6zM9.5 7.5h1.2v1H9.5zM5 10h1.2v1H5zM8 12h1.2v1H8zM8.5 4h1v1h-1z"], turtle_egg: [...["mM5 6c1.8 0 3.3 2.5 3.3 5S7 14.8 5 14.8 1.7 13.5 1.7 11 3.2 6 5 6z", "mM11 3.5c2 0 3.5 3 3.5 6s-1.3 5-3.5 5-3.5-2-3.5-5 1.5-6 3.5-6z"], ...dots("g", 0.7, [4.5, 9], [6, 12], [10.5, 7], [12.3, 10.5])], frog_spawn: ["oM1.5 8.5C2 5.5 5 4 8 4s6 1.5 6.5 4.5S12 13.5 8 13.5 1 11.5 1.5 8.5z", ...dots("m", 1.3, [5, 7.5], [9, 6.5], [11.5, 9.5], [7, 10.8])],
  // variants, by what they are called
  creeper_head: [...head, "kM4.5 6H7v2.5H4.5zM9 6h2.5v2.5H9zM7 8.5h2v1h1.5v3.2H9v-1.2H7v1.2H5.5V9.5H7z"], dragon_head: ["#1b1322M2 4l3-2.5h5L14.5 7v6H2z", "#c77fe0M5 5.5h2.5v2H5z", "xM8 12.5l1-2 1 2zM11 12.5l1-2 1 2z"], player_head: [...head, "vM2.5 3h11v3.5h-11z", "xM4.5 8H7v1.5H4.5zM9 8h2.5v1.5H9z", "kM6 8h1v1.5H6zM9 8h1v1.5H9z"], zombie_head: [...head, "kM4.5 7H7v1.8H4.5zM9 7h2.5v1.8H9z", "dM6 11h4v1H6z"],
};
