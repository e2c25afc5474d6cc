// The owner's chest views under hostile or unlucky hands: dialogs answered dead, twice, late, without the right to it;
// stacks that are others by then; picks that no client makes; screens left in the middle. Whatever is refused leaves
// money, stacks, shop files and the shops' revisions as they were.
#include "tests/market/forms_stage.h"
#include "tests/market/owner_stage.h"

using namespace owner;
using namespace forms;

namespace {

constexpr auto hotbar = ContainerName::hotbar, listed = ContainerName::inventory, armour = ContainerName::armor;

const deed upload{"upload", "ordomart myshop", {{hotbar, 2}, {hotbar, 0}}, {{"price", "5"}, {"Quantity", 3}}},
    adjust{"adjust", "ordomart myshop", {{listed, 9}}, {{"price", "6"}, {"Quantity", 4}}},
    takeoff{"take off", "ordomart myshop", {{listed, 9}}, {{"Quantity", 0}}},
    replenish{"replenish", "ordomart myshop", {{hotbar, 3}, {listed, 9}}, {{"No.0", 5}, {"No.9", 0}}},
    discount{"discount",
             "ordomart myshop",
             {{hotbar, 4}},
             {{"tag of the items", "apple"}, {"discount format", "-1"}, {"duration", "60"}}},
    edit{"edit", "ordomart myshop", {{armour, 0}}, {{"shop name", "Others' shop"}}},
    publish{"publish", "ordomart myreshop", {{hotbar, 2}, {hotbar, 0}}, {{"offer", "2"}, {"quantity you", "3"}}},
    wish{"wish", "ordomart myreshop", {{hotbar, 2}}, {{"offer", "2"}, {"quantity you", "3"}}, true},
    lower{"lower", "ordomart myreshop", {{listed, 9}}, {{"offer", "1"}, {"quantity you", "1"}}},
    finish{"finish", "ordomart myreshop", {{listed, 9}}, {{"quantity you", "0"}}},
    pickup{"pick up", "ordomart myreshop", {{hotbar, 3}, {listed, 9}}, {}, false, true};
const std::vector<const deed*> all{&upload,  &adjust, &takeoff, &replenish, &discount, &edit,
                                   &publish, &wish,   &lower,   &finish,    &pickup};
// Those about one record.
const std::vector<const deed*> ofrecords{&adjust, &takeoff, &replenish, &lower, &finish, &pickup};

std::string heard(const Actor& who) { return who.chat() + who.toasts(); }

// The form's defaults, as an answer that fits.
std::string standard(const json& form) {
    if (form["type"] != "custom_form") return "true";
    json answer = json::array();
    for (const auto& element : form["content"])
        answer.push_back(element.contains("default") ? element["default"] : json(nullptr));
    return answer.dump();
}

}  // namespace

TEST(OwnerHostile, WhatHasChangedUnderADialogRefusesIt) {
    using mischief = void (*)(Stall&, Actor & who);
    struct trick {
        const char* name;
        mischief done;
        const std::vector<const deed*> deeds;
        std::string told;
        bool managed = false;  // by an operator, in Alice's shop
        bool back = true;      // his view comes back
    };
    const trick tricks[] = {
        {"dead", [](Stall&, Actor& who) { who.dies(); }, all, deadtext, false, false},
        {"no operator any more", [](Stall&, Actor& who) { who.may(0); }, all, denied, true},
        {"traded with meanwhile", [](Stall& c, Actor&) { c.trades(); }, ofrecords, shopchanged},
        {"banned meanwhile, and so changed", [](Stall& c, Actor&) { bans(c.admin, "Alice"); }, ofrecords, shopchanged,
         false, true},
        {"banned meanwhile",
         [](Stall& c, Actor&) { bans(c.admin, "Alice"); },
         {&upload, &publish, &wish},
         "",
         false,
         false},
        {"another item in the slot",
         [](Stall&, Actor& who) { who.gives(0, "diamond", 9); },
         {&upload, &publish, &replenish},
         slotschanged},
        {"a banned item in the slot",
         [](Stall&, Actor& who) { who.gives(0, "tnt", 64); },
         {&upload, &publish, &replenish},
         slotschanged},
        {"another apple in the slot",
         [](Stall&, Actor& who) {
             who.gives(0, "apple", 64, R"({Count:64b,Damage:0s,Name:"minecraft:apple",tag:{display:{Name:"Gold"}}})");
         },
         {&upload, &publish, &replenish},
         slotschanged},
        {"an emptied slot", [](Stall&, Actor& who) { who.loses(0); }, {&upload}, "ERROR empty hand"},
        {"an emptied slot behind a wish", [](Stall&, Actor& who) { who.loses(0); }, {&publish}, slotschanged},
    };
    for (const auto& trick : tricks) {
        Stall c;
        Actor& who = trick.managed ? c.admin : c.alice;
        for (const auto* what : trick.deeds) {
            SCOPED_TRACE(fmt::format("{}: {}", what->name, trick.name));
            who.dismisses().gives(0, "apple", 64).gives(9, "apple", 10);
            bans(c.admin, "Alice", false);
            if (trick.managed) {
                who.may(1);
                rests(c.stage);
                opens(c.stage, who, "ordomart manage Alice");
                who.closes();
            }
            c.opensdialog(who, *what);
            ASSERT_FALSE(who.form().is_null());
            trick.done(c, who);
            const auto before = c.truth();
            who.forgets();
            c.answers(who, *what);
            EXPECT_EQ(heard(who), trick.told);
            if (trick.told.empty()) {
                EXPECT_EQ(who.form()["content"], banned);
                who.presses("Continue");
            }
            c.stage.ticks(7);
            EXPECT_EQ(who.menuopen(), trick.back || trick.told.empty());
            EXPECT_EQ(c.truth().since(before), "[]");
            who.revives().closes();
            EXPECT_EQ(gametype(who), 0);
        }
    }
}

