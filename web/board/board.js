// The board: views that hold nothing private, drawn from their descriptions for whoever opens the page. What is shown
// stands in the address, so that every list and every row has one that can be shared.
import { coloured, plain } from "/colours.js";
import { isnumeric, said, shown } from "/deskvalues.js";
import { h, select } from "/dom.js";
import { language, setlanguage, t } from "/strings.js";

let views = [];
let asked = 0;  // the latest load; an older one that comes later is not shown

const get = async (path) => {
  const response = await fetch(path).catch(() => { throw new Error(t("unreached")); });
  const answer = await response.json().catch(() => ({ error: response.statusText }));
  if (!response.ok) throw new Error(answer.error);
  return answer;
};

// ---- addresses

const addressof = (view, query) => `/?${new URLSearchParams({ view, ...query })}`;
const jsonof = (view, query) => `/api/${view}?${new URLSearchParams(query)}`;

function place() {
  const query = Object.fromEntries([...new URLSearchParams(location.search)].filter(([, value]) => value !== ""));
  const { view, ...rest } = query;
  return { view: views.find(({ name }) => name === view) ?? views[0], query: rest };
}

function goes(address) {
  history.pushState(null, "", address);
  draw();
}

const link = (address, properties, ...children) => h("a", {
  href: address, ...properties,
  on: { click: (event) => {
    if (event.ctrlKey || event.metaKey || event.shiftKey || event.button !== 0) return;
    event.preventDefault();
    goes(address);
  } },
}, ...children);

// Of a query what another view understands, too.
const shared = (view, query) => Object.fromEntries(Object.entries(query).filter(([name]) => view.query?.some((field) => field.name === name)));

// ---- what is asked for

function field({ name, title, kind, options, required, default: standard }, query) {
  const value = query[name] ?? standard ?? "";
  const control = options
    ? select(options.map((one) => [one.value, said(one.title)]), value, { name })
    : h("input", { name, value, required, type: kind === "day" ? "date" : "search", autocomplete: "off", enterkeyhint: "search" });
  if (options) control.addEventListener("change", () => control.form.requestSubmit());
  return h("label", { class: "field" }, h("span", {}, said(title)), control);
}

function search(view, query) {
  const fields = (view.query ?? []).filter(({ title }) => title);
  if (fields.length === 0) return null;
  const always = fields.filter((one, number) => number === 0 || one.options), others = fields.filter((one) => !always.includes(one));
  const submit = (event) => {
    event.preventDefault();
    goes(addressof(view.name, Object.fromEntries([...new FormData(event.target)].filter(([, value]) => value !== ""))));
  };
  // The address of a row names it to the end of each text. Whoever follows it wants to see the row, and no filters.
  const typed = ({ name }) => query[name] && !query[name].endsWith("$");
  const more = others.length > 0 && h("details", { open: others.some(typed) }, h("summary", {}, t("boardmore")),
    h("div", { class: "fields" }, ...others.map((one) => field(one, query))));
  return h("form", { class: "search", role: "search", on: { submit } },
    h("div", { class: "fields" }, ...always.map((one) => field(one, query))), more || null,
    h("div", { class: "buttons" }, h("button", { type: "submit", class: "main" }, t("desksearch")),
      Object.keys(query).length > 0 ? link(addressof(view.name, {}), { class: "button" }, t("boardall")) : null));
}

// ---- what is answered

function valueof(value, column, view) {
  if (column.kind === "item") {
    const text = said(value.name ?? value.id) + (value.enchanted ? ` (${t("enchanted")})` : "");
    const asks = view.query?.find(({ kind }) => kind === "item");
    return asks ? link(addressof(view.name, { [asks.name]: value.id }), {}, text) : text;
  }
  return typeof value === "string" ? coloured(value) : shown(value, column);
}

async function share(title, address, status) {
  const url = new URL(address, location).href;
  try {
    if (navigator.share) await navigator.share({ title, url });
    else {
      await navigator.clipboard.writeText(url);
      status.textContent = t("boardcopied");
    }
  } catch (error) {
    if (error.name !== "AbortError") status.textContent = url;  // to be copied by hand
  }
}

