// What an owner does with his shops, by forms and by the chest, and what others see of it.
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

TEST(Owner, AnUploadWhoseSlotHasChangedTakesNothing) {
    Counter c;
    c.chestmenu("ordomart myshop");
    c.alice.clicks(ContainerName::hotbar, 2).clicks(ContainerName::hotbar, 0);
    ASSERT_FALSE(c.alice.form().is_null());
    c.alice.gives(0, "diamond", 2).forgets().fills({{"price", "5"}});
    EXPECT_EQ(c.alice.has(0), "minecraft:diamond*2");
    EXPECT_TRUE(c.goods().is_null());
    EXPECT_NE(c.alice.toasts(), "");
}

TEST(Owner, ShopsAreLookedAtOneByOne) {
    Counter c;
    c.stage.writeshop("2535400000000009", {good("diamond", 9, 4, "Gem")});
    c.chestmenu("ordomart buybyshop");
    c.stage.ticks(2);
    EXPECT_NE(c.alice.shown(inventoryid, 9), "");
    c.alice.clicks(ContainerName::inventory, 9);
    c.stage.ticks(1);
    EXPECT_EQ(c.alice.shown(inventoryid, 9), "minecraft:diamond*1");
    c.alice.clicks(ContainerName::inventory, 9).fills({{"quantity", "2"}});
    EXPECT_EQ(c.alice.counts("minecraft:diamond"), 2);
    EXPECT_EQ(c.alice.money(), 982);
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
