// Publishing, adjusting and picking up: whose money and whose items move, and what refuses. The model is that of this
// program and not of the module beside it; the players, their inventories and scores are the server's.
#include <fmt/format.h>

#include <limits>

#include "platform/host.h"
#include "platform/level.h"
#include "plugin/economy/economymanager.h"
#include "plugin/shopsystem/runtimeshopmanager.h"
#include "plugin/trade/commissions.h"
#include "tests/market/faultymoney.h"
#include "tests/stage/stage.h"

using namespace shopsystem;
using namespace stage;

namespace {

// A player and an operator in scoreboard mode, and one shop after the other with whatever records.
struct Scene {
    Stage stage;
    ::stage::Actor& ada = stage.join("Ada", "2535400000000001");
    ::stage::Actor& olga = stage.join("Olga", "2535400000000009", "en_US", 7, 1);
    std::string owner;

    explicit Scene(std::function<void(platform::Host&)> adjust = {})
        : stage(Setting{.llmoney = false, .adjust = std::move(adjust)}) {
        ordomart::moneymode = 0;
    }
    ::stage::Actor& who(int permission) { return permission == 0 ? ada : olga; }
    // Owner keys are used once, since the cache outlives the stage.
    void opens(const std::string& key, const json& recycleitems, const json& extra = json::object()) {
        owner = key;
        stage.writeshop(owner, nullptr, recycleitems, json::object(), extra);
    }
    recycleshop& shop() { return globalruntimeshopmanager.getrecycleshop(owner); }
    ownerresult does(::stage::Actor& actor, const std::function<ownerresult(ServerPlayer*)>& operation) {
        ownerresult result;
        stage.onserver([&] { result = operation(platform::host().level->getPlayerByXuid(actor.xuid())); });
        return result;
    }
    json record() {
        json copy;
        stage.onserver([&] { copy = shop().recycleitems.at(0); });
        return copy;
    }
    std::uint32_t revision() {
        std::uint32_t now = 0;
        stage.onserver([&] { now = shop().revision; });
        return now;
    }
};

json records(int n) { return json::array_t(static_cast<std::size_t>(n), commission("apple", 1, 1)); }

std::string applestext(int count) { return fmt::format("{{Name:\"minecraft:apple\",Count:{}b}}", count); }

}  // namespace

