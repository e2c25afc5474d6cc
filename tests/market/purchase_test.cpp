// The road of one purchase through the form list, and everything that can stop it.
#include <fmt/format.h>

#include "platform/form.h"
#include "tests/stage/stage.h"

using namespace stage;

namespace {

const std::string ada = "2535400000000001", bob = "2535400000000002", cid = "2535400000000003";

// From the command to the try-buy form of the row that shows the title.
void picks(Actor& buyer, const std::string& title) {
    buyer.dismisses().types("ordomart formmenu").presses("Selling shops (form)").presses(title);
}

void buys(Actor& buyer, const std::string& title, const std::string& quantity) {
    picks(buyer, title);
    buyer.fills({{"quantity", quantity}});
}

json sold(Stage& stage, const std::string& owner = bob) { return stage.shopfile(owner)["sell"]; }

}  // namespace

TEST(Purchase, ThreeApplesFromJoinToFileAndLog) {
    Stage stage;
    stage.writeshop(bob, {good("apple", 7, 10, "My apple")}, nullptr, {{"ownerlang", "en_US"}, {"shopname", "Bob's"}});
    Actor& alice = stage.join("Alice", ada).setmoney(100);

    alice.types("ordomart formmenu");
    EXPECT_EQ(alice.replies(), "");
    EXPECT_EQ(alice.form()["buttons"].size(), 4U);
    alice.presses("Selling shops (form)");
    EXPECT_NE(alice.formtext().find("Current page 1. There are 1 pages in total, and 1 items are searched"),
              std::string::npos);
    EXPECT_NE(alice.formtext().find("My apple§r§f(§aApple§f)\n§f§r"), std::string::npos);
    EXPECT_NE(alice.formtext().find("   §f§r§e7 LLmoney/one"), std::string::npos);
    alice.presses("My apple");
    EXPECT_NE(alice.formtext().find("§f : §e100\uE102"), std::string::npos);
    alice.fills({{"quantity", "3"}});

    const json result = alice.form();
    EXPECT_EQ(result["type"], "modal");
    EXPECT_EQ(result["content"], "Player Alice paid 21 for Apple*3 from Bob's.");
    EXPECT_EQ(alice.sounds(), std::vector<std::string>{"mob.villager.yes"});
    EXPECT_EQ(alice.has(0), "minecraft:apple*3");
    EXPECT_EQ(alice.money(), 79);
    EXPECT_EQ(stage.money(bob), 21);

    const json shop = sold(stage);
    EXPECT_EQ(shop["items"][0]["shopitemleftnum"], 7);
    EXPECT_EQ(shop["sellcount"], 3);
    EXPECT_EQ(shop["salesvolume"], 21);
    const std::string log = stage.file("plugins/Ordomart/log/" + bob + ".log");
    EXPECT_NE(log.find("Player Alice paid 21 for My apple(minecraft:apple:0) * 3 from Bob's."), std::string::npos)
        << log;

    alice.presses("Continue");  // a new list, with what is left
    EXPECT_NE(alice.formtext().find(":7   §f"), std::string::npos) << alice.formtext();
    alice.answers(nullptr);  // closing the list goes back to the menu that he came from
    EXPECT_EQ(alice.form()["buttons"].size(), 4U);
}

TEST(Purchase, ListIsInTheReadersLanguageAndTheMessageInTheOwners) {
    Stage stage;
    stage.writeshop(bob, {good("apple", 7, 10)}, nullptr, {{"ownerlang", "zh_CN"}, {"shopname", "Bob"}});
    Actor& lin = stage.join("Lin", ada, "zh_CN").setmoney(100);
    lin.types("ordomart formmenu").presses("出售商店(表单)").presses("apple");
    lin.fills({{"数量", "2"}});
    EXPECT_EQ(lin.form()["title"], "购买物品成功！");
    EXPECT_EQ(lin.form()["content"], "玩家Lin花费14从Bob买走了苹果*2");
    EXPECT_NE(stage.file("plugins/Ordomart/log/" + bob + ".log").find("买走了apple(minecraft:apple:0) * 2"),
              std::string::npos);
}

