// Every menu and every door that leads out of it, as tables. Texts are named by their keys in langs.json.
//
// A chest menu: `sign`, the text of the sign in the other hand, which leads back; `doors` by slot: where a press leads, and
// the text on the slot, if it has one of its own. A form: its `title`, its `doors` by the text on the button, `rows` where a
// row of its list leads, `answers` the two of a question, `closes` where its cross leads, `sends` where its answer leads, with what is typed into it before.
// Slots and buttons that are no doors here fail the walk, so that a new one does not go unnoticed.
export const outside = "outside", lastmenu = "the menu of forms that was opened last";

const spyglass = { to: "+sign", text: "shopview.readonlymode" };
const stays = (text) => ({ to: "", text, silent: true });  // the market does not answer a press
const to = (place, text) => ({ to: place, text });

// A list on the screen, and the same with the sign of the double-click mode on the cursor.
const chest = (name, sign, back, doors, more = {}) => ({
  [name]: { sign, doors: { ...doors, "hotbar.5": spyglass, "offhand.1": to(back) }, ...more },
  [`${name}+sign`]: { sign, oncursor: true, doors: { cursor: to(name) }, more: true },
});
// A form that is shown from several places and leads back to the one it was shown from.
const from = (places, kind, form) => Object.fromEntries(places.map((place) => [`${kind}@${place}`, form(place)]));

const globallist = (name, sign, skull, shops, type) => ({
  ...chest(name, sign, "ordomenu", {
    "hotbar.2": to(shops, skull), "hotbar.3": to(""), "hotbar.6": to(`search for ${type}`, "searchform.title"),
    "inventory.9": to(`trade@${name}`),
  }, { more: true, closable: true }),
  [`found to ${type}`]: { sign, more: true, doors: { "hotbar.2": to(shops, skull), "offhand.1": to("ordomenu") } },
  [`search for ${type}`]: { title: "searchform.title", sends: `found to ${type}`, typed: { 0: "a" }, closes: outside },
  [`category to ${type}`]: { title: type === "sell" ? "sellmenu" : "recyclemenu", rows: `found to ${type}`, closes: outside },
});
const trade = (type, back) => ({
  title: type === "sell" ? "sellshop.trybuy.form.menutitle" : "recycleshop.trysell.form.menutitle", closes: back,
});
const edit = (back) => ({ title: "myshop.shopedit.form.menutitle", sends: back, closes: back });
const history = (back) => ({ title: "myshop.shopeventlog.form.menutitle", sends: back, closes: back });
const upload = (back, sent = back) => ({ title: "myshop.onshop.form.menutitle", sends: sent, typed: { 2: "7", 3: "tag" }, closes: back });
const issue = (back) => ({ title: "myrecycleshop.onreshop.form.menutitle", sends: back, typed: { 2: "3", 3: "2" }, closes: back });
const adjust = (back) => ({ title: "myshop.adjustshop.form.menutitle", sends: back, closes: back });
const adjustwanted = (back) => ({ title: "myrecycleshop.adjustshop.form.menutitle", sends: back, closes: back });
const replenish = (back) => ({ title: "myshop.replenishmentshop.form.menutitle", sends: back, closes: back });
const pickup = (back, taken) => ({ title: "myrecycleshop.pickupitem.form.menutitle", answers: { yes: taken, no: back }, closes: back });

const longmenu = {
  "mainmenu.buy": "sellshops", "mainmenu.recycle": "recycleshops", systemsellshop: "systemshop", systemrecycleshop: "systemrecycleshop",
  "sellformUI.sellmenu": "sellform", "recycleformUI.recyclemenu": "recycleform", "myshopformUI.myshopmenu": "myshopform",
  "myshopformUI.systemshopmenu": "systemform", "mainmenu.myshop": "myshop", "searchform.title": "search for sell",
  "sellshop.filterbyplayer": "shops to sell", "recycleshop.filterbyplayer": "shops to recycle",
  "sellshop.trybuy.form.menutitle": "category to sell", "recycleshop.trybuy.form.menutitle": "category to recycle",
  "player.setting": outside,
};
const shortmenu = {
  "sellformUI.sellmenu": "sellform", "recycleformUI.recyclemenu": "recycleform", "myshopformUI.myshopmenu": "myshopform",
  "myshopformUI.systemshopmenu": "systemform",
};

