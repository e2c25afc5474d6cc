// Takes the pictures of docs/screenshots: the page in its main states, played by hand like the tests do. Names of scenes
// as arguments take only those again. Desk and board are shown on a market that has bustled for three weeks of a clock that is
// moved by hand. PICTURES names another folder. `--menus FOLDER [LOOK ...]` takes every menu there is into another folder, as the walk
// of the tests comes by, for somebody to look at.
import { mkdir } from "node:fs/promises";
import path from "node:path";
import { fileURLToPath } from "node:url";

import { joins, Player, startbrowser, startserver } from "./stage.mjs";
import { combinations, fillsharedshop, walk } from "./walkers.mjs";

const folder = process.env.PICTURES ?? path.resolve(path.dirname(fileURLToPath(import.meta.url)), "../../docs/screenshots");
await mkdir(folder, { recursive: true });

// The market refuses who comes back too fast, and a picture of a sale should not show that.
const personspace = 3000;
const wide = { width: 1360, height: 860 }, phone = { width: 390, height: 844 };
async function opensgoods(player) {
  await player.types("ordomart buy");
  await player.card.locator('.slot-inventory.full [class~="shine"]').first().waitFor();
}

// One page in one look; `play(page, shot)` plays it and takes the pictures.
async function scene(browser, server, { viewport = wide, colorScheme = "light", locale = "en-GB", hasTouch = false }, play) {
  const context = await browser.newContext({ viewport, colorScheme, locale, hasTouch, reducedMotion: "reduce", deviceScaleFactor: viewport === phone ? 2 : 1 });
  const page = await context.newPage();
  await page.goto(server.address);
  await play(page, async (name) => {
    await page.evaluate(() => document.fonts.ready);
    await page.screenshot({ path: path.join(folder, `${name}.png`) });
  }, server);
  await context.close();
  if (server.bustles) return;
  for (const { name, joined } of (await server.call("GET", "/api/players")).players)
    if (joined) await server.call("DELETE", `/api/players/${encodeURIComponent(name)}`);
}

const looksatgoods = (name) => async (page, shot) => {
  await page.locator("[data-action=first]").click();
  const alice = new Player(page, "Alice");
  await alice.card.waitFor();
  await opensgoods(alice);
  await alice.slot("inventory", 24).hover();
  await page.locator(".tooltip").waitFor();
  await shot(name);
};

