// What the browser's tests, pictures and measurements share: a server with the demo market in a directory of its own,
// on a free port, and a browser. ORDOMART_SERVER and CHROMIUM name other programs.
import { spawn } from "node:child_process";
import { mkdtemp, rm } from "node:fs/promises";
import { tmpdir } from "node:os";
import path from "node:path";
import { createInterface } from "node:readline";
import { fileURLToPath } from "node:url";

import { chromium } from "playwright-core";

const root = path.resolve(path.dirname(fileURLToPath(import.meta.url)), "../..");
const program = process.env.ORDOMART_SERVER ?? path.join(root, "build/dev/ordomart-server");
const browserpath = process.env.CHROMIUM ?? "/usr/bin/chromium";
const browserarguments = ["--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
  "--disable-background-networking", "--disable-component-update", "--disable-sync"];

// The program, when it has printed its address.
async function runserver(directory, port, more) {
  const server = spawn(program, [path.join(directory, "server"), "--api-port", String(port), ...more], { stdio: ["pipe", "pipe", "inherit"] });
  let board;  // where it is, with --board
  const address = await new Promise((found, failed) => {
    server.once("error", failed);
    server.once("exit", (code) => failed(new Error(`the server ended with ${code} before it printed its address`)));
    createInterface({ input: server.stdout }).on("line", (line) => {
      board ??= line.match(/The board is at (\S+)/)?.[1];
      const match = line.match(/http:\/\/\S+#token=\w+/);
      if (match) found(match[0]);
    });
  });
  const end = async (signal) => {
    const ended = new Promise((done) => server.once("exit", done));
    server.kill(signal);
    await ended;
  };
  return { address, board, end };
}

export async function startserver(more = []) {
  const directory = await mkdtemp(path.join(tmpdir(), "ordomart-page-"));
  let running = await runserver(directory, 0, more);
  const { address } = running, url = new URL(address), token = url.hash.slice("#token=".length);
  return {
    address, token, board: running.board, origin: url.origin, files: path.join(directory, "server/plugins/Ordomart"),
    async call(method, part, body, headers = { Authorization: `Bearer ${token}` }) {
      const response = await fetch(url.origin + part, { method, headers, body: body && JSON.stringify(body) });
      return { status: response.status, ...(await response.json()) };
    },
    // Ends it; what is done then begins it anew, in the same directory and on the same port.
    async end(signal = "SIGTERM") {
      await running.end(signal);
      return async () => {
        running = await runserver(directory, url.port, more);
        return running.address;
      };
    },
    async stop() {
      await running.end("SIGTERM");
      await rm(directory, { recursive: true, force: true });
    },
  };
}

export const startbrowser = () => chromium.launch({ executablePath: browserpath, args: browserarguments, headless: true });

// One player's card on the page, in the words of a person who plays him.
export class Player {
  constructor(page, name) {
    this.page = page;
    this.name = name;
    this.card = page.locator(`[data-player="${name}"]`);
    this.form = this.card.getByRole("dialog");
    this.money = this.card.locator(".money");
    this.chat = this.card.getByRole("log");
  }

  slot(container, number) {
    return this.card.locator(`[data-slot="${container}.${number}"]`);
  }

  async types(line) {
    await this.card.getByRole("combobox").first().fill(line);
    await this.card.getByRole("combobox").first().press("Enter");
  }

  // Waits for a form whose title or text holds `text`.
  asked(text) {
    return this.form.filter({ hasText: text }).waitFor();
  }

  async chooses(text) {
    await this.form.getByRole("button", { name: text }).first().click();
  }
}

export async function joins(page, { name, language = "en_US", device = "desktop", permission = "0" }) {
  await page.locator("[data-t=addplayer]").click();
  const dialogue = page.locator("dialog.join");
  await dialogue.locator("input").first().fill(name);
  const selects = dialogue.locator("select");
  await selects.nth(0).selectOption(language);
  await selects.nth(1).selectOption(device);
  await selects.nth(2).selectOption(permission);
  await dialogue.locator("button.main").click();
  const player = new Player(page, name);
  await player.card.waitFor();
  return player;
}
