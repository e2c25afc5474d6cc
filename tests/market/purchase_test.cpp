// The road of one purchase, and everything that can stop it.
#include <fmt/format.h>
#include <gmock/gmock.h>

#include "platform/form.h"
#include "tests/stage/stage.h"

using namespace stage;

namespace {

const std::string ada = "2535400000000001", bob = "2535400000000002", cid = "2535400000000003";
const std::string changed = "Operation failed, shopinfo has been changed";

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

// The dialog speaks the reader's language, its message and the log the owner's, and the item's name is the reader's.
TEST(Purchase, ReaderAndOwnerOfTwoLanguages) {
    const struct {
        const char *reader, *owner, *list, *quantity, *title, *message, *logged;
    } cases[] = {{"zh_CN", "en_US", "出售商店(表单)", "数量", "购买物品成功！",
                  "Player Lin paid 14 for 苹果*2 from Bob.", "paid 14 for apple(minecraft:apple:0) * 2 from Bob."},
                 {"en_US", "zh_CN", "Selling shops (form)", "quantity", "purchase successfully!",
                  "玩家Lin花费14从Bob买走了Apple*2", "玩家Lin花费14从Bob买走了apple(minecraft:apple:0) * 2"}};
    for (const auto& c : cases) {
        Stage stage;
        stage.writeshop(bob, {good("apple", 7, 10)}, nullptr, {{"ownerlang", c.owner}, {"shopname", "Bob"}});
        Actor& lin = stage.join("Lin", ada, c.reader).setmoney(100);
        lin.types("ordomart formmenu").presses(c.list).presses("apple");
        lin.fills({{c.quantity, "2"}});
        EXPECT_EQ(lin.form()["title"], c.title);
        EXPECT_EQ(lin.form()["content"], c.message);
        const auto log = stage.file("plugins/Ordomart/log/" + bob + ".log");
        EXPECT_NE(log.find(c.logged), std::string::npos) << log;
    }
}

TEST(Purchase, WhatCannotBeBoughtLeavesEverythingAsItWas) {
    Stage stage;
    const json gone = good("{Count:1b,Damage:0s,Name:\"addon:gem\",WasPickedUp:0b}", 7, 5, "Gem");
    stage.writeshop(bob, {good("apple", 7, 10), gone});
    Actor& alice = stage.join("Alice", ada);
    const auto before = stage.file("plugins/Ordomart/data/" + bob + ".json");
    const auto unchanged = [&](const char* told, std::int64_t money) {
        EXPECT_EQ(alice.chat(), told);
        EXPECT_TRUE(alice.form().is_null());
        EXPECT_EQ(alice.money(), money);
        EXPECT_EQ(alice.counts("minecraft:apple"), 0);
    };
    const char* const wrong = "Wrong input value, please re-enter!";
    const struct {
        const char* quantity;
        std::int64_t money;
        const char* told;
    } cases[] = {{"0", 1000, wrong},
                 {"-1", 1000, wrong},
                 {"", 1000, wrong},
                 {"many", 1000, wrong},
                 {"11", 1000, wrong},
                 {"99999999999999999999", 1000, wrong},
                 {"3", 20, "not engough money!"}};
    for (const auto& one : cases) {
        SCOPED_TRACE(one.quantity);
        alice.setmoney(one.money);
        picks(alice, "apple");
        alice.forgets().fills({{"quantity", one.quantity}});
        unchanged(one.told, one.money);
    }
    // The dead at each dialogue on the way: the menu, the list, the form.
    const std::function<void()> steps[] = {[&] { alice.presses("Selling shops (form)"); },
                                           [&] { alice.presses("apple"); },
                                           [&] {
                                               alice.fills({{"quantity", "1"}});
                                           }};
    for (std::size_t died = 0; died < std::size(steps); ++died) {
        alice.revives().dismisses().types("ordomart formmenu");
        for (std::size_t step = 0; step < died; ++step) steps[step]();
        alice.forgets().dies();
        steps[died]();
        unchanged("Dead people don't have permission to perform any operations!", 20);
    }
    picks(alice.revives().forgets(), "Gem");
    unchanged("catch checkrawitemvalid error: maybe your shopping item is from a mod that not installed in your server",
              20);
    stage.seconds(4);
    EXPECT_EQ(stage.file("plugins/Ordomart/data/" + bob + ".json"), before);

    alice.setmoney(100);
    buys(alice, "apple", " 4 apples");
    EXPECT_EQ(alice.has(0), "minecraft:apple*4") << "typed digits count up to the first letter";
    alice.forgets().dies().presses("Continue");
    EXPECT_TRUE(alice.form().is_null() && alice.chat().starts_with("Dead people")) << "in the result, too";
}

TEST(Purchase, AnOldFormAndAnOldListAreTurnedAway) {
    Stage stage;
    stage.writeshop(bob, {good("apple", 7, 10)});
    Actor& alice = stage.join("Alice", ada).setmoney(100);
    Actor& carl = stage.join("Carl", cid).setmoney(100);
    picks(alice, "apple");
    picks(carl, "apple");
    alice.fills({{"quantity", "1"}});
    carl.fills({{"quantity", "1"}});
    EXPECT_EQ(carl.chat(), changed);
    EXPECT_EQ(carl.money(), 100);
    EXPECT_EQ(sold(stage)["items"][0]["shopitemleftnum"], 9);
    carl.forgets();
    buys(carl, "apple", "2");
    EXPECT_EQ(carl.has(0), "minecraft:apple*2");

    alice.dismisses().types("ordomart formmenu").presses("Selling shops (form)");
    buys(carl, "apple", "1");
    alice.presses("apple");
    EXPECT_EQ(alice.chat(), changed);
    EXPECT_TRUE(alice.form().is_null());
    // A search that finds nothing has emptied the list behind the form.
    alice.types("ordomart formmenu").presses("Selling shops (form)").forgets().types("ordomart search sell nothing");
    stage.ticks(6);
    alice.presses("apple");
    EXPECT_EQ(alice.chat(), "");
    EXPECT_TRUE(alice.form().is_null());
    EXPECT_NE(stage.log().find("[Ordomart][error] wrong castindex"), std::string::npos);
}

// Where there is a tax it is on a gift, too: that fee is the buyer's, if he has a coin, and any other the owner's.
TEST(Purchase, GoodsForNothingAndTheWayOutOfTheResult) {
    for (const int tax : {0, 5}) {
        Stage stage({.config = {{"tax", tax}}});
        stage.writeshop(bob, {good("apple", 0, 10), good("bread", 1000, 1)});
        Actor& alice = stage.join("Alice", ada).setmoney(0);
        for (const json& out : {json(false), json(nullptr)}) {  // "Exit", and closed
            buys(alice, "apple", "2");
            EXPECT_EQ(alice.form()["title"], "purchase successfully!");
            alice.answers(out);
            EXPECT_EQ(alice.form()["buttons"].size(), 15U) << "the large menu, also for who came from the small one";
        }
        EXPECT_EQ(alice.has(0), "minecraft:apple*4");
        buys(alice.setmoney(10), "apple", "1");
        EXPECT_EQ(alice.money(), tax == 0 ? 10 : 9);
        EXPECT_EQ(stage.money(bob), 0);
        buys(alice.setmoney(1000), "bread", "1");
        EXPECT_EQ(alice.money(), 0);
        EXPECT_EQ(stage.money(bob), tax == 0 ? 1000 : 950);
    }
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

// Two thousand stacks of sixteen; what finds no room lies on the ground, where no piece of them is lost.
TEST(Purchase, NoMoreIsHandedOverAtOnceThanAWorldKeeps) {
    Stage stage;
    const std::string toomany = "That is more than can be handed over at once. Take a smaller number at a time.";
    stage.writeshop(bob, {good("ender_pearl", 0, 100000)});
    Actor& alice = stage.join("Alice", ada).setmoney(100);
    Actor& owner = stage.join("Bob", bob);
    buys(alice, "ender_pearl", "32001");
    EXPECT_THAT(alice.chat(), testing::HasSubstr(toomany));
    owner.types("ordomart formmenu").presses("My shop (form)").presses("Adjust items on sale").presses("ender_pearl");
    owner.fills({{"Quantity", 0}});
    EXPECT_THAT(owner.toasts(), testing::HasSubstr(toomany));
    EXPECT_EQ(stage.shopfile(bob)["sell"]["items"][0]["shopitemleftnum"], 100000);
    EXPECT_EQ(alice.counts("minecraft:ender_pearl") + owner.counts("minecraft:ender_pearl"), 0);

    buys(alice.dismisses(), "ender_pearl", "32000");
    int pieces = alice.counts("minecraft:ender_pearl");
    stage.onserver([&] {
        for (const auto& item : stage.server().world().droppeditems()) pieces += item.stack.getCount();
    });
    EXPECT_EQ(pieces, 32000);
}

TEST(Purchase, WhatMovesAndWhatIsCounted) {
    const struct {
        const char* owner;
        bool isop;
        int price, stock, quantity;
        std::int64_t paid, received;
        int left, volume;
    } cases[] = {
        {"last", false, 7, 2, 2, 14, 14, 0, 14},
        {"op", true, 7, 1, 1, 7, 0, 1, 7},
        {"dear", false, 2000000000, 10, 3, 6000000000, 6000000000, 7, 1705032704},  // the counter wraps, no money does
    };
    Stage stage;
    Actor& alice = stage.join("Alice", ada);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.owner);
        stage.writeshop(c.owner, good("apple", c.price, c.stock, c.owner), nullptr,
                        {{"isopshop", c.isop}, {"shopname", c.owner}});
        for (int time = 1; time <= (c.isop ? 2 : 1); ++time) {
            buys(alice.setmoney(7000000000), c.owner, std::to_string(c.quantity));
            EXPECT_EQ(alice.form()["content"],
                      fmt::format("Player Alice paid {} for Apple*{} from {}.", c.paid, c.quantity, c.owner));
            EXPECT_EQ(alice.money(), 7000000000 - c.paid);
            EXPECT_EQ(stage.money(c.owner), c.received);
            const json shop = sold(stage, c.owner);
            EXPECT_EQ(shop["items"][0]["shopitemleftnum"], c.left);
            EXPECT_EQ(shop["sellcount"], c.quantity * time);
            EXPECT_EQ(shop["salesvolume"], c.volume * time);
            const auto log = stage.file(fmt::format("plugins/Ordomart/log/{}.log", c.owner));
            EXPECT_NE(log.find(fmt::format("paid {} for {}(", c.paid, c.owner)), std::string::npos) << log;
        }
    }
    alice.dismisses().types("ordomart formmenu").presses("Selling shops (form)");
    EXPECT_EQ(alice.formtext().find("last"), std::string::npos) << "a sold-out row is in no list";
}

