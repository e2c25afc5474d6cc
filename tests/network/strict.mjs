// Reads packets strictly by the published schema of the game's version: to the last byte, back to the same bytes (which a
// boolean that is neither 0 nor 1 would not come back to), and with a name for every enumerated value.
import assert from "node:assert/strict";
import { createRequire } from "node:module";

export const require = createRequire(new URL("../../gateway/package.json", import.meta.url));
const { ProtoDefCompiler } = require("protodef").Compiler;
const minecraft = require("bedrock-protocol/src/datatypes/compiler-minecraft");
export const version = "1.19.50";

// As the library reads the names in the schema.
const words = { true: true, false: false };
const named = (mappings) => Object.fromEntries(Object.entries(mappings).map(([key, name]) => [Number(key), words[name] ?? (isNaN(name) ? name : Number(name))]));

let unnamed = [];
global.unnamedvalue = (value, known) => unnamed.push(`${value} is none of ${known}`);

const compiler = new ProtoDefCompiler();
compiler.addTypesToCompile(require("minecraft-data")(`bedrock_${version}`).protocol.types);
compiler.addTypes(minecraft);
compiler.addTypes({
  Read: {
    mapper: ["parametrizable", (one, { type, mappings }) => one.wrapCode(`
      const { value, size } = ${one.callType(type)}
      const name = ${JSON.stringify(named(mappings))}[value]
      if (name === undefined) global.unnamedvalue(value, ${JSON.stringify(Object.values(mappings).slice(0, 4).join(", "))})
      return { value: name ?? value, size }`)],
  },
  Write: {}, SizeOf: {},
});
const schema = compiler.compileProtoDefSync();

// Throws what is wrong with it; answers its name and values.
export function readstrictly(bytes) {
  unnamed = [];
  const { data, metadata } = schema.parsePacketBuffer("mcpe_packet", bytes);
  const what = `${data.name} of ${bytes.length} bytes`;
  assert.equal(metadata.size, bytes.length, `${what}: not read to its end`);
  // The number of an enumeration stands where other parameters of a command name their kind.
  if (data.name === "available_commands") {
    const numbers = data.params.command_data.flatMap((one) => one.overloads).flatMap((one) => one.parameters).filter((one) => one.enum_type === "enum");
    assert.ok(unnamed.length <= numbers.length, `${what}: ${unnamed}`);
  } else assert.deepEqual(unnamed, [], what);
  assert.ok(schema.createPacketBuffer("mcpe_packet", data).equals(bytes), `${what}: it is not what the schema makes of the same values`);
  return data;
}

export function shield(id) {
  schema.setVariable("ShieldItemID", id);
}
