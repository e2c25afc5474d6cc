// The page's own words, and the language they are shown in. What the game and the market say comes from the server, in
// the language of the player who reads it.
import { remember, remembered } from "/settings.js";
import english from "/strings.en.js";
import chinese from "/strings.zh.js";

const tables = { en: english, zh: chinese };
const standard = navigator.language.toLowerCase().startsWith("zh") ? "zh" : "en";
let now = remembered("language", standard);
if (!(now in tables)) now = standard;

export const language = () => now;

export function setlanguage(name) {
  now = name;
  remember("language", name);
}

// t("joinedas", { name }) puts values in for {name}.
export function t(key, values = {}) {
  const text = tables[now][key] ?? english[key] ?? key;
  return text.replace(/\{(\w+)\}/g, (whole, name) => (name in values ? String(values[name]) : whole));
}
