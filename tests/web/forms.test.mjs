// Forms with everything that a form can hold, filled on the page against the demo market.
import assert from "node:assert/strict";
import { beforeEach, test } from "node:test";

import { count, formof, money, moneyof, onpages, play, purse } from "./play.mjs";
import { joins } from "./stage.mjs";

const commission = "Wheat for the bakery", offer = 3, wheat = 40, wanted = 200;

onpages();
let page;
beforeEach(() => ({ page } = play));

// The commission's form, by the menu of forms.
async function offerswheat(player) {
  await player.types("ordomart formmenu");
  await player.asked("Main menu");
  await player.chooses(/Recycle/);
  await player.asked(commission);
  await player.chooses(new RegExp(commission));
  await player.asked("Sell items");
  return player.form.getByRole("slider");
}

test("a slider is moved, goods are sold, and the dialogue afterwards is answered", async () => {
  const hugo = await joins(page, { name: "Hugo" }), before = await moneyof("Rosa");
  const slider = await offerswheat(hugo);
  assert.equal(await slider.inputValue(), String(wheat), "all of the slot is offered");
  assert.ok(await slider.evaluate((field) => field === document.activeElement));
  for (let kept = 1; kept <= 3; ++kept) {
    await page.keyboard.press("ArrowLeft");
    await hugo.form.locator(".slider output", { hasText: String(wheat - kept) }).waitFor();
  }
  const sold = wheat - 3;
  await page.keyboard.press("Enter");

  await hugo.asked(`Player Hugo gain ${sold * offer} for minecraft:wheat*${sold} from Rosa's Larder`);
  await money(hugo, purse + sold * offer);
  await hugo.slot("hotbar", 2).filter({ hasText: /^3$/ }).waitFor();
  assert.equal(await count("Hugo", "minecraft:wheat"), 3);
  assert.equal(await moneyof("Rosa"), before, "she paid when she asked for it");
  await hugo.chooses("Continue");
  await hugo.asked(`Still wanted:${wanted - sold}`);

  await hugo.chooses(new RegExp(commission));
  await hugo.asked("Sell items");
  await hugo.form.getByRole("button", { name: "Submit" }).click();
  await hugo.asked("minecraft:wheat*3 ");
  await hugo.slot("hotbar", 2).and(page.locator(":not(.full)")).waitFor();
  await page.keyboard.press("Escape");  // no to the dialogue: back to the menu it began with
  await hugo.asked("Main menu");
});

test("a search asks with text, choice and switches, and its goods lie on the screen", async () => {
  const searches = [  // one for each player: the market opens no menus in quick succession
    ["Ida", { text: "every grain", where: "Recycle", tags: false, words: true }, ["Wheat"]],
    ["Ike", { text: "garden", where: "Sell", tags: true, words: false }, ["Oak sapling", "Bone meal"]],
    ["Ina", { text: "garden", where: "Sell", tags: false, words: false }, []],
  ];
  for (const [name, how, found] of searches) {
    const player = await joins(page, { name });
    await player.card.getByRole("button", { name: "ordomart search" }).click();
    await page.keyboard.type("anything");
    await page.keyboard.press("Enter");
    await player.asked("Where to search");
    await player.form.locator("input[type=text]").fill(how.text);
    await player.form.getByRole("combobox").selectOption({ label: how.where });
    const [tags, words] = await player.form.getByRole("switch").all();
    assert.deepEqual([await tags.isChecked(), await words.isChecked()], [true, false]);
    await tags.setChecked(how.tags);
    await words.setChecked(how.words);
    await player.form.getByRole("button", { name: "Submit" }).click();
    await player.card.getByRole("button", { name: /Sort by/ }).waitFor();  // of the menu's own row, under any list
    for (const [number, good] of found.entries()) {
      await player.slot("inventory", 9 + number).and(page.locator(".full")).hover();
      await page.locator(".tooltip", { hasText: good }).waitFor();
    }
    assert.equal(await player.card.locator(".slot-inventory.full").count(), found.length, JSON.stringify(how));
  }
});

test("whoever is killed before he answers keeps his goods", async () => {
  await page.locator("[data-t=operator]").first().click();
  const jan = await joins(page, { name: "Jan" });
  await offerswheat(jan);
  await page.locator('[data-row="Jan"]').getByRole("button", { name: "Kill" }).click();
  await page.getByRole("alertdialog").getByRole("button", { name: "Kill" }).click();
  await jan.card.locator(".badge.bad:visible").waitFor();
  await jan.form.getByRole("button", { name: "Submit" }).click();
  await jan.chat.locator(".line-chat", { hasText: "Dead people" }).waitFor();
  assert.equal(await count("Jan", "minecraft:wheat"), wheat);
  await page.locator('[data-row="Jan"]').getByRole("button", { name: "Revive" }).click();
  await jan.card.locator(".badge.bad").waitFor({ state: "hidden" });
  const slider = await offerswheat(jan);
  await slider.fill("1");
  await jan.form.getByRole("button", { name: "Submit" }).click();
  await money(jan, purse + offer);
});

test("in a low window the text is read first, and the keyboard finds what lies below", async () => {
  await page.setViewportSize({ width: 1000, height: 560 });
  const kim = await joins(page, { name: "Kim" });
  const slider = await offerswheat(kim);
  assert.ok(await kim.form.getByRole("heading").evaluate((head) => head === document.activeElement));
  await page.keyboard.press("Tab");  // the button that closes
  await page.keyboard.press("Tab");
  assert.ok(await slider.evaluate((field) => {
    const at = field.getBoundingClientRect(), hit = document.elementFromPoint(at.x + at.width / 2, at.y + at.height / 2);
    return field === document.activeElement && hit === field;
  }), "it has the focus, and nothing covers it");
  await page.keyboard.press("Escape");
  await kim.asked(commission);  // closing goes back to the list
  assert.notEqual(await formof("Kim"), null);
});
