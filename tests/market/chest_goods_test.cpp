// The two global views: what they show and what a click does. The roads to a trade stand in chest_roads_test.cpp.
#include "tests/market/chest_stage.h"

using namespace chest;

namespace {

struct Scene {
    Stage stage;
    Actor& alice;
    Scene(const json& items, const json& commissions, int device = desktop, const json& sellextra = json::object())
        : stage(),
          alice((stage.writeshop(bob, items, commissions, sellextra), stage.join("Alice", ada, "en_US", device))) {}
    void opens(const std::string& command) { chest::opens(stage, alice, command); }
};

}  // namespace

TEST(GlobalGoods, RowsButtonsAndSignOfTheSellView) {
    json item = good("diamond_sword", 30, 4, "Sharp one");
    item["itemnbt"] =
        R"({Count:5b,Damage:0s,Name:"minecraft:diamond_sword",WasPickedUp:0b,tag:{Damage:7,display:{Lore:["old"]}}})";
    item["shopitemdescribe"] = "cuts";
    item["shopitemtag"] = "swords";
    Scene s(
        json::array({item}), nullptr, desktop,
        {{"shopname", "Bob's"},
         {"isopshop", true},
         {"shopdiscount", json::array({{{"shopitemtag", "swords"}, {"discount", "-5"}, {"timeend", 4000000000}}})}});
    s.opens("ordomart buy");
    EXPECT_EQ(s.alice.shown(inventoryid, 9), "minecraft:diamond_sword*1");
    EXPECT_EQ(
        lore(s.alice, inventoryid, 9),
        "old\n§f§r§l§f=====================\n§f§rItem name:§bSharp one\n§ocuts\n§f§r§b【§2swords§b】\n"
        "§f§rDamage:§47§f/§21561\n§f§rIn stock:§64\n§f§r§730§l-> §r§g25 LLmoney/one\n§oFrom:Bob's\n§f§r§o§6【OPSHOP】\n"
        "§r§b【§aSales§b】");
    const struct {
        std::uint32_t container;
        int slot;
        const char* looks;
        const char* name;
    } places[] = {{inventoryid, 0, "", ""},
                  {inventoryid, 2, "minecraft:skull:3 shining", "View selling shops by owner"},
                  {inventoryid, 3, "minecraft:name_tag:1 shining", "Sort by item name"},
                  {inventoryid, 4, "", ""},
                  {inventoryid, 5, "minecraft:spyglass:1 shining", "double-click mode"},
                  {inventoryid, 6, "minecraft:recovery_compass:1 shining", "Search"},
                  {inventoryid, 8, "", ""},
                  {inventoryid, 10, "", ""},
                  {inventoryid, 35, "", ""},
                  {armorid, 0, "", ""},
                  {offhandid, 0, "minecraft:oak_sign:3 shining", "Choose an item to buy it"},
                  {uiid, 0, "", ""}};
    for (const auto& place : places) {
        EXPECT_EQ(looks(s.alice, place.container, place.slot), place.looks) << place.container << "/" << place.slot;
        EXPECT_EQ(named(s.alice, place.container, place.slot), place.name) << place.container << "/" << place.slot;
    }
    EXPECT_NE(s.stage.log().find("total query and sort time:"), std::string::npos);
}

TEST(GlobalGoods, ATouchClientReadsShortLines) {
    Scene s(json::array({good("apple", 100, 4, "Cheap")}), nullptr, touch);
    s.opens("ordomart buy");
    EXPECT_EQ(lore(s.alice, inventoryid, 9), "§f§rIn stock:§64\n§f§r§g100 LLmoney/one\n§oFrom:" + bob + "'s shop");
}

