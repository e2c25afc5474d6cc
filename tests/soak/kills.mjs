// A market in real time whose server is killed in the middle of everything, again and again, in one directory:
//   node kills.mjs [--rounds 5] [--clients 20] [--scoreboard] [--server build/dev/ordomart-server] [--seed 1]
// After each kill it is started again and everything is counted: money and pieces must fit what the shops say, to the
// last one. Every second time the start after a kill is killed, too. Ends with 1 and says what is wrong, or with 0.
import path from "node:path";
import { setTimeout as rest } from "node:timers/promises";
import { fileURLToPath } from "node:url";
import { parseArgs } from "node:util";

import { countshops, makedirectory, Server } from "./market.mjs";
import { crowd, seeded, wrongwith } from "./visits.mjs";

const root = path.resolve(path.dirname(fileURLToPath(import.meta.url)), "../..");
const { values: told } = parseArgs({
  options: {
    rounds: { type: "string", default: "5" }, clients: { type: "string", default: "20" }, seed: { type: "string", default: "1" },
    scoreboard: { type: "boolean", default: false }, server: { type: "string", default: path.join(root, "build/dev/ordomart-server") },
  },
});
const clients = Number(told.clients);
const below = seeded(Number(told.seed));
const { directory, removed } = await makedirectory();
const market = {};
const players = crowd(market, below, told.scoreboard);
const all = (work) => Promise.all(Array.from({ length: clients }, (_, number) => work(number)));

async function starts() {
  market.server = await Server.start(told.server, directory, !told.scoreboard);
}
async function iskilled() {
  market.server.child.kill("SIGKILL");
  await market.server.ended;
  market.server.agent.destroy();
}

let faults = [];
let round = 0, kills = 0, last = null;
await starts();
for (let number = 0; number < clients; ++number) {
  await players.joins(number);
  await players.equips(number);
}
await rest(200);
for (; round < Number(told.rounds) && !faults.length; ++round) {
  if (round > 0) {
    await starts();
    await all(players.joins);
  }
  let open = true;
  const busy = all(async (number) => {
    while (open) {
      await players.visits[below(players.visits.length)](number).catch((error) => { if (open) throw error; });
      await rest(below(100));
    }
  });
  await rest(1500 + below(1500));
  open = false;
  await iskilled();
  kills += 1;
  await busy;
  if (round % 2) {
    await starts();
    await rest(below(300));
    await iskilled();
    kills += 1;
  }
  await starts();
  await all(players.joins);
  const held = await players.holds(clients);
  const status = await market.server.stop();
  last = await countshops(directory);
  faults = wrongwith(held, last, clients);
  if (status !== 0) faults.push(`the server ended with ${status}`);
}
console.log(`${told.scoreboard ? "scoreboard" : "LLMoney"}: ${kills} kills, ${clients} players; ${last.goods} pieces bought for ${last.income}, ${last.taken} sold for ${last.paid}`);
for (const fault of faults) console.error(`WRONG: round ${round}: ${fault}`);
await removed();
process.exitCode = faults.length ? 1 : 0;