TEST(Commissions, PublishingTakesDepositAndFee) {
    constexpr refusal ok = refusal::none;
    const json banned = {{"shopstate", {{"isbaned", true}, {"bantimeend", -1}}}};
    const json open = json::object();
    struct {
        const char* name;
        publishrules rules;
        int records;
        json shop;
        int permission, offer, count, money;
        refusal why;
        int needed, left;
    } const cases[] = {
        {"paid in advance", formpublish, 0, open, 0, 10, 5, 51, ok, 50, 1},
        {"one coin short", formpublish, 0, open, 0, 10, 5, 49, refusal::moneyshort, 50, 49},
        {"the last free record", chestslotpublish, 36, open, 0, 10, 5, 50, ok, 50, 0},
        {"with the fee", chestslotpublish, 37, open, 0, 10, 5, 550, ok, 550, 0},
        {"fee, not the deposit", formpublish, 37, open, 0, 10, 5, 549, refusal::moneyshort, 550, 549},
        {"not the fee", formpublish, 37, open, 0, 10, 5, 499, refusal::feeshort, 500, 499},
        {"operators are free", formpublish, 37, open, 1, 10, 5, 0, ok, 0, 0},
        {"ban before fee", chestslotpublish, 37, banned, 0, 10, 5, 0, refusal::banned, 0, 0},
        {"fee before ban", chestcreativepublish, 37, banned, 0, 10, 5, 0, refusal::feeshort, 500, 0},
        {"ban behind the fee", chestcreativepublish, 37, banned, 0, 10, 5, 500, refusal::banned, 0, 500},
        {"for nothing", chestslotpublish, 0, open, 0, 0, 5, 0, ok, 0, 0},
        {"no count in the chest", chestslotpublish, 0, open, 0, 10, 0, 90, refusal::badnumbers, 0, 90},
        {"no count in the form", formpublish, 0, open, 0, 10, 0, 90, refusal::badnumbers, 0, 90},
        {"a count below none", formpublish, 0, open, 0, 10, -3, 90, refusal::badnumbers, 0, 90},
        {"nor in the chest", chestcreativepublish, 0, open, 0, 10, -3, 90, refusal::badnumbers, 0, 90},
        {"nor an operator's", formpublish, 0, open, 1, 10, -3, 0, refusal::badnumbers, 0, 0},
        {"offer too high", formpublish, 0, open, 0, 100000000, 0, 90, refusal::badnumbers, 0, 90},
        {"offer below none", formpublish, 0, open, 0, -1, 1, 90, refusal::badnumbers, 0, 90},
        {"count too high", formpublish, 0, open, 0, 0, 1000000000, 90, refusal::badnumbers, 0, 90},
    };
    Scene scene;
    for (const auto& c : cases) {
        scene.opens(std::string("publish ") + c.name, c.records == 0 ? json() : records(c.records), c.shop);
        auto& who = scene.who(c.permission).setmoney(c.money);
        const auto before = scene.stage.file("plugins/Ordomart/simpletrade.log").size();
        const recycleshopitem wanted{.recycleitemname = "wish",
                                     .itemnbt = "{}",
                                     .recycleitemleftwanna = c.count,
                                     .nowhasrecyclenum = 9,
                                     .offer = c.offer};
        const auto result = scene.does(
            who, [&](ServerPlayer* player) { return publishcommission(player, scene.owner, wanted, c.rules); });
        EXPECT_EQ(result.why, c.why) << c.name;
        EXPECT_EQ(result.needed, c.needed) << c.name;
        EXPECT_EQ(result.charged, c.why == ok ? c.needed : 0) << c.name;
        EXPECT_EQ(who.money(), c.left) << c.name;
        EXPECT_EQ(scene.revision(), c.why == ok ? 1 : 0) << c.name;
        scene.stage.onserver([&] {
            const auto& items = scene.shop().recycleitems;
            ASSERT_EQ(items.size(), static_cast<std::size_t>(c.records + (c.why == ok ? 1 : 0))) << c.name;
            if (c.why == ok) {
                EXPECT_EQ(items.back()["nowhasrecyclenum"], 0) << c.name;
            }
        });
        const auto lines = scene.stage.file("plugins/Ordomart/simpletrade.log").substr(before);
        const bool paid = c.why == ok && c.permission == 0;
        EXPECT_EQ(lines.find("to SYSTEM,note:pay for upload recycleitem") != std::string::npos, paid) << c.name;
        EXPECT_EQ(lines.find("to SYSTEM,note:pay for extraslot") != std::string::npos, paid) << c.name;
    }

    // A fee of nothing is still one that he who owes money cannot pay.
    const auto usual = std::exchange(ordomart::extraslotcost, 0);
    scene.opens("publish in debt", records(37));
    scene.ada.setmoney(-1);
    const auto result = scene.does(
        scene.ada, [&](ServerPlayer* player) { return publishcommission(player, scene.owner, {}, formpublish); });
    EXPECT_EQ(result.why, refusal::feeshort);
    ordomart::extraslotcost = usual;
}

TEST(Commissions, SumsAboveThirtyTwoBits) {
    constexpr std::int64_t all = 99999999LL * 999999999;
    Stage stage;
    ::stage::Actor& ada = stage.join("Ada", "2535400000000001").setmoney(all + 7);
    stage.writeshop("above", nullptr);
    recycleshopitem wish{.recycleitemname = "wish",
                         .itemnbt = snbt("apple"),
                         .recycleitemleftwanna = 999999999,
                         .offer = 99999999,
                         .allowbesearched = true};
    const auto does = [&](auto operation) {
        stage.onserver([&] {
            ordomart::moneymode = 1;
            ordomart::bindeconomy();
            operation(platform::host().level->getPlayerByXuid(ada.xuid()));
        });
    };
    does([&](ServerPlayer* player) { EXPECT_EQ(publishcommission(player, "above", wish, formpublish).charged, all); });
    EXPECT_EQ(ada.money(), 7);
    EXPECT_NE(stage.file("plugins/Ordomart/simpletrade.log").find(fmt::format("pay {}LLmoney to SYSTEM", all)),
              std::string::npos);
    does([&](ServerPlayer* player) {
        auto& shop = globalruntimeshopmanager.getrecycleshop("above");
        player->getSupplies().setItem(3, platform::ItemStack::create("apple", 64));
        const auto taken = takeinitems(player, shop, 0, shop.getrecycleitem(0), {{3, 64}}, {64});
        EXPECT_EQ(taken.received, 64 * 99999999LL);
        EXPECT_EQ(shop.recyclecost, static_cast<std::int32_t>(64 * 99999999LL)) << "the counter wraps";
    });
    EXPECT_EQ(ada.money(), 7 + 64 * 99999999LL);
    EXPECT_NE(stage.file("plugins/Ordomart/log/above.relog").find("Player Ada gain 6399999936 for"), std::string::npos);
    wish.recycleitemleftwanna = 0;
    does([&](ServerPlayer* player) {
        EXPECT_EQ(adjustcommission(player, "above", 0, globalruntimeshopmanager.getrecycleshop("above").revision, wish)
                      .received,
                  all - 64 * 99999999LL);
    });
    EXPECT_EQ(ada.money(), all + 7);
}

