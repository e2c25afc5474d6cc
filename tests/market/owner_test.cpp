// What an owner does with his shops, by forms and by the chest, and what others see of it.
#include <span>

#include "plugin/base/language.h"
#include "tests/market/owner_stage.h"

using namespace owner;

TEST(Owner, AGoodIsUploadedBoughtReplenishedAdjustedAndTakenOff) {
    Counter c;
    c.formmenu(c.alice, "Put an item on sale");
    c.alice.presses("Slot No. 0").fills({{"price", "5"}, {"Quantity", 20}});
    EXPECT_EQ(c.alice.has(0), "minecraft:apple*44");
    ASSERT_EQ(c.goods().size(), 1U);
    EXPECT_EQ(c.goods()[0]["shopitemleftnum"], 20);

    c.carl.types("ordomart formmenu").answers(0).answers(0).fills({{"quantity", "3"}});
    EXPECT_EQ(c.carl.money(), 985);
    EXPECT_EQ(c.alice.money(), 1015);

    c.formmenu(c.alice, "Restock");
    c.alice.answers(0).fills({{"No.0", 4}, {"No.9", 0}});
    EXPECT_EQ(c.goods()[0]["shopitemleftnum"], 21);
    EXPECT_EQ(c.alice.has(0), "minecraft:apple*40");

    // A form that was left open while the good changed takes nothing.
    c.formmenu(c.alice, "Adjust items");
    c.alice.answers(0);
    c.carl.dismisses().types("ordomart formmenu").answers(0).answers(0).fills({{"quantity", "1"}});
    c.alice.forgets().fills({{"Quantity", 0}});
    EXPECT_EQ(c.alice.toasts(), "SYSTEM: Operation failed, shopinfo has been changed");
    EXPECT_EQ(c.goods().size(), 1U);

    c.chestmenu("ordomart myshop");
    EXPECT_EQ(c.alice.shown(inventoryid, 9), "minecraft:apple*1");
    c.alice.clicks(ContainerName::inventory, 9).fills({{"Quantity", 0}});
    EXPECT_TRUE(c.goods().empty());
    EXPECT_EQ(c.alice.counts("minecraft:apple"), 70);
}

TEST(Owner, ACommissionIsPublishedFilledPickedUpAndEnded) {
    for (const bool llmoney : {true, false}) {
        Counter c(llmoney);
        c.formmenu(c.alice, "change to recyl");
        c.alice.presses("New recycle commission")
            .presses("Slot No. 0")
            .fills({{"offer", "10"}, {"quantity you want", "8"}});
        EXPECT_EQ(c.alice.money(), 920);
        EXPECT_EQ(c.alice.has(0), "minecraft:apple*64");

        c.carl.gives(0, "apple", 3).types("ordomart formmenu").answers(1).answers(0).fills({});
        EXPECT_EQ(c.carl.money(), 1030);

        c.chestmenu("ordomart myreshop");
        c.alice.clicks(ContainerName::hotbar, 3);
        c.stage.ticks(1);
        c.alice.clicks(ContainerName::inventory, 9).presses("yes");
        EXPECT_EQ(c.alice.counts("minecraft:apple"), 77);
        rests(c.stage);
        c.chestmenu("ordomart myreshop");
        c.alice.clicks(ContainerName::inventory, 9).fills({{"quantity you want", "0"}});
        EXPECT_TRUE(c.commissions().empty());
        EXPECT_EQ(c.alice.money(), 970);
    }
}

TEST(Owner, AWornPieceIsPutOnSale) {
    Counter c;
    c.alice.gives(36, "diamond_helmet", 1);
    c.chestmenu("ordomart myshop");
    c.alice.clicks(ContainerName::hotbar, 2).clicks(ContainerName::armor, 0).fills({{"price", "5"}});
    EXPECT_EQ(c.alice.has(36), "");
    EXPECT_EQ(c.alice.has(0), "minecraft:apple*64");
    EXPECT_EQ(c.goods()[0]["itemnbt"], snbt("diamond_helmet"));
}

