// What goes wrong at the game port: processes that are killed, strangers, liars, and clients that do not read.
import assert from "node:assert/strict";
import { randomBytes } from "node:crypto";
import { createSocket } from "node:dgram";
import { once } from "node:events";
import { readFile, rm, writeFile } from "node:fs/promises";
import path from "node:path";
import { after, before, test } from "node:test";
import { setTimeout as rest } from "node:timers/promises";

import { Player } from "./player.mjs";
import { freeport, Stage } from "./stage.mjs";
import { require } from "./strict.mjs";

const JWT = require("jsonwebtoken");

let stage;
before(async () => (stage = await Stage.starts()));
after(() => stage?.ends());

const joins = (name, options) => Player.joins(stage.port, name, options);
async function refusal(name, options) {
  const error = await joins(name, options).then((player) => new Error(`${player.name} was let in`), (refused) => refused);
  assert.doesNotMatch(error.message, /in vain/);
  return error.message;
}
async function trades(player) {
  player.types("ordomart formmenu");
  await player.chooses("Selling");
  player.answers(await player.asked("Orchard apples"), null);
  assert.deepEqual(player.faults, []);
}
async function goes(...players) {
  for (const player of players) player.leaves();
  await stage.eventually(async () => !(await stage.call("GET", "/api/players")).players.some((one) => one.online), "all are gone");
}

test("the server is killed: players are told, and join again when it is back, through the same gateway", async () => {
  const alice = await joins("Alice");
  await stage.server.ends("SIGKILL");
  await alice.until(() => alice.gone, "he is told");
  assert.match(alice.gone, /server has gone/);
  assert.match(await refusal("Alice"), /not running/);
  await stage.startserver();
  await stage.eventually(() => stage.gateway.said.filter((line) => line.includes("is open")).length === 2, "the gateway is back at the door");
  const again = await joins("Alice");
  await trades(again);
  await goes(again);
});

test("the gateway is killed: its players leave in good order, and another one takes its place", async () => {
  const [bela, carl] = await Promise.all([joins("Bela"), joins("Carl")]);
  await stage.gateway.ends("SIGKILL");
  await stage.eventually(async () => !(await stage.known("Bela")).online && !(await stage.known("Carl")).online, "both have left");
  bela.client.close();
  carl.client.close();
  await stage.startgateway();
  const again = await joins("Bela");
  await trades(again);
  again.leaves();
  await stage.gateway.ends();
  await again.until(() => again.gone, "he is gone");
  await stage.startgateway();
});

// Datagrams of no client, the beginnings of joins that never go on, and those of a peer that talks nonsense in its turn.
async function shoots(port, from) {
  const socket = createSocket("udp4").bind(0, from);
  await once(socket, "listening");
  const magic = Buffer.from("00ffff00fefefefefdfdfdfd12345678", "hex"), first = Buffer.concat([Buffer.of(5), magic, Buffer.of(11), Buffer.alloc(1400)]);
  const place = Buffer.from("0480fffffe4abc", "hex");
  const second = () => Buffer.concat([Buffer.of(7), magic, place, Buffer.from([5, 120]), randomBytes(8)]);
  const kinds = [() => randomBytes(1 + Math.floor(Math.random() * 1400)), () => first, second, () => first.subarray(0, 17), () => second().subarray(0, 20),
                 ...[1, 2, 5, 7, 0x84, 0xa0, 0xc0, 0xfe].map((kind) => () => Buffer.concat([Buffer.of(kind), randomBytes(Math.floor(Math.random() * 60))])),
                 () => Buffer.from("84000000" + "60ffff000000000000" + "00", "hex"), () => Buffer.from("8400000070001000000000000000ffffffff0000fffffff000", "hex"),
                 () => Buffer.from("c0ffff00000000ffffff", "hex"), () => Buffer.alloc(0)];
  for (let i = 0; i < 6000; ++i) {
    socket.send(kinds[i % kinds.length](), port, "127.0.0.1");
    if (i % 100 === 0) await rest(2);
  }
  // Half-open joins of as many addresses.
  const many = await Promise.all(Array.from({ length: 300 }, async () => {
    const one = createSocket("udp4").bind(0, from);
    await once(one, "listening");
    one.send(first, port, "127.0.0.1");
    one.send(second(), port, "127.0.0.1");
    return one;
  }));
  await rest(200);
  for (const one of [socket, ...many]) one.close();
}

test("garbage and half-open joins do not disturb a player or a newcomer", async () => {
  const dora = await joins("Dora");
  await shoots(stage.port, "127.0.0.2");
  await trades(dora);
  const eve = await joins("Eve");
  await trades(eve);
  assert.equal(stage.gateway.child.exitCode, null);
  await goes(dora, eve);
});

