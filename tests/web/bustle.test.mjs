// The bustling market: it says what it does, fills the desk without a card, and ends; where there is no demo there is none.
import assert from "node:assert/strict";
import { test } from "node:test";

import { onpages, play } from "./play.mjs";
import { startserver } from "./stage.mjs";

onpages();

test("a newcomer lets people in, sees them trade and sends them away", async () => {
  const { page, server } = play;
  const dialogue = page.locator("[data-dialogue=bustle]"), state = () => server.call("GET", "/api/bustle");
  await page.locator(".empty").getByRole("button", { name: "Bustling market" }).click();
  await dialogue.getByText("out of nothing").waitFor();
  assert.equal((await state()).players, 0);
  await dialogue.getByLabel("Players at a time").fill("8");
  await dialogue.getByRole("button", { name: "Let them in" }).click();
  await page.locator(".deskhead").getByRole("button", { name: "Bustling market: 8 players" }).waitFor();
  await page.locator('.desknav [data-view="now"]').click();
  await page.locator(".desktable tbody tr").nth(10).waitFor();
  assert.equal(await page.locator("[data-player]").count(), 0);

  await page.getByRole("button", { name: "Operator" }).click();
  await page.getByRole("tab", { name: "Players" }).click();
  await page.locator("[data-row]", { hasText: "playing" }).nth(7).waitFor();
  await page.locator(".deskhead").getByRole("button", { name: /^Bustling market/ }).click();
  await dialogue.getByText("Players here: 8 of 8").waitFor();
  await dialogue.getByRole("button", { name: "Send them away" }).click();
  await page.locator(".deskhead").getByRole("button", { name: "Bustling market", exact: true }).waitFor();
  assert.ok((await state()).trades > 0);
  assert.ok((await server.call("GET", "/api/players")).players.every(({ online }) => !online));
});

test("where there is no demo, it says why there is none", async () => {
  const server = await startserver(["--empty"]);
  try {
    const page = await play.context.newPage();
    await page.goto(server.address);
    await page.locator(".empty").waitFor();
    await page.getByRole("button", { name: "Desk", exact: true }).click();
    await page.locator(".deskhead").getByRole("button", { name: "Bustling market" }).click();
    const dialogue = page.locator("[data-dialogue=bustle]");
    await dialogue.getByText("only for a demo market").waitFor();
    assert.deepEqual(await dialogue.getByRole("button").allTextContents(), ["Close"]);
    await page.close();
  } finally {
    await server.stop();
  }
});