TEST(Owner, ShopsAreLookedAtOneByOne) {
    Counter c;
    c.stage.writeshop("2535400000000008", {good("emerald", 9, 4, "Gem"), good("emerald", 8, 4)});
    c.stage.writeshop("2535400000000009", {good("diamond", 9, 4, "Gem")});
    c.chestmenu("ordomart buybyshop");
    c.stage.ticks(2);
    const int slot = named(c.alice, inventoryid, 9).starts_with("2535400000000009") ? 9 : 10, other = 19 - slot;
    EXPECT_TRUE(named(c.alice, inventoryid, slot).starts_with("2535400000000009"));
    EXPECT_TRUE(named(c.alice, inventoryid, other).starts_with("2535400000000008"));
    c.alice.clicks(ContainerName::inventory, slot);
    c.stage.ticks(1);
    EXPECT_EQ(c.alice.shown(inventoryid, 9), "minecraft:diamond*1");
    c.alice.clicks(ContainerName::inventory, 9).fills({{"quantity", "2"}});
    EXPECT_EQ(c.alice.counts("minecraft:diamond"), 2);
    EXPECT_EQ(c.alice.money(), 982);

    // A list that is made anew behind the picture shows nobody another shop than the one that he pressed on.
    for (const int pressed : {9, 10}) {
        c.alice.closes();
        c.chestmenu("ordomart buybyshop");
        c.stage.ticks(2);
        const auto shop = named(c.alice, inventoryid, pressed);
        c.alice.types("ordomart formmenu").presses("Selling shops (form)").forgets();
        c.alice.clicks(ContainerName::inventory, pressed);
        c.stage.ticks(1);
        const bool refused = c.alice.chat() == "wrong data ,Retry";
        EXPECT_TRUE(refused || named(c.alice, armorid, 0) == shop);
    }
}

// By packets alone, and taken back however he leaves the screen.
TEST(Owner, TheCreativeListIsShownToTheClientAlone) {
    Counter c;
    c.chestmenu("ordomart myreshop");
    c.alice.clicks(ContainerName::hotbar, 2);
    EXPECT_EQ(gametype(c.alice), 1);
    c.alice.clicks(ContainerName::offhand, 1);
    EXPECT_EQ(gametype(c.alice), 0);
    c.stage.ticks(1);
    c.alice.clicks(ContainerName::hotbar, 2);
    EXPECT_EQ(gametype(c.alice), 1);
    c.alice.closes();
    EXPECT_EQ(gametype(c.alice), 0);
}

namespace {

// The title of the dialog that he has, else the name of the sign of the view that he sees.
std::string front(const Actor& who) {
    const json form = who.form();
    return form.is_null() ? named(who, offhandid, 0) : form["title"].get<std::string>();
}

}  // namespace

