// The page: its head, the players' cards, the operator's side, and the one stream that feeds them all.
import * as api from "/api.js";
import { Bustle } from "/bustle.js";
import { Card } from "/card.js";
import { confirmed } from "/confirm.js";
import { Desk } from "/desk.js";
import { calmly, h, relabel, select, setlabel } from "/dom.js";
import * as items from "/items.js";
import { joindialogue, joinfirst } from "/join.js";
import { notice } from "/notices.js";
import { Operator } from "/operator.js";
import { Rejoin } from "/rejoin.js";
import { remember, remembered, token } from "/settings.js";
import { audible, setaudible } from "/sounds.js";
import { Stream } from "/stream.js";
import { language, setlanguage, t } from "/strings.js";

const firstname = "Alice";
const informpause = 250, informevery = 5000;

const cards = new Map();
let known = [];  // the players as last read
let run = "";  // which run of the server everything here is of
let paused = false;
let operator = null;
let desk = null;
const cardplace = h("div", { class: "cards" });
const bustle = new Bustle({ begun: () => showdesk(true) });
const empty = emptystate();
const again = new Rejoin({ joined: rejoined, changed: arrange });
const status = h("span", { class: "connection", role: "status" });
const halted = h("span", { class: "halted", role: "status" });
const stream = new Stream({ event: onevent, state: onstate });

// ---- the cards

function streamquery() {
  const query = new URLSearchParams({ run });
  for (const name of cards.keys()) query.append("player", name);
  // What every card has already is not sent again.
  query.set("heard", String(Math.min(...[...cards.values()].map((card) => card.heard), Number.MAX_SAFE_INTEGER)));
  query.set("log", "1");
  query.set("after", String(operator.log.last));
  return query;
}

const listen = calmly(30, () => stream.open(streamquery));

async function opencard(name) {
  if (cards.has(name)) return cards.get(name).element.scrollIntoView({ block: "nearest" });
  try {
    const [picture] = await Promise.all([api.look(name), readplayers()]);
    addcard(name, picture);
  } catch (error) {
    notice(error);
  }
}

function addcard(name, picture) {
  const player = known.find((one) => one.name === name);
  if (!player || cards.has(name)) return;
  const card = new Card(player, { hide: (one) => dropcard(one.player.name), leave: leavecard });
  cards.set(name, card);
  again.settle(name);
  card.begin(picture);
  card.inform(player);
  card.setpaused(paused);
  cardplace.append(card.element);
  arrange();
  listen();
}

async function leavecard({ player: { name } }) {
  if (!(await confirmed("leavesure", { name }, "leave"))) return;
  await api.leave(name).catch(notice);  // the stream tells when he has gone
}

// The cards are of a run that is over: whoever is here already shows what he has now, the others are offered again.
async function startanew() {
  operator.log.last = 0;
  const players = [...cards.values()].map((card) => card.player);
  for (const { name } of players) dropcard(name);
  await readplayers();
  if (players.length === 0) notice(t("startedanew"));
  else await showagain(players, "restarted");
}

function dropcard(name) {
  const card = cards.get(name);
  if (!card) return;
  const washere = card.element.contains(document.activeElement);
  card.element.remove();
  cards.delete(name);
  listen();
  arrange();
  if (washere) ([...cards.values()][0]?.element ?? empty.querySelector("button")).focus();
}

function arrange() {
  empty.hidden = cards.size > 0;
  cardplace.dataset.count = String(Math.min(cards.size, 3));
  operator?.inform(known);
  remember("open", [...cards.keys(), ...again.names()]);
}

// ---- what the server tells

const handlers = {
  server(state) {
    if (state.run !== run) {
      run = state.run;
      startanew().catch(notice);
    }
    operator.time.draw(state);
    setpaused(state.paused);
    inform();
  },
  client: ({ player, state }) => cards.get(player)?.draw(state),
  patch({ player, patch }) {
    cards.get(player)?.patch(patch);
    inform();
  },
  heard({ player, number, what }) {
    cards.get(player)?.hear(number, what, true);
    inform();
  },
  gone: ({ player }) => dropcard(player),
  log: (lines) => operator.log.add(lines),
};

