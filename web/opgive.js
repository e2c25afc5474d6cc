// Gives a player a stack: chosen from the item table, or written as SNBT.
import * as api from "/api.js";
import { calmly, h, labelledfield, select } from "/dom.js";
import { picture } from "/drawing.js";
import * as items from "/items.js";
import { Outcome, playerselect } from "/opparts.js";
import { language, t } from "/strings.js";

const mostfound = 60, mostslots = 41, inventoryslots = 36;

function slotname(slot) {
  if (slot < 9) return t("slothotbar", { number: slot });
  if (slot < inventoryslots) return t("slotinventory", { number: slot });
  return slot < 40 ? t("slotarmor", { number: slot - inventoryslots }) : t("slotoffhand");
}

// Names that begin with what was asked come first, then those with a word that does.
function rank(row, asked) {
  const names = [row.en, row.zh, row.item.replace(/^.*:/, "")].map((name) => name.toLowerCase());
  if (names.some((name) => name.startsWith(asked))) return 0;
  return names.some((name) => name.split(/[ _]/).some((word) => word.startsWith(asked))) ? 1 : 2;
}

export class Give {
  constructor(context) {
    this.context = context;
    this.outcome = new Outcome();
    this.player = playerselect(context);
    this.item = null;
    this.search = h("input", { type: "search", autocomplete: "off", tplaceholder: "finditem", tlabel: "finditem", on: { input: calmly(100, () => this.find()) } });
    this.found = h("div", { class: "founditems", role: "listbox", tlabel: "finditem" });
    this.variant = select([], "");
    this.variantfield = labelledfield("variant", this.variant, { hidden: true });
    this.count = h("input", { type: "number", min: 1, max: 64, required: true, value: "1" });
    this.slot = select([], "");
    this.snbt = h("textarea", { rows: 4, required: true, spellcheck: "false", tlabel: "snbt", placeholder: '{Count:1b,Damage:0s,Name:"minecraft:bow",WasPickedUp:0b}' });
    const kind = (value, key, on) => h("label", { class: "radio" },
      h("input", { type: "radio", name: "givekind", value, checked: on, on: { change: () => this.choosekind(value) } }), h("span", { t: key }));
    // Of the two only the one that is seen is on: a field that is not must neither refuse nor say anything.
    this.bytable = h("fieldset", {}, this.search, this.found, h("div", { class: "fields" }, this.variantfield, labelledfield("count", this.count)));
    this.bysnbt = h("fieldset", { hidden: true, disabled: true }, labelledfield("snbt", this.snbt));
    this.kind = "table";
    const submit = (event) => {
      event.preventDefault();
      this.outcome.of(() => this.give());
    };
    this.element = h("section", {}, h("form", { class: "stackform", on: { submit } },
      h("div", { class: "fields" }, this.player.shown, labelledfield("slot", this.slot)),
      h("div", { class: "radios" }, kind("table", "givebyname", true), kind("snbt", "givebysnbt", false)),
      this.bytable, this.bysnbt, h("button", { type: "submit", class: "main", t: "giveit" })), this.outcome.element);
    this.relabel();
  }

  inform(players) {
    this.player.fill(players.filter((player) => player.online));
  }

  shown() {
    this.find();
  }

  relabel() {
    const before = this.slot.value;
    this.slot.replaceChildren(h("option", { value: "" }, t("slotfree")),
      ...Array.from({ length: mostslots }, (_, slot) => h("option", { value: String(slot) }, slotname(slot))));
    this.slot.value = before;
    this.find();
  }

  choosekind(kind) {
    this.kind = kind;
    this.bytable.hidden = this.bytable.disabled = kind !== "table";
    this.bysnbt.hidden = this.bysnbt.disabled = kind !== "snbt";
  }

  find() {
    const asked = this.search.value.trim().toLowerCase();
    const fits = (one) => [one.item, one.en, one.zh, ...one.variants.flatMap((v) => [v.en, v.zh])].some((text) => text.toLowerCase().includes(asked));
    if (this.item && !fits(this.item)) this.choose(null);
    const place = (one) => (one === this.item ? -1 : rank(one, asked));
    const rows = items.rows().filter(fits).sort((one, other) => place(one) - place(other)).slice(0, mostfound);
    this.found.replaceChildren(...rows.map((one) => {
      const name = one[language()] || one.en;
      return h("button", { type: "button", role: "option", class: "founditem", title: one.item, "aria-selected": String(this.item === one), "data-item": one.item,
                           on: { click: () => this.choose(one) } }, picture(one.item), h("span", {}, name));
    }));
    if (rows.length === 0) this.found.append(h("p", { class: "hint" }, t("noitem")));
  }

  // Null takes the choice back.
  choose(row) {
    this.item = row;
    for (const button of this.found.querySelectorAll("button")) button.setAttribute("aria-selected", String(button.dataset.item === row?.item));
    const { stack, variants } = row ?? { stack: 64, variants: [] };
    this.count.max = stack;
    this.count.value = String(Math.min(Number(this.count.value) || 1, stack));
    this.variant.replaceChildren(...variants.map((one) => h("option", { value: String(one.aux) }, one[language()] || one.en)));
    this.variantfield.hidden = variants.length === 0;
  }

  async give() {
    if (this.kind === "table") this.find();  // what is typed counts, though the list comes a little later
    if (this.kind === "table" && !this.item) throw new Error(t("chooseitem"));
    const name = this.player.field.value;
    const slot = this.slot.value === "" ? await this.freeslot(name) : Number(this.slot.value);
    if (this.kind === "snbt") {
      await api.putinventory(name, { slot, snbt: this.snbt.value });
      return t("givensnbt", { name });
    }
    const aux = Number(this.variant.value || 0), count = Number(this.count.value);
    await api.putinventory(name, { slot, item: this.item.item, count, aux });
    return t("given", { name, count, item: items.nameof(this.item.item, aux) });
  }

  async freeslot(name) {
    const free = (await api.inventory(name)).findIndex((stack) => stack === null);
    if (free < 0 || free >= inventoryslots) throw new Error(t("nofree", { name }));
    return free;
  }
}
