// How soon the page is seen, and what a page with 50 players costs: they all play while the page shows them and the log
// runs. Prints the browser's time per update and the server's bytes per second. PLAYERS and SECONDS change the size.
import { startbrowser, startserver } from "./stage.mjs";

const players = Number(process.env.PLAYERS ?? 50), seconds = Number(process.env.SECONDS ?? 15);
const names = Array.from({ length: players }, (_, i) => `Player ${i + 1}`);
const at = (name, part) => `/api/players/${encodeURIComponent(name)}${part}`;

function quantile(sorted, share) {
  return sorted[Math.min(sorted.length - 1, Math.floor(sorted.length * share))] ?? 0;
}

function print(label, values) {
  const sorted = [...values].sort((a, b) => a - b), sum = sorted.reduce((a, b) => a + b, 0);
  console.log(`${label}: ${sorted.length}, mean ${(sum / sorted.length || 0).toFixed(2)} ms, median ${quantile(sorted, 0.5).toFixed(2)}, ` +
    `p99 ${quantile(sorted, 0.99).toFixed(2)}, worst ${(sorted.at(-1) ?? 0).toFixed(2)}`);
}

function printbusy(label, values) {
  print(label, values);
  console.log(`  busy ${(values.reduce((a, b) => a + b, 0) / seconds / 10).toFixed(1)} % of the time`);
}

// Opens and closes the goods, one after the other, as 50 people would between them.
async function play(server, until) {
  let steps = 0;
  for (let i = 0; performance.now() < until; ++i) {
    const name = names[i % players];
    await server.call("POST", at(name, "/command"), { line: "ordomart buy" });
    const before = names[(i + players - 5) % players];
    await server.call("POST", at(before, "/close"), {});
    steps += 2;
  }
  return steps;
}

// When the page is first seen and when the items are in it, opened anew several times with two players on it.
async function firstpictures(server, browser) {
  const seen = [], filled = [];
  for (let times = 0; times < 10; ++times) {
    const page = await browser.newPage({ viewport: { width: 1440, height: 900 } });
    await page.addInitScript((open) => localStorage.setItem("ordomart.open", JSON.stringify(open)), names.slice(0, 2));
    await page.goto(server.address);
    await page.locator(".slot .picture path").first().waitFor();
    const [first, items] = await page.evaluate(() => [performance.getEntriesByName("first-contentful-paint")[0].startTime, performance.now()]);
    seen.push(first);
    filled.push(items);
    await page.close();
  }
  print("first picture", seen);
  print("items in it", filled);
}

const server = await startserver(), browser = await startbrowser();
try {
  for (const name of names) await server.call("POST", "/api/players", { name });
  await firstpictures(server, browser);
  const page = await browser.newPage({ viewport: { width: 1600, height: 1000 } });
  await page.addInitScript((open) => {
    localStorage.setItem("ordomart.open", JSON.stringify(open));
    localStorage.setItem("ordomart.operator", "true");
    localStorage.setItem("ordomart.tab", '"log"');
  }, names);
  const begun = performance.now();
  await page.goto(server.address);
  await page.locator(".card").nth(players - 1).waitFor({ timeout: 120000 });
  console.log(`${players} players shown after ${((performance.now() - begun) / 1000).toFixed(2)} s`);

  const network = await page.context().newCDPSession(page);
  let bytes = 0;
  await network.send("Network.enable");
  network.on("Network.dataReceived", ({ dataLength }) => { bytes += dataLength; });
  await page.evaluate(() => {
    performance.clearMeasures();
    window.longtasks = [];
    new PerformanceObserver((list) => window.longtasks.push(...list.getEntries().map((one) => one.duration))).observe({ type: "longtask" });
  });
  const steps = await play(server, performance.now() + seconds * 1000);
  const measured = await page.evaluate(() => ({
    updates: performance.getEntriesByName("update").map(({ detail, duration }) => ({ detail, duration })), longtasks: window.longtasks,
  }));
  console.log(`${(steps / seconds).toFixed(0)} commands and closings a second`);
  for (const kind of new Set(measured.updates.map((one) => one.detail)))
    printbusy(`updates "${kind}"`, measured.updates.filter((one) => one.detail === kind).map((one) => one.duration));
  printbusy("all updates", measured.updates.map((one) => one.duration));
  printbusy("long tasks (layout and paint included)", measured.longtasks);
  console.log(`to the page: ${(bytes / seconds / 1024).toFixed(0)} KiB a second`);
} finally {
  await browser.close();
  await server.stop();
}
