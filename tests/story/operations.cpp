// A road leads through the client's own screens to a dialog. Two of three dialogs are answered at once, the others wait
// for a later step, and what a player meets on a road that has changed under him is left as it is.
#include "tests/story/operations.h"

#include "tests/market/chest_stage.h"

namespace story {

namespace {

using W = World&;
using Who = std::size_t;

// ---- forms

bool newest(W world, Who who, dialog& found) {
    const auto& all = world.pending(who);
    if (!all.empty()) found = all.back();
    return !all.empty();
}
bool presses(W world, Who who, int button) {
    dialog asked;
    if (!newest(world, who, asked) || asked.form["type"] != "form") return false;
    const auto buttons = static_cast<int>(asked.form["buttons"].size());
    if (button < 0) button += buttons;
    if (button < 0 || button >= buttons) return false;
    world.answers(who, asked, button);
    return true;
}
bool pressesany(W world, Who who, Dice& dice) {
    dialog asked;
    return newest(world, who, asked) && asked.form["type"] == "form" && !asked.form["buttons"].empty() &&
           presses(world, who, dice.below(asked.form["buttons"].size()));
}
void finishes(W world, Who who, Dice& dice, std::size_t before) {
    const auto& all = world.pending(who);
    if (all.size() > before && all.back().form["type"] != "form" && !dice.oneof(3))
        world.answers(who, all.back(), dice);
}

enum mainbutton { sellform, recycleform, myshopform, systemform, switchshop };  // of the short main menu
enum ownbutton { edits, looksatlog, adjusts, adds, third, changesshop };        // of both owner's menus

bool mainmenu(W world, Who who, int button) {
    world.actor(who).types("ordomart formmenu");
    return presses(world, who, button);
}

// The owner's menu of one of his shops; then the button, and a row where it leads to a list.
template <section Kind, ownbutton Button>
void ownbyform(W world, Who who, Dice& dice) {
    const auto before = world.pending(who).size();
    if (!mainmenu(world, who, myshopform)) return;
    if (Kind == recycles && !presses(world, who, changesshop)) return;
    if (!presses(world, who, Button)) return;
    if (Button != edits && Button != looksatlog && !pressesany(world, who, dice)) return;
    finishes(world, who, dice, before);
}

template <section Kind>
void tradebyform(W world, Who who, Dice& dice) {
    const auto before = world.pending(who).size();
    if (mainmenu(world, who, Kind == sells ? sellform : recycleform) && pressesany(world, who, dice))
        finishes(world, who, dice, before);
}

template <section Kind>
void systembyform(W world, Who who, Dice& dice) {
    const auto before = world.pending(who).size();
    if (mainmenu(world, who, systemform) && presses(world, who, Kind) && pressesany(world, who, dice))
        finishes(world, who, dice, before);
}

// ---- chest menus

// A new opening wants a closed screen and a rest behind the last one.
bool opens(W world, Who who, const std::string& command) {
    auto& actor = world.actor(who);
    if (actor.menuopen()) actor.closes();
    chest::rests(world.stage());
    chest::opens(world.stage(), actor, command);
    return actor.menuopen();
}
void clicks(W world, Who who, ContainerName container, int slot) {
    if (world.actor(who).menuopen()) world.actor(who).clicks(container, slot);
    world.stage().ticks(3);
}
// A listed entry.
void picks(W world, Who who, Dice& dice) {
    std::vector<int> listed;
    for (int slot = 9; slot < 35; ++slot)
        if (!world.actor(who).shown(chest::inventoryid, slot).empty()) listed.push_back(slot);
    if (!listed.empty())
        clicks(world, who, ContainerName::inventory, listed[static_cast<std::size_t>(dice.below(listed.size()))]);
}
void picksown(W world, Who who, Dice& dice) {
    if (const int slot = dice.below(38); slot < 36)
        clicks(world, who, slot < 9 ? ContainerName::hotbar : ContainerName::inventory, slot);
    else
        clicks(world, who, ContainerName::armor, slot - 36);
}
void pickscreative(W world, Who who, Dice& dice) {
    world.actor(who).look([&](client::ModelClient& c) {
        if (c.creative().empty() || !c.container()) return;
        c.pickcreative(1 + static_cast<std::uint32_t>(dice.below(c.creative().size())));
    });
    world.stage().ticks(3);
}

constexpr const char* owncommands[] = {"ordomart myshop", "ordomart myreshop"};

// The owner's view; then a button of it, and what follows that.
template <section Kind, ContainerName Container, int Slot, void (*Then)(W, Who, Dice&)>
void ownbychest(W world, Who who, Dice& dice) {
    const auto before = world.pending(who).size();
    if (!opens(world, who, owncommands[Kind])) return;
    if (Slot >= 0) clicks(world, who, Container, Slot);
    if (Then != nullptr) Then(world, who, dice);
    finishes(world, who, dice, before);
}
constexpr auto hotbar = ContainerName::hotbar, armour = ContainerName::armor;

void tradebychest(W world, Who who, Dice& dice, const std::string& command) {
    const auto before = world.pending(who).size();
    if (!opens(world, who, command)) return;
    picks(world, who, dice);
    finishes(world, who, dice, before);
}
template <section Kind>
void globally(W world, Who who, Dice& dice) {
    tradebychest(world, who, dice, Kind == sells ? "ordomart buy" : "ordomart recycle");
}
template <section Kind>
void inoneshop(W world, Who who, Dice& dice) {
    const auto owner = World::name(static_cast<Who>(dice.below(parties)));
    tradebychest(world, who, dice, fmt::format("ordomart {} {}", Kind == sells ? "buybyshop" : "rebyshop", owner));
}
template <section Kind>
void byshops(W world, Who who, Dice& dice) {
    const auto before = world.pending(who).size();
    if (!opens(world, who, Kind == sells ? "ordomart buybyshop" : "ordomart rebyshop")) return;
    picks(world, who, dice);
    picks(world, who, dice);
    finishes(world, who, dice, before);
}
template <section Kind>
void systembychest(W world, Who who, Dice& dice) {
    const auto before = world.pending(who).size();
    if (!opens(world, who, "ordomart ordomenu")) return;
    clicks(world, who, hotbar, Kind);
    picks(world, who, dice);
    finishes(world, who, dice, before);
}
template <section Kind>
void searches(W world, Who who, Dice& dice) {
    constexpr const char* words[] = {"n", "sword", "stone", "n1{||}n2"};
    tradebychest(world, who, dice,
                 fmt::format("ordomart search {} {} true {}", Kind == sells ? "sell" : "recycle",
                             words[dice.below(std::size(words))], dice.oneof(2)));
}
void searchesbyform(W world, Who who, Dice& dice) {
    const auto before = world.pending(who).size();
    if (world.actor(who).menuopen()) world.actor(who).closes();
    chest::rests(world.stage());
    world.actor(who).types("ordomart search");
    dialog asked;
    if (!newest(world, who, asked)) return;
    world.answers(who, asked, dice);
    world.stage().ticks(6);
    picks(world, who, dice);
    finishes(world, who, dice, before);
}
// One of the two menus of categories, by its place from the end of the large main menu.
template <section Kind>
void bycategory(W world, Who who, Dice& dice) {
    const auto before = world.pending(who).size();
    if (world.actor(who).menuopen()) world.actor(who).closes();
    chest::rests(world.stage());
    world.actor(who).types("ordomart mainmenu");
    if (!presses(world, who, Kind == sells ? -3 : -2) || !pressesany(world, who, dice)) return;
    world.stage().ticks(6);
    picks(world, who, dice);
    finishes(world, who, dice, before);
}
void clicksanywhere(W world, Who who, Dice& dice) {
    const auto before = world.pending(who).size();
    if (dice.oneof(3))
        clicks(world, who, ContainerName::offhand, 1);
    else
        clicks(world, who, dice.oneof(2) ? armour : hotbar, dice.below(4));
    picks(world, who, dice);
    finishes(world, who, dice, before);
}

// ---- forms that were left open

void answerslate(W world, Who who, Dice& dice) {
    const auto& all = world.pending(who);
    if (!all.empty()) world.answers(who, all[static_cast<std::size_t>(dice.below(all.size()))], dice);
}
void closesforms(W world, Who who, Dice&) {
    for (const auto& asked : world.pending(who)) world.answers(who, asked, json());
}
void answerstwice(W world, Who who, Dice&) { world.answersagain(who); }

// ---- what is for operators, and now and then tried by others

Who someoperator(W world, Who who, Dice& dice) {
    return !dice.oneof(4) && world.ishere(theoperator) ? theoperator : who;
}

std::string someshop(Dice& dice) { return World::name(static_cast<Who>(dice.below(parties))); }
void manages(W world, Who who, Dice& dice) {
    who = someoperator(world, who, dice);
    if (world.actor(who).menuopen()) world.actor(who).closes();
    chest::rests(world.stage());
    world.actor(who).types("ordomart manage " + someshop(dice));
    world.stage().ticks(6);
}
void managesbyform(W world, Who who, Dice& dice) {
    world.actor(who).types("ordomart manage");
    dialog asked;
    if (newest(world, who, asked) && asked.form["type"] == "custom_form") world.answers(who, asked, dice);
}
void stopsmanaging(W world, Who who, Dice&) { world.actor(who).types("ordomart resetmanage"); }
void switches(W world, Who who, Dice& dice) {
    who = someoperator(world, who, dice);
    if (world.isoperator(who)) mainmenu(world, who, switchshop);
}
const char* somekind(Dice& dice) { return dice.oneof(2) ? "sell" : "recycle"; }
void bans(W world, Who who, Dice& dice) {
    who = someoperator(world, who, dice);
    const auto kind = somekind(dice);
    // Rather one whose owner has a dialog open.
    auto owner = static_cast<Who>(dice.below(parties));
    for (int i = 0; i < 3 && !(owner < players && world.ishere(owner) && !world.pending(owner).empty()); ++i)
        owner = static_cast<Who>(dice.below(parties));
    world.actor(who).types(
        fmt::format("ordomart ban {} {} fraud {}", kind, World::name(owner), 100 + dice.below(6000)));
}
void unbans(W world, Who who, Dice& dice) {
    who = someoperator(world, who, dice);
    const auto kind = somekind(dice);
    world.actor(who).types(fmt::format("ordomart unban {} {}", kind, someshop(dice)));
}

// One of the latest trades, or what is none. The audit judges what becomes of it.
void undoes(W world, Who, Dice& dice) {
    const auto back = static_cast<std::uint64_t>(dice.below(12));
    if (!world.ishere(theoperator)) return;
    const auto last = world.lastentry();
    world.actor(theoperator).types(fmt::format("ordomart undo {}", last > back ? last - back : last));
}

constexpr operation table[] = {
    {"edit, form", 3, &ownbyform<sells, edits>},
    {"history, form", 1, &ownbyform<sells, looksatlog>},
    {"adjust good, form", 6, &ownbyform<sells, adjusts>},
    {"upload, form", 9, &ownbyform<sells, adds>},
    {"replenish, form", 6, &ownbyform<sells, third>},
    {"edit recycle shop, form", 2, &ownbyform<recycles, edits>},
    {"recycle history, form", 1, &ownbyform<recycles, looksatlog>},
    {"adjust commission, form", 7, &ownbyform<recycles, adjusts>},
    {"publish, form", 8, &ownbyform<recycles, adds>},
    {"pick up, form", 5, &ownbyform<recycles, third>},
    {"edit, chest", 3, &ownbychest<sells, armour, 0, nullptr>},
    {"history, chest", 1, &ownbychest<sells, armour, 3, nullptr>},
    {"adjust good, chest", 5, &ownbychest<sells, hotbar, -1, &picks>},
    {"upload, chest", 8, &ownbychest<sells, hotbar, 2, &picksown>},
    {"replenish, chest", 5, &ownbychest<sells, hotbar, 3, &picks>},
    {"discount, chest", 8, &ownbychest<sells, hotbar, 4, nullptr>},
    {"edit recycle shop, chest", 2, &ownbychest<recycles, armour, 0, nullptr>},
    {"recycle history, chest", 1, &ownbychest<recycles, armour, 3, nullptr>},
    {"adjust commission, chest", 6, &ownbychest<recycles, hotbar, -1, &picks>},
    {"publish from a slot, chest", 5, &ownbychest<recycles, hotbar, 2, &picksown>},
    {"publish from the creative list", 5, &ownbychest<recycles, hotbar, 2, &pickscreative>},
    {"pick up, chest", 4, &ownbychest<recycles, hotbar, 3, &picks>},
    {"buy, form", 9, &tradebyform<sells>, holds::books, madelist::all},
    {"sell, form", 9, &tradebyform<recycles>, holds::books, madelist::all},
    {"buy, chest", 7, &globally<sells>, holds::books, madelist::all},
    {"sell, chest", 7, &globally<recycles>, holds::books, madelist::all},
    {"buy in one shop", 4, &inoneshop<sells>, holds::books, madelist::one},
    {"sell in one shop", 4, &inoneshop<recycles>},
    {"buy by shops", 3, &byshops<sells>, holds::books, madelist::one},
    {"sell by shops", 3, &byshops<recycles>},
    {"buy in the system shop, form", 3, &systembyform<sells>, holds::books, madelist::all},
    {"sell in the system shop, form", 3, &systembyform<recycles>, holds::books, madelist::all},
    {"buy in the system shop, chest", 3, &systembychest<sells>, holds::books, madelist::one},
    {"sell in the system shop, chest", 3, &systembychest<recycles>},
    {"search goods", 3, &searches<sells>, holds::books, madelist::all},
    {"search commissions", 3, &searches<recycles>, holds::books, madelist::all},
    {"search, form", 2, &searchesbyform},
    {"buy by category", 2, &bycategory<sells>, holds::books, madelist::all},
    {"sell by category", 2, &bycategory<recycles>, holds::books, madelist::all},
    {"click anywhere", 5, &clicksanywhere},
    {"answer late", 16, &answerslate},
    {"answer twice", 4, &answerstwice},
    {"close all forms", 2, &closesforms},
    {"close the screen", 2, [](W world, Who who, Dice&) { world.actor(who).closes(); }},
    {"collect", 2, [](W world, Who who, Dice&) { world.actor(who).types("ordomart getoffscores"); }},
    {"manage, command", 3, &manages},
    {"manage, form", 3, &managesbyform},
    {"manage nobody", 2, &stopsmanaging},
    {"switch to the system shop", 3, &switches},
    {"ban", 6, &bans},
    {"unban", 7, &unbans},
    {"undo", 6, &undoes, holds::nothing},
    {"things come and go", 8,
     [](W world, Who who, Dice& dice) {
         if (world.ishere(who)) world.puts(who, dice);
     },
     holds::nothing},
    {"time goes by", 3, [](W world, Who, Dice& dice) { world.stage().advance(dice.below(40'000)); }, holds::nothing},
    {"die or live", 4, [](W world, Who who, Dice&) { world.diesorlives(who); }, holds::nothing},
    {"rights", 2, [](W world, Who, Dice&) { world.loseskeepsrights(); }, holds::nothing},
    {"leave or come", 5, [](W world, Who who, Dice&) { world.comesorgoes(who); }, holds::everything},
    {"save", 1, [](W world, Who, Dice&) { world.saves(false); }, holds::everything},
    {"forget", 1, [](W world, Who, Dice&) { world.saves(false), world.saves(true); }, holds::everything},
};

}  // namespace

std::span<const operation> operations() { return table; }

}  // namespace story
