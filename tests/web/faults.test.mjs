// What goes wrong around a page and what a person does by mistake: a server that is started anew, wrong tokens, fields left
// empty, narrow windows, a server that stands still.
import assert from "node:assert/strict";
import { beforeEach, test } from "node:test";

import { count, money, onpages, play, purse } from "./play.mjs";
import { joins, Player } from "./stage.mjs";

onpages();
let server, page;
beforeEach(() => ({ server, page } = play));

// While the server is away the browser complains of each call.
const forgive = (pattern) => { play.errors = play.errors.filter((text) => !pattern.test(text)); };
const unreached = /ERR_|Failed to load|network error|Failed to fetch/i;
const offer = () => page.locator(".again");

test("a server that is started anew, under an open page", async () => {
  await page.locator("[data-t=operator]").first().click();
  await page.getByRole("tab", { name: "Log" }).click();
  const abby = await joins(page, { name: "Abby", language: "de_DE", device: "touch", permission: "1" }), bo = await joins(page, { name: "Bo" });
  await money(bo, purse);
  for (let line = 0; line < 8; ++line) await abby.types("nonsense");
  await abby.types("ordomart buy");
  await abby.card.and(page.locator(".menuopen")).waitFor();

  const begin = await server.end("SIGKILL");
  await page.locator('.connection[data-state="lost"]').waitFor();
  assert.equal(await begin(), server.address, "the token is kept");
  await offer().getByText("started anew").and(page.getByText("Abby, Bo")).waitFor();
  await page.locator('.connection[data-state="live"]').waitFor();
  assert.equal(await page.locator(".card").count(), 0, "nothing dead is left");
  await page.reload();
  await offer().getByText("No longer on the server: Abby, Bo").waitFor();
  await offer().getByRole("button", { name: "Join again" }).click();
  await offer().waitFor({ state: "hidden" });
  await abby.card.locator(".badge", { hasText: "de_DE" }).waitFor();
  await abby.card.locator(".badge", { hasText: "1 –" }).waitFor();
  await abby.card.locator(".badge", { hasText: "Touch" }).waitFor();

  // Cleanly this time, and without a reload: lines with low numbers are shown, and what was offered is taken up.
  for (let line = 0; line < 8; ++line) await bo.types("nonsense");
  await bo.chat.locator(".line-reply").nth(7).waitFor();
  const logged = await page.locator(".logline").count(), beginagain = await server.end();
  await page.locator('.connection[data-state="lost"]').waitFor();
  await beginagain();
  await server.call("POST", "/api/players", { name: "Bo" });
  await offer().getByRole("button", { name: "Join again" }).click();
  await offer().waitFor({ state: "hidden" });
  await bo.types("nonsense");
  await bo.chat.locator(".line-reply").waitFor();
  await page.locator(".logline").nth(logged).waitFor();
  forgive(unreached);
});

