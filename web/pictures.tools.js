// What the tables of pictures are written with, on their grid of 16 by 16. A part is the letter or the #colour of its fill
// with a path behind it; "~" draws the path as a line in the darker colour.
export const dot = (fill, x, y, r) => `${fill}M${x - r} ${y}a${r} ${r} 0 1 0 ${2 * r} 0a${r} ${r} 0 1 0 ${-2 * r} 0z`;
export const box = (fill, x, y, width, height) => `${fill}M${x} ${y}h${width}v${height}h${-width}z`;
export const dots = (fill, r, ...places) => places.map(([x, y]) => dot(fill, x, y, r));

// A cube seen from its edge. On each face u goes to the right and v down, both from 0 to 1.
const faces = {
  left: (u, v) => [1.7 + 6.3 * u, 4.4 + 3.2 * u + 7.35 * v],
  right: (u, v) => [8 + 6.3 * u, 7.6 - 3.2 * u + 7.35 * v],
  top: (u, v) => [8 + 6.3 * (u - v), 1.2 + 3.2 * (u + v)],
};
export function on(face, fill, u, v, width, height) {
  const corners = [[u, v], [u + width, v], [u + width, v + height], [u, v + height]];
  return `${fill}M${corners.map(([x, y]) => faces[face](x, y).map((at) => at.toFixed(1)).join(" ")).join("L")}z`;
}
export const sides = (fill, u, v, width, height) => [on("left", fill, u, v, width, height), on("right", fill, u, v, width, height)];
export const cube = (top = "l", left = "m", right = "d") =>
  [on("top", top, 0, 0, 1, 1), on("left", left, 0, 0, 1, 1), on("right", right, 0, 0, 1, 1)];
