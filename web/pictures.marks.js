// Shapes and marks for families of items, by what a part of the name says; the first shape and all marks that fit are
// taken. A mark may be for one kind only, since it is drawn on that kind's outline.
import { cube, dot, dots, on, sides } from "/pictures.tools.js";

const bark = [...cube("d"), ...sides("d", 0.16, 0, 0.1, 1), ...sides("d", 0.5, 0.1, 0.1, 0.9), ...sides("d", 0.8, 0, 0.08, 0.8)];
const bare = [...cube(), "~M8 3l2.6 1.4L8 5.8 5.4 4.4z", ...sides("l", 0.2, 0.12, 0.06, 0.76), ...sides("l", 0.7, 0.12, 0.06, 0.76)];
const barearound = [...cube("m"), ...sides("l", 0.2, 0.12, 0.06, 0.76), ...sides("l", 0.5, 0.05, 0.06, 0.9), ...sides("l", 0.78, 0.12, 0.06, 0.76)];
const gate = ["mM1.5 4H4v10H1.5zM12 4h2.5v10H12z", "dM4 6h8v1.7H4zM4 10.5h8v1.7H4zM7.3 6h1.4v6.2H7.3z", "lM1.5 4H4v1H1.5zM12 4h2.5v1H12z"];
const fan = ["mM8 15C3 12 1 8 1.5 3.5 4 4.5 5.5 6 6 8c0-3 .5-5 2-7 1.5 2 2 4 2 7 .5-2 2-3.5 4.5-4.5C15 8 13 12 8 15z", "~M8 14V5M8 14L4 7M8 14l4-7"];
const leaves = [...cube(), ...sides("l", 0.1, 0.15, 0.18, 0.14), ...sides("l", 0.55, 0.1, 0.2, 0.14), ...sides("k", 0.3, 0.4, 0.16, 0.12), ...sides("l", 0.7, 0.55, 0.18, 0.14), ...sides("k", 0.12, 0.7, 0.16, 0.12), ...sides("l", 0.4, 0.8, 0.2, 0.12)];
const hull = "mM1 7.5c4 1.5 10 1.5 14 0-.5 3.5-2 6-4 6H5c-2 0-3.5-2.5-4-6z";
const boat = [hull, "lM1 7.5c4 1.5 10 1.5 14 0l-.2 1.2C11 10 5 10 1.2 8.7z", "wM3 2.5l1-.5 4.5 9-1 .5zM13 2.5l-1-.5-2.5 5 1 .5z"];
const chestboat = [hull, "lM1 7.5c4 1.5 10 1.5 14 0l-.2 1.2C11 10 5 10 1.2 8.7z", "#a5702fM4.5 2.5h7v5.6h-7z", "kM4.5 4.5h7v.7h-7z", "sM7.3 4h1.4v2H7.3z"];
const splash = ["xM6.5 1h3v3h-.7v1.2c3 .9 4.7 3 4.7 5.3 0 2.8-2.2 4.5-5.5 4.5s-5.5-1.7-5.5-4.5c0-2.3 1.7-4.4 4.7-5.3V4h-.7z", "mM3.6 9.5h8.8c.6 3-1.4 4.6-4.4 4.6s-5-1.6-4.4-4.6z", "wM6 .5h4V2H6z", "~M11.5 2.5l1.5-1.5M12 4.5h2"];
const lingering = ["xM6.5 3h3v2l4 8.5c.3.8-.2 1.5-1 1.5h-9c-.8 0-1.3-.7-1-1.5l4-8.5z", "mM5.2 9h5.6l2 4.7H3.2z", "wM6 1.5h4V3H6z", ...dots("s", 0.9, [3, 4], [13, 5], [12, 2.5])];

