// A client of another maker plays the market over UDP: chest menus and forms, on desktop and touch, alone and in a crowd.
import assert from "node:assert/strict";
import { copyFile, mkdtemp, rm, symlink } from "node:fs/promises";
import { tmpdir } from "node:os";
import path from "node:path";
import { after, afterEach, before, test } from "node:test";

import { Player } from "./player.mjs";
import { program, Stage } from "./stage.mjs";

let stage, players = [];
before(async () => (stage = await Stage.starts()));
after(() => stage?.ends());

async function joins(name, options, where = stage) {
  const player = await Player.joins(where.port, name, options);
  players.push(player);
  return player;
}
// Whatever came was as the schema has it, to the last byte.
afterEach(() => {
  const all = players;
  players = [];
  for (const player of all) player.leaves();
  for (const player of all) assert.deepEqual(player.faults.map((fault) => fault.message), [], player.name);
});

const placeof = (player, item) => Array.from({ length: 36 }, (_, slot) => slot).find((slot) => player.at(slot)?.item === item);
// Types a line that opens a chest menu, whose buttons come last.
async function opens(player, line, item, button = "Next page") {
  player.closes();
  player.types(line);
  await player.until(() => player.open && placeof(player, item) !== undefined && (!button || player.at(8)?.name.includes(button)), `${line} shows ${item}`);
}
const filled = (form, value) => form.content.map((one) => (one.type === "input" || one.type === "slider" ? value : one.type === "label" ? null : one.default ?? 0));

// Chooses a good of the list in front, and answers its form.
async function chooses(player, item, taps, count) {
  for (let tap = 0; tap < taps; ++tap) {
    player.packets.item_stack_response = 0;
    const request = player.click(placeof(player, item));
    await player.until(() => player.packets.item_stack_response, "his click is answered");
    assert.deepEqual(player.last.item_stack_response.responses, [{ status: "error", request_id: request }], "false stacks are not to be moved");
  }
  const form = await player.asked("Enter the quantity");
  assert.ok(form.content.some((one) => one.text.includes("In stock")));
  return () => player.answers(form, filled(form, String(count)));
}

async function buysfromchest(player, { item = "apple", taps = 1, count = 3, price = 4 } = {}) {
  const had = player.has(item), money = await stage.money(player.name);
  await opens(player, "ordomart buy", item);
  const answers = await chooses(player, item, taps, count);
  answers();
  await player.until(() => player.has(item) === had + count, `he holds ${count} more ${item}`);
  await stage.eventually(async () => await stage.money(player.name) === money - count * price, "he has paid");
}

test("a desktop player joins, his keyboard completes, he types, clicks, answers and holds what he bought", async () => {
  const alice = await joins("Alice");
  const known = await stage.known("Alice");
  assert.ok(known.online && !known.touch && known.language === "en_US");
  const { enums, enum_values: words, command_data: commands } = alice.last.available_commands;
  const command = commands.find((one) => one.name === "ordomart");
  assert.equal(command.overloads.length, 12, "every word that he may type");
  const completed = enums.flatMap(({ name, values }) => values.map((at) => `${name} ${words[at]}`));
  for (const word of ["baseoperation buy", "baseoperation1 buybyshop", "baseoperation2 search", "searchtype sell", "manageoption manage", "Boolean true", "pricesoperation prices"])
    assert.ok(completed.includes(word), `${word} is completed: ${completed}`);
  assert.ok(command.overloads.every(({ parameters }) => parameters.every((one) => ["valid", "enum"].includes(one.enum_type))));
  assert.deepEqual([alice.packets.start_game, alice.packets.creative_content, alice.packets.biome_definition_list, alice.packets.available_entity_identifiers], [1, 1, 1, 1]);
  assert.equal(alice.last.set_player_game_type.gamemode, "survival");

  await buysfromchest(alice);
  assert.ok(alice.heard.includes("purchase successfully!"));
  await stage.gives("Alice", 5, "bread", 1);
  await alice.until(() => alice.at(5)?.item === "bread", "he has bread");
  alice.holds(5);
  alice.types("ordomart prices");
  await alice.until(() => alice.heard.some((line) => line.includes("Bread") && line.includes("prices in")), "he is told what bread costs");
  alice.says("hello");
  await alice.until(() => alice.heard.includes("<Alice> hello"), "he hears himself");
  alice.types("ordomart nothing");
  await alice.until(() => alice.packets.command_output > 1, "a wrong command is answered");
});

test("on touch a first tap shows and a second one chooses; forms in Chinese", async () => {
  const bela = await joins("Bela", { device: 2 });
  assert.ok((await stage.known("Bela")).touch);
  await buysfromchest(bela, { item: "bread", taps: 2, count: 1, price: 9 });
  const mei = await joins("Mei", { device: 1, language: "zh_CN" });
  mei.types("ordomart formmenu");
  const form = await mei.until(() => mei.forms[0], "a form");
  assert.match(form.title, /\p{Script=Han}/u);
  mei.answers(form, null);
});

