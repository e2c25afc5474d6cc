// One connection of the plain RakNet server: datagrams with numbers, which are acknowledged; in them frames, which are
// told once and in their order, and put together where they were split.
//   datagram = u8 0x80.., u24 number, frames;  frame = u8 kind << 5 | split << 4, u16be bits,
//   [u24 reliable number] [u24 sequence] [u24 order, u8 channel] [u32be parts, u16be message, u32be part], bytes
const timeout = { halfopen: 5_000, silent: 10_000 };  // milliseconds
const window = 2048;  // numbers ahead of what was told
const splits = { atonce: 4, parts: 1024, bytes: 2 << 20 };
const mostwaiting = 16 << 20, mostresent = 32;  // bytes; datagrams in a tick
const flight = { first: 32, least: 16, most: 1024 };  // datagrams that are not acknowledged
const resend = { least: 150, most: 3000 };  // milliseconds

const ahead = (number, base) => (number - base) & 0xffffff;
const triple = (number) => Buffer.of(number & 255, (number >> 8) & 255, (number >> 16) & 255);

export class Peer {
  connected = true;
  open = false;
  #acks = [];
  #due = 0;  // of reliable frames, the first that was not heard
  #heard = new Set();
  #orders = new Map();  // channel: { due, early }
  #split = new Map();
  #queue = [];  // frames to be sent, from #begin on
  #begin = 0;
  #flying = new Map();  // datagrams by number
  #limit = flight.first;
  #trip = 100;
  #next = { datagram: 0, reliable: 0, order: 0, split: 0 };
  #waiting = 0;
  #heardat = Date.now();
  #since = Date.now();

  constructor(address, place, mtu, guid, send) {
    Object.assign(this, { address, place, mtu, guid, send });
  }

  // ---- in

  receive(bytes) {
    const kind = bytes[0];
    if (kind & 0x40) this.#acknowledged(ranges(bytes), true);
    else if (kind & 0x20) this.#acknowledged(ranges(bytes), false);
    else this.#datagram(bytes);
    this.#heardat = Date.now();
  }

