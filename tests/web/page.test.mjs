// The page in a browser against a real server with the demo market: what a person does and sees. Waits for what is to
// be seen, never for time.
import assert from "node:assert/strict";
import { beforeEach, test } from "node:test";

import { count, formof, money, moneyof, onpages, play, purse } from "./play.mjs";
import { joins, Player } from "./stage.mjs";

const owner = "Rosa", good = "Orchard apples", price = 4;

onpages();
let server, context, page;
beforeEach(() => ({ server, context, page } = play));

test("a newcomer needs one click, and a sale is seen from both ends", async () => {
  await page.locator("[data-action=first]").click();
  const alice = new Player(page, "Alice"), rosa = await joins(page, { name: owner });
  await money(alice, purse);
  const before = await moneyof(owner);

  await alice.card.getByRole("button", { name: "ordomart buy" }).click();
  await alice.card.locator(".slot-inventory.full").first().waitFor();
  await alice.slot("inventory", 9).hover();
  await page.locator(".tooltip", { hasText: good }).waitFor();
  await alice.slot("inventory", 9).click();
  await alice.asked("Purchase goods");
  assert.equal(await alice.card.locator(".menuopen").count(), 0, "a form stands where the menu was");
  await alice.form.locator("input").fill("3");
  await alice.form.getByRole("button", { name: "Submit" }).click();

  await money(alice, purse - 3 * price);
  await money(rosa, before + 3 * price);
  await alice.chat.locator(".line-toast, .line-chat", { hasText: /apple|bought|success/i }).first().waitFor();
  assert.equal(await count("Alice", "minecraft:apple"), 3);
});

test("a form is filled and closed, by keyboard too", async () => {
  const ben = await joins(page, { name: "Ben" });
  await ben.types("ordomart formmenu");
  await ben.form.waitFor();
  const title = await ben.form.getByRole("heading").textContent();
  await ben.form.getByRole("button").nth(1).focus();
  await page.keyboard.press("Escape");
  await ben.form.waitFor({ state: "detached" });
  assert.equal(await formof("Ben"), null);

  await ben.types("ordomart formmenu");
  await ben.asked(title);
  await ben.chooses(/Selling/);
  await ben.asked(good);
  await ben.chooses(new RegExp(good));
  await ben.form.locator("input").fill("2");
  await ben.form.locator("input").press("Enter");
  await money(ben, purse - 2 * price);
  assert.equal(await count("Ben", "minecraft:apple"), 2);
});

test("real stacks move when no menu is open", async () => {
  const cleo = await joins(page, { name: "Cleo" });
  await cleo.slot("hotbar", 0).filter({ hasText: "32" }).click();
  await cleo.card.locator(".holding").waitFor();
  await cleo.slot("inventory", 20).click();
  await cleo.slot("inventory", 20).filter({ hasText: "32" }).waitFor();
  await cleo.slot("inventory", 20).press("Shift+Enter");
  await cleo.slot("cursor", 0).filter({ hasText: "16" }).waitFor();
  await page.keyboard.press("ArrowRight");
  await page.keyboard.press("Enter");
  await cleo.slot("inventory", 21).filter({ hasText: "16" }).waitFor();
  await page.keyboard.press("q");
  await cleo.slot("inventory", 21).and(page.locator(":not(.full)")).waitFor();
  const { items } = await server.call("GET", "/api/dropped");
  assert.deepEqual(items.map(({ item, count: pieces }) => [item, pieces]), [["minecraft:iron_ingot", 16]]);
});

test("a touch player chooses by a double tap, and one tap only tells", async () => {
  const dora = await joins(page, { name: "Dora", device: "touch" });
  await dora.types("ordomart buy");
  await dora.card.locator(".slot-inventory.full").first().waitFor();
  await dora.slot("inventory", 9).click();
  await page.locator(".tooltip", { hasText: `From:${owner}` }).waitFor();
  assert.equal(await dora.form.count(), 0);
  await dora.slot("inventory", 10).dblclick();
  await dora.asked("Purchase goods");
  await dora.asked("Fresh bread");
});

test("a Chinese player reads Chinese, and so does the page when it is told to", async () => {
  const lan = await joins(page, { name: "Lan", language: "zh_CN" });
  await lan.types("ordomart formmenu");
  await lan.form.waitFor();
  assert.match(await lan.form.textContent(), /\p{Script=Han}/u);
  await page.locator("select[data-tlabel=language]").selectOption("zh");
  await page.locator("[data-t=addplayer]", { hasText: "加入玩家" }).waitFor();
  assert.equal(await page.locator("html").getAttribute("lang"), "zh");
});

