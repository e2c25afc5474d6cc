// The three kinds of server forms as dialogues of a player's card. Every way out is an answer: a button, the values in
// order, or null for closing.
import { coloured, plain } from "/colours.js";
import { h, select } from "/dom.js";
import { picture, texture } from "/drawing.js";
import { whenhere } from "/items.js";
import { itemofrow, splitprice } from "/rowparts.js";
import { Total } from "/totals.js";

const stickyheight = 70;  // what the button at the foot of a custom form covers, see forms.css
let lastid = 0;
const newid = () => `f${++lastid}`;

// An element of a custom form: what is shown, and value() as the game would answer it.
const elements = {
  label: (given) => ({ shown: h("div", { class: "formlabel" }, coloured(given.text)), value: () => null }),
  input(given) {
    const field = h("input", { type: "text", value: given.default ?? "", placeholder: plain(given.placeholder ?? ""), autocomplete: "off" });
    return { shown: labelled(given, field), value: () => field.value, field };
  },
  toggle(given) {
    const field = h("input", { type: "checkbox", role: "switch", class: "switch", checked: Boolean(given.default) });
    return { shown: h("label", { class: "formtoggle" }, field, h("span", {}, coloured(given.text))), value: () => field.checked };
  },
  slider(given) {
    const field = h("input", { type: "range", min: given.min, max: given.max, step: given.step ?? 1 });
    field.value = given.default ?? given.min;
    const output = h("output", {}, field.value);
    field.addEventListener("input", () => { output.textContent = field.value; });
    return { shown: labelled(given, h("div", { class: "slider" }, field, output), field), value: () => Number(field.value), field };
  },
  dropdown: (given) => choice(given, given.options),
  step_slider: (given) => choice(given, given.steps),
};

function choice(given, options) {
  const field = select((options ?? []).map((text, number) => [String(number), plain(text)]), String(given.default ?? 0));
  return { shown: labelled(given, field), value: () => Number(field.value) };
}

function labelled(given, shown, field = shown) {
  field.id = newid();
  return h("div", { class: "formfield" }, h("label", { for: field.id }, coloured(given.text)), shown);
}

// A button's own image, or that of the item it names. The table of items may come later than the form.
function tile(image, text) {
  const place = h("span", { class: "tile", hidden: !image });
  whenhere(() => {
    const row = image ? null : itemofrow(text);
    if (image) place.replaceChildren(texture(image));
    else if (row) place.replaceChildren(picture(row.item, row.aux));
    place.hidden = !image && !row;
  });
  return place;
}

function formbutton(button, choose) {
  const whole = String(button.text ?? ""), { text, price } = splitprice(whole);
  return h("button", { type: "button", class: price === null ? "formbutton" : "formbutton priced", on: { click: choose } }, tile(button.image, whole),
    h("span", { class: "formbuttontext" }, coloured(text)), price === null ? null : h("span", { class: "price" }, coloured(price)));
}

const kinds = {
  form: (form, answer) => [
    form.content ? h("div", { class: "formcontent" }, coloured(form.content)) : null,
    h("div", { class: "formbuttons" }, ...(form.buttons ?? []).map((button, number) =>
      formbutton(button, () => answer(number)))),
  ],
  modal: (form, answer) => [
    h("div", { class: "formcontent" }, coloured(form.content ?? "")),
    h("div", { class: "modalbuttons" },
      h("button", { type: "button", class: "main", on: { click: () => answer(true) } }, coloured(form.button1)),
      h("button", { type: "button", on: { click: () => answer(false) } }, coloured(form.button2))),
  ],
  custom_form(form, answer, balance) {
    const parts = (form.content ?? []).map((given) => elements[given.type]?.(given) ?? elements.label({ text: given.text ?? "" }));
    const submit = (event) => {
      event.preventDefault();
      answer(parts.map((part) => part.value()));
    };
    const total = new Total(form, balance), reckon = () => total.update(parts.find((part) => part.field).field.value);
    if (total.element) reckon();
    const more = total.element ? { input: reckon } : {};
    return [h("form", { class: "customform", novalidate: true, on: { submit, ...more } }, ...parts.map((part) => part.shown), total.element,
      h("button", { type: "submit", class: "main", t: "submit" }))];
  },
};

// A dialogue for the form { id, json }; `send(answer)` returns a promise, which may fail; `balance()` is the money that the
// player's card shows, or null.
export function formdialogue({ id, json }, send, balance) {
  const title = newid();
  const dialogue = h("section", { class: "form", role: "dialog", "aria-labelledby": title, "data-form": String(id) });
  const answer = async (value) => {
    if (dialogue.inert) return;
    dialogue.inert = true;  // one answer; a failed one may be given again
    try {
      await send(value);
    } catch {
      dialogue.inert = false;
    }
  };
  const good = json !== null && typeof json === "object" && json.type in kinds;
  dialogue.append(
    h("header", {},
      h("h3", { id: title, tabindex: -1 }, good ? coloured(json.title ?? "") : h("span", { t: "form" })),
      h("button", { type: "button", class: "icon", ttitle: "close", tlabel: "close", on: { click: () => answer(null) } }, "✕")),
    h("div", { class: "formbody" }, ...(good ? kinds[json.type](json, answer, balance) : [h("p", { t: "formbroken" })]).filter(Boolean)));
  dialogue.addEventListener("keydown", (event) => {
    if (event.key === "Escape") {
      event.preventDefault();
      event.stopPropagation();
      answer(null);
    }
    if (event.key === "ArrowDown" || event.key === "ArrowUp") walkbuttons(event, dialogue);
  });
  return dialogue;
}

function walkbuttons(event, dialogue) {
  const buttons = [...dialogue.querySelectorAll(".formbutton")];
  if (buttons.length === 0) return;
  const next = buttons.indexOf(document.activeElement) + (event.key === "ArrowDown" ? 1 : -1);
  buttons[Math.max(0, Math.min(next, buttons.length - 1))].focus();
  event.preventDefault();
}

// Where the keyboard should be when the form comes: its first control, or its head where a long text stands before that,
// since the text is read from its beginning and a key must not change what nobody sees.
export function focusform(dialogue) {
  const body = dialogue.querySelector(".formbody"), first = body.querySelector("button, input, select");
  const seen = first && first.getBoundingClientRect().top < body.getBoundingClientRect().bottom - stickyheight;
  (seen ? first : dialogue.querySelector("h3")).focus({ preventScroll: true });
}