const scenes = {
  start: [{}, async (page, shot) => {
    await page.locator(".empty").waitFor();
    await shot("start");
    await page.locator("[data-t=joinother]").click();
    await page.locator("dialog.join").waitFor();
    await shot("join");
  }],
  light: [{}, looksatgoods("goods-light")],
  dark: [{ colorScheme: "dark" }, looksatgoods("goods-dark")],
  forms: [{}, async (page, shot) => {
    const alice = await joins(page, { name: "Alice" });
    await alice.types("ordomart formmenu");
    await alice.asked("Main menu");
    await shot("form-menu");
    await alice.chooses(/Selling/);
    await alice.asked("Orchard apples");
    await shot("form-goods");
    await alice.form.getByRole("button", { name: "Close" }).click();
    await alice.asked("Main menu");
    await alice.form.getByRole("button", { name: "Close" }).click();
    await alice.form.waitFor({ state: "detached" });
    await alice.types("ordomart filter");
    await alice.form.locator("form").waitFor();
    await page.mouse.move(0, 0);
    await shot("form-filter");
  }],
  sale: [{}, async (page, shot) => {
    const alice = await joins(page, { name: "Alice" }), rosa = await joins(page, { name: "Rosa" });
    await rosa.money.waitFor();
    const before = await rosa.money.getAttribute("data-amount");
    await opensgoods(alice);
    await alice.slot("inventory", 9).click();
    await alice.asked("Purchase goods");
    await alice.form.locator("input").fill("12");
    await shot("sale-asked");
    await page.waitForTimeout(personspace);
    await alice.form.locator("button.main").click();
    await page.locator(`[data-player=Rosa] .money:not([data-amount="${before}"])`).waitFor();
    await alice.card.locator(".slot-inventory.full").first().waitFor();
    await shot("sale-done");
  }],
  owner: [{}, async (page, shot) => {
    const rosa = await joins(page, { name: "Rosa" });
    await rosa.types("ordomart myshop");
    await rosa.slot("inventory", 9).and(page.locator(".full")).waitFor();
    await rosa.slot("inventory", 16).hover();
    await page.locator(".tooltip").waitFor();
    await shot("owner-shop");
    await page.waitForTimeout(personspace);
    await rosa.slot("inventory", 9).click();
    await rosa.asked("Adjust items on sale");
    await page.mouse.move(0, 0);
    await shot("owner-adjust");
    await rosa.form.getByRole("button", { name: "Close" }).click();
    await rosa.slot("inventory", 9).and(page.locator(".full")).waitFor();
    await rosa.slot("armor", 2).click();
    await rosa.card.getByRole("button", { name: /Pick up recycled items/ }).waitFor();
    await rosa.slot("inventory", 9).hover();
    await page.locator(".tooltip").waitFor();
    await shot("owner-recycle");
    await page.keyboard.press("Escape");
    await page.locator(".menuopen").waitFor({ state: "detached" });
    await rosa.types("ordomart formmenu");
    await rosa.asked("Main menu");
    await rosa.chooses(/My shop/);
    await rosa.asked("Restock");
    await shot("owner-form");
  }],
  ownerchinese: [{ locale: "zh-CN", colorScheme: "dark" }, async (page, shot) => {
    const owner = await joins(page, { name: "小清", language: "zh_CN", device: "touch" });
    await owner.types("ordomart formmenu");
    await owner.asked("主菜单");
    await owner.chooses(/我的商店/);
    await owner.asked("补货");
    await shot("owner-chinese");
  }],
  operator: [{ colorScheme: "dark", viewport: { width: 1500, height: 900 } }, async (page, shot) => {
    await page.locator("[data-t=operator]").first().click();
    const greta = await joins(page, { name: "Greta", permission: "2" });
    await opensgoods(greta);
    await page.getByRole("tab", { name: "Give" }).click();
    await page.getByRole("searchbox").fill("wo");
    await page.locator('[data-item="minecraft:wool"]').click();
    await shot("operator-give");
    await page.getByRole("tab", { name: "Log" }).click();
    await page.getByRole("button", { name: "Clear" }).click();  // the start names the directory of the day
    const rosa = await joins(page, { name: "Rosa" });
    await opensgoods(rosa);
    await page.locator(".logline", { hasText: "query" }).waitFor();
    await shot("operator-log");
    await page.getByRole("tab", { name: "Players" }).click();
    await page.locator("[data-row=Rosa]").waitFor();
    await shot("operator-players");
  }],
  phone: [{ viewport: phone, hasTouch: true }, async (page, shot) => {
    const dora = await joins(page, { name: "Dora", device: "touch" });
    await opensgoods(dora);
    await dora.slot("inventory", 9).tap();
    await page.locator(".tooltip").waitFor();
    await shot("phone-goods");
    await dora.slot("inventory", 9).dblclick();
    await dora.asked("Purchase goods");
    await dora.form.scrollIntoViewIfNeeded();
    await shot("phone-form");
  }],
  chinese: [{ locale: "zh-CN", colorScheme: "dark" }, async (page, shot) => {
    const lan = await joins(page, { name: "Lan", language: "zh_CN" });
    await opensgoods(lan);
    await lan.slot("inventory", 9).click();
    await lan.form.waitFor();
    await lan.form.locator("input").fill("5");
    await shot("chinese");
  }],
  recycling: [{}, async (page, shot) => {
    const ben = await joins(page, { name: "Ben" });
    await ben.types("ordomart search grain");
    await ben.form.locator("select").waitFor();
    await ben.form.locator("input[type=text]").fill("grain");
    await ben.form.locator("select").selectOption({ label: "Recycle" });
    await ben.form.getByRole("switch").last().check();
    await shot("search-form");
    await page.keyboard.press("Escape");
    await ben.form.waitFor({ state: "detached" });
    await ben.types("ordomart formmenu");
    await ben.asked("Main menu");
    await ben.chooses(/Recycle/);
    await ben.asked("Wheat for the bakery");
    await ben.chooses(/Wheat for the bakery/);
    await ben.asked("Sell items");
    await ben.form.getByRole("slider").fill("25");
    await shot("recycle-form");
    await ben.form.getByRole("button", { name: "Submit" }).click();
    await ben.form.locator(".modalbuttons").waitFor();
    await ben.card.locator('.money[data-amount="5,075"]').waitFor();
    await shot("result-dialog");
  }],
};

// All items of the table by their kinds, to be told apart by whoever looks at it.
async function sheet(page, shot) {
  await page.locator(".empty").waitFor();
  await page.evaluate(async () => {
    const { picture } = await import("/drawing.js"), { rows, whenhere } = await import("/items.js");
    await new Promise((here) => { whenhere(here); });
    const place = document.createElement("main");
    place.style = "display: grid; grid-template-columns: repeat(37, 1fr); gap: 3px; padding: 9px; background: var(--raised)";
    for (const { item, variants } of [...rows()].sort((one, other) => one.kind.localeCompare(other.kind))) {
      const slot = document.createElement("span");
      slot.className = "slot";
      slot.append(picture(item, variants[0]?.aux));
      place.append(slot);
    }
    document.body.replaceChildren(place);
  });
  await shot("items");
}
scenes.items = [{ viewport: { width: 1360, height: 1180 } }, sheet];

// ---- a market that bustles

const days = 21, ticksaday = 2000, day = 86400000;

async function bustlingserver() {
  const server = await startserver(["--manual", "--bustle", "16", "--board", "0", "--quiet"]);
  for (let passed = 0; passed < days; ++passed) {
    if (passed > 0) await server.call("POST", "/api/clock", { milliseconds: day });
    await server.call("POST", "/api/ticks", { count: ticksaday });
  }
  return Object.assign(server, { bustles: true });
}

