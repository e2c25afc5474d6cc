// The board on a phone: a search, an address that is shared, the other language, and what axe finds: nothing.
import assert from "node:assert/strict";
import { readFile } from "node:fs/promises";
import { createRequire } from "node:module";
import { after, before, test } from "node:test";

import { startbrowser, startserver } from "./stage.mjs";

const axe = await readFile(createRequire(import.meta.url).resolve("axe-core/axe.min.js"), "utf8");
let server, browser;
before(async () => {
  server = await startserver(["--board", "0"]);
  browser = await startbrowser();
});
after(async () => {
  await browser?.close();
  await server?.stop();
});

test("a player looks for goods on his phone", async () => {
  const errors = [];
  for (const colorScheme of ["light", "dark"]) {
    const context = await browser.newContext({ locale: "en-GB", colorScheme, reducedMotion: "reduce", hasTouch: true, isMobile: true, viewport: { width: 390, height: 844 } });
    context.setDefaultTimeout(30000);
    const page = await context.newPage();
    page.on("pageerror", (error) => errors.push(error.message));
    page.on("console", (message) => message.type() === "error" && errors.push(message.text()));
    page.on("request", (request) => new URL(request.url()).origin !== new URL(server.board).origin && errors.push(`a request to ${request.url()}`));
    const cards = page.locator(".boardcard"), found = (text) => page.getByRole("status").filter({ hasText: text }).waitFor();
    const checks = async (state) => {
      await page.evaluate(axe);
      const { violations, passes } = await page.evaluate(() => globalThis.axe.run(document, { resultTypes: ["violations"] }));
      assert.ok(passes.length > 10, "it has looked");
      assert.deepEqual(violations.flatMap(({ id, nodes }) => nodes.map(({ target }) => `${state}, ${colorScheme}: ${id} ${target}`)), []);
      assert.ok(await page.evaluate(() => document.documentElement.scrollWidth <= innerWidth), `${state}: nothing sticks out`);
    };
    await page.goto(server.board);
    await cards.nth(20).waitFor();
    await checks("goods");
    if (process.env.BOARD_PICTURES) await page.screenshot({ path: `${process.env.BOARD_PICTURES}/board-${colorScheme}.png` });
    await page.getByRole("link", { name: "Next" }).click();
    await page.getByRole("link", { name: "Back", exact: true }).waitFor();
    await page.getByLabel("Search", { exact: true }).fill("apple");
    await page.keyboard.press("Enter");
    await page.waitForURL(/text=apple/);
    await page.getByRole("link", { name: "Orchard apples" }).click();
    await found("1 found");
    await checks("one row");

    // Whoever is given the address sees the same; in his language.
    const other = await context.newPage();
    await other.goto(page.url());
    assert.match(await other.locator(".boardcard h3").innerText(), /Orchard apples/);
    assert.equal(await other.locator(".boardcard").count(), 1);
    await other.close();
    await page.getByRole("button", { name: "中文" }).click();
    await page.getByRole("heading", { name: "商品" }).waitFor();
    assert.equal(await page.locator("html").getAttribute("lang"), "zh-CN");
    await page.goBack();
    await page.waitForURL(/text=apple(?!s)/);

    await page.getByRole("button", { name: "English" }).click();
    await page.getByRole("navigation", { name: "Views" }).getByRole("link", { name: "Commissions" }).click();
    await found("nothing");
    await page.getByRole("link", { name: "Show all" }).click();
    await cards.first().waitFor();
    await cards.first().locator(".k-item a").click();
    await page.waitForURL(/item=minecraft/);
    await page.getByRole("link", { name: "Prices of an item" }).click();
    await page.waitForURL(/view=prices.*item=minecraft/);
    await page.locator(".found:not([aria-busy])").waitFor();
    await checks("prices");
    if (process.env.BOARD_PICTURES) await page.screenshot({ path: `${process.env.BOARD_PICTURES}/prices-${colorScheme}.png` });
    await context.close();
  }
  assert.deepEqual(errors, []);
});
