// What the network's tests and measurements share: a server with the demo market and a gateway beside it, each a process
// of its own. ORDOMART_SERVER names another program.
import { spawn } from "node:child_process";
import { createSocket } from "node:dgram";
import { once } from "node:events";
import { mkdtemp, rm } from "node:fs/promises";
import { tmpdir } from "node:os";
import path from "node:path";
import { createInterface } from "node:readline";
import { fileURLToPath } from "node:url";

export const root = path.resolve(path.dirname(fileURLToPath(import.meta.url)), "../..");
export const program = path.resolve(process.env.ORDOMART_SERVER ?? path.join(root, "build/dev/ordomart-server"));

// A program, when it has said what it says once it runs.
async function runs(command, words, pattern, spawned) {
  const child = spawn(command, words, { stdio: ["pipe", "pipe", "pipe"], ...spawned });
  const said = [];
  const ended = once(child, "exit").then(([code, signal]) => code ?? signal);
  const impatience = setTimeout(() => child.kill(), 30_000);
  const match = await new Promise((found, failed) => {
    for (const stream of [child.stdout, child.stderr])
      createInterface({ input: stream }).on("line", (line) => {
        said.push(line);
        const one = line.match(pattern);
        if (one) found(one);
      });
    ended.then((code) => failed(new Error(`${path.basename(command)} ended with ${code}: ${said.slice(-5).join(" / ")}`)));
  }).finally(() => clearTimeout(impatience));
  const ends = async (signal = "SIGTERM") => {
    child.kill(signal);
    return ended;
  };
  return { child, said, match, ended, ends };
}

export async function freeport() {
  const socket = createSocket("udp4").bind(0, "127.0.0.1");
  await once(socket, "listening");
  const { port } = socket.address();
  await new Promise((closed) => socket.close(closed));
  return port;
}

export class Stage {
  binary = program;
  door = path.join(root, "gateway/main.js");
  spawned = {};  // what else both are started with

  static async starts({ server = ["--offline"], gateway = ["--offline"], ...others } = {}) {
    const stage = new Stage();
    Object.assign(stage, { serverwords: server, gatewaywords: gateway, port: await freeport(), ...others });
    stage.folder = await mkdtemp(path.join(tmpdir(), "ordomart-network-"));
    stage.directory = path.join(stage.folder, "server");
    await stage.startserver();
    await stage.startgateway();
    return stage;
  }

  async startserver() {
    this.server = await runs(this.binary, [this.directory, "--api-port", "0", "--gateway", ...this.serverwords], /(http:\S+)\/#token=(\w+)/, this.spawned);
    [, this.origin, this.token] = this.server.match;
  }

  async startgateway(more = this.gatewaywords, says = /is open/) {
    const words = ["--directory", this.directory, "--port", String(this.port), "--host", "127.0.0.1", ...more];
    this.gateway = await runs(this.door, words, says, this.spawned);
  }

  async call(method, part, body) {
    const response = await fetch(this.origin + part, { method, headers: { Authorization: `Bearer ${this.token}` }, body: body && JSON.stringify(body) });
    return { status: response.status, ...(await response.json()) };
  }

  async money(name) {
    return (await this.call("GET", `/api/players/${encodeURIComponent(name)}/money`)).amount;
  }

  async known(name) {
    return (await this.call("GET", "/api/players")).players.find((one) => one.name === name);
  }

  gives(name, slot, item, count) {
    return this.call("PUT", `/api/players/${name}/inventory`, { slot, item, count });
  }

  async eventually(holds, what) {
    for (let left = 100; left > 0; --left, await new Promise((rest) => setTimeout(rest, 50))) if (await holds()) return;
    throw new Error(`it never came about that ${what}`);
  }

  async ends() {
    await this.gateway?.ends();
    await this.server?.ends();
    await rm(this.folder, { recursive: true, force: true });
  }
}
