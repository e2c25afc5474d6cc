// A market under load for as long as it is told, and whether everything is back where it belongs when it is over:
//   node soak.mjs [--seconds 30] [--clients 200] [--scoreboard] [--server build/dev/ordomart-server] [--seed 1]
// Players buy, sell, turn pages, search, ask again and again, leave and break off in the middle; some tools open the
// event stream and never read it. Money and pieces must balance to the last one, threads, memory and open files come
// back, and the server tick 20 times a second throughout. Ends with 1 and says what is wrong, or with 0.
import { connect } from "node:net";
import path from "node:path";
import { setTimeout as rest } from "node:timers/promises";
import { fileURLToPath } from "node:url";
import { parseArgs } from "node:util";

import { countshops, makedirectory, Server } from "./market.mjs";

const root = path.resolve(path.dirname(fileURLToPath(import.meta.url)), "../..");
const { values: told } = parseArgs({
  options: {
    seconds: { type: "string", default: "30" }, clients: { type: "string", default: "200" }, seed: { type: "string", default: "1" },
    scoreboard: { type: "boolean", default: false }, server: { type: "string", default: path.join(root, "build/dev/ordomart-server") },
    // Under a sanitizer a tick may be late and memory is kept for its own books.
    sanitized: { type: "boolean", default: false },
  },
});
const clients = Number(told.clients), seconds = Number(told.seconds);
const purse = 100000, wheat = 64, slots = 9, wheatslots = 5;

let dice = Number(told.seed);
const below = (n) => {  // a small generator that a seed repeats
  dice = (Math.imul(dice, 1664525) + 1013904223) >>> 0;
  return Math.floor((dice / 2 ** 32) * n);
};

const { directory, removed } = await makedirectory();
const server = await Server.start(told.server, directory, !told.scoreboard);
const faults = [];
const check = (holds, text) => { if (!holds) faults.push(text); };
const nameof = (number) => `Soak${number}`;
const of = (number, rest = "") => `/api/players/${nameof(number)}${rest}`;

async function joins(number) {
  const device = number % 2 ? "touch" : "desktop";
  const answer = await server.call("POST", "/api/players", { name: nameof(number), device });
  check(answer.status === 200, `${nameof(number)} could not join: ${answer.error}`);
}
async function equips(number) {
  for (let slot = 0; slot < wheatslots; ++slot)
    await server.call("PUT", of(number, "/inventory"), { slot, item: "wheat", count: wheat });
  await (told.scoreboard ? server.call("PUT", of(number, "/score"), { objective: "money", value: purse })
    : server.call("PUT", of(number, "/money"), { amount: purse }));
}
const moneyof = async (number) => (told.scoreboard
  ? (await server.call("GET", of(number, "/score?objective=money"))).value : (await server.call("GET", of(number, "/money"))).amount);

// ---- what players do; each is one visit to the market

const formof = async (number) => (await server.call("GET", of(number))).form?.json;
const parsed = (form) => (typeof form === "string" ? JSON.parse(form) : form);
async function waits(number) {
  for (let i = 0; i < 40; ++i) {
    const form = parsed(await formof(number));
    if (form) return form;
    await rest(50);
  }
  return null;
}
const types = (number, line) => server.call("POST", of(number, "/command"), { line });
const answers = (number, answer) => server.call("POST", of(number, "/answer"), { answer });
async function dismisses(number) {
  for (let i = 0; i < 6 && await formof(number); ++i) await answers(number, null);
  await server.call("POST", of(number, "/close"));
}
const filled = (form, value) => form.content.map((element) => (
  element.type === "label" ? null : element.type === "input" ? value : element.default ?? 0));

async function listed(number, button) {
  await types(number, "ordomart formmenu");
  if (!await waits(number)) return null;
  await answers(number, button);
  const list = await waits(number);
  return list?.buttons?.length > 1 ? list : null;
}
async function buysbyform(number) {
  const list = await listed(number, 0);
  if (list) {
    await answers(number, list.buttons.length - 1 - below(Math.min(20, list.buttons.length - 1)));
    const form = await waits(number);
    if (form?.type === "custom_form") await answers(number, filled(form, String(1 + below(4))));
  }
  await dismisses(number);
}
async function sellsbyform(number) {
  const list = await listed(number, 1);
  if (list) {
    await answers(number, below(list.buttons.length));
    const form = await waits(number);
    if (form?.type === "custom_form")
      await answers(number, form.content.map((e) => (e.type === "slider" ? below(Math.min(3, e.max + 1)) : null)));
  }
  await dismisses(number);
}
async function buysfromchest(number) {
  await types(number, "ordomart buy");
  await rest(600);
  if (below(2)) {
    await server.call("POST", of(number, "/click"), { container: "hotbar", slot: below(2) ? 8 : 3, how: "click" });
    await rest(300);
  }
  await server.call("POST", of(number, "/click"), { container: "inventory", slot: 9 + below(26), how: "click" });
  const form = await waits(number);
  if (form?.type === "custom_form") await answers(number, filled(form, String(1 + below(3))));
  await dismisses(number);
}
async function searches(number) {
  await types(number, `ordomart search ${below(2) ? "sell" : "recycle"} Good`);
  await rest(500);
  await dismisses(number);
}
async function loops(number) {
  for (let i = 0; i < 20; ++i) {
    await types(number, "ordomart formmenu");
    await answers(number, 0);
  }
  await dismisses(number);
}
async function breaksoff(number) {
  await types(number, below(2) ? "ordomart buy" : "ordomart formmenu");
  if (below(2)) await answers(number, 0);
  await server.call("DELETE", of(number));
  await rest(100 + below(400));
  await joins(number);
}
const visits = [buysbyform, buysbyform, sellsbyform, sellsbyform, buysfromchest, buysfromchest, searches, loops, breaksoff];

