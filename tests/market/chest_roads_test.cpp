// Whole roads by clicks: from the main menu to a trade and back to the view, for either kind of client and in either
// language; and the failures on the way, which in a chest are toasts.
#include "platform/text.h"
#include "tests/market/chest_stage.h"

using namespace chest;

namespace {

struct texts {
    const char* language;
    const char *buy, *instock, *buytitle, *quantity, *bought;
    const char *recycle, *stillwanted, *selltitle, *slot;
    const char *sign, *unit, *item;
};
constexpr texts english{"en_US",
                        "Buy",
                        "In stock",
                        "Purchase goods",
                        "Enter the quantity to buy",
                        "purchase successfully!",
                        "Recycle",
                        "Still wanted",
                        "Sell items",
                        "Slot No.",
                        "Choose an item or a button to manage the shop",
                        "one",
                        "Apple"};
constexpr texts chinese{"zh_CN",
                        "购买商品",
                        "剩余数量",
                        "选购商品",
                        "输入购买数量",
                        "购买物品成功！",
                        "回收物品",
                        "剩余需求数量",
                        "出售物品",
                        "格子",
                        "选择一个商品或按钮来管理商店",
                        "个",
                        "苹果"};

struct Reader {
    const texts& read;
    int device;
};
constexpr Reader readers[] = {{english, desktop}, {english, touch}, {chinese, desktop}, {chinese, touch}};

bool holds(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

// The main menu, one of its first two items, the good or commission in the first place.
void choosesfirst(Stage& stage, Actor& alice, int item, const Reader& reader) {
    opens(stage, alice, "ordomart ordomenu");
    EXPECT_EQ(named(alice, armorid, item), item == 0 ? reader.read.buy : reader.read.recycle);
    alice.clicks(ContainerName::armor, item);
    EXPECT_EQ(named(alice, uiid, 0), reader.device == touch ? reader.read.sign : "");
    EXPECT_TRUE(holds(lore(alice, inventoryid, 9), item == 0 ? reader.read.instock : reader.read.stillwanted));
    alice.clicks(ContainerName::inventory, 9);
    EXPECT_FALSE(alice.menuopen());
    EXPECT_EQ(alice.shown(inventoryid, 9), "minecraft:stone*3") << "the real stacks are back";
    EXPECT_EQ(alice.shown(uiid, 0) + alice.shown(offhandid, 0), "");
    rests(stage);
}

}  // namespace

TEST(ChestRoads, APurchase) {
    for (const auto& reader : readers) {
        SCOPED_TRACE(std::string(reader.read.language) + (reader.device == touch ? " touch" : " desktop"));
        Stage stage({.slotupdates = false});
        stage.writeshop(bob, {good("apple", 7, 10, "My apple")}, nullptr, {{"shopname", "Bob's"}});
        Actor& alice = stage.join("Alice", ada, reader.read.language, reader.device).setmoney(100).gives(9, "stone", 3);
        choosesfirst(stage, alice, 0, reader);
        EXPECT_EQ(alice.form()["title"], reader.read.buytitle);
        EXPECT_TRUE(holds(alice.formtext(), fmt::format("§f§r§e7 LLmoney/{}§f§r\n", reader.read.unit)));
        stage.onserver([] { EXPECT_EQ(platform::I18n::currentlanguage(), "en_US") << "after a hover text"; });
        alice.fills({{reader.read.quantity, "2"}});
        EXPECT_EQ(alice.shown(inventoryid, 0), "minecraft:apple*2");
        stage.ticks(6);
        EXPECT_EQ(alice.money(), 86);
        EXPECT_EQ(stage.money(bob), 14);
        EXPECT_EQ(alice.has(0), "minecraft:apple*2");
        EXPECT_EQ(alice.chat(), reader.read.bought);
        EXPECT_EQ(alice.toasts(), "Bob's: - §b14 §rLLmoney");
        EXPECT_EQ(alice.sounds(),
                  (std::vector<std::string>{"random.click", "mob.villager.haggle", "mob.villager.yes"}));
        EXPECT_TRUE(alice.menuopen());
        EXPECT_TRUE(holds(lore(alice, inventoryid, 9), fmt::format("§f§r{}:§68", reader.read.instock)));
        alice.closes();
        EXPECT_EQ(alice.shown(inventoryid, 0), "minecraft:apple*2");
        EXPECT_EQ(alice.shown(uiid, 0), "");
    }
}

TEST(ChestRoads, ARecycleSale) {
    for (const auto& reader : readers) {
        SCOPED_TRACE(std::string(reader.read.language) + (reader.device == touch ? " touch" : " desktop"));
        Stage stage({.language = "zh_CN", .slotupdates = false});
        stage.writeshop(bob, nullptr, {commission("apple", 3, 20)}, json::object(), {{"shopname", "Bob's"}});
        Actor& alice = stage.join("Alice", ada, reader.read.language, reader.device);
        alice.gives(9, "stone", 3).gives(4, "apple", 5).gives(20, "apple", 2);
        choosesfirst(stage, alice, 1, reader);
        EXPECT_EQ(alice.form()["title"], reader.read.selltitle);
        EXPECT_TRUE(holds(alice.formtext(), reader.read.item)) << "in the reader's language";
        stage.onserver([] { EXPECT_EQ(platform::I18n::currentlanguage(), "zh_CN") << "and again in the server's"; });
        alice.fills({{fmt::format("【§b{}20§r】", reader.read.slot), 1}});  // the other slider stands at all there is
        EXPECT_EQ(alice.shown(inventoryid, 4) + alice.shown(inventoryid, 20), "minecraft:apple*1");
        stage.ticks(6);
        EXPECT_EQ(alice.money(), 18);
        EXPECT_EQ(alice.has(4) + alice.has(20), "minecraft:apple*1");
        EXPECT_EQ(alice.chat(), "");
        EXPECT_EQ(alice.toasts(), "Bob's: + §a18 §rLLmoney");
        EXPECT_EQ(alice.sounds(),
                  (std::vector<std::string>{"random.click", "mob.villager.haggle", "mob.villager.yes"}));
        EXPECT_TRUE(holds(lore(alice, inventoryid, 9), fmt::format("§f§r{}:14", reader.read.stillwanted)));
        alice.closes();
        EXPECT_EQ(alice.shown(inventoryid, 20), "minecraft:apple*1");
    }
}

TEST(ChestRoads, AFailureIsAToastAndTheViewComesBack) {
    const struct {
        const char* quantity;  // null: the form is closed
        std::int64_t money;
        const char* toast;
    } cases[] = {{"0", 100, "SYSTEM: Wrong input value, please re-enter!"},
                 {"11", 100, "SYSTEM: Wrong input value, please re-enter!"},
                 {"2", 13, "SYSTEM: not engough money!"},
                 {nullptr, 100, ""}};
    for (const auto& each : cases) {
        SCOPED_TRACE(each.quantity != nullptr ? each.quantity : "closed");
        Stage stage;
        stage.writeshop(bob, {good("apple", 7, 10)});
        Actor& alice = stage.join("Alice", ada).setmoney(each.money);
        opens(stage, alice, "ordomart buy");
        alice.clicks(ContainerName::inventory, 9);
        rests(stage);
        if (each.quantity != nullptr)
            alice.fills({{"quantity", each.quantity}});
        else
            alice.answers(nullptr);
        stage.ticks(6);
        EXPECT_EQ(alice.toasts(), each.toast);
        EXPECT_EQ(alice.chat(), "");
        EXPECT_EQ(alice.money(), each.money);
        EXPECT_EQ(alice.shown(inventoryid, 9), "minecraft:apple*1");
    }
}

// Two forms of one shop are open when the first is answered; the language of the answer is the one of that moment.
TEST(ChestRoads, ASecondAnswerOnAnOldFormIsTurnedAway) {
    Stage stage;
    stage.writeshop(bob, {good("apple", 7, 10)}, {commission("stone", 3, 20)});
    Actor& alice = stage.join("Alice", ada).setmoney(100).gives(9, "stone", 8);
    Actor& lin = stage.join("Lin", "2535400000000004", "zh_CN").setmoney(100).gives(9, "stone", 8);
    for (const auto& [command, chosen] :
         {std::pair{"ordomart buy", json("1")}, std::pair{"ordomart recycle", json(1)}}) {
        SCOPED_TRACE(command);
        for (Actor* each : {&alice, &lin}) {
            opens(stage, *each, command);
            each->clicks(ContainerName::inventory, 9);
        }
        rests(stage);
        const bool buys = chosen.is_string();
        alice.fills({{buys ? "quantity" : "Quantity", chosen}});
        lin.forgets().fills({{buys ? "数量" : "格子", chosen}});
        stage.ticks(6);
        EXPECT_EQ(lin.toasts(), "SYSTEM: 操作失败，商店信息已变更");
        EXPECT_TRUE(lin.menuopen());
        EXPECT_EQ(lin.money(), 100);
        alice.closes();
        lin.closes();
        rests(stage);
    }
    EXPECT_EQ(lin.counts("minecraft:stone"), 8);
}

// Either has a menu of his own under the same id.
TEST(ChestRoads, TwoPlayersAtOnce) {
    Stage stage;
    stage.writeshop(bob, goods(30), {commission("stone", 3, 20)});
    Actor& alice = stage.join("Alice", ada).gives(9, "dirt", 2);
    Actor& lin = stage.join("Lin", "2535400000000004", "zh_CN", touch).gives(9, "stone", 8);
    alice.types("ordomart buy");
    lin.types("ordomart recycle");
    stage.ticks(6);
    int ids[2] = {};
    alice.look([&](client::ModelClient& c) { ids[0] = c.container()->id; });
    lin.look([&](client::ModelClient& c) { ids[1] = c.container()->id; });
    EXPECT_EQ(ids[0], ids[1]);

    alice.clicks(ContainerName::hotbar, 8);
    EXPECT_TRUE(holds(lore(alice, inventoryid, 9), "good 26"));
    EXPECT_TRUE(holds(lore(lin, inventoryid, 9), "§f§r剩余需求数量:20"));
    EXPECT_EQ(alice.shown(uiid, 0), "");
    EXPECT_NE(lin.shown(uiid, 0), "");
    lin.clicks(ContainerName::inventory, 9);
    EXPECT_FALSE(lin.menuopen());
    EXPECT_EQ(lin.form()["title"], "出售物品");
    EXPECT_TRUE(alice.form().is_null());
    lin.leaves();
    alice.clicks(ContainerName::inventory, 9);
    EXPECT_TRUE(holds(alice.formtext(), "good 26"));
    EXPECT_EQ(alice.shown(inventoryid, 9), "minecraft:dirt*2");
}
