// A plain RakNet server, as far as game clients use it. The native one of the packages was seen to cut players off under
// fire; this one is made to be shot at: a datagram is believed whole or not at all, nothing is kept for a stranger but a
// bounded number of half-open connections, and a peer that does not acknowledge is cut off.
import { randomBytes } from "node:crypto";
import { createSocket } from "node:dgram";

import { Peer } from "./plainpeer.js";

const magic = Buffer.from("00ffff00fefefefefdfdfdfd12345678", "hex");
const protocols = [10, 11], smallest = 576, largest = 1400;  // bytes of a datagram
const mosthalfopen = 256, ticklength = 10;  // milliseconds

export class PlainRakNet {
  #peers = new Map();  // by address
  #id = randomBytes(8);
  #advertised = "";

  constructor({ host, port, maxPlayers }, server) {
    Object.assign(this, { host, port, maxPlayers, server });
    this.updateAdvertisement = () => (this.#advertised = server.getAdvertisement().toString());
  }

  async listen() {
    this.updateAdvertisement();
    this.socket = createSocket({ type: "udp4", recvBufferSize: 2 << 20, sendBufferSize: 1 << 20 });
    await new Promise((listening, failed) => {
      this.socket.once("error", failed);
      this.socket.bind(this.port, this.host, listening);
    });
    this.socket.on("error", () => {});  // of an address that cannot be reached: its peer will time out
    this.socket.on("message", (bytes, from) => this.#receive(bytes, from));
    this.timer = setInterval(() => {
      const now = Date.now();
      for (const peer of this.#peers.values()) peer.tick(now);
    }, ticklength);
  }

  close() {
    clearInterval(this.timer);
    for (const peer of this.#peers.values()) peer.close();
    setTimeout(() => this.socket.close(), 40);
  }

  #receive(bytes, from) {
    const address = `${from.address}/${from.port}`, peer = this.#peers.get(address);
    try {
      if (peer && bytes[0] & 0x80) return peer.receive(bytes);
      const answer = this.#greet(bytes, from, address, peer);
      if (answer) this.socket.send(answer, from.port, from.address);
    } catch {
      // What no client says is not answered, and costs nothing.
    }
  }

  #greet(bytes, from, address, peer) {
    switch (bytes[0]) {
      case 0x01:
      case 0x02: {
        if (!bytes.subarray(9, 25).equals(magic)) return null;
        const text = Buffer.from(this.#advertised), length = Buffer.alloc(2);
        length.writeUInt16BE(text.length);
        return Buffer.concat([Buffer.of(0x1c), bytes.subarray(1, 9), this.#id, magic, length, text]);
      }
      case 0x05: {
        if (!bytes.subarray(1, 17).equals(magic)) return null;
        if (!protocols.includes(bytes[17])) return Buffer.concat([Buffer.of(0x19, protocols.at(-1)), magic, this.#id]);
        return Buffer.concat([Buffer.of(0x06), magic, this.#id, Buffer.of(0), size(bytes.length + 28)]);
      }
      case 0x07: {
        if (bytes.length !== 34 || !bytes.subarray(1, 17).equals(magic) || bytes[17] !== 4) return null;
        const mtu = bytes.readUInt16BE(24), guid = bytes.subarray(26, 34);
        // The same client asks again when the answer was lost; another one at that address waits until its time is over.
        if (peer && (peer.open || !peer.guid.equals(guid))) return null;
        if (!peer) this.#admit(address, from, mtu, Buffer.from(guid));
        return Buffer.concat([Buffer.of(0x08), magic, this.#id, place(from), size(mtu), Buffer.of(0)]);
      }
      default:
        return null;
    }
  }

  #admit(address, from, mtu, guid) {
    if (this.#peers.size >= this.maxPlayers) throw new Error("full");
    const halfopen = [...this.#peers.values()].filter((peer) => !peer.open);
    if (halfopen.length >= mosthalfopen) halfopen[0].drop();
    const peer = new Peer(address, place(from), bounded(mtu), guid, (bytes) => this.socket.send(bytes, from.port, from.address));
    peer.onopen = () => this.onOpenConnection(peer);
    peer.onmessage = (bytes) => this.onEncapsulated(bytes, address);
    peer.onclose = (wasopen) => {
      this.#peers.delete(address);
      if (wasopen) this.onCloseConnection(peer);
    };
    this.#peers.set(address, peer);
  }
}

const bounded = (mtu) => Math.min(Math.max(mtu, smallest), largest);
function size(mtu) {
  const bytes = Buffer.alloc(2);
  bytes.writeUInt16BE(bounded(mtu));
  return bytes;
}
// As RakNet writes an address of version 4: its bytes inverted.
function place({ address, port }) {
  const bytes = Buffer.alloc(7);
  bytes[0] = 4;
  address.split(".").forEach((part, i) => (bytes[1 + i] = ~Number(part)));
  bytes.writeUInt16BE(port, 5);
  return bytes;
}
