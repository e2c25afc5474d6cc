// The market of a soak: owners whose goods and commissions are known to the piece, and a server that runs it as a
// process of its own.
import { spawn } from "node:child_process";
import { mkdir, mkdtemp, readdir, readFile, readlink, rm, writeFile } from "node:fs/promises";
import { Agent, request } from "node:http";
import { tmpdir } from "node:os";
import path from "node:path";
import { createInterface } from "node:readline";

export const owners = 20, goodsperowner = 10;
const stock = 100000, wanted = 100000;
const sold = ["apple", "bread", "coal", "emerald"], bought = "wheat";
const snbt = (item) => `{Count:1b,Damage:0s,Name:"minecraft:${item}",WasPickedUp:0b}`;

const good = (owner, place) => ({
  shopitemname: `Good ${place} of ${owner}`, shopitemdescribe: "", shopitemtag: sold[place % sold.length],
  price: 1 + (owner + place) % 5, shopitemleftnum: stock, itemnbt: snbt(sold[place % sold.length]), allowbesearched: true,
});
const commission = (owner) => ({
  recycleitemname: `Wheat for ${owner}`, recycleitemdescribe: "", recycleitemtag: "food", recycleitemleftwanna: wanted,
  nowhasrecyclenum: 0, offer: 2, itemnbt: snbt(bought), allowbesearched: true, filterauxordamage: false,
  filterench: false, filteritemnbt: false, recycleditemnbtlist: [],
});
const ownerxuid = (owner) => `25354000005${String(owner).padStart(5, "0")}`;

export async function makedirectory() {
  const directory = await mkdtemp(path.join(tmpdir(), "ordomart-soak-"));
  const data = path.join(directory, "server/plugins/Ordomart/data");
  await mkdir(data, { recursive: true });
  for (let owner = 0; owner < owners; ++owner) {
    const items = Array.from({ length: goodsperowner }, (_, place) => good(owner, place));
    await writeFile(path.join(data, `${ownerxuid(owner)}.json`),
      JSON.stringify({ sell: { items, shopname: `Shop ${owner}` }, recycles: { recycleitems: [commission(owner)], shopname: `Shop ${owner}` } }));
  }
  return { directory, removed: () => rm(directory, { recursive: true, force: true }) };
}

// What has left the shops and what has come in, by the shops' own files.
export async function countshops(directory) {
  const data = path.join(directory, "server/plugins/Ordomart/data");
  const counted = { goods: 0, taken: 0, income: 0, paid: 0 };
  for (let owner = 0; owner < owners; ++owner) {
    const { sell, recycles } = JSON.parse(await readFile(path.join(data, `${ownerxuid(owner)}.json`)));
    for (const item of sell.items) counted.goods += stock - item.shopitemleftnum;
    counted.income += sell.salesvolume ?? 0;
    counted.paid += recycles.recyclecost ?? 0;
    for (const entry of recycles.recycleitems) {
      const inside = entry.recycleditemnbtlist.reduce((sum, text) => sum + Number(text.match(/Count:(\d+)b/)[1]), 0);
      if (inside !== entry.nowhasrecyclenum || inside !== wanted - entry.recycleitemleftwanna)
        throw new Error(`commission of ${owner}: ${inside} stored, ${entry.nowhasrecyclenum} counted`);
      counted.taken += inside;
    }
  }
  return counted;
}

export class Server {
  static async start(program, directory, llmoney) {
    const words = [path.join(directory, "server"), "--api-port", "0", "--empty", "--quiet", ...(llmoney ? [] : ["--no-llmoney"])];
    const child = spawn(program, words, { stdio: ["pipe", "pipe", "inherit"] });
    const ended = new Promise((done) => child.once("exit", (code, signal) => done(code ?? signal)));
    const address = await new Promise((found, failed) => {
      child.once("error", failed);
      ended.then((code) => failed(new Error(`the server ended with ${code} before it printed its address`)));
      createInterface({ input: child.stdout }).on("line", (line) => {
        const match = line.match(/http:\/\/\S+#token=\w+/);
        if (match) found(new URL(match[0]));
      });
    });
    return new Server(child, ended, address);
  }

  constructor(child, ended, address) {
    this.child = child;
    this.ended = ended;
    this.address = address;
    this.token = address.hash.slice("#token=".length);
    this.agent = new Agent({ keepAlive: true, maxSockets: 24 });
    this.calls = this.failures = 0;
  }

  // The answer's body. A refusal (no form to answer, say) is one of the things that players run into; no answer is not.
  call(method, part, body) {
    this.calls += 1;
    return new Promise((done, failed) => {
      const text = body === undefined ? "" : JSON.stringify(body);
      const sent = request({
        host: this.address.hostname, port: this.address.port, method, path: part, agent: this.agent,
        headers: { Authorization: `Bearer ${this.token}`, "Content-Length": Buffer.byteLength(text) },
      }, (answer) => {
        let all = "";
        answer.setEncoding("utf8");
        answer.on("data", (piece) => { all += piece; });
        answer.on("end", () => {
          try {
            done({ status: answer.statusCode, ...JSON.parse(all) });
          } catch (error) {
            failed(error);
          }
        });
      });
      sent.once("error", (error) => { this.failures += 1; failed(error); });
      sent.end(text);
    });
  }

  // What the process holds, by the system's own books.
  async holds() {
    const proc = `/proc/${this.child.pid}`;
    const status = await readFile(`${proc}/status`, "utf8");
    const field = (name) => Number(status.match(new RegExp(`^${name}:\\s+(\\d+)`, "m"))[1]);
    const files = await readdir(`${proc}/fd`);
    const kinds = await Promise.all(files.map((file) => readlink(`${proc}/fd/${file}`).catch(() => "")));
    return { threads: field("Threads"), megabytes: Math.round(field("VmRSS") / 1024), files: kinds.filter((kind) => kind && !/\.(re)?log$/.test(kind)).length };  // histories stay open
  }

  async stop() {
    this.agent.destroy();
    this.child.kill("SIGTERM");
    return this.ended;
  }
}
