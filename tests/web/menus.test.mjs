// Every menu walked through on the page, by an owner and by an operator, with keyboard and mouse and by touch, in English
// and in Chinese. The four looks are walked at the same time, each on a page of its own, two of them by every door.
import assert from "node:assert/strict";
import { test } from "node:test";

import { onpages, opens, play } from "./play.mjs";
import { combinations, fillsharedshop, walk } from "./walkers.mjs";

const warning = 2;  // the log's level; new files are told of with it
const nohistory = /^cant find \S+log,/;  // of a shop that has not traded yet

onpages(["--manual"]);

test("every door of every menu leads somewhere and back", { timeout: 400000 }, async () => {
  await fillsharedshop(play.server);
  const walked = await Promise.allSettled(combinations.map(async (look) => walk(play.server, await opens(look), look)));
  for (const { reason } of walked) assert.ifError(reason);
  const { lines } = await play.server.call("GET", "/api/log?after=0");
  assert.deepEqual(lines.filter(({ level }) => level > warning).map(({ message }) => message).filter((text) => !nohistory.test(text)), []);
});