// The dialog is spent with its first answer, and with the player's leaving.
TEST(OwnerHostile, ADialogIsAnsweredOnce) {
    for (const bool leaves : {false, true})
        for (const auto* what : all) {
            SCOPED_TRACE(fmt::format("{}{}", what->name, leaves ? ", left in the middle" : ""));
            Stall c;
            c.opensdialog(c.alice, *what);
            const auto id = c.alice.formid();
            const auto text = standard(c.alice.form());
            const auto untouched = c.truth();
            auto* who = &c.alice;
            if (leaves) {
                who->leaves();
                who = &c.stage.join("Alice", ada);
                EXPECT_EQ(gametype(*who), 0);
                EXPECT_EQ(screen(*who), belongings(*who));
            } else {
                c.answers(*who, *what);
            }
            const auto before = c.truth(who);
            EXPECT_EQ(before.since(untouched) == "[]", leaves);
            who->answersraw(id, text).answersraw(id, text);
            EXPECT_EQ(c.truth(who).since(before), "[]");
        }
}

// A picture's entry is one record, whatever else of the same item lies in its place by the time of the click. What a
// trade has changed in it does not matter.
TEST(OwnerHostile, AnEntryIsTheRecordThatWasShown) {
    const auto gone = std::string("Operation failed, item has been changed");
    const struct {
        const char* command;
        std::vector<spot> way;
        const char *list, *shop;
        Answers ends;
    } views[] = {
        {"ordomart myshop", {}, "Adjust items", "", {{"Quantity", 0}}},
        {"ordomart myshop", {{hotbar, 3}}, "Adjust items", "", {{"Quantity", 0}}},
        {"ordomart myreshop", {}, "Adjust", "recyl", {{"quantity you", "0"}}},
        {"ordomart myreshop", {{hotbar, 3}}, "Adjust", "recyl", {{"quantity you", "0"}}},
    };
    for (const auto& view : views)
        for (const bool traded : {true, false}) {
            SCOPED_TRACE(fmt::format("{} {}{}", view.command, view.way.size(), traded ? ", traded with" : ""));
            Counter c;
            c.stage.writeshop(ada, {good("apple", 5, 3, "First"), good("apple", 9, 4, "Second")},
                              {commission("bread", 5, 3, "First"), commission("bread", 9, 4, "Second")});
            c.carl.gives(0, "bread", 10);
            c.alice.types("ordomart formmenu").presses("My shop (form)");
            if (*view.shop != '\0') c.alice.presses(view.shop);
            c.alice.presses(view.list).answers(0).forgets();
            rests(c.stage);
            opens(c.stage, c.alice, view.command);
            for (const auto& at : view.way) c.alice.clicks(at.container, at.slot);
            c.stage.ticks(1);
            if (traded)
                c.carl.types("ordomart formmenu").answers(*view.shop == '\0' ? 0 : 1).answers(0).fills({});
            else
                c.alice.fills(view.ends);
            rests(c.stage);
            c.alice.forgets().clicks(listed, 9);
            EXPECT_EQ(c.alice.chat(), traded ? "" : gone);
        }
}

