// What the gateway tells the server of a player, and how it tells frames apart: without a network.
import assert from "node:assert/strict";
import { EventEmitter } from "node:events";
import { test } from "node:test";

import { frame, FrameReader, longestpayload } from "../../gateway/frames.js";
import { Session } from "../../gateway/session.js";

// A player as the library has him behind his login, and a door that lets everybody in.
function arrives(network, { name, xuid, authenticated, told = {} }) {
  const player = Object.assign(new EventEmitter(), {
    readPacket() {}, sendNetworkSettings() {}, queue() {}, onTick() {}, sendBuffer() {}, close() {},
    connection: { address: name }, profile: { name, xuid }, skinData: told, authentication: { authenticated },
  });
  const session = new Session(player, network);
  network.sessions.set(name + network.sessions.size, session);
  player.emit("join");
  for (const response_status of ["have_all_packs", "completed"]) player.emit("resource_pack_client_response", { response_status });
  player.emit("spawn");
  return session;
}

test("who has signed in is opened with his xuid, once; who only says it is opened without", () => {
  const opened = [], closed = [];
  const hello = { version: "1.19.50", motd: "Ordomart", items: [["minecraft:apple", 257, false]] };
  const door = { ready: true, hello, start: [], commands: { commands: [], enums: [] },
                 open: (told) => opened.push(told), close: (number, reason) => closed.push([number, reason]) };
  const network = { door, sessions: new Map() };
  arrives(network, { name: "Alice", xuid: "2535400000000001", authenticated: true, told: { DeviceOS: 2, LanguageCode: "zh_CN" } });
  arrives(network, { name: "Mallory", xuid: "2535400000000001", authenticated: false, told: { DeviceOS: -3, LanguageCode: "../../etc" } });
  assert.deepEqual(opened, [
    { name: "Alice", xuid: "2535400000000001", language: "zh_CN", device: 2, authenticated: true },
    { name: "Mallory", xuid: "", language: "en_US", device: 7, authenticated: false },
  ]);
  assert.deepEqual(closed, []);
  arrives(network, { name: "Alice", xuid: "2535400000000001", authenticated: true });
  assert.deepEqual(closed, [[1, "You have joined from another place."]]);
  for (const session of network.sessions.values()) session.end("");
});

test("frames come whole, however they are cut; a length that cannot be is none", () => {
  const payloads = [Buffer.alloc(0), Buffer.from("{}"), Buffer.alloc(longestpayload, 7)];
  const bytes = Buffer.concat(payloads.map((payload, i) => frame(0x83, 2 ** 40 + i, payload)));
  for (const step of [1000, 65536, bytes.length]) {
    const reader = new FrameReader(), read = [];
    for (let at = 0; at < bytes.length; at += step) for (const one of reader.add(bytes.subarray(at, at + step))) read.push(one);
    assert.deepEqual(read.map(({ operation, session, payload }) => [operation, session, payload.equals(payloads[read.findIndex((one) => one.session === session)])]),
                     [0, 1, 2].map((i) => [0x83, 2 ** 40 + i, true]));
  }
  for (const length of [8, longestpayload + 10, 0xffffffff]) {
    const head = Buffer.alloc(16);
    head.writeUInt32LE(length);
    assert.throws(() => [...new FrameReader().add(head)], /a frame of/);
  }
});