function onevent(event, data) {
  const begun = performance.now();
  try {
    handlers[event]?.(data);
  } catch (error) {
    // A picture that went astray is taken anew.
    console.error(error);
    listen();
  }
  performance.measure("update", { start: begun, detail: event });
}

function setpaused(on) {
  if (on === paused) return;
  paused = on;
  const washere = halted.contains(document.activeElement);
  halted.replaceChildren(...(on ? [h("span", { t: "halted" }), h("button", { type: "button", class: "quiet", t: "resume", on: { click: goon } })] : []));
  if (washere) operatorbutton.focus();
  for (const card of cards.values()) card.setpaused(on);
}

const goon = () => api.speed({ paused: false }).catch(notice);

function onstate(state) {
  setlabel(status, "t", state);
  status.dataset.state = state;
  if (state === "refused") askfortoken();
  if (state === "live") inform();
}

// Money and life are the operator's knowledge and come with no packet: they are read a little after something happened.
async function readplayers() {
  known = await api.players();
  for (const player of known) cards.get(player.name)?.inform(player);
  operator.inform(known);
  desk.inform();
  return known;
}
const inform = eventually(informpause, () => readplayers().catch(() => {}));

// At most once in a while, and always once after the last call.
function eventually(pause, work) {
  let waiting = false;
  return () => {
    if (waiting) return;
    waiting = true;
    setTimeout(async () => {
      waiting = false;
      await work();
    }, pause);
  };
}

// ---- the page around them

// Whoever was just joined is the one to go on with; the button that did it may be gone.
async function joined(name) {
  await opencard(name);
  cards.get(name)?.element.focus();
}

async function rejoined(names) {
  for (const name of names) await opencard(name);
  cards.get(names[0])?.element.focus();
}

function emptystate() {
  return h("section", { class: "empty", hidden: true },
    h("h2", { t: "emptytitle" }), h("p", { t: "emptytext" }),
    h("div", { class: "emptybuttons" },
      h("button", { type: "button", class: "main big", "data-action": "first", on: { click: () => joinfirst(firstname, joined) } }, t("joinfirst", { name: firstname })),
      h("button", { type: "button", class: "big", t: "joinother", on: { click: () => joindialogue(joined).catch(notice) } }),
      bustle.button({ class: "big" }, true)),
    h("ol", { class: "steps" }, h("li", { t: "first1" }), h("li", { t: "first2" }), h("li", { t: "first3" })));
}

function settheme(theme) {
  remember("theme", theme);
  if (theme === "auto") delete document.documentElement.dataset.theme;
  else document.documentElement.dataset.theme = theme;
}

function changelanguage(name) {
  setlanguage(name);
  document.documentElement.lang = language();
  relabel(document);
  empty.querySelector("[data-action=first]").textContent = t("joinfirst", { name: firstname });
  for (const option of themes.options) option.textContent = t(`theme${option.value}`);
  for (const card of cards.values()) card.relabel();
  again.relabel();
  bustle.draw();
  operator.relabel();
  desk.relabel();
}

const themes = select(["auto", "light", "dark"].map((name) => [name, t(`theme${name}`)]), remembered("theme", "auto"),
  { tlabel: "theme", ttitle: "theme", on: { change: () => settheme(themes.value) } });
const languages = select([["en", "English"], ["zh", "中文"]], language(),
  { tlabel: "language", ttitle: "language", on: { change: () => changelanguage(languages.value) } });
const sound = h("button", { type: "button", t: audible() ? "soundon" : "soundoff", "aria-pressed": String(audible()), on: { click: () => {
  setaudible(!audible());
  setlabel(sound, "t", audible() ? "soundon" : "soundoff");
  sound.setAttribute("aria-pressed", String(audible()));
} } });
const operatorbutton = h("button", { type: "button", t: "operator", on: { click: turnoperator } });