test("a reload in the middle of a menu and of a form shows the same", async () => {
  const emil = await joins(page, { name: "Emil" });
  await emil.types("ordomart buy");
  await emil.card.locator(".slot-inventory.full").first().waitFor();
  const picture = () => emil.card.locator(".slot").evaluateAll((slots) => slots.map((slot) => slot.ariaLabel));
  const settled = (await server.call("GET", "/api/players/Emil")).slots.inventory.filter(Boolean).length;
  await page.locator(".slot-inventory.full, .slot-hotbar.full").nth(settled - 1).waitFor();
  const seen = await picture(), said = await emil.chat.textContent();
  await page.reload();
  await page.locator(".menuopen").waitFor();
  assert.deepEqual(await picture(), seen);
  assert.equal(await emil.chat.textContent(), said);
  assert.equal(await emil.card.locator(".toast").count(), 0, "old news are not told again");

  await emil.slot("inventory", 9).click();
  await emil.asked("Purchase goods");
  await page.reload();
  await emil.asked("Purchase goods");
  await emil.card.getByRole("button", { name: "Close" }).click();
  await emil.form.waitFor({ state: "detached" });
});

test("the operator gives, pays, kills and pauses, and reads the log", async () => {
  await page.locator("[data-t=operator]").first().click();
  const fay = await joins(page, { name: "Fay" });
  const rowof = page.locator('[data-row="Fay"]');
  await rowof.locator(".amount").fill("777");
  await rowof.getByRole("button", { name: "Set" }).click();
  await money(fay, 777);
  await rowof.getByRole("button", { name: "Kill" }).click();
  await page.getByRole("alertdialog").getByRole("button", { name: "Kill" }).click();
  await fay.card.locator(".badge.bad:visible").waitFor();
  await rowof.getByRole("button", { name: "Revive" }).click();
  await fay.card.locator(".badge.bad").waitFor({ state: "hidden" });

  await page.getByRole("tab", { name: "Give" }).click();
  await page.locator("#panel-give select").first().selectOption("Fay");
  await page.getByRole("searchbox").fill("red wool");
  await page.locator('[data-item="minecraft:wool"]').click();
  await page.locator("#panel-give").getByLabel("Variant").selectOption({ label: "Red Wool" });
  await page.locator("#panel-give").getByRole("button", { name: "Give it" }).click();
  await fay.card.getByRole("button", { name: /Red Wool/ }).waitFor();
  await page.getByLabel("As SNBT").check();
  await page.locator("#panel-give textarea").fill('{Count:3b,Damage:0s,Name:"minecraft:torch",WasPickedUp:0b,tag:{display:{Name:"<b>Lamp</b>"}}}');
  await page.locator("#panel-give").getByRole("button", { name: "Give it" }).click();
  await fay.card.getByRole("button", { name: /<b>Lamp<\/b>/ }).waitFor();

  await page.getByRole("tab", { name: "Time" }).click();
  await page.getByRole("button", { name: "Pause" }).click();
  await page.locator(".timestate", { hasText: "paused" }).waitFor();
  assert.equal((await server.call("GET", "/api/server")).paused, true);
  await page.locator("#panel-time").getByRole("button", { name: "Go on" }).click();
  await page.locator(".timestate", { hasText: "running" }).waitFor();
  await page.getByRole("tab", { name: "Log" }).click();
  await page.locator(".logline", { hasText: "Ordomart" }).first().waitFor();
});

test("the command line completes and remembers", async () => {
  const gil = await joins(page, { name: "Gil" });
  const field = gil.card.getByRole("combobox").first();
  await field.pressSequentially("ordomart rec");
  await gil.card.getByRole("option", { name: "recycle" }).waitFor();
  await field.press("Tab");
  assert.equal(await field.inputValue(), "ordomart recycle ");
  await field.press("Enter");
  await page.locator(".menuopen").waitFor();
  await field.press("ArrowUp");
  assert.equal(await field.inputValue(), "ordomart recycle");
});

test("without the token, and from a foreign page, there is nothing", async () => {
  const wrong = await context.newPage();
  await wrong.goto(`${server.origin}/#token=0123`);
  await wrong.locator(".tokenpage", { hasText: "does not know this token" }).waitFor();
  await wrong.locator("input").fill(server.address);
  await wrong.getByRole("button").click();
  await wrong.locator("[data-action=first]").waitFor();
  const without = await context.newPage();
  await without.goto(server.origin);
  await without.locator(".tokenpage", { hasText: "needs the server's token" }).waitFor();
  play.errors = play.errors.filter((text) => !text.includes("401"));

  const refused = [[{}, 401], [{ Authorization: "Bearer 0123" }, 401],
                   [{ Authorization: `Bearer ${server.token}`, Origin: "http://example.org" }, 403]];
  for (const [headers, status] of refused)
    assert.equal((await server.call("GET", "/api/players", undefined, headers)).status, status, JSON.stringify(headers));
});
