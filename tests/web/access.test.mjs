// What axe finds on the page in all of its states, light and dark, wide and narrow: nothing. And what it does not look at:
// the contrast of edges and signs.
import assert from "node:assert/strict";
import { readFile } from "node:fs/promises";
import { createRequire } from "node:module";
import { test } from "node:test";

import { onpages, play } from "./play.mjs";
import { joins, Player } from "./stage.mjs";

const axe = await readFile(createRequire(import.meta.url).resolve("axe-core/axe.min.js"), "utf8");
const windows = { wide: { width: 1280, height: 860 }, narrow: { width: 390, height: 844 } };

onpages();

async function finds(page) {
  const { violations, passes } = await page.evaluate(() => globalThis.axe.run(document, { resultTypes: ["violations"] }));
  assert.ok(passes.length > 10, "it has looked");
  return violations.flatMap(({ id, nodes }) => nodes.map(({ target, failureSummary }) => `${id}: ${target} ${failureSummary}`));
}

// Of what stands out from its ground by its edge or its shape: { name, ratio } of each.
const edges = () => {
  const canvas = document.createElement("canvas").getContext("2d", { willReadFrequently: true });
  const luminance = (colour) => {
    canvas.fillStyle = colour;
    canvas.fillRect(0, 0, 1, 1);
    const [r, g, b] = [...canvas.getImageData(0, 0, 1, 1).data].map((v) => (v / 255 <= 0.04045 ? v / 255 / 12.92 : ((v / 255 + 0.055) / 1.055) ** 2.4));
    return 0.2126 * r + 0.7152 * g + 0.0722 * b;
  };
  const ratio = (one, other) => {
    const [low, high] = [luminance(one), luminance(other)].sort((a, b) => a - b);
    return (high + 0.05) / (low + 0.05);
  };
  const ground = (element) => {
    for (let at = element; at; at = at.parentElement) {
      const { backgroundColor } = getComputedStyle(at);
      if (!/, 0\)$|transparent/.test(backgroundColor)) return backgroundColor;
    }
    return "white";
  };
  const found = [];
  for (const element of document.querySelectorAll(".slot, .tile, input:not([type=radio], [type=checkbox], [type=range]), select, textarea")) {
    if (!element.checkVisibility()) continue;
    const style = getComputedStyle(element), name = element.dataset.slot ?? `${element.tagName} ${element.className}`;
    for (const side of ["Top", "Right", "Bottom", "Left"])
      found.push({ name: `${name} ${side}`, ratio: parseFloat(style[`border${side}Width`]) >= 1 ? ratio(style[`border${side}Color`], ground(element.parentElement)) : 1 });
  }
  for (const sign of document.querySelectorAll(".ghost")) found.push({ name: "an empty slot's sign", ratio: ratio(getComputedStyle(sign).fill, ground(sign.closest(".slot"))) });
  return found;
};

// Every state of the page, by way of one player who walks from each to the next.
async function walks(page, checks, server) {
  const operator = page.getByRole("button", { name: "Operator", exact: true });
  await page.locator(".empty").waitFor();
  await checks("nobody joined");
  await page.locator("[data-t=joinother]").click();
  await page.locator("dialog.join").waitFor();
  await checks("joining");
  await page.keyboard.press("Escape");
  await page.locator("[data-action=first]").click();
  const alice = new Player(page, "Alice");
  await alice.card.waitFor();
  await checks("joined");
  await alice.types("nonsense");
  await alice.chat.locator(".refused").first().waitFor();
  await alice.types("ordomart buy");
  await alice.card.locator(".slot-inventory.full").first().waitFor();
  await alice.slot("inventory", 9).hover();
  await page.locator(".tooltip").waitFor();
  await checks("a menu and a tooltip");
  await alice.slot("inventory", 9).click();
  await alice.asked("Purchase goods");
  await alice.form.locator("input").fill("12");
  await checks("a form that asks");
  await alice.form.getByRole("button", { name: "Close" }).click();
  await alice.form.waitFor({ state: "detached" });
  const bo = await joins(page, { name: "Bo", device: "touch", permission: "2" });
  await bo.types("ordomart formmenu");
  await bo.asked("Main menu");
  await bo.chooses(/Selling/);
  await bo.asked("Orchard apples");
  await checks("a form with goods");
  await operator.click();
  for (const tab of ["Players", "Give", "Scores", "Time", "Log"]) {
    await page.getByRole("tab", { name: tab }).click();
    await checks(`the operator's ${tab}`);
  }
  const desk = page.getByRole("button", { name: "Desk", exact: true });
  await desk.click();
  for (const view of await page.locator(".desknav button").evaluateAll((buttons) => buttons.map(({ dataset }) => dataset.view))) {
    await page.locator(`.desknav [data-view="${view}"]`).click();
    await page.locator(".deskcontent > *, .deskview[data-view=prices]").first().waitFor();
    await checks(`the desk's ${view}`);
  }
  await desk.click();
  await page.getByRole("tab", { name: "Give" }).click();
  await page.getByRole("searchbox").fill("wool");
  await page.locator('[data-item="minecraft:wool"]').click();
  await checks("an item chosen");
  await page.getByRole("searchbox").fill("no such thing");
  await page.getByText("No item is called that").waitFor();
  await page.getByLabel("As SNBT").check();
  await checks("nothing to give");
  await page.getByRole("tab", { name: "Players" }).click();
  await page.locator("[data-row=Bo]").getByRole("button", { name: "Kill" }).click();
  await page.getByRole("alertdialog").waitFor();
  await checks("asked");
  await page.getByRole("alertdialog").getByRole("button", { name: "Kill" }).click();
  await page.locator("[data-player=Bo] .badge.bad:visible").waitFor();
  await server.call("POST", "/api/speed", { paused: true });
  await page.locator(".halted button").waitFor();
  await checks("paused, and one is dead");
  await server.call("POST", "/api/speed", { paused: false });
  await server.call("POST", "/api/players/Bo/revive");
  const begin = await server.end();
  await page.locator('.connection[data-state="lost"]').waitFor();
  await checks("the server is away");
  await begin();
  await page.locator(".again:visible").waitFor();
  await checks("started anew");
  await page.goto(`${server.origin}/#token=0123`);
  await page.locator(".tokenpage", { hasText: "does not know" }).waitFor();
  await checks("a wrong token");
}

for (const [name, viewport] of Object.entries(windows))
  test(`axe finds nothing, and edges are seen, in a ${name} window`, { timeout: 180000 }, async () => {
    await play.page.close();  // it would complain of the server that is away
    const { server } = play, context = await play.browser.newContext({ viewport, locale: "en-GB", reducedMotion: "reduce" });
    context.setDefaultTimeout(30000);
    await context.addInitScript(axe);
    const page = await context.newPage(), found = [];
    await page.goto(server.address);
    await walks(page, async (state) => {
      for (const colorScheme of ["light", "dark"]) {
        await page.emulateMedia({ colorScheme });
        found.push(...(await finds(page)).map((what) => `${state}, ${colorScheme}: ${what}`));
        for (const { name: edge, ratio } of await page.evaluate(edges))
          if (ratio < 3) found.push(`${state}, ${colorScheme}: ${edge} has a contrast of ${ratio.toFixed(2)}`);
      }
    }, server);
    await context.close();
    assert.deepEqual([...new Set(found)], []);
  });