TEST(GlobalGoods, CommissionsShowTheirFlags) {
    json wanted = commission("apple", 3, 20, "Apples");
    wanted["filterench"] = true;
    wanted["nowhasrecyclenum"] = 2;
    const std::string tail = "\n§oFrom:" + bob + "'s recycleshop";
    {
        Scene s(nullptr, json::array({wanted}));
        s.opens("ordomart recycle");
        const auto lines = lore(s.alice, inventoryid, 9);
        EXPECT_NE(lines.find("\n§f§rItem name:§bApples\n§o\n§f§r§b【§2apple§b】\n"), std::string::npos) << lines;
        EXPECT_NE(lines.find(": \uE0A1\n"), std::string::npos) << lines;
        EXPECT_NE(lines.find(": \uE0A0\n"), std::string::npos) << lines;
        EXPECT_TRUE(lines.ends_with(tail)) << lines;
    }
    Scene s(nullptr, json::array({wanted}), touch);
    s.opens("ordomart recycle");
    const auto lines = lore(s.alice, inventoryid, 9);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), 4) << lines;  // of the flags only the one that is set
    EXPECT_EQ(lines.find("\uE0A0"), std::string::npos) << lines;
    EXPECT_NE(lines.find("§f§r§g3 LLmoney/one"), std::string::npos) << lines;
}

TEST(GlobalGoods, PagesOfTwentySix) {
    for (const auto& [command, rows] : {std::pair{"ordomart buy", 0}, std::pair{"ordomart buy", 26},
                                        std::pair{"ordomart recycle", 27}, std::pair{"ordomart recycle", 52}}) {
        SCOPED_TRACE(fmt::format("{}: {}", command, rows));
        json wanted = json::array();
        for (int i = 0; i < rows; ++i) wanted.push_back(commission("apple", i + 1, 10, fmt::format("good {:02}", i)));
        Scene s(goods(rows), wanted);
        s.opens(command);
        records(s.alice);
        const int lastpage = rows / 26;  // a full last page has an empty one behind it
        const auto ispage = [&](int page) {
            SCOPED_TRACE("page " + std::to_string(page));
            const int first = page * 26, here = std::clamp(rows - first, 0, 26);
            for (const int slot : {9, 10, 34, 35})
                EXPECT_EQ(s.alice.shown(inventoryid, slot), slot - 9 < here ? "minecraft:apple*1" : "") << slot;
            if (here > 0) {
                EXPECT_NE(lore(s.alice, inventoryid, 9).find(fmt::format("good {:02}", first)), std::string::npos);
            }
            const auto place = fmt::format("{}/{}", page + 1, lastpage + 1);
            EXPECT_EQ(looks(s.alice, inventoryid, 0), page > 0 ? "minecraft:book:3 shining" : "");
            EXPECT_EQ(named(s.alice, inventoryid, 0), page > 0 ? "\uE04DLast page" : "");
            EXPECT_EQ(lore(s.alice, inventoryid, 0), page > 0 ? "      上一页      " + place : "");
            EXPECT_EQ(looks(s.alice, inventoryid, 8), page < lastpage ? "minecraft:book:3 shining" : "");
            EXPECT_EQ(named(s.alice, inventoryid, 8), page < lastpage ? "Next page\uE04F" : "");
            EXPECT_EQ(lore(s.alice, inventoryid, 8), page < lastpage ? "下一页   " + place + "      " : "");
            EXPECT_EQ(looks(s.alice, inventoryid, 3), "minecraft:name_tag:1 shining");
            EXPECT_EQ(looks(s.alice, offhandid, 0), "minecraft:oak_sign:3 shining");
            return here + (page > 0 ? 1 : 0) + (page < lastpage ? 1 : 0) + 4;  // stacks of the page
        };
        // Pressed raw, since a client does not click on what is not there. The sign stays, the list is not made anew.
        const auto turn = [&](int slot, int page) {
            s.alice.forgets();
            sends(s.stage, s.alice, {{action(ActionType::take, ContainerName::hotbar, slot)}});
            EXPECT_EQ(s.alice.sounds(), std::vector<std::string>{"item.book.page_turn"});
            const int stacks = ispage(page);
            EXPECT_EQ(order(s.alice), fmt::format("content slot*{}", stacks));
        };
        // The button hides behind the last page, a press on its place still counts; before page 0 there is nothing.
        ispage(0);
        for (int page = 1; page <= lastpage + 2; ++page) turn(8, page);
        for (int page = lastpage + 1; page >= 0; --page) turn(0, page);
        turn(0, 0);
    }
}