TEST(Commissions, AdjustingMovesTheDifference) {
    constexpr refusal ok = refusal::none;
    struct {
        const char* name;
        int permission, offer, count, money, revision;
        refusal why;
        int left;
        bool ended;
    } const cases[] = {
        {"fewer", 0, 10, 3, 0, 0, ok, 20, false},
        {"dearer", 0, 20, 5, 50, 0, ok, 0, false},
        {"dearer than he can pay", 0, 20, 5, 49, 0, refusal::moneyshort, 49, false},
        {"the same in other words", 0, 5, 10, 0, 0, ok, 0, false},
        {"none", 0, 10, 0, 0, 0, ok, 50, true},
        {"below none", 0, 10, -3, 0, 0, ok, 50, true},
        {"an operator", 1, 20, 5, 0, 0, ok, 0, false},
        {"offer too high", 0, 100000000, 5, 0, 0, refusal::badnumbers, 0, false},
        {"count too high, told before the rest", 0, 1, 1000000000, 0, 9, refusal::badnumbers, 0, false},
        {"an old form", 0, 10, 3, 0, 9, refusal::shopchanged, 0, false},
    };
    Scene scene;
    for (const auto& c : cases) {
        json before = commission("apple", 10, 5, "old");
        before["nowhasrecyclenum"] = 3;
        before["recycleditemnbtlist"] = {applestext(3)};
        scene.opens(std::string("adjust ") + c.name, before);
        auto& who = scene.who(c.permission).setmoney(c.money);
        const int apples = who.counts("minecraft:apple");
        const recycleshopitem form{.recycleitemname = "new",
                                   .itemnbt = "not this",
                                   .recycleitemleftwanna = c.count,
                                   .offer = c.offer,
                                   .filterench = true};
        const auto result = scene.does(who, [&](ServerPlayer* player) {
            return adjustcommission(player, scene.owner, 0, static_cast<std::uint32_t>(c.revision), form);
        });
        EXPECT_EQ(result.why, c.why) << c.name;
        EXPECT_EQ(who.money(), c.left) << c.name;
        EXPECT_EQ(result.received - result.charged, c.left - c.money) << c.name;
        EXPECT_EQ(result.ended, c.ended) << c.name;
        EXPECT_EQ(who.counts("minecraft:apple") - apples, c.ended ? 3 : 0) << c.name;
        if (c.ended) {
            EXPECT_EQ(result.name + std::to_string(result.pieces), "old3") << c.name;
            scene.stage.onserver([&] { EXPECT_TRUE(scene.shop().recycleitems.empty()) << c.name; });
            continue;
        }
        json after = before;
        if (c.why == ok)
            after.update({{"recycleitemname", "new"},
                          {"recycleitemtag", ""},
                          {"recycleitemleftwanna", c.count},
                          {"offer", c.offer},
                          {"allowbesearched", false},
                          {"filterench", true}});
        // What an operator has added nobody has paid.
        if (c.name == std::string("an operator")) after["sponsored"] = 50;
        EXPECT_EQ(scene.record(), after) << c.name;
    }
}

