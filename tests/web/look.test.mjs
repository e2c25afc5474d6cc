// How the page shows things: forms over the slots, prices and totals, pictures of items and buttons, what comes first.
import assert from "node:assert/strict";
import { readdir, readFile } from "node:fs/promises";
import { beforeEach, test } from "node:test";

import { count, money, onpages, play, purse } from "./play.mjs";
import { joins, Player } from "./stage.mjs";

onpages();
let server, page;
beforeEach(() => ({ server, page } = play));

const box = (locator) => locator.evaluate((element) => { const { top, bottom, left, right } = element.getBoundingClientRect(); return { top, bottom, left, right }; });

test("a form lies over the card, all of it in sight, and moves nothing", async () => {
  await page.setViewportSize({ width: 1280, height: 860 });
  const alice = await joins(page, { name: "Alice" }), ivan = await joins(page, { name: "Ivan" });
  await page.evaluate(() => scrollTo(0, 0));
  for (const [player, row] of [[alice, /Orchard apples/], [ivan, /Golden carrots/]]) {
    const places = [player.card, player.card.locator(".commands"), player.chat, player.card.locator(".slots")], before = await Promise.all(places.map(box));
    await player.types("ordomart formmenu");
    await player.asked("Main menu");
    assert.deepEqual(await Promise.all(places.map(box)), before);
    await player.chooses(/Selling/);
    await player.asked("Orchard apples");
    const form = await box(player.form);
    assert.ok(form.top >= 0 && form.bottom <= 860, JSON.stringify(form));
    // The pictures are those of the items, and the prices end where the others end.
    const rows = await player.form.locator(".formbutton.priced").evaluateAll((all) => all.map((one) => ({
      picture: one.querySelector(".tile:not([hidden]) .picture")?.outerHTML, text: one.textContent,
      right: one.querySelector(".price").getBoundingClientRect().right, left: one.querySelector(".formbuttontext").getBoundingClientRect().left,
    })));
    assert.ok(rows.length > 20);
    assert.deepEqual([new Set(rows.map(({ right }) => right)).size, new Set(rows.map(({ left }) => left)).size], [1, 1]);
    const drawn = (item) => page.evaluate(async (name) => (await import("/drawing.js")).picture(name).outerHTML, item);
    for (const [name, item] of [["Orchard apples", "minecraft:apple"], ["Golden carrots", "minecraft:golden_carrot"], ["Cookies by the piece", "minecraft:cookie"]])
      assert.equal(rows.find(({ text }) => text.includes(name)).picture, await drawn(item), name);
    await player.chooses(row);
    await player.asked("Purchase goods");
    const asks = await box(player.form);
    assert.ok(asks.top >= 0 && asks.bottom <= 860, JSON.stringify(asks));
  }

  const total = alice.form.locator(".total"), types = (text) => alice.form.locator("input").fill(text);
  await types("12");
  await total.filter({ hasText: /^12 × 4 = 48, leaves 4,952$/ }).waitFor();
  await server.call("PUT", "/api/players/Alice/money", { amount: purse + 1000 });  // his purse moves on while he thinks
  await money(alice, purse + 1000);
  await types("300");
  await total.filter({ hasText: /^300 × 4 = 1,200, leaves 4,800$/ }).waitFor();
  await types("2000");
  await total.filter({ hasText: /^2,000 × 4 = 8,000, 2,000 more than there is$/ }).waitFor();
  for (const text of ["", "0", "-3", "1.5", "many", "12345678901"]) {
    await types(text);
    await total.waitFor({ state: "hidden" });
  }
  await types("3");
  await alice.form.locator("input").press("Enter");
  await money(alice, purse + 1000 - 3 * 4);
  assert.equal(await count("Alice", "minecraft:apple"), 3);
});

test("a total is told where one price and one number are, and nowhere else", async () => {
  await page.locator("[data-action=first]").waitFor();
  const label = (text) => ({ type: "label", text }), input = { type: "input", text: "how many" }, slider = { type: "slider", text: "how many", min: 0, max: 9 };
  const price = label("§eIn stock:640\n§f§r§e25 coins/one§f§r\n"), has = label("§bYour money§f : §e50\uE102");
  const cases = [
    [[has, price, input], ["25", "50", true]], [[price, slider], ["25", null, false]], [[has, label("6 gold coins/个"), input], ["6", "50", true]],
    [[has, price, input, input], null], [[has, price, { type: "toggle", text: "" }, input], null], [[has, price], null], [[has, price, { type: "dropdown", text: "", options: [] }], null],
    [[has, label("25 coins/one\n1 coins/one"), input], null],  // a description that has a price of its own
    [[has, label("Damage:3/1561"), input], null], [[has, label("now 25 coins/one"), input], null], [[has, label("25/one"), input], null],
    [[has, has, price, input], ["25", null, true]],
  ];
  for (const [content, wanted] of cases) {
    const read = await page.evaluate(async (given) => {
      const found = (await import("/totals.js")).readprices({ type: "custom_form", content: given });
      return found && [String(found.price), found.purse === null ? null : String(found.purse), found.typed];
    }, content);
    assert.deepEqual(read, wanted, JSON.stringify(content));
  }
});