test("by forms: buys, sells to a commission, puts a good on sale that another buys", async () => {
  const carl = await joins("Carl"), dora = await joins("Dora");
  await stage.gives("Carl", 30, "wheat", 20);
  await stage.gives("Carl", 31, "diamond", 5);
  const purse = await stage.money("Carl");
  carl.types("ordomart formmenu");
  await carl.chooses("Selling");
  await carl.chooses("Fresh bread");
  const bread = await carl.asked("Enter the quantity"), hadbread = carl.has("bread");
  carl.answers(bread, filled(bread, "2"));
  await carl.until(() => carl.has("bread") === hadbread + 2, "the bread is his");

  const wheat = carl.has("wheat");
  carl.types("ordomart formmenu");
  await carl.chooses("Recycle shops");
  await carl.chooses("Wheat for the bakery");
  const sells = await carl.asked("Quantity to sell");
  carl.answers(sells, filled(sells, 10));
  const slots = sells.content.filter((one) => one.type === "slider").length;
  await carl.until(() => carl.has("wheat") === wheat - 10 * slots, "the wheat has gone");
  await stage.eventually(async () => await stage.money("Carl") === purse - 18 + 30 * slots, "he was paid");

  carl.types("ordomart formmenu");
  await carl.chooses("My shop");
  await carl.chooses("Put an item on sale");
  await carl.chooses("Diamond");
  const upload = await carl.until(() => carl.forms.find((form) => form.type === "custom_form"), "the form of a good");
  const inputs = upload.content.filter((one) => one.type === "input").length;
  assert.ok(inputs >= 3, JSON.stringify(upload.content));
  carl.answers(upload, upload.content.map((one) => (one.type !== "input" ? one.default ?? null
    : /price/i.test(one.text) ? "7" : /quantity|number|count/i.test(one.text) ? "5" : "Carl's diamonds")));
  await carl.until(() => carl.has("diamond") === 0, "the diamonds are in his shop");

  await opens(dora, "ordomart buybyshop Carl", "diamond", null);
  dora.click(placeof(dora, "diamond"));
  const buys = await dora.asked("Enter the quantity"), before = await stage.money("Carl");
  dora.answers(buys, filled(buys, "2"));
  await dora.until(() => dora.has("diamond") === 2, "Dora has two");
  await stage.eventually(async () => await stage.money("Carl") === before + 14, "Carl has the money");
});

test("who leaves in the middle of a menu or a form is gone, and comes back to what was his", async () => {
  for (const way of ["menu", "form"]) {
    const eve = await joins("Eve"), money = await stage.money("Eve");
    await opens(eve, "ordomart buy", "apple");
    if (way === "form") {
      eve.click(placeof(eve, "apple"));
      await eve.asked("Enter the quantity");
    }
    eve.leaves();
    await stage.eventually(async () => !(await stage.known("Eve")).online, "Eve is gone");
    assert.equal(await stage.money("Eve"), money);
  }
  await buysfromchest(await joins("Eve"));
});

test("ten at once join, open, choose and answer; whoever comes too late keeps his money", async () => {
  const all = await Promise.all(Array.from({ length: 10 }, (_, i) => joins(`Guest${i}`, { device: i % 2 ? 2 : 7 })));
  const money = await stage.money("Guest0");
  await Promise.all(all.map((player) => opens(player, "ordomart buy", "apple")));
  const answers = await Promise.all(all.map((player, i) => chooses(player, "apple", i % 2 ? 2 : 1, 1)));
  for (const answer of answers) answer();
  const bought = (player) => player.heard.includes("purchase successfully!");
  await Promise.all(all.map((player) => player.until(() => bought(player) || player.heard.some((line) => line.includes("has been changed")), "he is told")));
  assert.ok(all.some(bought));
  for (const player of all) {
    await player.until(() => player.has("apple") === (bought(player) ? 1 : 0), "he holds what he was told");
    assert.equal(await stage.money(player.name), money - (bought(player) ? 4 : 0));
  }
});

test("an operator's keyboard and abilities change with his rank at the next joining", async () => {
  await joins("Olga");
  const [olga] = players.splice(0);
  assert.equal(olga.last.update_abilities.permission_level, "member");
  await stage.call("PUT", "/api/players/Olga/permission", { level: 1 });
  olga.leaves();
  await stage.eventually(async () => !(await stage.known("Olga")).online, "she is gone");
  const again = await joins("Olga");
  await again.until(() => again.last.update_abilities.permission_level === "operator", "she is an operator");
});

test("a menu on blocks: a double chest stands before its player alone, and goes with the menu", async () => {
  const folder = await mkdtemp(path.join(tmpdir(), "ordomart-blocks-")), build = path.dirname(program);
  await copyFile(program, path.join(folder, "ordomart-server"));
  await symlink(path.join(build, "ordomart_onblocks.so"), path.join(folder, "ordomart.so"));
  for (const library of ["libordoplatform.so", "LLmoney.so"]) await symlink(path.join(build, library), path.join(folder, library));
  const other = await Stage.starts({ binary: path.join(folder, "ordomart-server") });
  try {
    const finn = await joins("Finn", {}, other), gina = await joins("Gina", {}, other), shown = [];
    finn.client.on("update_block", (told) => shown.push(`${told.position.x} layer ${told.layer} ${told.block_runtime_id ? "block" : "none"}`));
    finn.client.on("block_entity_data", ({ position, nbt }) => shown.push(`${position.x} pair ${nbt.value.pairx?.value}`));
    finn.types("ordoblocks");
    const painted = () => Array.from({ length: 36 }, (_, slot) => slot).find((slot) => finn.at(slot)?.name);
    await finn.until(() => finn.open && painted() !== undefined, "the menu is painted");
    assert.deepEqual(shown.map((line) => line.split(" ").slice(0, 2).join(" ")), ["0 layer", "0 pair", "1 layer", "1 pair"]);
    shown.length = 0;
    finn.closes();
    await finn.until(() => shown.length >= 4, "the real blocks come back");
    assert.deepEqual(shown.map((line) => line.split(" ").slice(0, 3).join(" ")), ["1 layer 0", "1 pair undefined", "0 layer 0", "1 layer 0"]);
    assert.equal(gina.packets.update_block, undefined);
  } finally {
    await other.ends();
    await rm(folder, { recursive: true, force: true });
  }
});
