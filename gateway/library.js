// The protocol library as it may meet strangers. It believes every length that a batch claims, inflates without an end,
// and throws from streams where nobody catches: what is replaced here fails within bounds, and towards its caller.
import { createCipheriv, createDecipheriv, createHash } from "node:crypto";
import { createRequire } from "node:module";
import { deflateRawSync, inflateRawSync } from "node:zlib";

const require = createRequire(import.meta.url);
const { Server } = require("bedrock-protocol/src/server");
const { Player } = require("bedrock-protocol/src/serverPlayer");
const { Framer } = require("bedrock-protocol/src/transforms/framer");
const encryption = require("bedrock-protocol/src/transforms/encryption");
const zlib = require("zlib");  // the object that the library calls, beside what is imported above

export { Server, Player };
export const version = "1.19.50", protocol = 560;

const longestbatch = 2 << 20, mostpackets = 512;
const level = 3;  // of deflate: a join costs half of what it costs at 7, for a tenth more bytes

const inflate = (bytes) => inflateRawSync(bytes, { maxOutputLength: longestbatch });
zlib.inflateRawSync = inflate;

// Varint: [value, place behind it]
export function varint(bytes, at) {
  for (let value = 0, shift = 0; shift < 35; shift += 7) {
    if (at >= bytes.length) break;
    const byte = bytes[at++];
    value += (byte & 127) * 2 ** shift;
    if (byte < 128) return [value, at];
  }
  throw new Error("a number without an end");
}

Framer.getPackets = (batch) => {
  const packets = [];
  for (let at = 0; at < batch.length;) {
    const [length, begin] = varint(batch, at);
    if (length === 0 || length > batch.length - begin) throw new Error(`a packet of ${length} bytes with ${batch.length - begin} left`);
    if (packets.push(batch.subarray(begin, begin + length)) > mostpackets) throw new Error("a batch of too many packets");
    at = begin + length;
  }
  return packets;
};

function checksum(bytes, counter, key) {
  const number = Buffer.alloc(8);
  number.writeBigUInt64LE(counter);
  return createHash("sha256").update(number).update(bytes).update(key).digest().subarray(0, 8);
}

encryption.createDecryptor = (client, iv) => {
  const key = client.secretKeyBytes, cipher = createDecipheriv("aes-256-gcm", key, iv.subarray(0, 12));
  let counter = 0n;
  return (bytes) => {
    const batch = cipher.update(bytes), packets = batch.subarray(0, -8);
    if (batch.length < 8 || !checksum(packets, counter++, key).equals(batch.subarray(-8))) throw new Error("a wrong checksum");
    client.onDecryptedPacket(inflate(packets));
  };
};

encryption.createEncryptor = (client, iv) => {
  const key = client.secretKeyBytes, cipher = createCipheriv("aes-256-gcm", key, iv.subarray(0, 12));
  let counter = 0n;
  return (batch) => {
    const packets = deflateRawSync(batch, { level }), sum = checksum(packets, counter++, key);
    const bytes = Buffer.concat([Buffer.of(client.batchHeader), cipher.update(packets), cipher.update(sum)]);
    if (client.connection.connected === false || client.status === 0) return;
    try {
      client.connection.sendReliable(bytes, true);
    } catch (error) {
      client.emit("error", error);  // with one batch lost nothing behind it could be read
    }
  };
};