TEST(GlobalGoods, SortTurnsRoundInFivePressesWithABareKey) {
    const json items = {good("stone", 5, 1, "b"), good("dirt", 3, 9, "a"), good("apple", 9, 5, "c")};
    const json wanted = {commission("stone", 5, 1, "b"), commission("dirt", 3, 9, "a"), commission("apple", 9, 5, "c")};
    Scene s(items, wanted);
    for (const char* command : {"ordomart buy", "ordomart recycle"}) {
        SCOPED_TRACE(command);
        s.alice.forgets();
        s.opens(command);
        for (const char* first : {"dirt", "apple", "stone", "dirt", "stone"}) {  // name, tag, stock, price, file order
            s.alice.clicks(ContainerName::hotbar, 3);
            EXPECT_EQ(s.alice.shown(inventoryid, 9), std::string("minecraft:") + first + "*1");
        }
        EXPECT_EQ(s.alice.toasts(), "Alice: sellshop.zerostate");
        EXPECT_EQ(named(s.alice, inventoryid, 3), "Sort by item name");
        s.alice.closes();
        rests(s.stage);
    }
}

TEST(GlobalGoods, AClickThatNoRowStandsBehind) {
    Scene s(json::array({good("apple", 7, 10)}), json::array({commission("apple", 3, 20)}));
    for (const auto& [command, retry] : {std::pair{"ordomart buy", true}, std::pair{"ordomart recycle", false}})
        for (const int slot : {10, 35}) {
            SCOPED_TRACE(command);
            s.alice.forgets();
            s.opens(command);
            sends(s.stage, s.alice, {{action(ActionType::take, ContainerName::inventory, slot)}});
            EXPECT_FALSE(s.alice.menuopen());
            EXPECT_EQ(s.alice.chat(),
                      std::string("Operation failed, item has been changed") + (retry ? "\nwrong data ,Retry" : ""));
            EXPECT_EQ(s.alice.sounds(), std::vector<std::string>{"mob.villager.haggle"});
            rests(s.stage);
        }
    const auto log = s.stage.log();
    EXPECT_NE(log.find("[Ordomart][error] error at globalsellshop ,low readlist size"), std::string::npos);
    EXPECT_EQ(log.find("globalrecycleshop ,low"), std::string::npos);
}

TEST(GlobalGoods, AShopThatHasChangedMakesANewListAndNoForm) {
    Scene s(json::array({good("apple", 7, 10)}), nullptr);
    Actor& carl = s.stage.join("Carl", "2535400000000003").setmoney(100);
    s.opens("ordomart buy");
    chest::opens(s.stage, carl, "ordomart buy");
    carl.clicks(ContainerName::inventory, 9).fills({{"quantity", "1"}});
    rests(s.stage);
    const auto stock = [&](const char* left) {
        EXPECT_NE(lore(s.alice, inventoryid, 9).find(std::string(":§6") + left), std::string::npos) << left;
    };
    for (const int slot : {3, 8, 0}) {  // sorting and turning show the list as it was
        sends(s.stage, s.alice, {{action(ActionType::take, ContainerName::hotbar, slot)}});
    }
    stock("10");
    s.alice.clicks(ContainerName::inventory, 9);
    s.stage.ticks(6);
    EXPECT_EQ(s.alice.toasts(), "SYSTEM: Operation failed, shopinfo has been changed");
    EXPECT_TRUE(s.alice.form().is_null());
    EXPECT_TRUE(s.alice.menuopen());
    stock("9");
}