TEST(Purchase, WhatCannotBeBoughtLeavesEverythingAsItWas) {
    struct Case {
        const char* quantity;
        std::int64_t money;
        const char* told;
    };
    const Case cases[] = {{"0", 1000, "Wrong input value"},  {"-1", 1000, "Wrong input value"},
                          {"", 1000, "Wrong input value"},   {"many", 1000, "Wrong input value"},
                          {"11", 1000, "Wrong input value"}, {"99999999999999999999", 1000, "Wrong input value"},
                          {"3", 20, "not engough money!"}};
    for (const Case& one : cases) {
        SCOPED_TRACE(one.quantity);
        Stage stage;
        stage.writeshop(bob, {good("apple", 7, 10)});
        Actor& alice = stage.join("Alice", ada).setmoney(one.money);
        const std::string before = stage.file("plugins/Ordomart/data/" + bob + ".json");
        buys(alice, "apple", one.quantity);
        EXPECT_NE(alice.chat().find(one.told), std::string::npos) << alice.chat();
        EXPECT_TRUE(alice.form().is_null());
        EXPECT_EQ(alice.money(), one.money);
        EXPECT_EQ(alice.counts("minecraft:apple"), 0);
        stage.seconds(4);
        EXPECT_EQ(stage.file("plugins/Ordomart/data/" + bob + ".json"), before);
    }
}

TEST(Purchase, TypedDigitsCountUpToTheFirstLetter) {
    Stage stage;
    stage.writeshop(bob, {good("apple", 7, 10)});
    Actor& alice = stage.join("Alice", ada).setmoney(100);
    buys(alice, "apple", " 4 apples");
    EXPECT_EQ(alice.has(0), "minecraft:apple*4");
}

TEST(Purchase, TheDeadBuyNothing) {
    Stage stage;
    stage.writeshop(bob, {good("apple", 7, 10)});
    Actor& alice = stage.join("Alice", ada).setmoney(100);
    picks(alice, "apple");
    alice.dies().fills({{"quantity", "1"}});
    EXPECT_NE(alice.chat().find("Dead people"), std::string::npos);
    EXPECT_EQ(alice.money(), 100);
}

TEST(Purchase, ASecondBuyerWithAnOldFormIsTurnedAway) {
    Stage stage;
    stage.writeshop(bob, {good("apple", 7, 10)});
    Actor& alice = stage.join("Alice", ada).setmoney(100);
    Actor& carl = stage.join("Carl", cid).setmoney(100);
    picks(alice, "apple");
    picks(carl, "apple");
    alice.fills({{"quantity", "1"}});
    carl.fills({{"quantity", "1"}});
    EXPECT_NE(carl.chat().find("Operation failed, shopinfo has been changed"), std::string::npos);
    EXPECT_EQ(carl.money(), 100);
    EXPECT_EQ(sold(stage)["items"][0]["shopitemleftnum"], 9);
    // His list is as old as his form was.
    carl.forgets();
    carl.types("ordomart formmenu").presses("Selling shops (form)").presses("apple").fills({{"quantity", "2"}});
    EXPECT_EQ(carl.has(0), "minecraft:apple*2");
}

TEST(Purchase, AnOldListOffersNothingOfAShopThatHasChanged) {
    Stage stage;
    stage.writeshop(bob, {good("apple", 7, 10)});
    Actor& alice = stage.join("Alice", ada).setmoney(100);
    Actor& carl = stage.join("Carl", cid).setmoney(100);
    alice.types("ordomart formmenu").presses("Selling shops (form)");
    buys(carl, "apple", "1");
    alice.presses("apple");
    EXPECT_EQ(alice.chat(), "Operation failed, shopinfo has been changed");
    EXPECT_TRUE(alice.form().is_null());

    // A search that finds nothing has emptied the list behind the form.
    alice.types("ordomart formmenu").presses("Selling shops (form)").forgets().types("ordomart search sell nothing");
    stage.ticks(6);
    alice.presses("apple");
    EXPECT_EQ(alice.chat(), "");
    EXPECT_TRUE(alice.form().is_null());
    EXPECT_NE(stage.log().find("[Ordomart][error] wrong castindex"), std::string::npos);
}

