// The game's text: colour and style codes behind a section sign, line breaks, and the signs of its font that no other
// font has. A colour does not end a style; "r" ends both. A code that nobody knows shows as nothing.
import { h } from "/dom.js";

const colour = /^[0-9a-g]$/, style = /^[klo]$/;

// A sign is drawn by the style sheet or stands for another letter; `plain` is what a reader of plain text gets.
const signs = {
  "\uE04D": { name: "left", plain: "\u2190" },
  "\uE04F": { name: "right", plain: "\u2192" },
  "\uE102": { name: "coin", plain: "\u00A4" },
  "\uE0A0": { name: "tick", plain: "\u2713" },
  "\uE0A1": { name: "cross", plain: "\u2717" },
};
const signpattern = /[\uE04D\uE04F\uE102\uE0A0\uE0A1]/;

function appendtext(parent, text) {
  for (const [number, line] of text.split("\n").entries()) {
    if (number > 0) parent.append(h("br"));
    for (const part of line.split(/([\uE04D\uE04F\uE102\uE0A0\uE0A1])/)) {
      const sign = signs[part];
      if (sign) parent.append(h("span", { class: `sign sign-${sign.name}` }, sign.plain));
      else if (part) parent.append(part);
    }
  }
}

// A fragment with the text as the game shows it.
export function coloured(text) {
  const out = document.createDocumentFragment();
  const now = { reset: [], colour: [], styles: new Set() };  // lists of class names
  for (const [number, piece] of String(text).split("\u00A7").entries()) {
    let rest = piece;
    if (number > 0) {
      const code = piece.slice(0, 1).toLowerCase();
      rest = piece.slice(1);
      if (colour.test(code)) now.colour = [`c-${code}`];
      else if (style.test(code)) now.styles.add(`f-${code}`);
      else if (code === "r") {
        now.reset = ["f-r"];
        now.colour = [];
        now.styles.clear();
      }
    }
    if (rest === "") continue;
    const classes = [...now.reset, ...now.colour, ...now.styles].join(" ");
    if (classes || signpattern.test(rest)) {
      const span = h("span", { class: classes || null });
      appendtext(span, rest);
      out.append(span);
    } else {
      appendtext(out, rest);
    }
  }
  return out;
}

// The same without colours, for places that take text only: options, labels, searches.
export function plain(text) {
  return String(text).replace(/\u00A7./gs, "").replace(new RegExp(signpattern, "g"), (sign) => signs[sign].plain);
}
