// The dialogue in which a player is chosen among those the server knows, or made.
import * as api from "/api.js";
import { h, labelledfield, select } from "/dom.js";
import { notice } from "/notices.js";
import { language, t } from "/strings.js";

const languages = [["en_US", "English"], ["zh_CN", "简体中文"], ["zh_TW", "繁體中文"], ["ja_JP", "日本語"], ["de_DE", "Deutsch"],
                   ["fr_FR", "Français"], ["es_ES", "Español"], ["pt_BR", "Português"], ["ru_RU", "Русский"]];
const levels = [0, 1, 2, 3, 4];

export const playerlanguage = () => (language() === "zh" ? "zh_CN" : "en_US");

// `joined(name)` is called when the player stands on the server.
export async function joindialogue(joined) {
  const known = await api.players();
  const name = h("input", { type: "text", required: true, maxlength: 16, autocomplete: "off" });
  const xuid = h("input", { type: "text", inputmode: "numeric", pattern: "[1-9][0-9]{0,19}", autocomplete: "off", tplaceholder: "xuidhint" });
  const speaks = select(languages, playerlanguage());
  const device = select([["desktop", t("desktop")], ["touch", t("touch")]], "desktop");
  const level = select(levels.map((n) => [String(n), t(`level${n}`)]), "0");
  const go = h("button", { type: "submit", class: "main", t: "join" });

  const done = (player) => {
    dialogue.close();
    joined(player);
  };
  const choose = (player) => {
    if (player.joined) return done(player.name);
    name.value = player.name;
    xuid.value = player.xuid;
    if (player.language && languages.some(([code]) => code === player.language)) speaks.value = player.language;
    device.value = player.touch ? "touch" : "desktop";
    level.value = String(player.permission);
    go.focus();
  };
  const submit = async (event) => {
    event.preventDefault();
    go.disabled = true;
    const who = { name: name.value.trim(), language: speaks.value, device: device.value, permission: Number(level.value) };
    if (xuid.value.trim()) who.xuid = xuid.value.trim();
    try {
      done((await api.join(who)).name);
    } catch (error) {
      problem.textContent = error.message;
      go.disabled = false;
    }
  };

  const problem = h("p", { class: "problem", role: "alert" });
  const dialogue = h("dialog", { class: "join", tlabel: "jointitle", on: { close: () => dialogue.remove() } },
    h("form", { method: "dialog", on: { submit } },
      h("h2", { t: "jointitle" }),
      known.length > 0 ? h("h3", { t: "known" }) : null,
      known.length > 0 ? h("div", { class: "knownplayers" }, ...known.map((player) =>
        h("button", { type: "button", class: "chip", "data-known": player.name, on: { click: () => choose(player) } },
          player.name, h("small", { t: player.joined ? "show" : player.touch ? "touch" : "desktop" })))) : null,
      h("h3", { t: "newplayer" }),
      h("div", { class: "fields" }, labelledfield("name", name), labelledfield("playerlanguage", speaks),
        labelledfield("device", device), labelledfield("permission", level), labelledfield("xuid", xuid)),
      problem,
      h("footer", {}, h("button", { type: "button", t: "cancel", on: { click: () => dialogue.close() } }), go)));
  document.body.append(dialogue);
  dialogue.showModal();
  name.focus();
}

// The one click of a newcomer.
export async function joinfirst(name, joined) {
  try {
    const known = (await api.players()).find((player) => player.name === name);
    if (!known?.joined) await api.join({ name, language: playerlanguage() });
    joined(name);
  } catch (error) {
    notice(error);
  }
}
