// Frames between gateway and server (docs/network.md), byte for byte:
//   u32 length of the rest, u8 operation, u64 session, payload; numbers little-endian
const head = 9;
export const longestpayload = 256 * 1024;

export const togateway = { hello: 0x81, opened: 0x82, packet: 0x83, close: 0x84, refused: 0x85, pulse: 0x86, commands: 0x87, start: 0x88 };
export const toserver = { login: 1, open: 2, packet: 3, close: 4 };

export function frame(operation, session = 0, payload = Buffer.alloc(0)) {
  const body = Buffer.isBuffer(payload) ? payload : Buffer.from(JSON.stringify(payload));
  const bytes = Buffer.allocUnsafe(4 + head + body.length);
  bytes.writeUInt32LE(head + body.length, 0);
  bytes.writeUInt8(operation, 4);
  bytes.writeBigUInt64LE(BigInt(session), 5);
  body.copy(bytes, 4 + head);
  return bytes;
}

// Bytes as they come; frames as they are whole. Payloads are views of what came.
export class FrameReader {
  #bytes = Buffer.alloc(0);

  *add(bytes) {
    this.#bytes = this.#bytes.length ? Buffer.concat([this.#bytes, bytes]) : bytes;
    while (this.#bytes.length >= 4) {
      const length = this.#bytes.readUInt32LE(0);
      if (length < head || length > head + longestpayload) throw new Error(`a frame of ${length} bytes`);
      if (this.#bytes.length < 4 + length) return;
      const whole = this.#bytes.subarray(4, 4 + length);
      this.#bytes = this.#bytes.subarray(4 + length);
      yield { operation: whole.readUInt8(0), session: Number(whole.readBigUInt64LE(1)), payload: whole.subarray(head) };
    }
  }
}