// The form lists fill the same list, and turn the same page.
TEST(GlobalGoods, AListMadeAnewBehindThePictureOffersNothingThatWasNotShown) {
    for (const int slot : {9, 10, 35}) {
        SCOPED_TRACE(slot);
        Scene s(json::array({good("apple", 7, 10, "mine"), good("stone", 7, 10, "yours")}), nullptr);
        s.opens("ordomart buy");
        s.stage.writeshop("1", goods(26));
        s.alice.types("ordomart formmenu").presses("Selling shops").dismisses();
        rests(s.stage);
        EXPECT_EQ(s.alice.shown(inventoryid, 9), "minecraft:apple*1");
        s.alice.forgets();
        sends(s.stage, s.alice, {{action(ActionType::take, ContainerName::inventory, slot)}});
        EXPECT_TRUE(s.alice.form().is_null()) << s.alice.formtext();
        if (slot == 35) {
            EXPECT_NE(s.alice.chat().find("wrong data ,Retry"), std::string::npos) << "nothing was shown there";
        } else {
            EXPECT_EQ(s.alice.toasts(), "SYSTEM: Operation failed, shopinfo has been changed");
            s.stage.ticks(6);
            EXPECT_NE(lore(s.alice, inventoryid, 9).find("good 00"), std::string::npos) << "the list as it is";
        }
    }
}

TEST(GlobalGoods, TheCompassOpensTheSearchAndClosingByHandSelectsNothing) {
    Scene s(json::array({good("apple", 7, 10)}), nullptr);
    s.opens("ordomart recycle");
    s.alice.clicks(ContainerName::hotbar, 6);
    EXPECT_FALSE(s.alice.form().is_null());
    EXPECT_EQ(s.alice.sounds(), std::vector<std::string>{"random.click"});
    rests(s.stage);
    s.alice.answers(nullptr).forgets();
    s.opens("ordomart buy");
    s.alice.clicks(ContainerName::hotbar, 6);
    EXPECT_EQ(s.alice.sounds(), (std::vector<std::string>{"random.click", "mob.villager.haggle"}));
    rests(s.stage);
    s.alice.answers(nullptr).forgets();
    s.opens("ordomart buy");
    s.alice.closes();
    EXPECT_EQ(s.alice.chat(), "NULL selected ");
}

TEST(GlobalGoods, ATouchClientHoldsTheSignAndActsByTwoRequests) {
    Scene s(json::array({good("apple", 7, 10)}), nullptr, touch);
    s.opens("ordomart buy");
    const auto sign = [&] { return looks(s.alice, uiid, 0); };
    const auto press = [&](int slot) {
        sends(s.stage, s.alice, {{action(ActionType::swap, ContainerName::cursor, 0, ContainerName::hotbar, slot)}});
    };
    EXPECT_EQ(sign(), "minecraft:oak_sign:3 shining");
    s.alice.forgets();
    press(5);  // the spyglass does not answer to a swap
    press(6);
    EXPECT_TRUE(s.alice.sounds().empty());
    press(3);
    EXPECT_EQ(named(s.alice, inventoryid, 3), "Sort by item tag");
    EXPECT_EQ(s.alice.sounds(), std::vector<std::string>{"random.click 1/0.6"});
    s.alice.forgets().drops(ContainerName::cursor, 0);
    EXPECT_EQ(sign(), "");
    press(8);  // thrown away it stays until the list is made anew
    EXPECT_EQ(sign(), "");
    s.alice.clicks(ContainerName::offhand, 1).clicks(ContainerName::armor, 0);
    EXPECT_EQ(sign(), "minecraft:oak_sign:3 shining");
    s.alice.drops(ContainerName::cursor, 0).forgets().clicks(ContainerName::hotbar, 5);
    EXPECT_EQ(sign(), "minecraft:oak_sign:3 shining");
    EXPECT_EQ(s.alice.sounds(), std::vector<std::string>{"random.levelup 1/2"});
    press(0);
    s.alice.clicks(ContainerName::inventory, 9);  // with the sign in hand, a pair headed by a swap
    EXPECT_FALSE(s.alice.menuopen());
    EXPECT_FALSE(s.alice.form().is_null());
}

