// What goes wrong around a page and what a person does by mistake: a server that is started anew, wrong tokens, fields left
// empty, narrow windows, a server that stands still.
import assert from "node:assert/strict";
import { beforeEach, test } from "node:test";

import { money, onpages, play, purse } from "./play.mjs";
import { joins } from "./stage.mjs";

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