// ---- the run

await Promise.all(Array.from({ length: clients }, (_, number) => joins(number)));
for (let number = 0; number < clients; ++number) await equips(number);
await rest(1000);
const before = await server.holds();

const slow = Array.from({ length: 8 }, (_, number) => {
  const socket = connect(Number(server.address.port), server.address.hostname);
  socket.on("error", () => {});
  socket.write(`GET /api/events?player=${nameof(number)}&log=1&token=${server.token} HTTP/1.1\r\nHost: ${server.address.host}\r\n\r\n`);
  socket.pause();
  return socket;
});

const end = Date.now() + 1000 * seconds;
let most = before.threads;
let visited = 0;
const first = { tick: (await server.call("GET", "/api/server")).tick, at: Date.now() };
let slowest = Infinity;
const watch = (async () => {
  for (let last = first; Date.now() < end;) {
    await rest(2000);
    const now = { tick: (await server.call("GET", "/api/server")).tick, at: Date.now() };
    slowest = Math.min(slowest, (now.tick - last.tick) / ((now.at - last.at) / 1000));
    most = Math.max(most, (await server.holds()).threads);
    last = now;
  }
})();
await Promise.all(Array.from({ length: clients }, async (_, number) => {
  await rest(below(1500));
  while (Date.now() < end) {
    await visits[below(visits.length)](number);
    visited += 1;
    await rest(200 + below(1500));
  }
}));
await watch;
for (const socket of slow) socket.destroy();

// ---- the count

let money = 0, wheatheld = 0, goodsheld = 0;
for (let number = 0; number < clients; ++number) {
  await dismisses(number);
  money += await moneyof(number);
  // A click behind a menu that has just closed takes a stack up: the cursor counts, too.
  const { slots: [...held] } = await server.call("GET", of(number, "/inventory"));
  held.push((await server.call("GET", of(number))).slots.cursor[0]);
  for (const slot of held)
    if (slot?.item === "minecraft:wheat") wheatheld += slot.count;
    else if (slot) goodsheld += slot.count;
}
for (const { item, count } of (await server.call("GET", "/api/dropped")).items)
  if (item === "minecraft:wheat") wheatheld += count;
  else goodsheld += count;
for (let number = 0; number < clients; ++number) await server.call("DELETE", of(number));

server.agent.destroy();  // the callers' own connections
let after = await server.holds();
for (let i = 0; i < 40 && (after.threads > before.threads || after.files > before.files); ++i) {
  await rest(500);
  after = await server.holds();
}
const status = await server.stop();
const shops = await countshops(directory);
check(status === 0, `the server ended with ${status}`);
check(shops.goods === goodsheld, `${shops.goods} goods left the shops, players hold ${goodsheld}`);
check(shops.taken + wheatheld === clients * wheat * wheatslots, `wheat: ${shops.taken} taken in and ${wheatheld} held of ${clients * wheat * wheatslots}`);
check(money === clients * purse - shops.income + shops.paid,
  `players have ${money}, their trades leave ${clients * purse - shops.income + shops.paid}`);
check(server.failures === 0, `${server.failures} calls were not answered`);
check(shops.goods > 0 && shops.taken > 0, "nothing was traded");
check(most <= before.threads + 16, `${most} threads under load, ${before.threads} before`);
check(after.threads <= before.threads, `${after.threads} threads are left, there were ${before.threads}`);
check(after.files <= before.files, `${after.files} files are left open, there were ${before.files}`);
if (!told.sanitized) {
  check(after.megabytes <= before.megabytes + 48, `${after.megabytes} MB are left, there were ${before.megabytes}`);
  check(slowest >= 19, `${slowest.toFixed(1)} ticks a second in the worst two seconds`);
}
console.log(`${told.scoreboard ? "scoreboard" : "LLMoney"}: ${clients} players, ${seconds} s, ${visited} visits, ${server.calls} calls; `
  + `${shops.goods} pieces bought for ${shops.income}, ${shops.taken} sold for ${shops.paid}; `
  + `threads ${before.threads} / ${most} / ${after.threads}, MB ${before.megabytes} / ${after.megabytes}, `
  + `ticks a second at least ${slowest.toFixed(1)}`);
for (const fault of faults) console.error(`WRONG: ${fault}`);
await removed();
process.exitCode = faults.length ? 1 : 0;