function card(row, view, status) {
  const filled = view.columns.filter(({ name, title }) => title && row[name] !== undefined && row[name] !== "");
  const [first, ...rest] = filled, own = view.columns.find(({ kind }) => kind === "query");
  const address = own && row[own.name] ? addressof(view.name, row[own.name]) : null;
  const title = first ? plain(shown(row[first.name], first)) : "";
  const head = first ? valueof(row[first.name], first, view) : "";
  return h("li", { class: "boardcard" },
    h("h3", {}, address ? link(address, {}, head) : head),
    h("dl", {}, ...rest.map((column) => h("div", { class: `k-${column.kind}` }, h("dt", {}, said(column.title)), h("dd", {}, valueof(row[column.name], column, view))))),
    address ? h("button", { type: "button", class: "quiet", "aria-label": `${t("boardshare")}: ${title}`, on: { click: () => share(title, address, status) } }, t("boardshare")) : null);
}

function table(rows, view) {
  const columns = view.columns.filter(({ title }) => title);
  const some = rows.filter((row) => columns.slice(1).some(({ name }) => row[name]));  // days on which nothing was are left out
  return h("div", { class: "boardtable", tabindex: 0, role: "region", "aria-label": said(view.title) }, h("table", {},
    h("thead", {}, h("tr", {}, ...columns.map((column) => h("th", { scope: "col", class: isnumeric(column) ? "number" : null }, said(column.title))))),
    h("tbody", {}, ...some.reverse().map((row) => h("tr", {}, ...columns.map((column) => h("td", { class: isnumeric(column) ? "number" : null }, row[column.name] === undefined ? "" : valueof(row[column.name], column, view))))))));
}

function results(answer, view, query, status) {
  const { rows = [], count, next, previous, note } = answer;
  const turns = [["boardprevious", previous], ["boardnext", next]].filter(([, to]) => to);
  return [
    h("p", { class: "hint", role: "status" }, rows.length === 0 ? t("desknothing") : count === undefined ? "" : t("boardcount", { count: shown(count, { kind: "number" }) })),
    note ? h("p", { class: "hint" }, said(note)) : null,
    rows.length === 0 ? null : view.kind === "series" ? table(rows, view) : h("ul", { class: "boardcards" }, ...rows.map((row) => card(row, view, status))),
    turns.length > 0 ? h("nav", { class: "buttons", "aria-label": t("boardpages") },
      ...turns.map(([word, to]) => link(addressof(view.name, { ...query, ...to }), { class: "button" }, t(word)))) : null,
    h("p", { class: "hint" }, h("a", { href: jsonof(view.name, query) }, t("boardjson"))),
  ];
}

// ---- the page

function frame(view, query, ...children) {
  const languages = [["en", "English"], ["zh", "中文"]].map(([code, name]) => h("button", {
    type: "button", class: "chip", lang: code, "aria-pressed": String(language() === code), on: { click: () => { setlanguage(code); draw(); } },
  }, name));
  document.documentElement.lang = language() === "zh" ? "zh-CN" : "en";
  document.title = view ? `${said(view.title)} · ${t("board")}` : t("board");
  document.body.replaceChildren(
    h("header", { class: "pagehead" }, h("div", { class: "brand" }, h("img", { src: "/favicon.svg", alt: "", width: 28, height: 28 }), h("h1", {}, t("board"))), h("div", { class: "buttons" }, ...languages)),
    h("main", { class: "board" },
      h("nav", { class: "buttons", "aria-label": t("deskviews") }, ...views.map((one) => link(addressof(one.name, shared(one, query)), { class: "button", "aria-current": one === view ? "page" : null }, said(one.title)))),
      ...children));
}

async function draw() {
  const mine = ++asked, { view, query } = place();
  if (!view) return frame(null, {}, h("p", {}, t("desknothing")));
  const status = h("p", { class: "outcome", role: "status" }), found = h("div", { class: "found", "aria-busy": "true" });
  const heading = [h("h2", {}, said(view.title)), view.about ? h("p", { class: "hint" }, said(view.about)) : null].filter(Boolean);
  frame(view, query, ...heading, ...[search(view, query)].filter(Boolean), status, found);
  const missing = (view.query ?? []).find(({ name, required }) => required && !query[name]);
  if (missing) {
    found.removeAttribute("aria-busy");
    status.textContent = t("deskfill");
    return;
  }
  try {
    const answer = await get(jsonof(view.name, query));
    if (mine !== asked) return;
    found.replaceChildren(...results(answer, view, query, status).filter(Boolean));
  } catch (error) {
    if (mine === asked) status.textContent = t("failed", { why: error.message });
  }
  found.removeAttribute("aria-busy");
}

addEventListener("popstate", draw);
try {
  ({ views } = await get("/api"));
  draw();
} catch (error) {
  frame(null, {}, h("p", { class: "problem" }, t("failed", { why: error.message })));
}
