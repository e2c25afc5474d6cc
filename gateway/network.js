// The game port: the library's server on the gateway's own RakNet, or on the native one for whoever asks for it. Every
// client of it is a session.
import { createSocket } from "node:dgram";
import { createRequire } from "node:module";

import { Player, Server, version } from "./library.js";
import { PlainRakNet } from "./plainraknet.js";
import { Session } from "./session.js";

const require = createRequire(import.meta.url);
const mosthandshakes = 64;  // clients that have not joined yet

function nativeserver() {
  try {
    return require("bedrock-protocol/src/rak")("raknet-native").RakServer;
  } catch (error) {
    throw new Error(`--native: there is none for this machine (${error.message.split("\n")[0]})`);
  }
}

// The native one does not say that a port is taken.
async function demandfree(host, port) {
  const socket = createSocket("udp4");
  await new Promise((free, taken) => {
    socket.once("error", (error) => {
      const why = { EADDRINUSE: "is in use", EACCES: "is not for this user", EADDRNOTAVAIL: "is not of this machine" }[error.code] ?? error.message;
      taken(new Error(`UDP port ${port} of ${host} ${why}: choose another with --port`));
    });
    socket.bind(port, host, free);
  });
  await new Promise((closed) => socket.close(closed));
}

export class Network extends Server {
  sessions = new Map();  // by address

  constructor({ door, host, port, offline, native }) {
    super({ host, port, offline, version, maxPlayers: 1000, batchingInterval: 0x7fffffff, compressionLevel: 3,
            raknetBackend: native ? "raknet-native" : "jsp-raknet",  // the library wants one; the plain one takes its place
            motd: { motd: "Ordomart", levelName: "Ordomart", gamemode: "Survival", gamemodeId: 1 } });
    this.door = door;
    this.transport = native ? "native RakNet" : "plain RakNet";
    this.native = native;
    this.onOpenConnection = (connection) => this.#opens(connection);
    this.onCloseConnection = (connection) => this.sessions.get(connection.address)?.player.close();
    this.onEncapsulated = (bytes, address) => this.sessions.get(address)?.batch(bytes);
  }

  async listen() {
    const { host, port } = this.options;
    const RakServer = this.native ? nativeserver() : PlainRakNet;
    await demandfree(host, port);
    this.raknet = new RakServer({ host, port, maxPlayers: 2000 }, this);
    this.raknet.onOpenConnection = this.onOpenConnection;
    this.raknet.onCloseConnection = this.onCloseConnection;
    this.raknet.onEncapsulated = this.onEncapsulated;
    await Promise.race([this.raknet.listen(), new Promise((begun) => setTimeout(begun, 50))]);  // the native one never says that it has begun
    this.serverTimer = setInterval(() => this.raknet.updateAdvertisement(), 1000);
  }

  getAdvertisement() {
    const { hello } = this.door ?? {};
    this.advertisement.playersOnline = this.clientCount;
    this.advertisement.playersMax = hello?.players ?? 0;
    if (hello) this.advertisement.motd = hello.motd.replaceAll(";", ",");
    return this.advertisement;
  }

  #opens(connection) {
    const waiting = [...this.sessions.values()].filter((session) => session.number === undefined);
    if (waiting.length >= mosthandshakes) waiting[0].end("too many are joining");
    const player = new Player(this, connection);
    const session = new Session(player, this);
    this.sessions.set(connection.address, session);
    this.clientCount = this.sessions.size;
    player.once("close", () => {
      this.sessions.delete(connection.address);
      this.clientCount = this.sessions.size;
    });
  }

  async close(reason) {
    clearInterval(this.serverTimer);
    for (const session of this.sessions.values()) session.end(reason);
    await new Promise((said) => setTimeout(said, 300));
    this.raknet?.close();
  }
}