test("the operator sets and gives nothing unasked, and is asked before he harms", async () => {
  await page.locator("[data-t=operator]").first().click();
  await server.call("POST", "/api/players", { name: "Ada" });  // first in the alphabet, and not on this page
  const tom = await joins(page, { name: "Tom", permission: "1" }), row = page.locator('[data-row="Tom"]');
  await money(tom, purse);
  await row.locator(".amount").fill("");
  await row.getByRole("button", { name: "Set" }).click();
  await row.locator(".amount:focus:invalid").waitFor();
  await row.locator(".amount").fill("71");
  await row.getByRole("button", { name: "Set" }).click();
  await money(tom, 71);

  const badge = tom.card.locator(".badge", { hasText: /^\d –/ });
  assert.equal(await badge.textContent(), "1 – game master");
  await row.getByLabel("Permission").selectOption("0");
  await badge.waitFor({ state: "hidden" });
  await row.getByLabel("Permission").selectOption("2");
  await badge.filter({ hasText: "2 – admin" }).waitFor();

  const asked = page.getByRole("alertdialog"), dead = tom.card.locator(".badge.bad");
  await row.getByRole("button", { name: "Kill" }).click();
  await asked.getByText("Kill Tom?").waitFor();
  await page.keyboard.press("Escape");
  await row.getByRole("button", { name: "Kill" }).and(page.locator(":focus")).click();
  await asked.getByRole("button", { name: "Cancel" }).click();
  assert.equal((await server.call("GET", "/api/players")).players.find(({ name }) => name === "Tom").alive, true);
  await row.getByRole("button", { name: "Kill" }).click();
  await asked.getByRole("button", { name: "Kill" }).click();
  await dead.waitFor();
  await row.getByRole("button", { name: "Revive" }).click();
  await dead.waitFor({ state: "hidden" });

  await page.getByRole("tab", { name: "Give" }).click();
  const panel = page.locator("#panel-give"), give = panel.getByRole("button", { name: "Give it" }), outcome = panel.locator(".outcome");
  const whom = panel.getByLabel("Player");
  assert.equal(await whom.inputValue(), "Tom");
  await whom.locator("option", { hasText: "Ada (not on this page)" }).waitFor({ state: "attached" });
  await page.getByRole("searchbox").fill("emerald");
  await panel.locator('[data-item="minecraft:emerald"]').click();
  await page.getByRole("searchbox").fill("no such thing");
  await page.keyboard.press("Enter");  // before the list is made anew
  await outcome.filter({ hasText: "Choose an item first." }).waitFor();
  await page.getByRole("searchbox").fill("");
  await give.click();
  assert.equal(await count("Tom", "minecraft:emerald"), 0);
  await panel.getByLabel("Count", { exact: true }).fill("");
  await page.getByLabel("As SNBT").check();
  await panel.locator("textarea").fill('{Count:7b,Damage:0s,Name:"minecraft:torch",WasPickedUp:0b}');
  await give.click();
  await outcome.filter({ hasText: "Tom has it." }).waitFor();
  assert.equal(await count("Tom", "minecraft:torch"), 7);

  await tom.card.getByRole("button", { name: "Leave the server" }).click();
  await asked.getByRole("button", { name: "Cancel" }).click();
  assert.equal(await tom.card.count(), 1);
  await tom.card.getByRole("button", { name: "Leave the server" }).click();
  await asked.getByRole("button", { name: "Leave the server" }).click();
  await tom.card.waitFor({ state: "detached" });
  await whom.and(page.locator(":invalid")).waitFor();
  await give.click();
  assert.deepEqual([await whom.inputValue(), await count("Ada", "minecraft:torch")], ["", 0], "not to the next best");
});

test("what is done is seen and has the keys, in a narrow window, too", async () => {
  const focused = (target) => target.and(page.locator(":focus")).waitFor();
  await page.locator("[data-t=joinother]").press("Enter");
  const name = page.locator("dialog.join").getByLabel("Name", { exact: true });
  await name.pressSequentially("Sixteen letters or more");
  assert.equal(await name.inputValue(), "Sixteen letters ");
  await name.fill("Sixteen lettersX");
  await page.keyboard.press("Enter");
  const long = page.locator('[data-player="Sixteen lettersX"]');
  await focused(long);
  await long.getByRole("button", { name: "Hide this card" }).press("Enter");
  const first = page.locator("[data-action=first]");
  await focused(first);
  await page.keyboard.press("Enter");
  const alice = new Player(page, "Alice");
  await focused(alice.card);

  await page.setViewportSize({ width: 900, height: 700 });
  const opener = page.getByRole("button", { name: "Operator", exact: true }), panel = page.locator(".operator");
  const inview = () => panel.evaluate((at) => { const { top } = at.getBoundingClientRect(); return top >= -1 && top < innerHeight / 2; });
  const tab = page.getByRole("tab", { name: "Players" });
  for (const way of ["the first time", "and again"]) {
    await opener.press("Enter");
    await focused(tab);
    assert.ok(await inview(), way);
    if (way === "and again") break;
    await opener.press("Enter");
    await panel.waitFor({ state: "hidden" });
    await page.evaluate(() => scrollTo(0, document.body.scrollHeight));
  }
  await page.getByRole("button", { name: "Close the operator" }).press("Enter");
  await panel.waitFor({ state: "hidden" });
  await focused(opener);

  await server.call("POST", "/api/speed", { paused: true });
  const head = page.getByRole("banner"), waits = alice.card.locator(".waits");
  await head.getByText("server paused").waitFor();
  await waits.filter({ hasText: "commands, clicks and answers wait" }).waitFor();
  await alice.types("nonsense");
  await waits.filter({ hasText: "these wait: /nonsense" }).waitFor();
  assert.equal(await alice.chat.locator(".line-reply").count(), 0);
  const late = await joins(page, { name: "Late" });
  await late.card.locator(".waits").filter({ hasText: "paused" }).waitFor();
  await head.getByRole("button", { name: "Go on" }).press("Enter");
  await alice.chat.locator(".line-reply", { hasText: "nonsense" }).waitFor();
  for (const gone of [waits, late.card.locator(".waits")]) await gone.and(page.locator(":empty")).waitFor({ state: "attached" });
  await head.getByText("server paused").waitFor({ state: "detached" });
  await focused(opener);
});
