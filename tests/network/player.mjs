// A player of another maker: the third-party library's own client over UDP. It encodes all that he does; what he is shown
// is what it decoded, after every packet was read strictly.
import { readstrictly, require, shield, version } from "./strict.mjs";

const { createClient } = require("bedrock-protocol/src/createClient");

// A client of the library closes its connection again when it hears that it is closed; the native one has given back its
// memory by then.
const { Client: Connection } = require("raknet-native");
const { close } = Connection.prototype;
Connection.prototype.close = function () {
  if (!this.closed) close.call(this);
  this.closed = true;
};

const patience = 20_000;
const origin = { type: "player", uuid: "00000000-0000-0000-0000-000000000001", request_id: "", player_entity_id: undefined };

export class Player {
  slots = new Map();  // "inventory 9": item
  heard = [];  // chat, answers, toasts, sounds
  forms = [];
  packets = {};  // how many of each
  faults = [];
  last = {};  // packet of each name
  #waiting = new Set();
  #request = -1;

  static async joins(port, name, { device = 7, language = "en_US", prepared, ...options } = {}) {
    const player = new Player(createClient({
      host: "127.0.0.1", port, username: name, offline: true, version, skipPing: true, connectTimeout: patience, deviceOS: device,
      raknetBackend: "raknet-native", skinData: { LanguageCode: language }, ...options,
    }), name);
    prepared?.(player.client);
    await player.until(() => player.spawned || player.gone, "he is in");
    if (!player.gone) await player.until(() => player.slots.size >= 36 || player.gone, "his inventory is shown");
    if (player.gone) throw new Error(player.gone);
    return player;
  }

  constructor(client, name) {
    this.client = client;
    this.name = name;
    client.conLog = undefined;
    client.on("packet", ({ fullBuffer }) => {
      try {
        const { name: kind, params } = readstrictly(fullBuffer);
        this.packets[kind] = (this.packets[kind] ?? 0) + 1;
        this.last[kind] = params;
        if (kind === "start_game") shield(params.itemstates.find((one) => one.name === "minecraft:shield").runtime_id);
        this.#shows(kind, params);
      } catch (error) {
        this.faults.push(error);
      }
      this.#look();
    });
    client.on("spawn", () => { this.spawned = true; this.#look(); });
    client.on("error", (error) => { this.gone ??= error.message; this.#look(); });
    client.on("kick", ({ message }) => { this.gone ??= message; this.#look(); });
    client.on("close", () => { this.gone ??= "closed"; this.#look(); });
  }

  #shows(kind, told) {
    switch (kind) {
      case "start_game":
        this.items = new Map(told.itemstates.map((one) => [one.runtime_id, one.name.replace("minecraft:", "")]));
        break;
      case "inventory_content":
        told.input.forEach((item, slot) => this.slots.set(`${told.window_id} ${slot}`, item));
        break;
      case "inventory_slot":
        this.slots.set(`${told.window_id} ${told.slot}`, told.item);
        break;
      case "container_open":
        this.open = told;
        break;
      case "container_close":
        // The game's own client answers a close of the server.
        if (told.server && this.open?.window_id === told.window_id) this.closes();
        break;
      case "modal_form_request":
        this.forms.push({ id: told.form_id, ...JSON.parse(told.data) });
        break;
      case "text":
        this.heard.push(told.message);
        break;
      case "toast_request":
        this.heard.push(`${told.title}: ${told.message}`);
        break;
      case "command_output":
        this.heard.push(...told.output.map((one) => one.message_id));
        break;
      default:
    }
  }

  #look() {
    for (const look of [...this.#waiting]) look();
  }

  until(holds, what) {
    return new Promise((done, failed) => {
      const over = setTimeout(() => {
        this.#waiting.delete(look);
        const seen = `he heard ${JSON.stringify(this.heard.slice(-5))}, was sent ${JSON.stringify(this.packets)}`;
        failed(new Error(`${this.name} waits in vain until ${what}; ${seen}, ${this.gone ?? "and is there"}`));
      }, patience);
      const look = () => {
        const found = holds();
        if (!found) return;
        clearTimeout(over);
        this.#waiting.delete(look);
        done(found);
      };
      this.#waiting.add(look);
      look();
    });
  }

  // ---- what he does

  types(line) {
    this.client.write("command_request", { command: `/${line}`, origin, internal: false });
  }

  says(message) {
    this.client.queue("text", { type: "chat", needs_translation: false, source_name: this.name, message, xuid: "", platform_chat_id: "" });
  }

  // The form in front that holds a text.
  asked(text) {
    return this.until(() => this.forms.find((form) => JSON.stringify(form).includes(text)), `a form says "${text}"`);
  }

  answers(form, answer) {
    this.forms = this.forms.filter((one) => one !== form);
    this.client.write("modal_form_response", answer === null
      ? { form_id: form.id, has_response_data: false, has_cancel_reason: true, cancel_reason: "closed" }
      : { form_id: form.id, has_response_data: true, data: JSON.stringify(answer), has_cancel_reason: false });
  }

  async chooses(text) {
    const form = await this.asked(text);
    this.answers(form, form.buttons.findIndex((button) => button.text.includes(text)));
  }

  // What lies at a place of his inventory, with the name that he reads.
  at(slot) {
    const item = this.slots.get(`inventory ${slot}`);
    if (!item?.network_id) return null;
    const display = item.extra?.nbt?.nbt?.value?.display?.value;
    return { item: this.items.get(item.network_id), count: item.count, name: display?.Name?.value ?? "", stack: item.stack_id ?? 0 };
  }

  sees(slot, text) {
    return this.until(() => this.at(slot)?.name.includes(text) && this.at(slot), `slot ${slot} shows "${text}"`);
  }

  // Takes the stack of a slot to the cursor, as a mouse does.
  click(slot, container = slot < 9 ? "hotbar" : "inventory") {
    const there = this.at(slot);
    this.#request -= 2;
    this.client.write("item_stack_request", { requests: [{
      request_id: this.#request, custom_names: [], cause: "chat_public",
      actions: [{ type_id: "take", count: there.count, source: { slot_type: container, slot, stack_id: there.stack },
                  destination: { slot_type: "cursor", slot: 0, stack_id: 0 } }],
    }] });
    return this.#request;
  }

  // A slot of the hotbar in his hand.
  holds(slot) {
    const item = this.slots.get(`inventory ${slot}`);
    this.client.write("mob_equipment", { runtime_entity_id: 1n, item, slot, selected_slot: slot, window_id: "inventory" });
  }

  closes() {
    if (!this.open) return;
    this.client.write("container_close", { window_id: this.open.window_id, server: false });
    this.open = null;
  }

  // Of stacks that are real: they have a number.
  has(item) {
    let count = 0;
    for (let slot = 0; slot < 36; ++slot) if (this.at(slot)?.item === item && this.at(slot).stack > 0) count += this.at(slot).count;
    return count;
  }

  leaves() {
    this.client.disconnect();
  }
}
