// The calls of the control API. Every failure is an ApiError with the server's own words.
import { token } from "/settings.js";

export class ApiError extends Error {
  constructor(status, message) {
    super(message);
    this.status = status;  // 0: the server was not reached
  }
}

export async function call(method, path, body, options = {}) {
  let response;
  try {
    response = await fetch(path, {
      method,
      headers: { Authorization: `Bearer ${token()}` },
      body: body === undefined ? undefined : JSON.stringify(body),
      ...options,
    });
  } catch (error) {
    throw new ApiError(0, error.message);
  }
  if (options.raw && response.ok) return response;
  const answer = await response.json().catch(() => ({}));
  if (!response.ok) throw new ApiError(response.status, answer.error ?? response.statusText);
  return answer;
}

const at = (name, part = "") => `/api/players/${encodeURIComponent(name)}${part}`;

export const players = () => call("GET", "/api/players").then((answer) => answer.players);
export const join = (who) => call("POST", "/api/players", who);
export const leave = (name) => call("DELETE", at(name));
export const look = (name) => call("GET", at(name));
export const command = (name, line) => call("POST", at(name, "/command"), { line });
export const click = (name, container, slot, how) => call("POST", at(name, "/click"), { container, slot, how });
export const close = (name) => call("POST", at(name, "/close"), {});
export const answer = (name, form, given) => call("POST", at(name, "/answer"), { form, answer: given });
export const inventory = (name) => call("GET", at(name, "/inventory")).then((found) => found.slots);
export const putinventory = (name, stack) => call("PUT", at(name, "/inventory"), stack);
export const putmoney = (name, amount) => call("PUT", at(name, "/money"), { amount });
export const score = (name, objective) =>
  call("GET", at(name, `/score?objective=${encodeURIComponent(objective)}`)).then((found) => found.value);
export const putscore = (name, objective, value) => call("PUT", at(name, "/score"), { objective, value });
export const kill = (name) => call("POST", at(name, "/kill"));
export const revive = (name) => call("POST", at(name, "/revive"));
export const permission = (name, level) => call("PUT", at(name, "/permission"), { level });
export const items = () => call("GET", "/api/items").then((answer) => answer.items);
export const server = () => call("GET", "/api/server");
export const speed = (change) => call("POST", "/api/speed", change);
export const ticks = (count) => call("POST", "/api/ticks", { count });
export const clock = (milliseconds) => call("POST", "/api/clock", { milliseconds });
export const views = () => call("GET", "/api/views").then((answer) => answer.views);
export const view = (name, query) => call("GET", `/api/views/${encodeURIComponent(name)}?${new URLSearchParams(query)}`);
export const heard = (name, after) => call("GET", at(name, `?heard=${after}`)).then((answer) => answer.heard);
export const bustle = () => call("GET", "/api/bustle");
export const startbustle = (players) => call("POST", "/api/bustle", { players });
export const stopbustle = () => call("DELETE", "/api/bustle");
export const complete = (line, player) =>
  call("GET", `/api/complete?${new URLSearchParams({ line, player })}`);