export const menus = {
  [outside]: {
    typed: {
      "ordomart myshop": "myshop", "ordomart myreshop": "myrecycleshop", "ordomart": "mainmenu", "ordomart mainmenu": "mainmenu",
      "ordomart formmenu": "formmenu", "ordomart ordomenu": "ordomenu", "ordomart buy": "sellshops", "ordomart recycle": "recycleshops",
      "ordomart buybyshop": "shops to sell", "ordomart buybyshop Rosa": "shop to sell", "ordomart rebyshop": "shops to recycle",
      "ordomart rebyshop Rosa": "shop to recycle", "ordomart search sell a": "found to sell",
      "ordomart search recycle a true true": "found to recycle", "ordomart search a": "search for sell", "ordomart filter": "filter",
    },
  },
  ordomenu: {
    closable: true,
    doors: {
      "armor.0": to("sellshops", "mainmenu.buy"), "armor.1": to("recycleshops", "mainmenu.recycle"), "armor.2": to("myshop", "mainmenu.myshop"),
      "hotbar.0": to("systemshop", "systemsellshop"), "hotbar.1": to("systemrecycleshop", "systemrecycleshop"),
      "hotbar.8": stays("mainmenu.helper1"),
    },
  },
  ...globallist("sellshops", "sellshop.helper1", "sellshop.filterbyplayer", "shops to sell", "sell"),
  ...globallist("recycleshops", "recycleshop.helper1", "recycleshop.filterbyplayer", "shops to recycle", "recycle"),
  ...chest("shops to sell", "sellshopfilterbyplayer.helper1", "sellshops",
    { "inventory.9": to("shop to sell"), "inventory.10": to("shop to sell"), "inventory.11": to("shop to sell") }),
  ...chest("shops to recycle", "recyleshopfilterbyplayer.helper1", "recycleshops",
    { "inventory.9": to("shop to recycle"), "inventory.10": to("shop to recycle") }),
  ...chest("shop to sell", "sellshop.helper1", "shops to sell", { "armor.0": stays(), "inventory.9": to("trade@shop to sell") }),
  ...chest("shop to recycle", "recycleshop.helper1", "shops to recycle", { "armor.0": stays(), "inventory.9": to("trade@shop to recycle") }),
  ...chest("systemshop", "sellshop.helper1", "shops to sell", { "armor.0": stays(), "inventory.9": to("trade@systemshop") }),
  ...chest("systemrecycleshop", "recycleshop.helper1", "shops to recycle", { "armor.0": stays(), "inventory.9": to("trade@systemrecycleshop") }),
  ...from(["sellshops", "shop to sell", "systemshop", "sellform", "systemsellform"], "trade", (place) => trade("sell", place)),
  ...from(["recycleshops", "shop to recycle", "systemrecycleshop", "recycleform", "systemrecycleform"], "trade", (place) => trade("recycle", place)),

  ...chest("myshop", "myshop.helper1", "ordomenu", {
    "hotbar.2": to("upload", "myshop.onshop"), "hotbar.3": to("replenish", "myshop.replenishment"),
    "hotbar.4": to("discount", "myshop.publishdiscount"), "armor.0": to("edit@myshop"), "armor.1": stays("shop.setting"),
    "armor.2": to("myrecycleshop", "shop.changetorecycleshop"), "armor.3": to("history@myshop", "shop.eventlogger"),
    "inventory.9": to("adjust@myshop"),
  }),
  upload: { sign: "myshop.onshop.helper1", ownstacks: true, closable: true, doors: { "hotbar.?": to("upload@upload"), "offhand.1": to("myshop") } },
  ...chest("replenish", "myshop.replenishmentshop.helper1", "myshop", { "inventory.9": to("replenish@replenish") }),
  discount: { title: "myshop.publishdiscount.form.menutitle", sends: "myshop", typed: { 0: "tag", 1: "%50" }, closes: "myshop" },
  ...chest("myrecycleshop", "myrecycleshop.helper1", "ordomenu", {
    "hotbar.2": to("commission", "myrecycleshop.onrecycleshop"), "hotbar.3": to("pickup", "myrecycleshop.pickuprecycleitem"),
    "armor.0": to("edit@myrecycleshop"), "armor.1": stays("shop.setting"),
    "armor.2": to("myshop", "shop.changetosellshop"), "armor.3": to("history@myrecycleshop", "shop.eventlogger"),
    "inventory.9": to("adjust@myrecycleshop"),
  }),
  commission: { sign: "myrecycleshop.onreshop.helper1", ownstacks: true, closable: true,
    doors: { "hotbar.?": to("issue@commission"), creative: to("issue@commission"), "offhand.1": to("myrecycleshop") } },
  ...chest("pickup", "myrecycleshop.pickuprecycleitem.helper1", "myrecycleshop", { "inventory.9": to("pickup@pickup") }),

  mainmenu: { title: "mainmenu", doors: longmenu, closes: outside, ismenu: true },
  formmenu: { title: "mainmenu", doors: shortmenu, closes: outside, ismenu: true },
  filter: { title: "Filter Settings", sends: outside, closes: outside },
  sellform: { title: "sellmenu", rows: "trade@sellform", closes: lastmenu },
  recycleform: { title: "recyclemenu", rows: "trade@recycleform", closes: lastmenu },
  systemform: { title: "myshopformUI.systemshopmenu", doors: { systemsellshop: "systemsellform", systemrecycleshop: "systemrecycleform" }, closes: lastmenu },
  systemsellform: { title: "sellmenu", rows: "trade@systemsellform", closes: "systemform" },
  systemrecycleform: { title: "recyclemenu", rows: "trade@systemrecycleform", closes: "systemform" },

  myshopform: {
    title: "mainmenu.myshop", closes: lastmenu,
    doors: { "myshop.shopedit.form.menutitle": "edit@myshopform", "shop.eventlogger": "history@myshopform",
      "myshop.onshop": "uploadform", "myshop.adjustshop.form.menutitle": "adjustform", "myshop.replenishment": "replenishform",
      "shop.changetorecycleshop": "myrecycleshopform" },
  },
  adjustform: { title: "myshop.adjustshop.form.menutitle", rows: "adjust@adjustform", closes: "myshopform" },
  uploadform: { title: "myshop.onshop.form.menutitle", rows: "upload@uploadform", closes: "myshopform" },
  replenishform: { title: "myshop.replenishmentshop.form.menutitle", rows: "replenish@replenishform", closes: "myshopform" },
  myrecycleshopform: {
    title: "mainmenu.myreshop", closes: lastmenu,
    doors: { "myshop.shopedit.form.menutitle": "edit@myrecycleshopform", "shop.eventlogger": "history@myrecycleshopform",
      "myrecycleshop.onrecycleshop": "issueform", "myrecycleshop.adjustshop.form.menutitle": "wantedform",
      "myrecycleshop.pickupitem.form.menutitle": "pickupform", "shop.changetosellshop": "myshopform" },
  },
  wantedform: { title: "myrecycleshop.adjustshop.form.menutitle", rows: "adjust@wantedform", closes: "myrecycleshopform" },
  issueform: { title: "myrecycleshop.onrecycleshop", rows: "issue@issueform", closes: "myrecycleshopform" },
  pickupform: { title: "myrecycleshop.pickupitem.form.menutitle", rows: "pickup@pickupform", closes: "myrecycleshopform" },

  ...from(["myshop", "myrecycleshop", "myshopform", "myrecycleshopform"], "edit", edit),
  ...from(["myshop", "myrecycleshop", "myshopform", "myrecycleshopform"], "history", history),
  ...from(["upload", "uploadform"], "upload", (place) => upload(place)),
  ...from(["commission", "issueform"], "issue", issue),
  ...from(["myshop", "adjustform"], "adjust", adjust),
  ...from(["myrecycleshop", "wantedform"], "adjust", adjustwanted),
  ...from(["replenish", "replenishform"], "replenish", replenish),
  "pickup@pickup": pickup("pickup", "pickup"),
  "pickup@pickupform": pickup("pickupform", outside),
};