TEST(Owner, EveryPressIsHeardAndLeadsOn) {
    constexpr auto hotbar = ContainerName::hotbar, armour = ContainerName::armor, listed = ContainerName::inventory,
                   offhand = ContainerName::offhand;
    using spots = std::vector<std::pair<ContainerName, int>>;
    using sounds = std::vector<std::string>;
    const sounds click{"random.click"}, turn{"item.book.page_turn"}, levelup{"random.levelup 1/2"},
        haggle{"mob.villager.haggle"}, no{"mob.villager.no"}, nothing;
    struct press {
        spots way;
        std::pair<ContainerName, int> at;
        std::vector<std::string> heard;
        const char* to;
        bool refused = false;  // of a banned shop
    };
    const press sellpresses[] = {
        {{}, {hotbar, 2}, click, "myshop.onshop.helper1", true},
        {{}, {hotbar, 3}, click, "myshop.replenishmentshop.helper1", true},
        {{}, {hotbar, 4}, {"random.click", "mob.villager.haggle"}, "myshop.publishdiscount.form.menutitle", true},
        {{}, {hotbar, 5}, levelup, "myshop.helper1"},
        {{}, {hotbar, 8}, turn, "myshop.helper1"},
        {{{hotbar, 8}}, {hotbar, 0}, turn, "myshop.helper1"},
        {{}, {armour, 0}, click, "myshop.shopedit.form.menutitle"},
        {{}, {armour, 1}, nothing, "myshop.helper1"},
        {{}, {armour, 2}, click, "myrecycleshop.helper1"},
        {{}, {armour, 3}, click, "myshop.shopeventlog.form.menutitle"},
        {{}, {listed, 9}, click, "myshop.adjustshop.form.menutitle"},
        {{}, {offhand, 1}, click, "mainmenu"},
    };
    const press recyclepresses[] = {
        {{}, {hotbar, 2}, click, "myrecycleshop.onreshop.helper1", true},
        {{}, {hotbar, 3}, click, "myrecycleshop.pickuprecycleitem.helper1"},
        {{}, {hotbar, 5}, levelup, "myrecycleshop.helper1"},
        {{}, {armour, 0}, click, "myshop.shopedit.form.menutitle"},
        {{}, {armour, 1}, nothing, "myrecycleshop.helper1"},
        {{}, {armour, 2}, click, "myshop.helper1"},
        {{}, {armour, 3}, click, "myshop.shopeventlog.form.menutitle"},
        {{}, {listed, 9}, click, "myrecycleshop.adjustshop.form.menutitle"},
        {{}, {offhand, 1}, click, "mainmenu"},
        {{{hotbar, 3}}, {listed, 9}, click, "myrecycleshop.pickupitem.form.menutitle"},
        {{{hotbar, 3}}, {offhand, 1}, click, "myrecycleshop.helper1"},
    };
    // Behind buttons that a ban closes.
    const press sellbehind[] = {
        {{{hotbar, 2}}, {hotbar, 0}, click, "myshop.onshop.form.menutitle"},
        {{{hotbar, 2}}, {armour, 0}, click, "myshop.onshop.form.menutitle"},
        {{{hotbar, 2}}, {offhand, 1}, click, "myshop.helper1"},
        {{{hotbar, 3}}, {listed, 9}, click, "myshop.replenishmentshop.form.menutitle"},
        {{{hotbar, 3}}, {offhand, 1}, click, "myshop.helper1"},
    };
    const press recyclebehind[] = {
        {{{hotbar, 2}}, {listed, 9}, haggle, "myrecycleshop.onreshop.form.menutitle"},
        {{{hotbar, 2}}, {offhand, 1}, click, "myrecycleshop.helper1"},
    };
    Counter c;
    c.stage.writeshop(ada, chest::goods(30), {commission("bread", 5, 3)});
    c.alice.gives(36, "diamond_helmet", 1);
    Actor& admin = c.stage.join("Root", "2535400000000009", "en_US", desktop, 1);
    const auto walks = [&](const char* command, std::span<const press> presses, bool banned) {
        for (const auto& press : presses) {
            SCOPED_TRACE(fmt::format("{} {}: {} {}{}", command, press.way.size(), static_cast<int>(press.at.first),
                                     press.at.second, banned ? ", banned" : ""));
            c.chestmenu(command);
            for (const auto& [container, slot] : press.way) {
                c.alice.clicks(container, slot);
                c.stage.ticks(1);
            }
            const auto before = front(c.alice);
            c.alice.forgets();
            sends(c.stage, c.alice, {{action(ActionType::take, press.at.first, press.at.second)}});
            c.stage.ticks(2);
            const bool refused = banned && press.refused;
            EXPECT_EQ(c.alice.sounds(), refused ? no : press.heard);
            const std::string to = press.to == std::string("mainmenu") ? "" : ordomart::tr("en_US", press.to);
            EXPECT_EQ(front(c.alice), refused ? before : to);
            c.alice.dismisses().closes();
        }
    };
    for (const bool banned : {false, true}) {
        bans(admin, "Alice", banned);
        walks("ordomart myshop", sellpresses, banned);
        walks("ordomart myreshop", recyclepresses, banned);
        if (banned) break;
        walks("ordomart myshop", sellbehind, banned);
        walks("ordomart myreshop", recyclebehind, banned);
    }

    // The second page shows the records from the 27th on.
    c.chestmenu("ordomart myshop");
    c.alice.clicks(hotbar, 8);
    c.stage.ticks(1);
    c.alice.clicks(listed, 11);
    EXPECT_EQ(c.alice.form()["content"][1]["default"], "good 28");
}

// Who holds the sign presses by swaps, and only the first two buttons and the page buttons answer to those.
TEST(Owner, TheListsAreReachedByASwapAsWell) {
    const struct {
        const char* command;
        int slot;
        const char* helpkey;
    } swaps[] = {
        {"ordomart myshop", 2, "myshop.onshop.helper1"},
        {"ordomart myshop", 3, "myshop.replenishmentshop.helper1"},
        {"ordomart myshop", 4, "myshop.helper1"},
        {"ordomart myshop", 5, "myshop.helper1"},
        {"ordomart myreshop", 2, "myrecycleshop.onreshop.helper1"},
        {"ordomart myreshop", 3, "myrecycleshop.pickuprecycleitem.helper1"},
        {"ordomart myreshop", 5, "myrecycleshop.helper1"},
    };
    Counter c;
    for (const auto& swap : swaps) {
        c.chestmenu(swap.command);
        sends(c.stage, c.alice,
              {{action(ActionType::swap, ContainerName::cursor, 0, ContainerName::hotbar, swap.slot)}});
        c.stage.ticks(1);
        EXPECT_EQ(named(c.alice, offhandid, 0), ordomart::tr("en_US", swap.helpkey)) << swap.command << swap.slot;
        EXPECT_TRUE(c.alice.menuopen());
        c.alice.closes();
    }
}