test("every item and every button of the menus has a picture, and no two items have the same", async () => {
  await page.locator("[data-action=first]").waitFor();
  const folder = new URL("../../plugin/forms/", import.meta.url);
  const sources = await Promise.all((await readdir(folder)).map((name) => readFile(new URL(name, folder), "utf8")));
  const images = [...new Set(sources.join("").match(/textures\/[\w/]+\.png/g))];
  assert.ok(images.length >= 15, `${images.length} images are named`);
  const { items, alike, letters, outside } = await page.evaluate(async (paths) => {
    const { picture, texture } = await import("/drawing.js"), table = await import("/items.js");
    await new Promise((here) => { table.whenhere(here); });
    const seen = new Map(), same = [], lettered = [], beyond = [];
    const looksat = (name, drawn, hasname = true) => {
      const key = drawn.outerHTML;
      document.body.append(drawn);
      const { y, height } = drawn.getBBox();
      drawn.remove();
      if (y < -1 || y + height > 17) beyond.push(name);
      if (hasname && (drawn.querySelector("text") || !drawn.querySelector("path"))) lettered.push(name);
      if (seen.has(key)) same.push(`${name} like ${seen.get(key)}`);
      seen.set(key, name);
    };
    for (const { item, en, variants } of table.rows())
      for (const { aux } of variants.length ? variants : [{ aux: 0 }]) looksat(`${item} ${aux}`, picture(item, aux), !/^(tile|item)\./.test(en));
    const shapes = seen.size;
    seen.clear();
    for (const path of paths) looksat(path, texture({ type: "path", data: path }));
    return { items: shapes, alike: same, letters: lettered, outside: beyond };
  }, images);
  assert.ok(items > 800);
  assert.deepEqual([alike, letters, outside], [[], [], []]);
});

test("the page stands before the items are here, and they come in behind it", async () => {
  await server.call("POST", "/api/players", { name: "Kai" });
  await server.call("POST", "/api/players/Kai/command", { line: "ordomart formmenu" });
  let letgo;
  const held = new Promise((done) => { letgo = done; });
  await page.route("**/api/items", async (route) => {
    await held;
    await route.continue();
  });
  await page.evaluate(() => localStorage.setItem("ordomart.open", '["Kai"]'));
  await page.reload();
  const kai = new Player(page, "Kai");
  await kai.asked("Main menu");
  assert.equal(await kai.card.locator(".picture :is(path, text)").count(), 0);
  await kai.slot("hotbar", 0).filter({ hasText: "32" }).waitFor();
  const choice = await kai.form.elementHandle();
  letgo();
  await kai.slot("hotbar", 0).locator(".picture path").first().waitFor();
  await kai.form.locator(".tile .picture path").first().waitFor();
  assert.ok(await choice.evaluate((form) => form.isConnected), "the form is the same one, with what was typed into it");
});

test("players are found in their table, refusals are no chat, what is enchanted keeps its colours", async () => {
  const names = ["Ann", "Anna", "Bo"];
  for (const name of names) await server.call("POST", "/api/players", { name });
  await page.locator("[data-t=operator]").first().click();
  const rows = page.locator("[data-row]:visible"), search = page.getByRole("searchbox");
  const shown = () => page.evaluate(() => [...document.querySelectorAll("[data-row]")].filter((row) => row.checkVisibility()).map((row) => row.dataset.row).sort().join());
  const shows = async (wanted) => {
    for (let left = 100; left > 0 && await shown() !== wanted; --left) await page.waitForTimeout(50);
    assert.equal(await shown(), wanted);
  };
  await page.getByRole("table").getByRole("columnheader").first().waitFor();
  await rows.nth(names.length - 1).waitFor();
  await search.fill("ann");
  await shows("Ann,Anna");
  await search.fill("nobody at all");
  await shows("");
  await page.getByText("Nobody is called that").waitFor();
  await search.fill("BO");
  await shows("Bo");
  await rows.getByRole("button", { name: "Show" }).click();
  const bo = new Player(page, "Bo");
  await bo.types("nonsense");
  const looks = (line) => line.evaluate((element) => { const { backgroundColor, borderTopWidth, color } = getComputedStyle(element); return [backgroundColor, borderTopWidth, color]; });
  const refused = await looks(bo.chat.locator(".refused").first()), chat = await looks(bo.chat.locator(".line-chat").first());
  for (const [at, value] of refused.entries()) assert.notEqual(value, chat[at]);
  await bo.types("ordomart buy");
  const shine = bo.card.locator(".shine").first();
  await shine.waitFor();
  assert.deepEqual(await shine.evaluate((element) => [getComputedStyle(element).backgroundColor, getComputedStyle(element).backgroundImage]), ["rgba(0, 0, 0, 0)", "none"]);
});