TEST(Purchase, DiscountsAreShownAndPaid) {
    const struct {
        std::vector<std::string> texts;
        int paid;
    } cases[] = {{{"-30", "%50"}, 35}, {{"%50", "-30"}, 20}, {{"%0"}, 0},   {{"-500"}, 0},
                 {{"%150"}, 150},      {{"80"}, 100},        {{"%33"}, 33}, {{"x10"}, 90}};
    Stage stage;
    Actor& alice = stage.join("Alice", ada);
    for (const auto& c : cases) {
        const auto owner = "owner" + c.texts.front() + "of" + std::to_string(c.texts.size());
        SCOPED_TRACE(owner);
        json discounts = json::array();
        for (const auto& text : c.texts)
            discounts.push_back(
                {{"shopitemtag", "apple"}, {"discount", text}, {"timestart", 0}, {"timeend", 4102444800}});
        stage.writeshop(owner, {good("apple", 100, 5, owner)}, nullptr, {{"shopdiscount", discounts}});
        alice.setmoney(1000).dismisses().types("ordomart formmenu").presses("Selling shops (form)");
        const auto price = c.paid == 100 ? "§f§r§e100 LLmoney" : fmt::format("§f§r§7100§l-> §r§e{} LLmoney", c.paid);
        EXPECT_NE(alice.formtext().find(owner + "§r§f(§aApple§f)\n§f§rIn stock:5   " + price), std::string::npos)
            << alice.formtext();
        alice.presses(owner);
        EXPECT_EQ(alice.formtext().find("saleornot") != std::string::npos, c.paid != 100);
        alice.fills({{"quantity", "1"}});
        EXPECT_EQ(alice.money(), 1000 - c.paid);
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
