// What an owner or an operator does with forms to a whole shop: discounts, its texts, its history, somebody else's shop
// and the shared one.
#include "tests/market/books.h"
#include "tests/market/forms_stage.h"

using namespace forms;

namespace {

struct Fair {
    Fair() {
        stage.writeshop(ada, {good("apple", 100, 10), good("bread", 7, 5)}, {commission("bread", 3, 5)});
        stage.writeshop(root, nullptr);
    }
    void mymenu(Actor& who, const std::string& button) {
        who.dismisses().types("ordomart formmenu").presses("My shop (form)");
        if (!button.empty()) who.presses(button);
    }
    void sellinglist() { carl.dismisses().types("ordomart formmenu").presses("Selling shops (form)"); }
    std::string header(Actor& who) {
        mymenu(who, "");
        return who.form()["content"];
    }
    json sells(const std::string& xuid) { return stage.shopfile(xuid)["sell"]; }

    Stage stage;
    Actor& alice = stage.join("Alice", ada).setmoney(1000).gives(0, "apple", 20);
    Actor& carl = stage.join("Carl", bob).setmoney(1000);
    Actor& olga = stage.join("Olga", root, "en_US", desktop, 1).setmoney(1000);
};

bool holds(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

}  // namespace

TEST(OwnerStories, ADiscountIsPublishedPaidByAndLapses) {
    Fair f;
    const auto publishes = [&](const std::string& tag, const std::string& discount, const std::string& seconds) {
        f.alice.dismisses();
        rests(f.stage);
        opens(f.stage, f.alice, "ordomart myshop");
        f.alice.clicks(ContainerName::hotbar, 4).forgets();
        f.alice.fills({{"tag", tag}, {"format", discount}, {"duration", seconds}});
        f.stage.ticks(6);
        f.alice.closes();
    };
    const books before(f.stage, {&f.alice});
    for (const auto& [discount, seconds] : std::vector<std::pair<std::string, std::string>>{
             {"%50", "0"}, {"%50", "-1"}, {"%50", "100000000"}, {"%50", "soon"}, {"", "60"}}) {
        publishes("apple", discount, seconds);
        EXPECT_EQ(f.alice.toasts(), "SYSTEM: Wrong input value, please re-enter!") << discount << " " << seconds;
        EXPECT_TRUE(f.alice.sounds().empty());
    }
    EXPECT_EQ(books(f.stage, {&f.alice}).since(before), "[]");

    publishes("apple", "-30", "99999999");
    publishes("apple", "%50", "60");  // takes the other's place
    EXPECT_EQ(f.alice.sounds(), std::vector<std::string>{"mob.villager.yes"});
    EXPECT_EQ(f.sells(ada)["shopdiscount"].size(), 1U);
    f.sellinglist();
    EXPECT_TRUE(holds(f.carl.formtext(), "§f§r§7100§l-> §r§e50 LLmoney")) << f.carl.formtext();
    f.carl.presses("apple").fills({{"quantity", "2"}});
    EXPECT_EQ(f.carl.money(), 900);
    EXPECT_EQ(f.alice.money(), 1100);
    EXPECT_TRUE(holds(f.header(f.alice), "§b】§r§fapple : %50  §8"));

    f.stage.advance(61000);
    f.sellinglist();
    EXPECT_TRUE(holds(f.carl.formtext(), "§f§r§e100 LLmoney")) << f.carl.formtext();
    f.carl.presses("apple").fills({{"quantity", "1"}});
    EXPECT_EQ(f.carl.money(), 800);
    EXPECT_FALSE(holds(f.header(f.alice), "%50"));
    EXPECT_TRUE(f.sells(ada)["shopdiscount"].empty()) << "gone with the look at it";
}

TEST(OwnerStories, TheShopIsEditedAndItsHistoryRead) {
    Fair f;
    const std::string nothing = "failed to open", denied = "SYSTEM: you don't have this permission";
    for (const bool recycles : {false, true}) {
        SCOPED_TRACE(recycles);
        const auto menu = [&](Actor& who, const std::string& button) {
            f.mymenu(who, recycles ? "change to recyl" : button);
            if (recycles) who.presses(button);
        };
        const auto section = [&] { return f.stage.shopfile(ada)[recycles ? "recycles" : "sell"]; };
        menu(f.alice, "Edit shop");
        f.alice.forgets().fills({{"shop name", "Fair"}, {"shop description", "of all"}, {"icon", "minecraft:stone"}});
        EXPECT_EQ(f.alice.sounds(), std::vector<std::string>{"mob.villager.yes"});
        EXPECT_EQ(f.alice.form()["title"], recycles ? "myrecylingshop" : "My shop");
        EXPECT_TRUE(holds(f.alice.form()["content"], "Fair\n§f")) << f.alice.formtext();
        EXPECT_EQ(section()["shopitemicon"], "minecraft:stone");

        // The texts stay, the flag does not.
        menu(f.alice, "Edit shop");
        f.alice.forgets().fills({{"shop name", ""}, {"weather is opshop", true}});
        EXPECT_EQ(f.alice.toasts(), denied);
        EXPECT_EQ(f.alice.sounds(), std::vector<std::string>{"mob.villager.no"});
        EXPECT_EQ(section()["shopname"], "Alice's shop") << "named anew by the next look";
        EXPECT_EQ(section()["describe"], "of all");
        EXPECT_EQ(section()["isopshop"], false);

        menu(f.alice, "Event log");
        EXPECT_EQ(f.alice.form()["title"], "Shop event log");
        EXPECT_EQ(holds(f.alice.formtext(), nothing), !recycles) << f.alice.formtext();
        EXPECT_EQ(holds(f.alice.formtext(), "Carl"), recycles) << "the sales of its twin";
        for (const json& answer : {json(nullptr), json::array({nullptr})}) {
            f.alice.answers(answer);
            EXPECT_EQ(f.alice.form()["title"], recycles ? "myrecylingshop" : "My shop");
            f.alice.presses("Event log");
        }
        f.sellinglist();
        f.carl.presses("bread").fills({{"quantity", "1"}});
    }
}

// Whatever an operator does to a shop of somebody else's is done with his own stacks and for no money.
TEST(OwnerStories, AnOperatorManagesSomebodyElsesShop) {
    Fair f;
    f.olga.types("ordomart manage Alice");
    f.stage.ticks(6);
    f.olga.closes();
    EXPECT_TRUE(holds(f.header(f.olga), ada + "'s shop\n"));
    f.olga.presses("Restock").presses("apple").fills({{"OP just set", "-4"}});
    EXPECT_EQ(f.sells(ada)["items"][0]["shopitemleftnum"], 0);
    f.olga.presses("apple").fills({{"OP just set", "70"}});
    f.mymenu(f.olga, "Adjust items on sale");
    f.olga.presses("apple").fills({{"price", "9"}, {"Quantity", 0}});
    EXPECT_EQ(f.olga.counts("minecraft:apple"), 70);
    f.olga.presses("bread").fills({{"price", "99999999"}, {"Quantity", 4}});
    EXPECT_EQ(f.olga.counts("minecraft:bread"), 1);
    f.mymenu(f.olga, "change to recyl");
    f.olga.presses("Adjust recycle commissions").presses("bread").fills({{"offer", "4"}, {"quantity you want", "6"}});
    f.olga.dismisses();
    const json shop = f.stage.shopfile(ada);
    EXPECT_EQ(shop["sell"]["items"].size(), 1U);
    EXPECT_EQ(shop["sell"]["items"][0]["price"], 99999999);
    EXPECT_EQ(shop["recycles"]["recycleitems"][0]["offer"], 4);
    EXPECT_EQ(shop["sell"]["ownername"], "") << "the look was not hers";
    EXPECT_EQ(f.olga.money() + f.alice.money(), 2000);
    // What an operator has added to the commission nobody has paid, and so nobody is paid back.
    const auto added = shop["recycles"]["recycleitems"][0]["sponsored"].get<std::int64_t>();
    EXPECT_GT(added, 0);
    f.mymenu(f.alice, "change to recyl");
    f.alice.presses("Adjust recycle commissions").presses("bread").fills({{"quantity you want", "0"}});
    f.alice.dismisses();
    EXPECT_EQ(f.olga.money() + f.alice.money(), 2000 + 4 * 6 - added);

    f.olga.types("ordomart resetmanage");
    EXPECT_TRUE(holds(f.header(f.olga), ":Olga"));
    f.olga.presses("Adjust items on sale");
    EXPECT_EQ(f.olga.form()["buttons"].size(), 0U);
}

TEST(OwnerStories, TheSharedShopIsTakenOverAndGivenBack) {
    Fair f;
    const auto switches = [&] { f.olga.dismisses().types("ordomart formmenu").presses("Switch managing"); };
    f.olga.gives(0, "diamond", 9);
    switches();
    f.mymenu(f.olga, "Put an item on sale");
    f.olga.presses("Slot No. 0").fills({{"price", "50"}, {"Quantity", 4}});
    f.olga.dismisses();
    const auto buys = [&](const std::string& pieces) {
        f.carl.dismisses().types("ordomart formmenu").presses("System shop (form)").presses("").presses("diamond");
        f.carl.fills({{"quantity", pieces}});
    };
    buys("1");
    EXPECT_EQ(f.carl.money(), 950);
    EXPECT_EQ(f.stage.money("systemshop"), 50);
    EXPECT_EQ(f.sells("systemshop")["items"][0]["shopitemleftnum"], 3);
    f.mymenu(f.olga, "Edit shop");
    f.olga.fills({{"weather is opshop", true}});
    buys("2");
    EXPECT_EQ(f.carl.money(), 850);
    EXPECT_EQ(f.stage.money("systemshop"), 50);
    EXPECT_EQ(f.sells("systemshop")["items"][0]["shopitemleftnum"], 3);
    EXPECT_EQ(f.carl.counts("minecraft:diamond"), 3);

    switches();
    f.mymenu(f.olga, "Adjust items on sale");
    EXPECT_EQ(f.olga.form()["buttons"].size(), 0U) << "her own again";
    switches();
    f.mymenu(f.olga, "Adjust items on sale");
    EXPECT_EQ(f.olga.form()["buttons"].size(), 1U);
}

// Numbers at their end: a deposit and a charge of nothing are told, and a stock below nothing swallows nothing.
TEST(OwnerStories, NothingIsANumberToo) {
    Fair f;
    const std::string dave = "2535400000000004";
    f.stage.writeshop(dave, {good("apple", 5, -5)}, nullptr, json::object(), {{"shopname", "Stall"}});
    Actor& owner = f.stage.join("Dave", dave).gives(0, "apple", 20);
    f.mymenu(owner, "change to recyl");
    owner.presses("New recycle commission").presses("Slot No. 0").fills({{"quantity you want", "2"}});
    EXPECT_EQ(owner.toasts(), "Stall: - §b0 §rLLmoney");
    f.mymenu(owner, "Restock");
    owner.presses("apple").fills({{"No.0", 4}});
    EXPECT_EQ(f.sells(dave)["items"][0]["shopitemleftnum"], 4);
    f.stage.writeshop("below", {good("apple", 5, -5)});
    f.olga.types("ordomart manage below");
    f.stage.ticks(6);
    f.olga.closes();
    f.mymenu(f.olga, "Adjust items on sale");
    f.olga.presses("apple").fills({{"Quantity", 0}});
    EXPECT_TRUE(f.sells("below")["items"].empty());
    EXPECT_EQ(f.olga.counts("minecraft:apple"), 0);
}

// From each slot what still is the same; the others are told of and left alone.
TEST(OwnerStories, ARestockTakesOnlyTheSameItem) {
    Fair f;
    f.alice.gives(3, "apple", 5)
        .gives(4, "apple", 1, "{Name:\"minecraft:apple\",Count:1b,tag:{display:{Name:\"Gold\"}}}");
    f.mymenu(f.alice, "Restock");
    f.alice.presses("apple").gives(0, "diamond", 7).gives(3, "apple", 2).forgets();
    EXPECT_EQ(f.alice.form()["content"].size(), 3U) << "the label and two slots";
    f.alice.fills({{"No.0", 6}, {"No.3", 5}});
    EXPECT_EQ(f.alice.toasts(), "SYSTEM: Some of the slots hold something else by now. Nothing was taken from them.");
    EXPECT_EQ(f.alice.form()["title"], "Restock items on sale");
    EXPECT_EQ(f.sells(ada)["items"][0]["shopitemleftnum"], 12);
    EXPECT_EQ(f.alice.has(0) + f.alice.has(3) + f.alice.has(4), "minecraft:diamond*7minecraft:apple*1");
}

// Owners know the forms by these.
TEST(OwnerStories, WhatTheFormsHaveAlwaysDone) {
    Fair f;
    const std::string dave = "2535400000000005";
    auto wish = [](int stacks) {
        auto record = commission("bread", 3, 5, fmt::format("{} stacks", stacks));
        record["nowhasrecyclenum"] = stacks * 2;
        record["recycleditemnbtlist"] = json::array_t(static_cast<std::size_t>(stacks), snbt("bread", 2));
        return record;
    };
    f.stage.writeshop(dave, goods(38), {wish(0), wish(4), wish(5), wish(6)}, json::object(), {{"shopname", "Stall"}});
    Actor& owner = f.stage.join("Dave", dave).setmoney(100).gives(0, "clock", 2);
    const std::string line = "minecraft:bread * 2\n";
    const std::pair<int, std::string> asked[] = {{0, ""},
                                                 {4, line + line + line + line},
                                                 {5, line + line + line + line + line + "and 0 more..."},
                                                 {6, line + line + line + line + line + "and 1 more..."}};
    f.mymenu(owner, "change to recyl");
    for (const auto& [stacks, list] : asked) {
        owner.presses("Pick up recycled items").presses(fmt::format("{} stacks", stacks));
        EXPECT_EQ(owner.form()["content"], "get ALL item?\n" + list);
        owner.presses("no");
        EXPECT_EQ(owner.form()["title"], "Pick up recycled items");
        owner.forgets().presses(fmt::format("{} stacks", stacks)).presses("yes");
        EXPECT_EQ(owner.toasts(), fmt::format("Stall: Total get num : {}", stacks * 2));
        EXPECT_TRUE(owner.form().is_null());
        f.mymenu(owner, "change to recyl");
    }
    EXPECT_EQ(owner.counts("minecraft:bread"), 30);

    // A turned page of one list is a page of the other.
    f.mymenu(owner, "Restock");
    EXPECT_EQ(owner.form()["title"], "Restock items on sale");
    owner.presses("Next page");
    EXPECT_EQ(owner.form()["title"], "Adjust items on sale");
    EXPECT_EQ(owner.form()["buttons"].size(), 13U);

    // An operator is told of the fee and does not pay it. What the chest would not put on sale, the forms do.
    f.stage.writeshop("full", goods(37), json::array_t(37, wish(0)));
    f.olga.types("ordomart manage full").gives(0, "clock", 2);
    f.stage.ticks(6);
    f.olga.closes();
    for (const bool recycles : {false, true}) {
        f.mymenu(f.olga, recycles ? "change to recyl" : "Put an item on sale");
        if (recycles) f.olga.presses("New recycle commission");
        f.olga.presses("Slot No. 0");
        EXPECT_TRUE(holds(f.olga.formtext(), "exceeded the free limit of 36, and 500 will be charged"));
        f.olga.forgets().fills(recycles ? Answers{{"offer", "9"}} : Answers{{"Quantity", 1}});
        EXPECT_EQ(f.olga.sounds(), std::vector<std::string>{"mob.villager.yes"});
        EXPECT_EQ(f.olga.toasts(), "");
    }
    EXPECT_EQ(f.olga.money(), 1000);
    EXPECT_EQ(f.sells("full")["items"].size(), 38U);
}
