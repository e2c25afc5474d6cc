#!/usr/bin/env node
// Lets game clients of the network into an Ordomart server: node gateway/main.js --help, docs/network.md.
import { readFileSync } from "node:fs";
import path from "node:path";
import { parseArgs } from "node:util";

import { Door } from "./door.js";

const help = `Lets game clients of the network into an Ordomart server.
Usage: node gateway/main.js [OPTIONS]
  --directory PATH   The server directory (server), in which the token lies and the door's socket
  --door-port PORT   The door is this port of 127.0.0.1, in place of the socket
  --host ADDRESS     The address at which clients come in (0.0.0.0)
  --port PORT        The UDP port at which clients come in (19132)
  --offline          Let in players who have not signed in, under the names they say; the server has to allow it, too
  --native           Use the packages' native RakNet in place of the gateway's own; it is quicker, and may fall over
  --help             Print this and end`;

const say = (text) => console.log(`[gateway] ${text}`);
function fail(text) {
  console.error(`[gateway] ${text}`);
  process.exit(2);
}

let told;
try {
  told = parseArgs({
    options: {
      directory: { type: "string", default: "server" }, "door-port": { type: "string" }, host: { type: "string", default: "0.0.0.0" },
      port: { type: "string", default: "19132" }, offline: { type: "boolean", default: false }, native: { type: "boolean", default: false },
      help: { type: "boolean", default: false },
    },
  }).values;
} catch (error) {
  fail(`${error.message} (--help lists the options)`);
}
if (told.help) {
  console.log(help);
  process.exit(0);
}
const port = (name) => {
  const number = Number(told[name]);
  if (!Number.isInteger(number) || number < 1 || number > 65535) fail(`--${name} ${told[name]}: a port is a number from 1 to 65535`);
  return number;
};

const { version } = JSON.parse(readFileSync(new URL("package.json", import.meta.url)));
const directory = path.resolve(told.directory);
const place = told["door-port"] ? { port: port("door-port"), host: "127.0.0.1" } : { path: path.join(directory, "gateway.sock") };
const { offline, native } = told;

let Network;
try {
  ({ Network } = await import("./network.js"));
} catch (error) {
  if (error.code !== "MODULE_NOT_FOUND" && error.code !== "ERR_MODULE_NOT_FOUND") throw error;
  fail("the packages are missing: node gateway/install.mjs fetches them");
}

const door = new Door({ directory, place, name: `ordomart-gateway ${version}`, log: say });
const network = new Network({ door, host: told.host, port: port("port"), offline, native });

let ending = false;
async function end(reason, code) {
  if (ending) return;
  ending = true;
  await network.close(reason);
  door.end();
  process.exit(code);
}

door.on("ready", () => {
  if (offline && !door.hello.offline) return end("", fail("--offline, and the server was started without it: it would refuse everybody"));
  say(`the market is open at UDP port ${told.port}, ${network.transport}, for Minecraft ${door.hello.version}` +
      `${offline ? ", names are believed" : ", for players who have signed in"}`);
});
door.on("commands", () => network.sessions.forEach((session) => session.commands()));
door.on("gone", (reason) => say(`the server has gone: ${reason}`));
for (const signal of ["SIGINT", "SIGTERM"]) process.on(signal, () => end("the gateway is stopping", 0));

try {
  await network.listen();
} catch (error) {
  fail(error.message);
}
door.connect();