TEST(OwnerHostile, WhatMayNotBeChosenIsNotChosen) {
    const std::string empty = "SYSTEM: Error:empty item", notallowed = "SYSTEM: the item has been banned";
    const std::string notone = "SYSTEM: It's not support to upload the item not equal one !";
    Stall c;
    c.alice.gives(1, "tnt", 5).gives(10, "tnt", 5);
    platform::NetworkItem bread, tnt, unknown;
    c.alice.gives(11, "bread", 1).look([&](client::ModelClient& client) {
        bread = client.slot(inventoryid, 11);
        tnt = client.slot(inventoryid, 1);
    });
    unknown = bread;
    unknown.networkid = 31000;
    for (auto* item : {&bread, &tnt, &unknown}) item->stackid.reset();
    const auto many = [&] {
        auto item = bread;
        item.count = 99;
        return item;
    }();

    for (const char* command : {"ordomart myshop", "ordomart myreshop"}) {
        SCOPED_TRACE(command);
        c.chestmenu(command);
        c.alice.clicks(hotbar, 2);
        const auto before = c.truth();
        const struct {
            platform::ItemStackRequestAction click;
            std::string told;
        } clicks[] = {
            {action(ActionType::take, hotbar, 2), empty},
            {action(ActionType::take, listed, 30), empty},
            {action(ActionType::take, armour, 1), empty},
            {action(ActionType::take, hotbar, 1), notallowed},
            {action(ActionType::take, listed, 10), notallowed},
            {action(ActionType::drop, hotbar, 0), ""},
            {action(ActionType::take, ContainerName::createdoutput, 50), ""},
            {action(ActionType::destroy, hotbar, 0), ""},
        };
        for (const auto& each : clicks) {
            c.alice.forgets();
            sends(c.stage, c.alice, {{each.click}});
            EXPECT_EQ(c.alice.toasts(), each.told)
                << int(each.click.source.container) << ' ' << int(each.click.source.slot);
            EXPECT_EQ(c.alice.chat(), each.told == empty ? "Error:empty item" : "");
            EXPECT_EQ(c.alice.sounds(),
                      each.told.empty() ? std::vector<std::string>() : std::vector<std::string>{"mob.villager.no"});
            EXPECT_TRUE(c.alice.menuopen());
            EXPECT_TRUE(c.alice.form().is_null());
        }
        const struct {
            std::vector<platform::NetworkItem> items;
            std::string told;
        } picks[] = {{{bread, bread}, notone},
                     {{}, notone},
                     {{unknown}, empty},
                     {{platform::NetworkItem{}}, empty},
                     {{tnt}, notallowed}};
        const bool creative = std::string(command) == "ordomart myreshop";
        const auto picks1 = [&](const std::vector<platform::NetworkItem>& items) {
            auto result = action(ActionType::craftresult, {}, 0);
            result.results = items;
            result.times = 1;
            sends(c.stage, c.alice,
                  {{action(ActionType::creativepick, {}, 0), result,
                    action(ActionType::take, ContainerName::createdoutput, 50)}});
        };
        for (const auto& each : picks) {
            c.alice.forgets();
            picks1(each.items);
            EXPECT_EQ(c.alice.toasts(), creative ? each.told : "");
            EXPECT_TRUE(c.alice.menuopen());
            EXPECT_TRUE(c.alice.form().is_null());
        }
        EXPECT_EQ(c.truth().since(before), "[]");
        if (creative) {
            picks1({many});
            EXPECT_FALSE(c.alice.menuopen());
            c.alice.fills({{"offer", "1"}, {"quantity you", "2"}});
            EXPECT_EQ(c.commissions().back()["itemnbt"], snbt("bread"));
        }
        c.stage.ticks(6);
        c.alice.closes();
    }
}

// However a screen is left, his client shows what he has, and the server knows of no menu.
TEST(OwnerHostile, EveryViewCanBeLeftInTheMiddle) {
    const struct {
        const char* command;
        std::vector<spot> way;
    } views[] = {
        {"ordomart myshop", {}},
        {"ordomart myshop", {{hotbar, 2}}},
        {"ordomart myshop", {{hotbar, 3}}},
        {"ordomart myreshop", {}},
        {"ordomart myreshop", {{hotbar, 2}}},
        {"ordomart myreshop", {{hotbar, 3}}},
        {"ordomart buybyshop", {}},
        {"ordomart buybyshop", {{listed, 9}}},
        {"ordomart rebyshop", {}},
        {"ordomart rebyshop", {{listed, 9}}},
    };
    const struct {
        const char* name;
        void (*leaves)(Stall&, Actor*&);
    } exits[] = {
        {"closed", [](Stall&, Actor*& who) { who->closes(); }},
        {"dead",
         [](Stall& c, Actor*& who) {
             who->dies();
             sends(c.stage, *who, {{action(ActionType::take, hotbar, 2)}});
             who->revives();
         }},
        {"disconnected",
         [](Stall& c, Actor*& who) {
             who->leaves();
             who = &c.stage.join("Alice", ada);
         }},
        {"for another menu",
         [](Stall& c, Actor*& who) {
             rests(c.stage);
             opens(c.stage, *who, "ordomart ordomenu");
             who->closes();
         }},
        {"for the same screen again",
         [](Stall& c, Actor*& who) {
             rests(c.stage);
             opens(c.stage, *who, "ordomart myreshop");
             who->clicks(hotbar, 2).clicks(ContainerName::offhand, 1).closes();
         }},
    };
    for (const auto& exit : exits) {
        Stall c;
        auto* who = &c.alice;
        for (const auto& view : views) {
            SCOPED_TRACE(fmt::format("{} {}, {}", view.command, view.way.size(), exit.name));
            c.chestmenu(*who, view.command);
            c.stage.ticks(2);
            for (const auto& at : view.way) who->clicks(at.container, at.slot);
            ASSERT_TRUE(who->menuopen());
            const auto before = c.truth(who);
            exit.leaves(c, who);
            c.stage.ticks(2);
            EXPECT_FALSE(who->menuopen());
            EXPECT_EQ(gametype(*who), 0);
            EXPECT_EQ(screen(*who), belongings(*who));
            EXPECT_EQ(c.truth(who).since(before), "[]");
        }
    }
}
