// A crowd of clients in a process of its own, for measure.mjs: node crowd.mjs PORT FIRST COUNT. Says "in N" as they come
// in; they do nothing but read.
import { require, version } from "./strict.mjs";

const serializer = require("bedrock-protocol/src/transforms/serializer");
// One compiled schema for all of them.
const made = { createSerializer: serializer.createSerializer(version), createDeserializer: serializer.createDeserializer(version) };
for (const name of Object.keys(made)) serializer[name] = () => made[name];
const { createClient } = require("bedrock-protocol/src/createClient");

const [port, first, count] = process.argv.slice(2).map(Number);
const clients = [];
process.on("SIGTERM", () => {
  for (const client of clients) client.disconnect();
  setTimeout(() => process.exit(), 300);
});
for (let i = first; i < first + count; ++i) {
  const client = createClient({ host: "127.0.0.1", port, username: `Crowd${i}`, offline: true, version, skipPing: true, raknetBackend: "raknet-native", deviceOS: 7 });
  client.conLog = undefined;
  client.on("error", (error) => console.log(`error ${error.message}`));
  client.on("kick", ({ message }) => console.log(`kicked ${message}`));
  await new Promise((done) => { client.once("spawn", done); client.once("close", done); });
  clients.push(client);
  console.log(`in ${clients.length}`);
}
