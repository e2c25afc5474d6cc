// Parts of the page that need no browser: the patches of the stream, the contrast of all text colours, what the first file
// asks for, and that both languages say the same things.
import assert from "node:assert/strict";
import { readdir, readFile } from "node:fs/promises";
import { test } from "node:test";

import { patched } from "../../web/jsonpatch.js";
import english from "../../web/strings.en.js";
import chinese from "../../web/strings.zh.js";

test("patches", () => {
  const cases = [
    [{ a: 1 }, [{ op: "replace", path: "/a", value: null }], { a: null }],
    [{ a: [1, 3] }, [{ op: "add", path: "/a/1", value: 2 }, { op: "add", path: "/a/-", value: 4 }], { a: [1, 2, 3, 4] }],
    [{ a: [1, 2, 3] }, [{ op: "remove", path: "/a/0" }, { op: "replace", path: "/a/1", value: 9 }], { a: [2, 9] }],
    [{ "x/y": { "~": 1 } }, [{ op: "remove", path: "/x~1y/~0" }, { op: "add", path: "/x~1y/b", value: [] }], { "x/y": { b: [] } }],
    [{ a: 1 }, [{ op: "replace", path: "", value: [1] }, { op: "add", path: "/0", value: 0 }], [0, 1]],
  ];
  for (const [document, patch, wanted] of cases) assert.deepEqual(patched(document, patch), wanted);
  for (const bad of [{ op: "add", path: "/a/b/c", value: 1 }, { op: "add", path: "/list/7", value: 1 }, { op: "move", from: "/a", path: "/b" }])
    assert.throws(() => patched({ a: 1, list: [] }, [bad]), undefined, JSON.stringify(bad));
});

function luminance(hex) {
  const [r, g, b] = [1, 3, 5].map((at) => parseInt(hex.slice(at, at + 2), 16) / 255)
    .map((v) => (v <= 0.04045 ? v / 12.92 : ((v + 0.055) / 1.055) ** 2.4));
  return 0.2126 * r + 0.7152 * g + 0.0722 * b;
}
const contrast = (a, b) => {
  const [low, high] = [luminance(a), luminance(b)].sort((x, y) => x - y);
  return (high + 0.05) / (low + 0.05);
};

test("text stands out from every surface of its theme", async () => {
  const read = (name) => readFile(new URL(`../../web/${name}`, import.meta.url), "utf8");
  const page = await read("page.css"), text = await read("text.css");
  const pairs = (css, pattern) => [...css.matchAll(pattern)].map(([, name, light, dark]) => [name, [light, dark]]);
  const variables = Object.fromEntries(pairs(page, /--(\w+): light-dark\((#\w{6}), (#\w{6})\)/g));
  const colours = [...pairs(text, /\.(c-\w) \{ color: light-dark\((#\w{6}), (#\w{6})\)/g),
                   ...["text", "muted", "accent", "bad"].map((name) => [name, variables[name]])];
  assert.equal(colours.length, 17 + 4);
  for (const theme of [0, 1]) {
    for (const surface of ["bg", "surface", "raised"])
      for (const [name, values] of colours) {
        const ratio = contrast(values[theme], variables[surface][theme]);
        assert.ok(ratio >= 4.5, `${name} on ${surface}, theme ${theme}: ${ratio.toFixed(2)}`);
      }
    assert.ok(contrast(variables.onaccent[theme], variables.accent[theme]) >= 4.5);
  }
});

test("all modules are asked for at once, by the first file", async () => {
  const folder = new URL("../../web/", import.meta.url), index = await readFile(new URL("index.html", folder), "utf8");
  const asked = [...index.matchAll(/(?:modulepreload" href|type="module" src)="\/(.+?)"/g)].map(([, name]) => name);
  assert.deepEqual(asked.sort(), (await readdir(folder)).filter((name) => name.endsWith(".js")).sort());
});

test("both languages have every text, with the same values in it", () => {
  assert.deepEqual(Object.keys(chinese).sort(), Object.keys(english).sort());
  const values = (text) => [...text.matchAll(/\{\w+\}/g)].map(String).sort();
  for (const [key, text] of Object.entries(english)) assert.deepEqual(values(chinese[key]), values(text), key);
});
