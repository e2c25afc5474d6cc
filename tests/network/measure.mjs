// What the road over the network costs: node measure.mjs, ORDOMART_SERVER names the program. Prints lines for
// docs/measurements.md. No test: nothing here is asserted.
import { spawn } from "node:child_process";
import { readFileSync } from "node:fs";
import { loadavg } from "node:os";
import { createInterface } from "node:readline";
import { setTimeout as rest } from "node:timers/promises";
import path from "node:path";

import { Door } from "../../gateway/door.js";
import { Player } from "./player.mjs";
import { Stage } from "./stage.mjs";

const quantile = (times, part) => [...times].sort((a, b) => a - b)[Math.min(times.length - 1, Math.floor(part * times.length))];
const told = (times) => `median ${quantile(times, 0.5).toFixed(1)}, p99 ${quantile(times, 0.99).toFixed(1)} ms (${times.length})`;
const resident = (child) => Number(readFileSync(`/proc/${child.pid}/status`, "utf8").match(/VmRSS:\s+(\d+)/)[1]) / 1024;
const words = process.argv.slice(2);

const crowds = [];
const stage = await Stage.starts({ gateway: ["--offline", ...words] });
process.on("exit", () => [...crowds, stage.gateway.child, stage.server.child].forEach((child) => child.kill("SIGKILL")));
process.on("SIGTERM", () => process.exit(1));
console.log(`${stage.gateway.said.at(-1)}; load ${loadavg()[0].toFixed(1)}`);
const gateway = () => stage.gateway.child;

// From the first datagram to the first picture of the market.
const joined = [], pictures = [];
for (let i = 0; i < 12; ++i) {
  const began = performance.now(), player = await Player.joins(stage.port, `First${i}`);
  joined.push(performance.now() - began);
  player.types("ordomart buy");
  await player.until(() => player.at(9)?.item === "apple" && player.at(8)?.name.includes("Next"), "the picture");
  pictures.push(performance.now() - began);
  player.leaves();
}
console.log(`connect to inventory shown: ${told(joined)}; to the first page of goods: ${told(pictures)}`);

// From a click to the other page: over UDP, and by the client in the server's own process.
const udp = await Player.joins(stage.port, "Udp");
udp.types("ordomart buy");
await udp.until(() => udp.at(8)?.name.includes("Next"), "a page");
await stage.call("POST", "/api/players", { name: "Inside" });
await stage.call("POST", "/api/players/Inside/command", { line: "ordomart buy" });
await rest(1000);
const inside = async () => (await stage.call("GET", "/api/players/Inside")).slots.inventory[9]?.item;
const times = { udp: [], inside: [] };
for (let i = 0; i < 150; ++i) {
  const item = udp.at(9)?.item, began = performance.now();
  udp.click(i % 2 ? 0 : 8);
  await udp.until(() => udp.at(9)?.item !== item, "the page turns");
  times.udp.push(performance.now() - began);
  await rest(70 + Math.random() * 60);
  const before = await inside(), start = performance.now();
  await stage.call("POST", "/api/players/Inside/click", { container: "hotbar", slot: i % 2 ? 0 : 8, how: "click" });
  for (let now = before; now === before; now = await inside()) if (performance.now() - start > 3000) throw new Error("the inside page does not turn");
  times.inside.push(performance.now() - start);
  await rest(70 + Math.random() * 60);
}
console.log(`click to page over UDP: ${told(times.udp)}; by the client inside, asked over HTTP: ${told(times.inside)}; load ${loadavg()[0].toFixed(1)}`);
udp.leaves();

// Memory by clients.
async function crowd(first, count) {
  const child = spawn(process.execPath, [new URL("crowd.mjs", import.meta.url).pathname, stage.port, first, count].map(String), { stdio: ["ignore", "pipe", "inherit"] });
  crowds.push(child);
  let last = "";
  await new Promise((done) => {
    child.once("exit", done);
    createInterface({ input: child.stdout }).on("line", (line) => {
      if (!line.startsWith("in")) console.log(line);
      if ((last = line) === `in ${count}`) done();
    });
  });
}
const memory = [`empty ${resident(gateway()).toFixed(0)}`];
await crowd(0, 1);
memory.push(`1 client ${resident(gateway()).toFixed(0)}`);
await crowd(1, 49);
memory.push(`50 clients ${resident(gateway()).toFixed(0)}`);
await Promise.all([50, 100, 150].map((first) => crowd(first, 50)));
await rest(3000);
memory.push(`200 clients ${resident(gateway()).toFixed(0)}`);
console.log(`memory of the gateway, MB: ${memory.join(", ")}; load ${loadavg()[0].toFixed(1)}`);

// A client whose process stands still while the others talk.
const talker = await Player.joins(stage.port, "Talker");
talker.client.conLog = undefined;
for (const child of crowds.slice(1)) child.kill();
await rest(2000);
const before = resident(gateway());
crowds[0].kill("SIGSTOP");
const stopped = performance.now();
let most = before, gone = 0;
while (!gone && performance.now() - stopped < 60_000) {
  for (let n = 0; n < 40; ++n) talker.says("x".repeat(500));
  await rest(50);
  most = Math.max(most, resident(gateway()));
  if (!(await stage.known("Crowd0")).online) gone = performance.now() - stopped;
}
console.log(`a client that stops reading, sent 0.4 MB/s: closed after ${(gone / 1000).toFixed(1)} s, ${(most - before).toFixed(0)} MB more at most (${before.toFixed(0)} before)`);
crowds[0].kill("SIGCONT");
crowds[0].kill();
talker.leaves();
await rest(500);
await stage.gateway.ends();

// The door alone: 50 sessions that talk, each heard by all.
const door = new Door({ directory: stage.directory, place: { path: path.join(stage.directory, "gateway.sock") }, name: "measure", log: console.log });
await new Promise((ready) => { door.once("ready", ready); door.connect(); });
let packets = 0, bytes = 0, opened = 0;
const hearer = { opened: () => ++opened, packet: (one) => { ++packets; bytes += one.length; return hearer; }, flush() {}, closed() {} };
const sessions = Array.from({ length: 50 }, (_, i) => door.open({ name: `Talks${i}`, xuid: "", language: "en_US", device: 7, authenticated: false }, hearer));
while (opened < 50) await rest(20);
// As the library's client writes a chat line of 20 letters.
const { require } = await import("./strict.mjs");
const line = require("bedrock-protocol/src/transforms/serializer").createSerializer("1.19.50").createPacketBuffer({
  name: "text", params: { type: "chat", needs_translation: false, source_name: "", message: "x".repeat(20), xuid: "", platform_chat_id: "" } });
packets = bytes = 0;
let sent = 0;
const begun = performance.now();
while (performance.now() - begun < 6000) {
  for (const session of sessions) for (let n = 0; n < 2; ++n) if (door.packet(session, line)) ++sent;
  await rest(50);
}
const seconds = (performance.now() - begun) / 1000;
console.log(`the door: ${(sent / seconds).toFixed(0)} packets/s in, ${(packets / seconds).toFixed(0)} out (${(bytes / seconds / 1e6).toFixed(1)} MB/s), 50 sessions; load ${loadavg()[0].toFixed(1)}`);
door.end();
await stage.ends();
process.exit();
