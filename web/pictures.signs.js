// Pictures for the images that the market's forms name and that are no item, by the name of the file; written as
// pictures.js is. m is a green of the page.
import { box, dot } from "/pictures.tools.js";

const gear = "M7 1.8h2l.4 1.7 1.2.5 1.5-.9 1.4 1.4-.9 1.5.5 1.2 1.7.4v2l-1.7.4-.5 1.2.9 1.5-1.4 1.4-1.5-.9-1.2.5L9 15.4H7l-.4-1.7-1.2-.5-1.5.9-1.4-1.4.9-1.5L2.9 10l-1.7-.4v-2l1.7-.4.5-1.2-.9-1.5 1.4-1.4 1.5.9 1.2-.5z";
const person = (x, coat) => [`${coat}M${x - 4} 14.5c0-3.8 1.6-5.3 4-5.3s4 1.5 4 5.3z`, dot("#e3b58c", x, 5.6, 3), `vM${x - 3} 5.2c0-2.3 1.3-3.4 3-3.4s3 1.1 3 3.4c-1.8-.1-2.6-.6-3.3-1.5-.5.9-1.4 1.4-2.7 1.5z`];
const bookpage = (arrow) => ["wM1.5 3h13v10.5h-13z", "xM2.5 2.5h5v10h-5zM8.5 2.5h5v10h-5z", arrow];

export const signs = {
  book_shiftleft_default: bookpage("mM9.5 4v7L4 7.5z"),
  book_shiftright_default: bookpage("mM6.5 4v7L12 7.5z"),
  icon_multiplayer: [...person(10.8, "#3d6ae0"), ...person(5.3, "m")],
  Friend2: person(8, "m"),
  op: ["yM8 1.2l2 4.5 4.8.5-3.6 3.2 1.1 4.8L8 11.7l-4.3 2.5 1.1-4.8L1.2 6.2 6 5.7z", "xM8 1.2v4.3L6.5 7 6 5.7z"],
  icon_blackfriday: ["mM8.2 1.5h6.3v6.3L7.6 14.7 1.3 8.4z", dot("x", 12, 4, 1.2), "yM5 8.4l3.5-3.5.8.8-3.5 3.5zM6.8 10.2l3.5-3.5.8.8L7.6 11z"],
  icon_deals: ["mM1.5 7C1.7 4.7 3 3.5 5 3.5h5V1.2L14.5 5 10 8.8V6.5H5.5C4.7 6.5 4.5 7 4.5 8z", "yM14.5 9c-.2 2.3-1.5 3.5-3.5 3.5H6v2.3L1.5 11 6 7.2v2.3h4.5c.8 0 1-.5 1-1.5z"],
  ImpulseSquare: [box("x", 2.5, 7, 11, 7.5), "rM1.5 6l1.3-4h2.5L5 6c0 2-3.5 2-3.5 0zM8 2h2.5L11 6c0 2-3 2-3 0z", "xM5.3 2H8v4c0 2-3 2-3 0zM10.5 2h2.7l1.3 4c0 2-3.5 2-3.5 0z", box("w", 9, 9, 3, 5.5), box("#7fb2d8", 4, 9, 3.5, 3)],
  Language18: [box("x", 1.5, 1.5, 13, 13), ...[3, 7, 11].flatMap((y, n) => [box(["m", "y", "r"][n], 3, y, 2.2, 2.2), box("e", 6.5, y + 0.4, 6.5, 1.4)])],
  settings_glyph_color_2x: [`s${gear}`, dot("e", 8, 8.6, 2.8), dot("x", 8, 8.6, 1.5)],
  creative_icon: ["vM2 13.2L9.2 6l1.3 1.3-7.2 7.2z", "xM9.2 6l1.5-1.5L12 5.8l-1.5 1.5z", "yM12.5.8l.9 2 2 .9-2 .9-.9 2-.9-2-2-.9 2-.9zM5.5 1.5l.6 1.4 1.4.6-1.4.6-.6 1.4-.6-1.4-1.4-.6 1.4-.6z"],
};