// What this server cannot make stays in the record, whatever is done; the rest is handed over whole.
TEST(Commissions, WhatCannotBeHandedOverStays) {
    const std::string gone = "{Name:\"addon:gone\",Count:3b}", torn = "{Name:\"minecraft:apple\",Cou";
    const auto apples = [](const char* count) { return fmt::format("{{Name:\"minecraft:apple\",Count:{}}}", count); };
    using List = std::vector<std::string>;
    const struct {
        const char* name;
        List stored;
        int counted;  // nowhasrecyclenum
        int given;
        List kept;
        int left;  // nowhasrecyclenum behind it
    } cases[] = {
        {"all of it", {apples("64b"), apples("5b")}, 69, 69, {}, 0},
        {"nothing", {}, 0, 0, {}, 0},
        {"not what is gone", {apples("64b"), gone, apples("5b")}, 72, 69, {gone}, 3},
        {"not what cannot be read", {torn, apples("5b")}, 9, 5, {torn}, 4},
        {"neither", {gone, torn, apples("1b")}, 8, 1, {gone, torn}, 7},
        {"a torn text that was not counted", {gone, torn, apples("1b")}, 4, 1, {gone, torn}, 3},
        {"a wrong count is put right", {gone, apples("1b")}, 90, 1, {gone}, 3},
        {"above a byte's sign", {apples("-56b")}, 200, 200, {}, 0},
        {"above a byte", {apples("300s"), apples("400"), apples("500l")}, 1200, 1200, {}, 0},
        {"without a count", {"{Name:\"minecraft:apple\"}", apples("0b"), apples("-5")}, 1, 1, {}, 0},
    };
    Scene scene;
    for (const bool ending : {false, true})
        for (const auto& c : cases) {
            SCOPED_TRACE(fmt::format("{}, {}", c.name, ending ? "ended" : "picked up"));
            json full = commission("apple", 10, 2, "old");
            full["nowhasrecyclenum"] = c.counted;
            full["recycleditemnbtlist"] = c.stored;
            scene.opens(fmt::format("store {} {}", c.name, ending), full);
            for (int slot = 0; slot < 36; ++slot) scene.ada.loses(slot);
            scene.ada.setmoney(0).forgets();
            const auto result = scene.does(scene.ada, [&](ServerPlayer* player) {
                return ending ? adjustcommission(player, scene.owner, 0, 0, {.recycleitemleftwanna = 0})
                              : pickupcommission(player, scene.owner, 0, 0);
            });
            EXPECT_TRUE(result.ok());
            EXPECT_EQ(result.pieces, c.given);
            EXPECT_EQ(scene.ada.counts("minecraft:apple"), c.given);
            EXPECT_EQ(result.keptstacks, static_cast<std::int64_t>(c.kept.size()));
            EXPECT_EQ(scene.ada.chat(), c.kept.empty() ? ""
                                                       : fmt::format("Stored stacks that cannot be handed out on this "
                                                                     "server stay in the commission: {}.",
                                                                     c.kept.size()));
            EXPECT_EQ(scene.ada.money(), ending ? 20 : 0);
            EXPECT_EQ(scene.revision(), 1);
            EXPECT_EQ(result.ended, ending && c.kept.empty());
            if (result.ended) continue;
            full.update({{"nowhasrecyclenum", c.left}, {"recycleditemnbtlist", c.kept}});
            if (ending) full["recycleitemleftwanna"] = 0;
            EXPECT_EQ(scene.record(), full);
        }
    const auto picks = [&](int index, std::uint32_t revision) {
        return scene.does(scene.ada,
                          [&](ServerPlayer* player) { return pickupcommission(player, scene.owner, index, revision); });
    };
    scene.opens("picked up late", commission("apple", 10, 2));
    EXPECT_EQ(picks(0, 1).why, refusal::shopchanged);
    EXPECT_EQ(picks(1, 0).why, refusal::recordgone);
}

// A full purse, and a server that cannot save, end each of the operations with nothing changed.
TEST(Commissions, AFullPurseAndAClosedMarketChangeNothing) {
    faulty::Stores stores;
    Scene scene([&](platform::Host& host) { host.stores = &stores; });
    constexpr int most = std::numeric_limits<std::int32_t>::max();
    constexpr refusal payment = refusal::paymentrefused, shut = refusal::marketclosed;
    enum deed { publishing, adjusting, pickingup };
    const struct {
        const char* name;
        deed what;
        int money;
        refusal why;
    } cases[] = {{"a full purse", adjusting, most - 49, payment},
                 {"publish closed", publishing, 90, shut},
                 {"adjust closed", adjusting, 90, shut},
                 {"pick up closed", pickingup, 90, shut}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        json before = commission("apple", 10, 5, "old");
        before["nowhasrecyclenum"] = 3;
        before["recycleditemnbtlist"] = {applestext(3)};
        scene.opens(std::string("refused ") + c.name, before);
        scene.ada.setmoney(c.money);
        stores.why = c.why == shut ? "full" : "";
        const recycleshopitem form{.recycleitemname = "new",
                                   .itemnbt = "{}",
                                   .recycleitemleftwanna = c.what == publishing ? 5 : 0,
                                   .offer = 10};
        const auto result = scene.does(scene.ada, [&](ServerPlayer* player) {
            return c.what == publishing  ? publishcommission(player, scene.owner, form, formpublish)
                   : c.what == adjusting ? adjustcommission(player, scene.owner, 0, 0, form)
                                         : pickupcommission(player, scene.owner, 0, 0);
        });
        EXPECT_EQ(result.why, c.why);
        EXPECT_EQ(result.charged + result.received + result.pieces, 0);
        EXPECT_EQ(scene.ada.money(), c.money);
        EXPECT_EQ(scene.record(), before);
        EXPECT_EQ(scene.revision(), 0);
    }
}
