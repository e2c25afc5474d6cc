// Who walks through the menus: an owner and an operator in each language and with each device, all on one server that runs
// with --manual, and what the shared shop must hold for them.
import { readFile } from "node:fs/promises";
import path from "node:path";

import { menus, operatormenus } from "./menus.mjs";
import { joins } from "./stage.mjs";
import { Walk } from "./walk.mjs";

// Each language and each device has one walk through every door; the two others are spared the doors of the forms, in
// which the device makes no difference and the language none that has not been read.
export const combinations = [
  { look: "desktop-en", language: "en_US", locale: "en-GB", device: "desktop" },
  { look: "touch-en", language: "en_US", locale: "en-GB", device: "touch", chestsonly: true },
  { look: "desktop-zh", language: "zh_CN", locale: "zh-CN", device: "desktop", chestsonly: true },
  { look: "touch-zh", language: "zh_CN", locale: "zh-CN", device: "touch" },
];

// Puts a good and a commission into the shared shop, as its operator would, by the forms alone.
export async function fillsharedshop(server) {
  const name = "Opal", at = `/api/players/${name}`;
  await server.call("POST", "/api/players", { name, permission: 2 });
  const goods = [null, "Iron", "", "20", "", 12, true], wanted = [null, "Wheat", "", "2", "50", "", true, false, false, false];
  await server.call("POST", `${at}/command`, { line: "ordomart formmenu" });
  for (const answer of [4, 2, 3, 0, goods, null, 5, 3, 2, wanted, null, null, null]) {
    for (let tries = 0; ; ++tries) {
      await server.call("POST", "/api/ticks", { count: 5 });
      const { form } = await server.call("GET", at);
      if (form) break;
      if (tries > 100) throw new Error(`no form for ${JSON.stringify(answer)}`);
    }
    await server.call("POST", `${at}/answer`, { answer });
  }
  await server.call("DELETE", at);
}

// `seen(picture, page, player)` is awaited at each place; `picture` names the place and the look.
export async function walk(server, page, { look, language, device, chestsonly }, { seen = () => {} } = {}) {
  const texts = JSON.parse(await readFile(path.join(server.files, "langs.json"), "utf8"));
  const kind = { texts: { ...texts.en_US, ...texts[language] }, touch: device === "touch", chestsonly, chinese: language === "zh_CN" };
  for (const [tables, name, permission] of [[menus, "Owner", "0"], [operatormenus, "Warden", "2"]]) {
    const player = await joins(page, { name: `${name} ${look.replace("-", " ")}`.slice(0, 16), language, device, permission });
    const steps = new Walk(server, player, tables, { ...kind, seen: (place) => seen(`${look} ${name} ${place}`, page, player) });
    await steps.all().catch((error) => {
      error.message = `${look}: ${error.message}`;
      throw error;
    });
    await server.call("DELETE", `/api/players/${encodeURIComponent(player.name)}`);
  }
}