// A shop that nobody asks for is forgotten and read again when it is, and counts its changes from 0 again, so that a
// form from before fits whatever the file holds by then.
TEST(Purchase, WhatWasTakenFromTheFileWhileAFormWasOpen) {
    Stage stage;
    const json broken = good("{Count:1b,Damage:0s,Name:\"addon:gem\",WasPickedUp:0b}", 7, 10, "apple");
    const struct {
        std::string owner;
        json items, left;
        const char* told;
    } cases[] = {
        {bob, nullptr, nullptr, "catch checkexist error:Operation failed, item has been changed"},
        {"fair", json::array(), json::array(), "catch checkexist error:Operation failed, item has been changed"},
        {"gems", json::array({broken, good("bread", 1, 1)}), json::array({good("bread", 1, 1)}),
         "catch checkrawitemvalid error:Operation failed, item has been changed"}};
    std::vector<Actor*> buyers;
    for (const auto& each : cases) {
        stage.writeshop(each.owner, {good("apple", 7, 10, "apple of " + each.owner)});
        buyers.push_back(
            &stage.join(fmt::format("Buyer {}", buyers.size()), fmt::format("{}", 100 + buyers.size())).setmoney(100));
        picks(*buyers.back(), "apple of " + each.owner);
    }
    stage.seconds(3010);
    for (std::size_t i = 0; i < buyers.size(); ++i) {
        SCOPED_TRACE(cases[i].owner);
        stage.writeshop(cases[i].owner, cases[i].items);
        buyers[i]->fills({{"quantity", "2"}});
        EXPECT_EQ(buyers[i]->chat(), cases[i].told);
        EXPECT_EQ(buyers[i]->money(), 100);
        EXPECT_EQ(buyers[i]->counts("minecraft:apple"), 0);
        EXPECT_EQ(sold(stage, cases[i].owner)["items"], cases[i].left);
        EXPECT_TRUE(buyers[i]->form().is_null());
    }
}

TEST(Purchase, GoodsForNothingAndTheWayOutOfTheResult) {
    Stage stage;
    stage.writeshop(bob, {good("apple", 0, 10)});
    Actor& alice = stage.join("Alice", ada).setmoney(0);
    for (const json& out : {json(false), json(nullptr)}) {  // "Exit", and closed
        buys(alice, "apple", "2");
        EXPECT_EQ(alice.form()["title"], "purchase successfully!");
        alice.answers(out);
        EXPECT_EQ(alice.form()["buttons"].size(), 15U) << "the large menu, also for who came from the small one";
    }
    EXPECT_EQ(alice.has(0), "minecraft:apple*4");
}

TEST(Purchase, ComesInStacksOfTheItemsSizeAndFallsWhereThereIsNoRoom) {
    Stage stage;
    stage.writeshop(bob, {good("ender_pearl", 1, 50)});
    Actor& alice = stage.join("Alice", ada).setmoney(100);
    buys(alice, "ender_pearl", "40");
    EXPECT_EQ(alice.has(0), "minecraft:ender_pearl*16");
    EXPECT_EQ(alice.has(1), "minecraft:ender_pearl*16");
    EXPECT_EQ(alice.has(2), "minecraft:ender_pearl*8");

    Actor& carl = stage.join("Carl", cid).setmoney(100);
    for (int slot = 0; slot < 36; ++slot) carl.gives(slot, "dirt", 64);
    buys(carl, "ender_pearl", "5");
    EXPECT_EQ(carl.form()["type"], "modal");
    EXPECT_EQ(carl.counts("minecraft:ender_pearl"), 0);
    std::string fell;
    stage.onserver([&] {
        for (const auto& item : stage.server().world().droppeditems())
            fell += fmt::format("{}*{} ", item.stack.getTypeName(), item.stack.getCount());
    });
    EXPECT_EQ(fell, "minecraft:ender_pearl*5 ");
    EXPECT_EQ(carl.money(), 95);
}

TEST(Purchase, AnOperatorShopNeverRunsOutAndItsTakingsGoNowhere) {
    Stage stage;
    stage.writeshop(bob, {good("apple", 7, 1)}, nullptr, {{"isopshop", true}});
    Actor& alice = stage.join("Alice", ada).setmoney(100);
    buys(alice, "apple", "1");
    buys(alice, "apple", "1");
    EXPECT_EQ(alice.money(), 86);
    EXPECT_EQ(stage.money(bob), 0);
    const json shop = sold(stage);
    EXPECT_EQ(shop["items"][0]["shopitemleftnum"], 1);
    EXPECT_EQ(shop["sellcount"], 2);
    EXPECT_EQ(shop["salesvolume"], 14);
}

