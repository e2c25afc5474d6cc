// The players of a soak: what each of them does in one visit to the market, and what all of them hold. `market.server`
// is the server of the moment; `below` the dice.
import { setTimeout as rest } from "node:timers/promises";

export const purse = 100000, wheat = 64, wheatslots = 5;

export const seeded = (seed) => {  // a small generator that a seed repeats
  let dice = seed;
  return (n) => {
    dice = (Math.imul(dice, 1664525) + 1013904223) >>> 0;
    return Math.floor((dice / 2 ** 32) * n);
  };
};

export function crowd(market, below, scoreboard) {
  const nameof = (number) => `Soak${number}`;
  const of = (number, rest = "") => `/api/players/${nameof(number)}${rest}`;

  async function joins(number) {
    const device = number % 2 ? "touch" : "desktop";
    const answer = await market.server.call("POST", "/api/players", { name: nameof(number), device });
    if (answer.status !== 200) throw new Error(`${nameof(number)} could not join: ${answer.error}`);
  }
  async function equips(number) {
    for (let slot = 0; slot < wheatslots; ++slot)
      await market.server.call("PUT", of(number, "/inventory"), { slot, item: "wheat", count: wheat });
    await (scoreboard ? market.server.call("PUT", of(number, "/score"), { objective: "money", value: purse })
      : market.server.call("PUT", of(number, "/money"), { amount: purse }));
  }
  const moneyof = async (number) => (scoreboard
    ? (await market.server.call("GET", of(number, "/score?objective=money"))).value : (await market.server.call("GET", of(number, "/money"))).amount);

  // ---- what players do; each is one visit to the market

  const formof = async (number) => (await market.server.call("GET", of(number))).form?.json;
  const parsed = (form) => (typeof form === "string" ? JSON.parse(form) : form);
  async function waits(number) {
    for (let i = 0; i < 40; ++i) {
      const form = parsed(await formof(number));
      if (form) return form;
      await rest(50);
    }
    return null;
  }
  const types = (number, line) => market.server.call("POST", of(number, "/command"), { line });
  const answers = (number, answer) => market.server.call("POST", of(number, "/answer"), { answer });
  async function dismisses(number) {
    for (let i = 0; i < 6 && await formof(number); ++i) await answers(number, null);
    await market.server.call("POST", of(number, "/close"));
  }
  const filled = (form, value) => form.content.map((element) => (
    element.type === "label" ? null : element.type === "input" ? value : element.default ?? 0));

  async function listed(number, button) {
    await types(number, "ordomart formmenu");
    if (!await waits(number)) return null;
    await answers(number, button);
    const list = await waits(number);
    return list?.buttons?.length > 1 ? list : null;
  }
  async function buysbyform(number) {
    const list = await listed(number, 0);
    if (list) {
      await answers(number, list.buttons.length - 1 - below(Math.min(20, list.buttons.length - 1)));
      const form = await waits(number);
      if (form?.type === "custom_form") await answers(number, filled(form, String(1 + below(4))));
    }
    await dismisses(number);
  }
  async function sellsbyform(number) {
    const list = await listed(number, 1);
    if (list) {
      await answers(number, below(list.buttons.length));
      const form = await waits(number);
      if (form?.type === "custom_form")
        await answers(number, form.content.map((e) => (e.type === "slider" ? below(Math.min(3, e.max + 1)) : null)));
    }
    await dismisses(number);
  }
  async function buysfromchest(number) {
    await types(number, "ordomart buy");
    await rest(600);
    if (below(2)) {
      await market.server.call("POST", of(number, "/click"), { container: "hotbar", slot: below(2) ? 8 : 3, how: "click" });
      await rest(300);
    }
    await market.server.call("POST", of(number, "/click"), { container: "inventory", slot: 9 + below(26), how: "click" });
    const form = await waits(number);
    if (form?.type === "custom_form") await answers(number, filled(form, String(1 + below(3))));
    await dismisses(number);
  }
  async function searches(number) {
    await types(number, `ordomart search ${below(2) ? "sell" : "recycle"} Good`);
    await rest(500);
    await dismisses(number);
  }
  async function loops(number) {
    for (let i = 0; i < 20; ++i) {
      await types(number, "ordomart formmenu");
      await answers(number, 0);
    }
    await dismisses(number);
  }
  async function breaksoff(number) {
    await types(number, below(2) ? "ordomart buy" : "ordomart formmenu");
    if (below(2)) await answers(number, 0);
    await market.server.call("DELETE", of(number));
    await rest(100 + below(400));
    await joins(number);
  }
  const visits = [buysbyform, buysbyform, sellsbyform, sellsbyform, buysfromchest, buysfromchest, searches, loops, breaksoff];

  // Coins and pieces in the hands of so many, and on the ground.
  async function holds(clients) {
    const held = { money: 0, wheat: 0, goods: 0 };
    const add = (item, count) => { held[item === "minecraft:wheat" ? "wheat" : "goods"] += count; };
    for (let number = 0; number < clients; ++number) {
      await dismisses(number);
      held.money += await moneyof(number);
      // A click behind a menu that has just closed takes a stack up: the cursor counts, too.
      const { slots } = await market.server.call("GET", of(number, "/inventory"));
      const { slots: { cursor } } = await market.server.call("GET", of(number));
      for (const slot of [...slots, cursor[0]]) if (slot) add(slot.item, slot.count);
    }
    for (const { item, count } of (await market.server.call("GET", "/api/dropped")).items) add(item, count);
    return held;
  }
  return { nameof, of, joins, equips, holds, visits };
}

// What is wrong with what players hold and what the shops say of their trades, line by line.
export function wrongwith(held, shops, clients) {
  const all = clients * wheat * wheatslots, coins = clients * purse - shops.income + shops.paid;
  return [
    [shops.goods === held.goods, `${shops.goods} goods left the shops, players hold ${held.goods}`],
    [shops.taken + held.wheat === all, `wheat: ${shops.taken} taken in and ${held.wheat} held of ${all}`],
    [held.money === coins, `players have ${held.money}, their trades leave ${coins}`],
    [shops.goods > 0 && shops.taken > 0, "nothing was traded"],
  ].filter(([holds]) => !holds).map(([, text]) => text);
}
