// How the values of views are shown, by their kinds. A view's texts are strings, or one for each language.
import { h } from "/dom.js";
import * as items from "/items.js";
import { language, t } from "/strings.js";

const codes = { en: "en_US", zh: "zh_CN" };
const locales = { en: "en-GB", zh: "zh-CN" };

export const said = (text) => (text !== null && typeof text === "object" ? text[codes[language()]] ?? Object.values(text)[0] ?? "" : String(text ?? ""));

const number = (value) => new Intl.NumberFormat(locales[language()]).format(value);
const when = (value, options) => new Intl.DateTimeFormat(locales[language()], { timeZone: "UTC", ...options }).format(value * 1000);

function quantity(value, units) {
  const [size, unit] = units.find(([least]) => Math.abs(value) >= least) ?? units.at(-1);
  return `${new Intl.NumberFormat(locales[language()], { maximumSignificantDigits: 3 }).format(value / size)} ${unit}`;
}

const kinds = {
  number: (value) => (typeof value === "number" ? number(value) : said(value)),
  money: number,
  time: (value) => when(value, { dateStyle: "short", timeStyle: "medium" }),
  day: (value) => when(value, { dateStyle: "medium" }),
  seconds: (value) => quantity(value, [[1, "s"], [1e-3, "ms"], [1e-6, "µs"]]),
  bytes: (value) => quantity(value, [[2 ** 30, "GiB"], [2 ** 20, "MiB"], [2 ** 10, "KiB"], [1, "B"]]),
  ratio: (value) => `${number(Math.round(value * 1000) / 10)} %`,
  flag: (value) => t(value ? "yes" : "no"),
  item: ({ id, aux, enchanted }) => items.nameof(id, aux) + (enchanted ? ` (${t("enchanted")})` : ""),
  player: ({ id, name }) => name || id,
};

// As text; empty for a value that is missing.
export function shown(value, { kind, code }) {
  if (value === undefined || value === null) return "";
  return code ? String(value) : (kinds[kind] ?? said)(value);
}

export const isnumeric = ({ kind }) => ["number", "money", "seconds", "bytes", "ratio"].includes(kind);

// A command with a row's values in its braces, each as one word.
export function commandof(template, row) {
  return template.replace(/\{(\w+)\}/g, (whole, name) => {
    const value = row[name], text = String(value !== null && typeof value === "object" ? value.id : value ?? "");
    return /^[\w.:-]+$/.test(text) ? text : `"${text.replace(/["\\]/g, "\\$&")}"`;
  });
}

export function sentenceof(text, row, columns) {
  return said(text).replace(/\{(\w+)\}/g, (whole, name) => shown(row[name], columns.find((one) => one.name === name) ?? {}));
}

// The fields of a view's query as a form, with what was asked last. `ask(values)` gets what is filled in.
export function queryform({ query = [] }, last, players, ask) {
  if (query.length === 0) return null;
  const id = `desk-${Math.random().toString(36).slice(2)}`, lists = [];
  const controls = query.map((field) => {
    const before = last[field.name] ?? field.default ?? "";
    if (field.options) {
      const control = h("select", {}, ...field.options.map(({ value, title }) => h("option", { value }, said(title))));
      control.value = before;
      return control;
    }
    const known = { item: () => items.rows().map(({ item }) => items.nameof(item)), player: () => players().map(({ name }) => name) }[field.kind];
    const list = known && `${id}-${field.name}`;
    if (known) lists.push(h("datalist", { id: list }, ...known().map((value) => h("option", { value }))));
    const type = field.kind === "day" ? "date" : field.kind === "number" ? "number" : "search";
    return h("input", { type, list, required: field.required, autocomplete: "off", min: type === "number" ? 1 : null, value: before });
  });
  const submit = (event) => {
    event?.preventDefault();
    const values = {};
    for (const [number, { name, kind }] of query.entries()) {
      const given = controls[number].value.trim();
      if (given !== "") values[name] = (kind === "item" && items.called(given)?.item) || given;
    }
    ask(values);
  };
  for (const [number, { options }] of query.entries()) if (options) controls[number].addEventListener("change", () => form.reportValidity() && submit());
  const form = h("form", { class: "deskquery", on: { submit } },
    ...query.map(({ title }, number) => h("label", { class: "field" }, h("span", {}, said(title)), controls[number])),
    h("button", { type: "submit", class: "main", t: "desksearch" }), ...lists);
  return form;
}