// The head scrolls away, and in a narrow window the panel with it: the button leads there, and only closes what is seen.
function turnoperator() {
  const panel = operator.element;
  const { top, bottom } = panel.getBoundingClientRect();
  if (!panel.hidden && bottom > 0 && top < innerHeight) return showoperator(false);
  showoperator(true);
  operator.reveal();
}

function closeoperator() {
  showoperator(false);
  operatorbutton.focus();
}

function showoperator(on) {
  operator.element.hidden = !on;
  operatorbutton.setAttribute("aria-pressed", String(on));
  remember("operator", on);
}

// The desk takes the place of the cards.
const deskbutton = h("button", { type: "button", t: "desk", "aria-pressed": "false", on: { click: () => showdesk(desk.element.hidden) } });

function showdesk(on) {
  document.querySelector(".playing").hidden = on;
  deskbutton.setAttribute("aria-pressed", String(on));
  remember("desk", on);
  if (on) desk.show();
  else desk.hide();
}

function head() {
  return h("header", { class: "pagehead" },
    h("div", { class: "brand" }, h("img", { src: "/favicon.svg", alt: "", width: 28, height: 28 }), h("h1", {}, "Ordomart"), h("span", { t: "playground" }), status, halted),
    h("nav", {}, h("button", { type: "button", class: "main", t: "addplayer", on: { click: () => joindialogue(joined).catch(notice) } }),
      deskbutton, operatorbutton, sound, languages, themes));
}

function askfortoken() {
  if (document.querySelector(".tokenpage")) return;
  const field = h("input", { type: "text", required: true, autocomplete: "off", spellcheck: "false", tlabel: "tokenfield", tplaceholder: "tokenfield" });
  const submit = (event) => {
    event.preventDefault();
    const before = location.hash;
    location.hash = `token=${field.value.trim().replace(/^.*token=/, "")}`;
    if (location.hash === before) location.reload();  // no change of the address tells of the same once more
  };
  const wrong = token() === "" ? "" : "wrong";
  document.body.replaceChildren(h("main", { class: "tokenpage" }, h("section", { class: "empty" },
    h("h1", { t: `${wrong}tokentitle` }), h("p", { t: `${wrong}tokentext` }),
    h("form", { class: "tokenform", on: { submit } }, field, h("button", { type: "submit", class: "main", t: "tokenuse" })))));
  field.focus();
}

// The cards of those who are still here, in their old order; the others are offered, with the reason.
async function showagain(players, why) {
  const here = new Set(known.filter((player) => player.joined).map((player) => player.name));
  again.offer(players.filter(({ name }) => !here.has(name)), why);
  const shown = players.map(({ name }) => name).filter((name) => here.has(name));
  const pictures = await Promise.all(shown.map((name) => api.look(name).catch(() => null)));  // gone just now
  for (const [number, name] of shown.entries()) if (pictures[number]) addcard(name, pictures[number]);
}

// Behind the first picture, which stands without them.
function loaditems() {
  items.load().catch((error) => {
    notice(error);
    setTimeout(loaditems, 2000);
  });
}

async function begin() {
  document.documentElement.lang = language();
  settheme(remembered("theme", "auto"));
  addEventListener("hashchange", () => location.reload());
  if (token() === "") return askfortoken();
  try {
    [{ run }, known] = await Promise.all([api.server(), api.players()]);
  } catch (error) {
    if (error.status === 401 || error.status === 403) return askfortoken();
    notice(error);
    return void setTimeout(begin, 2000);
  }
  operator = new Operator({ players: () => known, reload: readplayers, opencard, onpage: (name) => cards.has(name), close: closeoperator });
  desk = new Desk({ players: () => known, bustle });
  document.body.replaceChildren(head(), h("main", { class: "page" }, h("div", { class: "playing" }, again.element, empty, cardplace), desk.element, operator.element));
  showdesk(remembered("desk", false));
  showoperator(remembered("operator", false));
  const before = remembered("open", []);
  await showagain(before.map((name) => known.find((player) => player.name === name)).filter(Boolean), "werehere");
  arrange();
  listen();
  loaditems();
  bustle.refresh().catch(notice);
  setInterval(() => document.hidden || inform(), informevery);
}

begin().catch(notice);