// [pattern, parts]
export const families = [
  [/_fence_gate$|^fence_gate$/, gate], [/chest_(boat|raft)$/, chestboat], [/boat$|raft$/, boat], [/^splash_/, splash], [/^lingering_/, lingering],
  [/^stripped_.*(wood|hyphae)$/, barearound], [/^stripped_/, bare], [/_wood$|_hyphae$/, bark], [/leaves/, leaves], [/_fan$/, fan], [/coral_block/, [...cube(), ...dots("l", 0.9, [4, 8], [6, 11], [10.5, 10], [12.5, 7.5], [8, 4])]],
];

const lines = { bricks: "~M1.7 8L8 11.3 14.3 8M5 6.2v3.4M11 6.2v3.4M3.4 9v3.5M12.6 9v3.5", tiles: "~M1.7 6.8L8 10l6.3-3.2M1.7 9.3l6.3 3.2 6.3-3.2M3.8 5.6v7.2M6 6.7v7.2M12.2 5.6v7.2M10 6.7v7.2" };
// [pattern, kind or null for all, parts]
export const marks = [
  [/bricks?$|^stonebrick|^end_brick/, "block", [lines.bricks]],
  [/tiles$/, "block", [lines.tiles]],
  [/^cut_|_cut_/, "block", ["~M1.7 8L8 11.3 14.3 8M4.9 6v7.4M11.1 6v7.4M4.9 2.8l6.3 3.2M11.1 2.8L4.9 6"]],
  [/^polished_|_polished_|^smooth_/, "block", ["~M3 6.6l3.7 1.9v4.7L3 11.3zM13 6.6L9.3 8.5v4.7l3.7-1.9z"]],
  [/chiseled/, "block", ["~M3 6.6l3.7 1.9v4.7L3 11.3zM13 6.6L9.3 8.5v4.7l3.7-1.9z", ...sides("d", 0.4, 0.4, 0.2, 0.2)]],
  [/cracked/, "block", ["~M3 5.5l1.5 2.5-1 1.5 2 2-.5 2M13 5.8l-1.5 2.5 1 1.5-1.8 2.5"]],
  [/cobble/, "block", ["~M3 7.5l2 .5v2l-2-.5zM5.5 10.5l1.8 1v2M10 9.5l2-1 .8 1.5-2 1.2zM9 12.5l2-1M12.5 7l1-.5"]],
  [/mossy/, null, ["#4d8a3aM2.5 7l1.5.4.4 1.4-1.5-.3zM5.5 11l1.4.6v1.2l-1.6-.6zM10 7.5l1.5-.8v1.3l-1.5.7zM12.5 10.5l1-.5v1.3l-1 .6z"]],
  [/infested|monster_egg/, null, [...dots("k", 0.6, [4, 8], [5.5, 11], [11, 9.5]), "xM9.5 11.5l3-1.5.3 1-3 1.5z"]],
  [/glazed/, null, ["xM2 6l4 5.5v1.5L2 7.5zM14 6l-4 5.5v1.5L14 7.5z", ...sides("l", 0.4, 0.1, 0.25, 0.18), on("top", "x", 0.35, 0.35, 0.3, 0.3)]],
  [/powder$/, "block", [...dots("l", 0.5, [3, 7], [5, 9], [3.5, 11], [6.5, 12]), ...dots("m", 0.5, [10, 10], [12, 8], [13, 11], [10.5, 13])]],
  [/wool$/, "block", ["~M2.5 6l1.5 1.5-1 2 1.7 1.5M5.5 7.5L7 9.5l-1 2 1.3 2M13.5 6L12 7.5l1 2-1.7 1.5M10.5 7.5L9.5 9.5l1 2-1.2 2"]],
  [/terracotta$|clay$/, "block", ["~M1.7 6.5L8 9.8l6.3-3.3M1.7 9.2L8 12.5l6.3-3.3"]],
  [/^deepslate_/, "ore", ["~M1.7 8L8 11.3 14.3 8M1.7 10.5L8 13.7l6.3-3.2"]],
  [/sand$/, "block", [...dots("d", 0.35, [3, 7], [5, 8.5], [4, 11], [6.5, 11], [10, 9.5], [12, 8.3], [11, 12]), ...dots("l", 0.35, [6, 7.5], [3, 9.5], [13, 10], [9.5, 12])]],
  [/sandstone$/, "block", ["~M1.7 6L8 9.2 14.3 6M2.5 9.5l3 1.5M10.5 11.8l3-1.5"]],
  [/ice$/, "block", ["xM3 7l2.5 3 .5-.3L3.5 6.5zM10 10l2.5-3 .5.3-2.5 3.2z"]],
  [/_block$/, "block", ["~M2.8 6.3l4.2 2.1v5l-4.2-2.1zM13.2 6.3L9 8.4v5l4.2-2.1z"]],
  [/bricks?_(double_)?slab|brick_slab$/, "slab", ["~M1.7 10L8 13.3 14.3 10M4.8 10v2M11.2 10v2"]],
  [/tile_slab$/, "slab", ["~M1.7 10L8 13.3 14.3 10M3.5 9.3v3.2M6 10.6v3.2M12.5 9.3v3.2M10 10.6v3.2"]],
  [/cobble.*slab$/, "slab", [...dots("d", 0.6, [3, 10.3], [5, 11.5], [6.8, 13]), ...dots("m", 0.6, [10, 12.5], [12.5, 11])]],
  [/polished.*slab$|smooth.*slab$/, "slab", ["~M2.8 10l4 2v1.6l-4-2zM13.2 10l-4 2v1.6l4-2z"]],
  [/bricks?_stairs$/, "stairs", ["~M2 7l4 2M2 9.2l8.4 4M4 8.2v2M6 6v3M8 9.2v2.5"]],
  [/tile_stairs$/, "stairs", ["~M2 6.3l4 2M2 8.6l8.4 4M3.3 5v6.5M4.7 5.5v6.7M8 9.5v4"]],
  [/cobble.*stairs$|^stone_stairs$/, "stairs", dots("d", 0.6, [3.2, 6.2], [4.8, 8.2], [3.2, 9.8], [6.5, 10.8], [8.5, 12.3])],
  [/^polished.*stairs$|smooth.*stairs$/, "stairs", ["~M3 6l2 1v4.5l-2-1zM6.5 10.2l3 1.5v2l-3-1.5z"]],
  [/brick_wall$/, "wall", ["~M5 5h6M5 8h6M5 11h6M1 9h4M1 12h4M11 9h4M11 12h4M8 5v3M7 8v3M9 11v4"]],
  [/tile_wall$/, "wall", ["~M5 5h6M5 8h6M5 11h6M7 2v13M9 2v13M1 9h4M11 9h4"]],
  [/cobble.*wall$/, "wall", dots("d", 0.7, [6.5, 5], [9.3, 7], [6.7, 9.5], [9.5, 12])],
  [/polished.*wall$/, "wall", ["~M6.2 4h3.6v10H6.2z"]],
  [/^waxed_/, null, ["#f5a81cM13 .8c1.3 1.6 1.9 2.4 1.9 3.3a1.9 1.9 0 01-3.8 0c0-.9.6-1.7 1.9-3.3z"]],
  [/^cooked_/, null, ["~M5 5.5l2 4M8 5l2 4M11 5l1 2"]],
  [/^chainmail_/, null, dots("k", 0.5, [6, 6], [8, 7], [10, 6], [7, 9], [9, 9], [8, 5])],
  [/^trapped_/, null, [dot("r", 13, 3, 1.4)]],
  [/^dead_|_dead$/, null, ["~M5 12l2-2M9 12l2-2"]],
];

// Spawn eggs differ by the colour of their spots, and these by their places.
export const spots = [
  [[6, 6], [9.5, 8], [6.5, 11]], [[8, 4.5], [5.5, 8.5], [10, 10.5]], [[5.5, 10], [8, 7], [10.5, 10]], [[7, 4.5], [9.8, 7], [7.5, 9.5], [5, 12]],
];