const broad = { viewport: { width: 1280, height: 860 } }, handheld = { viewport: phone, hasTouch: true };

async function opensdesk(page, view) {
  await page.getByRole("button", { name: /^(Desk|管理台)$/ }).click();
  await page.locator(`.desknav [data-view="${view}"]`).click();
  await page.locator(`.deskview[data-view="${view}"]`).waitFor();
}
const showsview = (name, view) => async (page, shot) => {
  await opensdesk(page, view);
  await page.locator(".deskview :is(.desktable, .figures)").first().waitFor();
  if (["flows", "prices"].includes(view)) await page.locator(".plot canvas").nth(1).waitFor();
  await shot(name);
};
const showsprices = (name) => async (page, shot) => {
  await opensdesk(page, "prices");
  const prices = page.locator('.deskview[data-view="prices"]');
  await prices.locator("datalist option").nth(99).waitFor({ state: "attached" });
  await prices.getByLabel("Item").fill("Iron Ingot");
  await prices.getByRole("button", { name: "Show" }).click();
  await page.locator(".plot canvas").nth(1).waitFor();
  await page.mouse.move(0, 0);
  await shot(name);
};
const showsboard = (name, query = "") => async (page, shot, server) => {
  await page.goto(`${server.board}${query}`);
  await page.locator(".boardcard, .boardtable").first().waitFor();
  await shot(name);
};

const bustling = {
  desktrades: [broad, showsview("desk-trades", "trades")],
  deskprices: [broad, showsprices("desk-prices")],
  board: [broad, showsboard("board")],
};
// Whatever else there is to look at, in PICTURES alone.
const others = {
  ...Object.fromEntries(["market", "now", "flows", "goods", "top-shops", "shops", "server"].map((view) => [`desk${view}`, [broad, showsview(`desk-${view}`, view)]])),
  ...Object.fromEntries(["market", "now", "flows", "goods", "shops"].map((view) => [`phone${view}`, [handheld, showsview(`phone-desk-${view}`, view)]])),
  phoneprices: [handheld, showsprices("phone-desk-prices")],
  boardphone: [handheld, showsboard("phone-board")],
  boardcommissions: [broad, showsboard("board-commissions", "?view=commissions")],
  boardprices: [broad, showsboard("board-prices", "?view=prices&item=minecraft:iron_ingot")],
  boardpricesphone: [handheld, showsboard("phone-board-prices", "?view=prices&item=minecraft:iron_ingot")],
  boardchinese: [{ ...broad, locale: "zh-CN" }, showsboard("board-chinese")],
  deskchinese: [{ ...broad, locale: "zh-CN", colorScheme: "dark" }, showsview("desk-chinese", "goods")],
  bustle: [broad, async (page, shot) => {
    await page.locator(".empty").waitFor();
    await page.getByRole("button", { name: "Bustling market" }).first().waitFor();
    await shot("bustle-start");
    await page.getByRole("button", { name: "Bustling market" }).first().click();
    await page.locator("[data-dialogue=bustle] button.main").waitFor();
    await shot("bustle-dialogue");
  }],
  players: [broad, async (page, shot) => {
    await page.locator("[data-t=operator]").first().click();
    await page.getByRole("tab", { name: "Players" }).click();
    await page.locator("[data-row=Mila]").waitFor();
    await shot("bustle-players");
  }],
};
if (process.env.PICTURES) Object.assign(bustling, others);

async function everymenu(server, browser, into, looks) {
  await mkdir(into, { recursive: true });
  await fillsharedshop(server);
  for (const combination of combinations.filter(({ look }) => looks.length === 0 || looks.includes(look))) {
    const context = await browser.newContext({ locale: combination.locale, viewport: { width: 1000, height: 900 }, reducedMotion: "reduce" });
    const page = await context.newPage();
    await page.goto(server.address);
    const seen = (picture, _, player) => player.card.screenshot({ path: path.join(into, `${picture.replace(/\W+/g, "-")}.png`) });
    await walk(server, page, { ...combination, chestsonly: false }, { seen });
    await context.close();
  }
}

async function takescenes(start, browser, table, asked) {
  const chosen = Object.entries(table).filter(([name]) => asked.length === 0 || asked.includes(name));
  if (chosen.length === 0) return;
  const server = await start();
  try {
    for (const [, [look, play]] of chosen) await scene(browser, server, look, play);
  } finally {
    await server.stop();
  }
}

const [first, into, ...looks] = process.argv.slice(2), every = first === "--menus", asked = process.argv.slice(2);
const all = { ...scenes, ...bustling };
if (!every) for (const name of asked) if (!(name in all)) throw new Error(`no scene is called ${name}: ${Object.keys(all).join(", ")}`);
const browser = await startbrowser();
try {
  if (every) {
    const server = await startserver(["--manual"]);
    await everymenu(server, browser, into, looks).finally(() => server.stop());
  } else {
    await takescenes(() => startserver(), browser, scenes, asked);
    await takescenes(bustlingserver, browser, bustling, asked);
  }
} finally {
  await browser.close();
}