// What an operator sees besides: another's shop, the shared shop, a shop that is closed.
export const operatormenus = {
  [outside]: {
    typed: { "ordomart mainmenu": "mainmenu", "ordomart formmenu": "formmenu", "ordomart manage": "manage", "ordomart manage Rosa": "managed",
      "ordomart ban recycle Rosa \"a reason\"": outside, "ordomart unban recycle Rosa": outside, "ordomart resetmanage": outside },
  },
  mainmenu: { title: "mainmenu", walked: true, doors: { "myshopformUI.switchmanagesystemshop": "mainmenu" }, closes: outside, ismenu: true },
  formmenu: { title: "mainmenu", walked: true, doors: { "myshopformUI.switchmanagesystemshop": "formmenu" }, closes: outside, ismenu: true },
  manage: { title: "managemenu", sends: "managed", typed: { 0: 1 }, closes: outside },
  managed: { sign: "myshop.helper1", walked: true, doors: { "armor.2": to("managedrecycle", "shop.changetorecycleshop"), "inventory.9": to("adjust@managed") } },
  managedrecycle: { sign: "myrecycleshop.helper1", walked: true, doors: { "armor.2": to("managed", "shop.changetosellshop"), "inventory.9": to("adjust@managedrecycle") } },
  "adjust@managed": adjust("managed"),
  "adjust@managedrecycle": adjustwanted("managedrecycle"),
};