TEST(Purchase, TotalsAboveThirtyTwoBitsArePaidInFull) {
    Stage stage;
    stage.writeshop(bob, {good("apple", 2000000000, 10)});
    Actor& alice = stage.join("Alice", ada).setmoney(7000000000);
    buys(alice, "apple", "3");
    EXPECT_EQ(alice.money(), 1000000000);
    EXPECT_EQ(stage.money(bob), 6000000000);
    EXPECT_EQ(sold(stage)["salesvolume"], static_cast<std::int32_t>(6000000000U & 0xffffffffU));
}

TEST(Purchase, TheLastPieceLeavesASoldOutRowThatNoListShows) {
    Stage stage;
    stage.writeshop(bob, {good("apple", 7, 2), good("bread", 1, 1)});
    Actor& alice = stage.join("Alice", ada).setmoney(100);
    buys(alice, "apple", "2");
    EXPECT_EQ(sold(stage)["items"][0]["shopitemleftnum"], 0);
    alice.dismisses().types("ordomart formmenu").presses("Selling shops (form)");
    EXPECT_EQ(alice.formtext().find("apple"), std::string::npos);
    EXPECT_NE(alice.formtext().find("bread"), std::string::npos);
}

TEST(Purchase, AnItemOfAnAddOnThatIsGone) {
    Stage stage;
    json gone = good("{Count:1b,Damage:0s,Name:\"addon:gem\",WasPickedUp:0b}", 7, 5, "Gem");
    stage.writeshop(bob, {gone, good("bread", 1, 1)});
    Actor& alice = stage.join("Alice", ada).setmoney(100);
    picks(alice, "Gem");
    EXPECT_NE(alice.chat().find("maybe your shopping item is from a mod that not installed in your server"),
              std::string::npos);
    EXPECT_EQ(sold(stage)["items"].size(), 2U);
}

TEST(Purchase, DiscountsAreShownAndPaid) {
    constexpr std::int64_t later = 4102444800;
    const auto discounts = [&](std::vector<std::string> texts) {
        json all = json::array();
        for (const std::string& text : texts)
            all.push_back({{"shopitemtag", "apple"}, {"discount", text}, {"timestart", 0}, {"timeend", later}});
        return all;
    };
    struct Case {
        std::vector<std::string> texts;
        int paid;
    };
    const Case cases[] = {{{"-30", "%50"}, 35}, {{"%50", "-30"}, 20}, {{"%0"}, 0},   {{"-500"}, 0},
                          {{"%150"}, 150},      {{"80"}, 100},        {{"%33"}, 33}, {{"x10"}, 90}};
    for (const Case& one : cases) {
        SCOPED_TRACE(one.texts.front());
        Stage stage;
        stage.writeshop(bob, {good("apple", 100, 5)}, nullptr, {{"shopdiscount", discounts(one.texts)}});
        Actor& alice = stage.join("Alice", ada).setmoney(1000);
        alice.types("ordomart formmenu").presses("Selling shops (form)");
        const std::string price =
            one.paid == 100 ? "   §f§r§e100 LLmoney" : fmt::format("   §f§r§7100§l-> §r§e{} LLmoney", one.paid);
        EXPECT_NE(alice.formtext().find(price), std::string::npos) << alice.formtext();
        alice.presses("apple");
        EXPECT_EQ(alice.formtext().find("saleornot") != std::string::npos, one.paid != 100);
        alice.fills({{"quantity", "1"}});
        EXPECT_EQ(alice.money(), 1000 - one.paid);
    }
}

TEST(Purchase, ThePriceSeenIsThePricePaidEvenWhenTheDiscountEndsMeanwhile) {
    Stage stage;
    const std::int64_t ends = 1767225600 + 60;  // a minute behind the start of the manual clock
    stage.writeshop(
        bob, {good("apple", 100, 5)}, nullptr,
        {{"shopdiscount", {{{"shopitemtag", "apple"}, {"discount", "-40"}, {"timestart", 0}, {"timeend", ends}}}}});
    Actor& alice = stage.join("Alice", ada).setmoney(1000);
    picks(alice, "apple");
    stage.advance(61000);
    alice.fills({{"quantity", "1"}});
    EXPECT_EQ(alice.money(), 940);
    buys(alice, "apple", "1");
    EXPECT_EQ(alice.money(), 840);
}

