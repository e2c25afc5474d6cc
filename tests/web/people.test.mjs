// Who plays, and by what: the owners of the demo market, names beyond ASCII, the keyboard alone, sounds.
import assert from "node:assert/strict";
import { beforeEach, test } from "node:test";

import { money, moneyof, onpages, play, purse } from "./play.mjs";
import { joins, Player } from "./stage.mjs";

onpages();
let server, context, page;
beforeEach(() => ({ server, context, page } = play));

// Joins as somebody whom the dialogue offers.
async function joinsas(name) {
  await page.locator("[data-t=addplayer]").click();
  await page.locator(`[data-known="${name}"]`).click();
  await page.locator("dialog.join").getByRole("button", { name: "Join", exact: true }).click();
  const player = new Player(page, name);
  await player.card.waitFor();
  return player;
}

test("the owners are offered before they ever came, and their shops are theirs", async () => {
  const known = (await server.call("GET", "/api/players")).players;
  assert.ok(known.every(({ online, joined }) => !online && !joined));
  const rosa = await joinsas("Rosa");
  const { xuid } = (await server.call("GET", "/api/players")).players.find(({ name }) => name === "Rosa");
  assert.equal(xuid, known.find(({ name }) => name === "Rosa").xuid);
  await money(rosa, purse);
});

test("an owner with a Chinese name reads Chinese and is paid", async () => {
  const lena = await joins(page, { name: "Lena" }), owner = await joinsas("小清");
  await owner.card.locator(".badge", { hasText: "zh_CN" }).waitFor();
  await money(owner, purse);
  const before = await moneyof("小清");
  await owner.types("ordomart formmenu");
  await owner.form.waitFor();
  assert.match(await owner.form.textContent(), /\p{Script=Han}/u);
  await owner.card.getByRole("button", { name: "Close" }).click();
  await owner.form.waitFor({ state: "detached" });

  await lena.types("ordomart formmenu");
  await lena.chooses(/Selling/);
  await lena.asked("灯笼");
  await lena.chooses(/灯笼/);
  await lena.form.locator("input").fill("2");
  await lena.form.locator("input").press("Enter");
  await money(lena, purse - 2 * 28);
  await money(owner, before + 2 * 28);
  await page.reload();
  await money(owner, before + 2 * 28);
});

// Walks with the Tab key to the place that is meant, as far as the page has places.
async function tabsto(target, key = "Tab") {
  for (let steps = 0; steps < 60; ++steps) {
    if (await target.evaluate((element) => element === document.activeElement)) return;
    await page.keyboard.press(key);
  }
  assert.fail(`${key} does not lead there`);
}

test("without a mouse: join, walk over the slots, buy, close", async () => {
  await tabsto(page.locator("[data-action=first]"));
  await page.keyboard.press("Enter");
  const alice = new Player(page, "Alice");
  await tabsto(alice.card.getByRole("combobox").first());
  await page.keyboard.type("ordomart buy");
  await page.keyboard.press("Enter");
  await alice.card.locator(".slot-inventory.full").first().waitFor();
  const focused = (container, slot) => alice.slot(container, slot).and(page.locator(":focus")).waitFor();
  await tabsto(alice.slot("inventory", 9), "Shift+Tab");
  const walk = [["ArrowRight", "inventory", 10], ["ArrowDown", "inventory", 19], ["ArrowDown", "inventory", 28], ["ArrowDown", "hotbar", 1],
                ["ArrowUp", "inventory", 28], ["ArrowUp", "inventory", 19], ["ArrowUp", "inventory", 10], ["ArrowUp", "inventory", 10],
                ["ArrowLeft", "inventory", 9], ["ArrowLeft", "armor", 0], ["ArrowLeft", "armor", 0], ["ArrowRight", "inventory", 9]];
  for (const [key, container, slot] of walk) {
    await page.keyboard.press(key);
    await focused(container, slot);
  }
  await page.locator(".tooltip", { hasText: "Orchard apples" }).waitFor();
  await page.keyboard.press("Enter");
  await alice.asked("Purchase goods");
  await alice.form.locator("input:focus").waitFor();
  await page.keyboard.type("2");
  await page.keyboard.press("Enter");
  await money(alice, purse - 2 * 4);

  const menu = page.locator(".menuopen"), refused = alice.chat.getByText("too frequent");
  await tabsto(alice.card.getByRole("combobox").first());
  do {  // the market opens no menus in quick succession, and tells so
    const before = await refused.count();
    await page.keyboard.press("ArrowUp");  // the command once more
    await page.keyboard.press("Enter");
    await menu.or(refused.nth(before)).first().waitFor();
  } while (await menu.count() === 0);
  await tabsto(alice.slot("inventory", 9), "Shift+Tab");
  await page.keyboard.press("Escape");
  await menu.waitFor({ state: "detached" });
  await focused("inventory", 9);
});

test("sounds are silent until switched on, and stay on over a reload", async () => {
  await context.addInitScript(() => {
    window.voices = 0;
    for (const kind of ["createOscillator", "createBufferSource"]) {
      const made = BaseAudioContext.prototype[kind];
      BaseAudioContext.prototype[kind] = function () { window.voices++; return made.call(this); };
    }
  });
  await page.reload();
  const mia = await joins(page, { name: "Mia" });
  const voices = () => page.evaluate(() => window.voices);
  // The market answers a filter with a sound.
  const hears = async (already) => {
    await mia.types("ordomart filter");
    await mia.asked("Filter Settings");
    await mia.form.getByRole("button", { name: "Submit" }).click();
    await mia.chat.locator(".line-sound").nth(already).waitFor();
  };
  const button = page.getByRole("button", { name: /^Sounds/ });
  await hears(0);
  assert.equal(await voices(), 0);
  await button.click();
  await button.and(page.locator("[aria-pressed=true]", { hasText: "Sounds: on" })).waitFor();
  await page.reload();
  await button.and(page.locator("[aria-pressed=true]", { hasText: "Sounds: on" })).waitFor();
  await mia.chat.locator(".line-sound").waitFor();
  assert.equal(await voices(), 0, "old news are not heard again");
  await hears(1);
  assert.ok(await voices() > 0);
  await button.click();
  await page.reload();
  await button.and(page.locator("[aria-pressed=false]", { hasText: "Sounds: off" })).waitFor();
});