  #datagram(bytes) {
    const frames = [...read(bytes)];
    // One that is too far ahead is not acknowledged, and comes again.
    for (const one of frames) if (one.reliable !== undefined && isahead(ahead(one.reliable, this.#due))) return;
    this.#acks.push(bytes.readUIntLE(1, 3));
    for (const one of frames) if (this.#isnew(one)) this.#assemble(one);
  }

  #isnew({ reliable }) {
    if (reliable === undefined) return true;
    if (ahead(reliable, this.#due) >= window || this.#heard.has(reliable)) return false;
    this.#heard.add(reliable);
    while (this.#heard.delete(this.#due)) this.#due = (this.#due + 1) & 0xffffff;
    return true;
  }

  #assemble(one) {
    if (!one.split) return this.#order(one);
    const { parts, message, part } = one.split;
    if (parts > splits.parts || part >= parts) throw new Error("a split of too many parts");
    let whole = this.#split.get(message);
    if (!whole) {
      if (this.#split.size >= splits.atonce) return this.drop();
      this.#split.set(message, (whole = { parts, got: new Map(), bytes: 0 }));
    }
    if (whole.parts !== parts || whole.got.has(part)) return;
    whole.got.set(part, Buffer.from(one.bytes));
    if ((whole.bytes += one.bytes.length) > splits.bytes) return this.drop();
    if (whole.got.size < parts) return;
    this.#split.delete(message);
    this.#order({ ...one, bytes: Buffer.concat(Array.from({ length: parts }, (_, i) => whole.got.get(i))) });
  }

  #order({ order, channel, bytes }) {
    if (order === undefined) return this.#message(bytes);
    if (!this.#orders.has(channel)) this.#orders.set(channel, { due: 0, early: new Map() });
    const line = this.#orders.get(channel);
    if (ahead(order, line.due) >= window) return;
    line.early.set(order, Buffer.from(bytes));
    for (let next; (next = line.early.get(line.due)) && this.connected;) {
      line.early.delete(line.due);
      line.due = (line.due + 1) & 0xffffff;
      this.#message(next);
    }
  }

  #message(bytes) {
    switch (bytes[0]) {
      case 0x00:
        return this.#tell(Buffer.concat([Buffer.of(0x03), bytes.subarray(1, 9), clock()]), false);
      case 0x09: {
        if (this.open || bytes.length < 17) return;
        const nowhere = Buffer.concat(Array(20).fill(Buffer.of(4, 255, 255, 255, 255, 0, 0)));
        return this.#tell(Buffer.concat([Buffer.of(0x10), this.place, Buffer.of(0, 0), nowhere, bytes.subarray(9, 17), clock()]), true);
      }
      case 0x13:
        if (this.open) return;
        this.open = true;
        return this.onopen();
      case 0x15:
        return this.drop();
      default:
        if (this.open && bytes[0] >= 0x80) this.onmessage(bytes);
    }
  }

  // ---- out

  // In its order, and until it is acknowledged.
  sendReliable(bytes) {
    if (this.connected) this.#tell(bytes, true);
    this.#pump(Date.now());
  }

  #tell(bytes, reliable) {
    const room = this.mtu - 28 - 4 - 24, order = reliable ? this.#next.order++ & 0xffffff : 0;
    const parts = Math.ceil(bytes.length / room), message = parts > 1 ? this.#next.split++ & 0xffff : 0;
    for (let part = 0; part < parts; ++part) {
      const piece = bytes.subarray(part * room, (part + 1) * room), head = [Buffer.alloc(3)];
      head[0][0] = (reliable ? 3 << 5 : 0) | (parts > 1 ? 0x10 : 0);
      head[0].writeUInt16BE(piece.length * 8, 1);
      if (reliable) head.push(triple(this.#next.reliable++), triple(order), Buffer.of(0));
      if (parts > 1) {
        const split = Buffer.alloc(10);
        split.writeUInt32BE(parts, 0);
        split.writeUInt16BE(message, 4);
        split.writeUInt32BE(part, 6);
        head.push(split);
      }
      const whole = Buffer.concat([...head, piece]);
      this.#waiting += whole.length;
      this.#queue.push(whole);
    }
    if (this.#waiting > mostwaiting) this.drop();
  }

  #pump(now) {
    while (this.#begin < this.#queue.length && this.#flying.size < this.#limit) {
      const frames = [];
      for (let length = 4 + 28; this.#begin < this.#queue.length; ++this.#begin) {
        if (frames.length && length + this.#queue[this.#begin].length > this.mtu) break;
        length += this.#queue[this.#begin].length;
        frames.push(this.#queue[this.#begin]);
      }
      this.#fly(Buffer.concat(frames), now, 0);
    }
    if (this.#begin === this.#queue.length || this.#begin > 4096) this.#queue = this.#queue.slice(this.#begin), (this.#begin = 0);
  }

  #fly(frames, now, times) {
    const number = this.#next.datagram++ & 0xffffff;
    this.#flying.set(number, { frames, at: now, times, due: now + Math.min(resend.most, Math.max(resend.least, 3 * this.#trip) << times) });
    this.send(Buffer.concat([Buffer.of(0x84), triple(number), frames]));
  }

  #acknowledged(numbers, arrived) {
    const now = Date.now();
    for (const [first, last] of numbers)
      for (let number = first; number <= last; ++number) {
        const one = this.#flying.get(number);
        if (!one) continue;
        this.#flying.delete(number);
        if (arrived) {
          this.#waiting -= one.frames.length;
          if (one.times === 0) this.#trip += (now - one.at - this.#trip) / 8;
          this.#limit = Math.min(flight.most, this.#limit + 1);
        } else {
          this.#fly(one.frames, now, one.times + 1);
        }
      }
    this.#pump(now);
  }

  // ---- time

  tick(now) {
    if (now - this.#heardat > timeout.silent || (!this.open && now - this.#since > timeout.halfopen)) return this.drop();
    for (let at = 0; at < this.#acks.length; at += 128) {
      const some = this.#acks.slice(at, at + 128), count = Buffer.alloc(2);
      count.writeUInt16BE(some.length);
      this.send(Buffer.concat([Buffer.of(0xc0), count, ...some.map((number) => Buffer.concat([Buffer.of(1), triple(number)]))]));
    }
    this.#acks = [];
    let resent = 0;
    for (const [number, one] of this.#flying) {
      if (one.due > now || resent === mostresent) break;
      this.#flying.delete(number);
      this.#fly(one.frames, now, Math.min(one.times + 1, 4));
      ++resent;
    }
    if (resent) this.#limit = Math.max(flight.least, this.#limit >> 1);
    this.#pump(now);
  }

  close() {
    if (!this.connected) return;
    this.#tell(Buffer.of(0x15), true);
    this.#pump(Date.now());
    this.drop();
  }

  drop() {
    if (!this.connected) return;
    this.connected = false;
    this.#queue = [];
    this.#flying.clear();
    this.onclose(this.open);
  }
}

// Behind what was told, or ahead of the window: numbers go round.
const isahead = (distance) => distance >= window && distance < 0x800000;

const reliablekinds = new Set([2, 3, 4, 6, 7]), orderedkinds = new Set([1, 3, 4, 7]), sequencedkinds = new Set([1, 4]);

// The frames of a datagram; throws where one claims more than there is.
function* read(bytes) {
  for (let at = 4; at < bytes.length;) {
    const kind = bytes[at] >> 5, split = bytes[at] & 0x10, length = Math.ceil(bytes.readUInt16BE(at + 1) / 8), one = {};
    at += 3;
    if (reliablekinds.has(kind)) (one.reliable = bytes.readUIntLE(at, 3)), (at += 3);
    if (sequencedkinds.has(kind)) at += 3;
    if (orderedkinds.has(kind)) {
      if (kind === 3 || kind === 7) one.order = bytes.readUIntLE(at, 3);
      one.channel = bytes[at + 3];
      if (one.channel > 31) throw new Error("a channel that is none");
      at += 4;
    }
    if (split) (one.split = { parts: bytes.readUInt32BE(at), message: bytes.readUInt16BE(at + 4), part: bytes.readUInt32BE(at + 6) }), (at += 10);
    if (length === 0 || at + length > bytes.length) throw new Error("a frame without an end");
    one.bytes = bytes.subarray(at, (at += length));
    yield one;
  }
}

// Of an acknowledgement: [first, last], as many as a window has.
function* ranges(bytes) {
  let all = 0;
  for (let at = 3, count = bytes.readUInt16BE(1); count > 0; --count) {
    const single = bytes[at], first = bytes.readUIntLE(at + 1, 3), last = single ? first : bytes.readUIntLE(at + 4, 3);
    at += single ? 4 : 7;
    all += last - first + 1;
    if (last < first || all > 4 * flight.most) throw new Error("an acknowledgement of what was never sent");
    yield [first, last];
  }
}

function clock() {
  const bytes = Buffer.alloc(8);
  bytes.writeBigInt64BE(BigInt(Date.now()));
  return bytes;
}
