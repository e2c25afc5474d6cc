// Building elements. Text only ever goes in as text nodes, so that nothing a player or a shop is called can become
// markup. Labels are given by their key and follow a change of the page's language.
import { t } from "/strings.js";

const labelled = { t: "textContent", ttitle: "title", tlabel: "aria-label", tplaceholder: "placeholder" };

function applylabel(element, kind, key) {
  const target = labelled[kind];
  if (target === "textContent") element.textContent = t(key);
  else element.setAttribute(target, t(key));
}

// h("button", { class: "big", t: "join", on: { click } }, child, "text", ...)
export function h(tag, properties = {}, ...children) {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(properties)) {
    if (value === undefined || value === null || value === false) continue;
    if (name === "on") for (const [event, call] of Object.entries(value)) element.addEventListener(event, call);
    else if (name === "value") element.value = value;
    else if (name in labelled) setlabel(element, name, value);
    else element.setAttribute(name, value === true ? "" : value);
  }
  element.append(...children.filter((child) => child !== null && child !== undefined));
  return element;
}

export function setlabel(element, kind, key) {
  element.setAttribute(`data-${kind}`, key);
  applylabel(element, kind, key);
}

// Writes all labels below `root` anew, in the language of the moment.
export function relabel(root) {
  for (const kind of Object.keys(labelled))
    for (const element of root.querySelectorAll(`[data-${kind}]`))
      applylabel(element, kind, element.getAttribute(`data-${kind}`));
}

const svgspace = "http://www.w3.org/2000/svg";

export function svg(tag, attributes, ...children) {
  const element = document.createElementNS(svgspace, tag);
  for (const [name, value] of Object.entries(attributes)) element.setAttribute(name, value);
  element.append(...children);
  return element;
}

// A select of [value, text] rows.
export function select(rows, chosen, properties = {}) {
  const element = h("select", properties, ...rows.map(([value, text]) => h("option", { value }, text)));
  element.value = chosen;
  return element;
}

export function labelledfield(key, control, extra = {}) {
  return h("label", { class: "field", ...extra }, h("span", { t: key }), control);
}

// Calls `work` once, a little after the last of several calls.
export function calmly(milliseconds, work) {
  let timer = 0;
  return (...args) => {
    clearTimeout(timer);
    timer = setTimeout(() => work(...args), milliseconds);
  };
}
