// The desk: what is traded on the page is seen there, found, drawn, and taken back.
import assert from "node:assert/strict";
import { beforeEach, test } from "node:test";

import { money, onpages, play, purse } from "./play.mjs";
import { joins } from "./stage.mjs";

onpages();
let page;
beforeEach(() => ({ page } = play));

const view = (name) => page.locator(`.deskview[data-view="${name}"]`);
const opens = async (name) => {
  await page.locator(`.desknav [data-view="${name}"]`).click();
  await view(name).waitFor();
  return view(name);
};

async function metrics() {
  const { origin, token } = play.server;
  const response = await fetch(`${origin}/metrics`, { headers: { Authorization: `Bearer ${token}` } });
  return new Map((await response.text()).split("\n").map((line) => line.match(/^([^#]\S*) (\S+)$/)).filter(Boolean).map(([, name, value]) => [name, Number(value)]));
}

async function buys(name, pieces, permission) {
  const player = await joins(page, { name, permission });
  await player.types("ordomart formmenu");
  await player.chooses(/Selling/);
  await player.asked("Orchard apples");
  await player.chooses(/Orchard apples/);
  await player.form.locator("input").fill(String(pieces));
  await player.form.locator("input").press("Enter");
  await player.asked("purchase successfully");
  await player.chooses("Exit");
  await player.asked("Main menu");
  await player.form.getByRole("button", { name: "Close" }).click();
  await player.form.waitFor({ state: "detached" });
  return player;
}

test("a trade is seen, found, drawn and undone", async () => {
  const lena = await buys("Lena", 3, "1");
  const paid = purse - Number((await lena.money.getAttribute("data-amount")).replace(/\D/g, ""));
  assert.ok(paid > 0);
  await page.getByRole("button", { name: "Desk", exact: true }).click();

  const feed = await opens("now");
  await feed.locator(".desktable tbody tr", { hasText: "Lena" }).first().waitFor();

  const flows = await opens("flows");
  await flows.locator(".plot canvas").nth(1).waitFor();
  await flows.locator(".desktable tbody tr").first().getByRole("cell", { name: String(paid), exact: true }).waitFor();

  const prices = await opens("prices");
  await prices.getByLabel("Item").fill("Apple");
  await prices.getByRole("button", { name: "Show" }).click();
  await prices.locator(".plot canvas").nth(1).waitFor();
  assert.equal(await prices.locator(".desktable tbody tr").count(), 30);

  const trades = await opens("trades");
  await trades.getByLabel("Player").fill("Nobody");
  await trades.getByRole("button", { name: "Show" }).click();
  await trades.locator(".outcome.bad", { hasText: "Nobody" }).waitFor();
  assert.match(play.errors.splice(0).join(), /^Failed to load resource.* 400 \(Bad Request\)$/);
  await trades.getByLabel("Player").fill("Lena");
  await trades.getByRole("button", { name: "Show" }).click();
  const undo = trades.getByRole("button", { name: "Undo" });
  await undo.click();
  await page.getByRole("alertdialog").getByRole("button", { name: "Cancel" }).click();
  await opens("now");
  await feed.getByRole("button", { name: "Undo" }).click();
  await page.getByRole("alertdialog").getByText("Lena runs: ordomart undo").waitFor();
  await page.getByRole("alertdialog").getByRole("button", { name: "Undo" }).click();
  const told = feed.locator(".outcome", { hasText: /Trade \d+ is undone/ });
  await told.waitFor();
  for (let asked = 0; asked < 2; asked++) await page.waitForResponse(/views\/now/);
  assert.ok(await told.isVisible(), "it stays while the feed goes on");
  await opens("trades");
  await undo.waitFor({ state: "detached" });
  await page.getByRole("button", { name: "Desk", exact: true }).click();
  await money(lena, purse);
  const counts = await metrics();
  for (const [kind, pieces] of [["purchase", 3], ["undo", 3], ["sale", 0]]) {
    assert.equal(counts.get(`ordomart_pieces_total{kind="${kind}"}`), pieces);
    assert.equal(counts.get(`ordomart_money_total{kind="${kind}"}`), pieces ? paid : 0);
  }
  assert.ok(counts.get('ordomart_list_seconds_count{kind="sell"}') > 0);
});

test("a shop is banned and opened again, by an operator alone", async () => {
  await joins(page, { name: "Guest" });
  await page.getByRole("button", { name: "Desk", exact: true }).click();
  const shops = await opens("shops");
  await shops.getByRole("button", { name: "Ban" }).first().click();
  await shops.locator(".outcome.bad", { hasText: "permission" }).waitFor();
  await page.getByRole("button", { name: "Desk", exact: true }).click();
  await joins(page, { name: "Ada", permission: "2" });
  await page.getByRole("button", { name: "Desk", exact: true }).click();
  await page.locator(".actor option", { hasText: "Ada" }).waitFor({ state: "attached" });
  for (const [label, state] of [["Ban", "banned"], ["Lift the ban", "open"]]) {
    await shops.getByRole("button", { name: label, exact: true }).first().click();
    await page.getByRole("alertdialog").getByText("Ada runs: ordomart").waitFor();
    await page.getByRole("alertdialog").getByRole("button", { name: label }).click();
    await shops.locator(".outcome", { hasText: /banned/ }).waitFor();
    await shops.getByLabel("State").selectOption(state);
    await shops.locator(".desktable tbody tr").first().waitFor();
  }
});