TEST(Purchase, TaxIsTakenFromEveryTransfer) {
    struct Case {
        int tax, price;
        std::int64_t paid, received;
    };
    const Case cases[] = {{0, 1000, 1000, 1000}, {5, 1000, 1000, 950}, {5, 10, 10, 9}, {44, 100, 100, 56}};
    for (const Case& one : cases) {
        SCOPED_TRACE(fmt::format("{} percent of {}", one.tax, one.price));
        for (const bool llmoney : {true, false}) {
            Stage stage({.config = {{"tax", one.tax}}, .llmoney = llmoney});
            stage.writeshop(bob, {good("apple", one.price, 5)});
            Actor& alice = stage.join("Alice", ada).setmoney(5000);
            Actor& owner = stage.join("Bob", bob).setmoney(0);
            buys(alice, "apple", "1");
            EXPECT_EQ(alice.money(), 5000 - one.paid);
            EXPECT_EQ(owner.money(), one.received);
        }
    }
}

TEST(Purchase, InScoreboardModeAnAbsentOwnersMoneyWaitsForHim) {
    Stage stage({.llmoney = false});
    stage.writeshop(bob, {good("apple", 7, 10)});
    Actor& alice = stage.join("Alice", ada).setmoney(100);
    buys(alice, "apple", "3");
    EXPECT_NE(stage.log().find("failed to find LLmoney.dll"), std::string::npos);
    EXPECT_EQ(alice.money(), 79);
    EXPECT_EQ(stage.score("a" + bob, "helpermoney"), 21);
    EXPECT_NE(stage.file("plugins/Ordomart/simpletrade.log")
                  .find(fmt::format("{} pay 21coins to {},note:buy item :Apple*3", ada, bob)),
              std::string::npos);

    Actor& owner = stage.join("Bob", bob);
    owner.types("ordomart getoffscores");
    EXPECT_NE(owner.chat().find("yes:21"), std::string::npos) << owner.chat();
    EXPECT_EQ(owner.toasts(), "yes: + §a21 §rcoins");
    EXPECT_EQ(owner.money(), 21);
    owner.forgets().types("ordomart getoffscores");
    EXPECT_NE(owner.chat().find("No:0"), std::string::npos);
    EXPECT_EQ(owner.money(), 21);
}

TEST(Purchase, ARestartBetweenTwoPurchasesLosesNothing) {
    Stage stage;
    stage.writeshop(bob, {good("apple", 7, 10)});
    buys(stage.join("Alice", ada).setmoney(100), "apple", "3");
    stage.restart();  // at once: nothing has been saved by the clock
    Actor& alice = stage.join("Alice", ada);
    EXPECT_EQ(alice.money(), 79);
    EXPECT_EQ(alice.has(0), "minecraft:apple*3");
    buys(alice, "apple", "2");
    EXPECT_EQ(alice.has(0), "minecraft:apple*5");
    const json shop = sold(stage);
    EXPECT_EQ(shop["items"][0]["shopitemleftnum"], 5);
    EXPECT_EQ(shop["sellcount"], 5);
}

TEST(Purchase, PagesOfTwentySixAndAnEmptyLastOne) {
    Stage stage;
    json goods = json::array();
    for (int i = 0; i < 52; ++i) goods.push_back(good("apple", 1, 5, fmt::format("Apple number {:02}.", i)));
    stage.writeshop(bob, goods);
    Actor& alice = stage.join("Alice", ada).setmoney(100);
    alice.types("ordomart formmenu").presses("Selling shops (form)");
    EXPECT_EQ(alice.form()["buttons"].size(), 27U);
    alice.presses("Next page");
    EXPECT_EQ(alice.form()["buttons"].size(), 28U);
    EXPECT_NE(alice.formtext().find("Current page 2. There are 3 pages in total, and 52 items"), std::string::npos);
    alice.presses("number 51.");
    alice.answers(nullptr);  // back to the same page
    EXPECT_NE(alice.formtext().find("Current page 2."), std::string::npos);
    alice.presses("Next page");
    EXPECT_EQ(alice.form()["buttons"].size(), 1U);
    alice.presses("Last page").presses("Last page");
    EXPECT_NE(alice.formtext().find("Current page 1."), std::string::npos);
    alice.presses("number 25.").fills({{"quantity", "1"}});
    EXPECT_EQ(alice.has(0), "minecraft:apple*1");
}