// A number key over a slot swaps it with a place on the hotbar, or puts it there when that place is empty.
TEST(GlobalGoods, ANumberKeyOverAGoodChoosesItWhereTheHotbarIsFree) {
    Scene s(json::array({good("apple", 7, 10)}), nullptr);
    s.opens("ordomart buy");
    records(s.alice);
    s.alice.forgets();
    for (const int key : {2, 3, 5, 6})
        sends(s.stage, s.alice, {{action(ActionType::swap, ContainerName::inventory, 9, ContainerName::hotbar, key)}});
    EXPECT_EQ(responses(s.alice), "1\n1\n1\n1");
    EXPECT_TRUE(s.alice.menuopen());
    EXPECT_TRUE(s.alice.sounds().empty());
    EXPECT_EQ(s.alice.shown(inventoryid, 9), "minecraft:apple*1");
    sends(s.stage, s.alice, {{action(ActionType::place, ContainerName::inventory, 9, ContainerName::hotbar, 4)}});
    EXPECT_NE(s.alice.formtext().find("apple"), std::string::npos);
}

TEST(GlobalGoods, OneGoodThatIsBrokenOrHugeLeavesTheOthers) {
    json broken = good("apple", 1, 1), wordy = good("apple", 2, 1), heavy = good("apple", 3, 1);
    broken["itemnbt"] = "no item";
    const std::string verylong = [] {
        std::string text;
        while (text.size() < 70'000) text += "ö§a";  // longer than the wire has room for
        return text;
    }();
    wordy["shopitemdescribe"] = wordy["shopitemname"] = verylong;
    platform::CompoundTag item = *platform::CompoundTag::fromSNBT(
        R"({Count:1b,Damage:0s,Name:"minecraft:apple",WasPickedUp:0b,tag:{ench:[{id:1s,lvl:2s}],display:{Name:"Pie"}}})");
    for (int i = 0; i < 5000; ++i)
        item.compound("tag").compound("display").list("Lore").add("line " + std::to_string(i));
    item.compound("tag").putString(verylong, "a key");
    item.list("CanPlaceOn").add(verylong);
    heavy["itemnbt"] = item.toSNBT();
    Scene s(json::array({broken, wordy, heavy, good("stone", 3, 1)}), nullptr);
    records(s.alice);
    s.opens("ordomart buy");
    s.alice.look([](client::ModelClient& c) {
        for (const auto& packet : c.packets) EXPECT_LT(packet.body.size(), 33'000U);
    });
    EXPECT_EQ(s.alice.shown(inventoryid, 9), "");
    const auto wordylines = lore(s.alice, inventoryid, 10), heavylines = lore(s.alice, inventoryid, 11);
    EXPECT_NE(wordylines.find("…\n"), std::string::npos) << "cut";
    EXPECT_NE(wordylines.find("§g2 LLmoney/one\n§oFrom:"), std::string::npos);
    EXPECT_EQ(named(s.alice, inventoryid, 11) + looks(s.alice, inventoryid, 11), "Pieminecraft:apple:0 shining");
    EXPECT_EQ(heavylines.find("line 0\n"), std::string::npos);
    EXPECT_NE(heavylines.find("line 4999\n"), std::string::npos);
    EXPECT_NE(heavylines.find("§g3 LLmoney/one\n"), std::string::npos);
    EXPECT_EQ(s.alice.shown(inventoryid, 12), "minecraft:stone*1");
    EXPECT_EQ(looks(s.alice, inventoryid, 2), "minecraft:skull:3 shining");
    s.alice.clicks(ContainerName::inventory, 10);
    EXPECT_FALSE(s.alice.form().is_null()) << "what is sold is whole";
}
