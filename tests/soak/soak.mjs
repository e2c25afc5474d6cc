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
import { crowd, seeded, wrongwith } from "./visits.mjs";

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
const below = seeded(Number(told.seed));

const { directory, removed } = await makedirectory();
const server = await Server.start(told.server, directory, !told.scoreboard);
const faults = [];
const check = (holds, text) => { if (!holds) faults.push(text); };
const { nameof, of, joins, equips, holds: playershold, visits } = crowd({ server }, below, told.scoreboard);

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

const held = await playershold(clients);
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
faults.push(...wrongwith(held, shops, clients));
check(server.failures === 0, `${server.failures} calls were not answered`);
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
