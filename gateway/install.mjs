// Fetches the gateway's packages as the lockfile has them, and leaves out what is never read: node gateway/install.mjs.
// Of the data of all versions of the game a few files are used, and of the packages that others ask for less than half. With
// --tests the library's client stays, too. Does nothing when that has been done.
import { execFileSync } from "node:child_process";
import { existsSync, lstatSync, mkdirSync, readdirSync, readFileSync, renameSync, rmSync, writeFileSync } from "node:fs";
import { createRequire } from "node:module";
import path from "node:path";
import { fileURLToPath } from "node:url";

const here = path.dirname(fileURLToPath(import.meta.url)), modules = path.join(here, "node_modules");
const version = "1.19.50";
const withclient = process.argv.includes("--tests");
const entries = ["bedrock-protocol/src/server", "bedrock-protocol/src/serverPlayer", "bedrock-protocol/src/rak", "raknet-native",
                 ...(withclient ? ["bedrock-protocol/src/createClient"] : [])];
const stamp = path.join(modules, ".ordomart");
const wanted = readFileSync(path.join(here, "package-lock.json"), "utf8") + readFileSync(fileURLToPath(import.meta.url), "utf8");
// What the tests need is more than enough for the rest.
const done = [`tests ${wanted}`, ...(withclient ? [] : [`gateway ${wanted}`])];
if (existsSync(stamp) && done.includes(readFileSync(stamp, "utf8"))) process.exit(0);

console.log("Fetching the gateway's packages ...");
execFileSync("npm", ["ci", "--omit=optional", "--ignore-scripts", "--silent", "--no-audit", "--no-fund"], { cwd: here, stdio: "inherit" });

function* files(directory) {
  for (const name of readdirSync(directory)) {
    const at = path.join(directory, name);
    if (lstatSync(at).isDirectory()) yield* files(at);
    else yield at;
  }
}
function keep(directory, iskept) {
  for (const name of readdirSync(directory)) if (!iskept(name)) rmSync(path.join(directory, name), { recursive: true });
}

// Of the game's data what the protocol needs. The rest is read at the start, too, and never asked for.
const data = path.join(modules, "minecraft-data/minecraft-data/data"), needed = ["protocol", "steve", "version"];
const paths = JSON.parse(readFileSync(path.join(data, "dataPaths.json"))).bedrock[version];
for (const [name, folder] of Object.entries(paths)) {
  const file = path.join(data, folder, `${name}.json`);
  if (!needed.includes(name) && existsSync(file)) writeFileSync(file, "[]");
}
const known = new Set(Object.entries(paths).map(([name, folder]) => `${folder}/${name}.json`));
for (const file of files(data)) {
  const name = path.relative(data, file);
  if (!known.has(name) && name.includes("/") && !name.includes("/common/")) rmSync(file);
}
// Of the native RakNet what was built for this kind of machine. It goes where it is found under any release of the kernel;
// by the package's own rule it would be found under that of its build alone.
const native = path.join(modules, "raknet-native"), prebuilds = path.join(native, "prebuilds");
const built = readdirSync(prebuilds).find((name) => name.startsWith(`${process.platform}-`) && name.endsWith(`-${process.arch}`));
renameSync(path.join(native, "raknet/LICENSE"), path.join(native, "raknet.LICENSE"));
keep(native, (name) => !["raknet", "src", "test", "build"].includes(name));
if (built) {
  mkdirSync(path.join(native, "build/Release"), { recursive: true });
  renameSync(path.join(prebuilds, built, "node-raknet.node"), path.join(native, "build/Release/node-raknet.node"));
}
keep(prebuilds, () => false);

// Of the packages those of which anything is loaded.
const require = createRequire(path.join(here, "package.json"));
for (const entry of entries) {
  try {
    require(entry);
  } catch (error) {
    if (entry !== "raknet-native") throw error;  // it is not built for every machine
  }
}
require("bedrock-protocol/src/transforms/serializer").createSerializer(version);
const used = new Set();
for (const file of Object.keys(require.cache)) {
  const [, name] = file.slice(file.lastIndexOf("/node_modules/") + 14).match(/^((?:@[^/]+\/)?[^/]+)/);
  used.add(path.join(file.slice(0, file.lastIndexOf("/node_modules/")), "node_modules", name));
}
const isused = (directory) => [...used].some((one) => one === directory || one.startsWith(`${directory}/`));
function prune(at) {
  for (const name of readdirSync(at)) {
    const directory = path.join(at, name);
    if (name.startsWith("@")) {
      prune(directory);
      if (readdirSync(directory).length === 0) rmSync(directory, { recursive: true });
    } else if (!isused(directory)) rmSync(directory, { recursive: true });
    else if (existsSync(path.join(directory, "node_modules"))) prune(path.join(directory, "node_modules"));
  }
}
prune(modules);
// Documents of types and maps of sources are read by editors alone.
for (const file of files(modules)) if (/\.(d\.[cm]?ts|map)$/.test(file)) rmSync(file);

writeFileSync(stamp, done.at(-1));
const bytes = [...files(modules)].reduce((sum, file) => sum + lstatSync(file).size, 0);
console.log(`The gateway's packages are there: ${(bytes / 1e6).toFixed(1)} MB.`);
