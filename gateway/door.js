// The gateway's side of the door (docs/network.md): logs in with the token of the server directory, tells sessions what
// the server says to them, and comes back when the server has gone. Nothing here knows of the game.
import { EventEmitter } from "node:events";
import { readFile } from "node:fs/promises";
import { connect } from "node:net";
import path from "node:path";

import { frame, FrameReader, longestpayload, togateway, toserver } from "./frames.js";

const mostwaiting = 8 << 20;  // bytes that the server has not taken
const pauses = [250, 500, 1000, 2000, 5000];  // milliseconds between two attempts

// Events: "ready" (hello, start packets and commands are there), "commands" (they have changed), "gone" (reason).
// A session hears opened(told), packet(bytes), flush() and closed(reason); closed is the last.
export class Door extends EventEmitter {
  hello = null;
  start = [];
  commands = null;
  #sessions = new Map();
  #flushed = new Set();
  #lastsession = 0;
  #attempts = 0;
  #trouble = "";

  // `place`: { port } or { path }
  constructor({ directory, place, name, log }) {
    super();
    Object.assign(this, { directory, place, name, log });
  }

  get ready() {
    return this.commands !== null;
  }

  async connect() {
    if (this.ended) return;
    let token;
    const file = path.join(this.directory, "gateway.token");
    try {
      token = (await readFile(file, "utf8")).trim();
    } catch (error) {
      return this.#retry(`no token in ${file} (${error.code}): is the server started with --gateway?`);
    }
    if (this.ended) return;
    const reader = new FrameReader();
    let reason = "";
    this.socket = connect(this.place);
    this.socket.setNoDelay?.(true);
    this.socket.on("connect", () => this.#send(toserver.login, 0, { token, gateway: this.name }));
    this.socket.on("error", (error) => (reason ||= error.code ?? error.message));
    this.socket.on("data", (bytes) => {
      try {
        for (const one of reader.add(bytes)) {
          if (one.operation === togateway.close && one.session === 0) reason = JSON.parse(one.payload).reason ?? "";
          else this.#hear(one);
        }
      } catch (error) {
        reason = `the server says what no server says: ${error.message}`;
        this.socket.destroy();
      }
    });
    this.socket.on("close", () => this.#lost(reason));
  }

  // The server ends the players that it still has.
  end() {
    this.ended = true;
    clearTimeout(this.retry);
    this.socket?.end();
  }

  // The number of the session that is opened for `told`, which `hearer` hears of.
  open(told, hearer) {
    const number = ++this.#lastsession;
    this.#sessions.set(number, hearer);
    this.#send(toserver.open, number, told);
    return number;
  }

  // False when the packet cannot go, because the server takes none or it is longer than any.
  packet(session, bytes) {
    if (!this.#sessions.has(session) || bytes.length > longestpayload || this.socket.writableLength > mostwaiting) return false;
    this.#send(toserver.packet, session, bytes);
    return true;
  }

  close(session, reason) {
    this.#flushed.delete(this.#sessions.get(session));
    if (this.#sessions.delete(session)) this.#send(toserver.close, session, { reason });
  }

  #send(operation, session, payload) {
    if (this.socket?.writable) this.socket.write(frame(operation, session, payload));
  }

  #hear({ operation, session, payload }) {
    const hearer = this.#sessions.get(session);
    switch (operation) {
      case togateway.packet:
        if (hearer) this.#flushed.add(hearer.packet(payload));
        break;
      case togateway.pulse:
        for (const one of this.#flushed) one?.flush();
        this.#flushed.clear();
        break;
      case togateway.opened:
        hearer?.opened(JSON.parse(payload));
        break;
      case togateway.close:
      case togateway.refused:
        this.#sessions.delete(session);
        this.#flushed.delete(hearer);
        hearer?.closed(JSON.parse(payload).reason ?? "");
        break;
      case togateway.hello:
        this.hello = JSON.parse(payload);
        break;
      case togateway.start:
        this.start.push(Buffer.from(payload));
        break;
      case togateway.commands: {
        const first = !this.ready;
        this.commands = JSON.parse(payload);
        if (first) {
          this.#attempts = 0;
          this.#trouble = "";
        }
        this.emit(first ? "ready" : "commands");
        break;
      }
      default:  // of a later server
    }
  }

  #lost(reason) {
    const said = reason || "the connection broke";
    const was = this.ready;
    this.commands = this.hello = null;
    this.start = [];
    const sessions = [...this.#sessions.values()];
    this.#sessions.clear();
    this.#flushed.clear();
    for (const hearer of sessions) hearer.closed("the market's server has gone; come back in a moment");
    if (was) this.emit("gone", said);
    const where = this.place.path ?? `127.0.0.1:${this.place.port}`;
    this.#retry(was ? "" : `no way through the door at ${where}: ${said}`);
  }

  // The server may be on its way up: only what stays is told, and each trouble once.
  #retry(trouble) {
    if (this.ended) return;
    const pause = pauses[Math.min(this.#attempts++, pauses.length - 1)];
    if (trouble && trouble !== this.#trouble && this.#attempts > 3) this.log((this.#trouble = trouble));
    this.retry = setTimeout(() => this.connect(), pause);
  }
}
