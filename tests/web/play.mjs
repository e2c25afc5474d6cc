// What every test of the page in a browser has around it: a server and a browser for the file; for each test a page, on
// which nothing may go wrong, and afterwards nobody left on the server.
import assert from "node:assert/strict";
import { after, afterEach, before, beforeEach } from "node:test";

import { startbrowser, startserver } from "./stage.mjs";

export const purse = 5000;  // what the demo market welcomes a player with

// The server, page and so on of the test that runs. `errors`: what the page complained of.
export const play = {};

// Opens a page on which nothing may go wrong.
async function watched(context) {
  const page = await context.newPage();
  const { errors, server } = play;
  page.on("pageerror", (error) => errors.push(error.message));
  page.on("console", (message) => message.type() === "error" && errors.push(message.text()));
  page.on("request", (request) => new URL(request.url()).origin !== server.origin && errors.push(`a request to ${request.url()}`));
  await page.goto(server.address);
  return page;
}

// One more page beside the test's own, in a browser that speaks `locale`.
export async function opens({ locale }) {
  const context = await play.browser.newContext({ locale, reducedMotion: "reduce", viewport: { width: 800, height: 600 } });
  context.setDefaultTimeout(30000);
  return watched(context);
}

export function onpages(serverarguments = []) {
  before(async () => {
    play.server = await startserver(serverarguments);
    play.browser = await startbrowser();
  });
  after(async () => {
    await play.browser?.close();
    await play.server?.stop();
  });
  beforeEach(async () => {
    play.context = await play.browser.newContext({ locale: "en-GB", viewport: { width: 1400, height: 1000 } });
    play.context.setDefaultTimeout(30000);
    play.errors = [];
    play.page = await watched(play.context);
  });
  afterEach(async () => {
    await play.context.close();
    for (const { name, joined } of (await play.server.call("GET", "/api/players")).players)
      if (joined) await play.server.call("DELETE", `/api/players/${encodeURIComponent(name)}`);
    assert.deepEqual(play.errors, []);
  });
}

const asked = (name, part) => play.server.call("GET", `/api/players/${encodeURIComponent(name)}${part}`);

export const money = (player, amount) => player.card.locator(`.money[data-amount="${amount.toLocaleString("en")}"]`).waitFor();
export const moneyof = async (name) => (await asked(name, "/money")).amount;
export const count = (name, item) => asked(name, "/inventory")
  .then(({ slots }) => slots.filter((stack) => stack?.item === item).reduce((sum, stack) => sum + stack.count, 0));
export const formof = async (name) => (await asked(name, "")).form;