test("the packages' native RakNet takes the plain one's place for whoever asks for it", async () => {
  await stage.gateway.ends();
  await stage.startgateway(["--offline", "--native"]);
  assert.match(stage.gateway.said.at(-1), /native RakNet/);
  const dora = await joins("Dora");
  await trades(dora);
  await goes(dora);
  await stage.gateway.ends();
  await stage.startgateway();
});

test("nobody is who he only says he is", async () => {
  const finn = await joins("Finn"), { xuid } = await stage.known("Finn");
  assert.match(await refusal("Finn"), /online already/);
  // A chain that he has signed himself, with another's xuid, and one that claims to be Mojang's.
  const forged = (length) => (client) => {
    client.createClientChain = () => {
      const { privateKey } = client.ecdhKeyPair, sign = (payload) => JWT.sign(payload, privateKey, { algorithm: "ES384", notBefore: 0, issuer: "Mojang", expiresIn: 3600, header: { x5u: client.clientX509, typ: undefined } });
      const link = sign({ certificateAuthority: true, identityPublicKey: client.clientX509 });
      const identity = sign({ extraData: { displayName: client.username, identity: client.profile.uuid, XUID: xuid }, identityPublicKey: client.clientX509 });
      client.clientIdentityChain = length === 1 ? identity : link;
      client.accessToken = length === 1 ? [] : [link, identity];
      client.createClientUserChain(privateKey);
    };
  };
  const gina = await joins("Gina", { prepared: forged(1) });
  assert.notEqual((await stage.known("Gina")).xuid, xuid);
  assert.match(await refusal("Hugo", { prepared: forged(3) }), /sign in/);
  assert.match(await refusal("Ha\nns"), /\S/);
  await goes(finn, gina);

  await stage.gateway.ends();
  await stage.startgateway([]);
  assert.match(stage.gateway.said.at(-1), /signed in/);
  for (const prepared of [undefined, forged(1), forged(3)]) assert.match(await refusal("Ida", { prepared }), /sign in/);
  await stage.gateway.ends();
  await stage.startgateway();
});

test("a client of another version is told which one to use", async () => {
  for (const protocol of [544, 567])
    assert.match(await refusal("Jan", { prepared: ({ options }) => (options.protocolVersion = protocol) }), /1\.19\.50/);
});

test("a batch that is none, or larger than any, ends its client alone; so does who does not read", async () => {
  const karl = await joins("Karl");
  const hostile = [
    (client) => client.sendMCPE(Buffer.concat([Buffer.of(0xfe), randomBytes(300)]), true),
    (client) => client.sendMCPE(Buffer.from("fd00", "hex"), true),
    (client) => client.encrypt(Buffer.alloc(32 << 20)),  // zeros, which go into a datagram or two
    (client) => client.encrypt(Buffer.from("ffffffff7f01", "hex")),
    (client) => client.encrypt(Buffer.from("0180", "hex")),
  ];
  for (const [i, sends] of hostile.entries()) {
    const lena = await joins(`Lena${i}`);
    sends(lena.client);
    await lena.until(() => lena.gone, `attempt ${i} ends him`);
    assert.match(lena.gone, /broken/);
  }
  const mute = await joins("Mute");
  mute.client.removeAllListeners("network_stack_latency");
  for (let i = 0; i < 400 && !mute.gone; ++i, await rest(20)) for (let n = 0; n < 40; ++n) karl.says("x".repeat(500));
  assert.match(mute.gone, /does not read/);
  await trades(karl);
  await goes(karl);
});

test("a gateway that cannot work says why", async () => {
  const other = new Stage();
  Object.assign(other, { directory: stage.directory, port: stage.port });
  await assert.rejects(other.startgateway(["--offline"]), /UDP port \d+ .* is in use/);
  other.port = await freeport();
  await assert.rejects(other.startgateway(["--port", "70000"]), /a port is a number/);
  await assert.rejects(other.startgateway(["--nonsense"]), /nonsense/);
  await stage.gateway.ends();
  const file = path.join(stage.directory, "gateway.token"), token = await readFile(file);
  await writeFile(file, "another token than that");
  await stage.startgateway([], /no way through the door at .*gateway\.sock: .*token/);
  await stage.gateway.ends();
  await rm(file);
  await stage.startgateway([], /no token in .*gateway\.token/);
  await stage.gateway.ends();
  await writeFile(file, token, { mode: 0o600 });
  await stage.startgateway();
  // A server that lets in only players who have signed in, and a gateway that would believe names.
  await stage.server.ends();
  stage.serverwords = [];
  await stage.startserver();
  await stage.gateway.ended;
  assert.match(stage.gateway.said.at(-1), /--offline.* refuse everybody/);
});
