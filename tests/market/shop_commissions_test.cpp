// Publishing, adjusting and picking up: whose money and whose items move, and what refuses. The model is that of this
// program and not of the module beside it; the players, their inventories and scores are the server's.
#include <fmt/format.h>

#include "platform/host.h"
#include "platform/level.h"
#include "plugin/shopsystem/runtimeshopmanager.h"
#include "plugin/trade/commissions.h"
#include "tests/stage/stage.h"

using namespace shopsystem;
using namespace stage;

namespace {

// A player and an operator in scoreboard mode, and one shop after the other with whatever records.
struct Scene {
    Stage stage{Setting{.llmoney = false}};
    ::stage::Actor& ada = stage.join("Ada", "2535400000000001");
    ::stage::Actor& olga = stage.join("Olga", "2535400000000009", "en_US", 7, 1);
    std::string owner;

    Scene() { ordomart::moneymode = 0; }
    ::stage::Actor& who(int permission) { return permission == 0 ? ada : olga; }
    // Owner keys are used once, since the cache outlives the stage.
    void opens(const std::string& key, const json& recycleitems, const json& extra = json::object()) {
        owner = key;
        stage.writeshop(owner, nullptr, recycleitems, json::object(), extra);
    }
    recycleshop& shop() { return globalruntimeshopmanager.getrecycleshop(owner); }
    commissionresult does(::stage::Actor& actor, const std::function<commissionresult(ServerPlayer*)>& operation) {
        commissionresult result;
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
        {"no count in the form", formpublish, 0, open, 0, 10, 0, 90, ok, 0, 90},
        {"a count below none in the form", formpublish, 0, open, 0, 10, -3, 90, ok, -30, 120},
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
        EXPECT_EQ(scene.record(), after) << c.name;
    }
}

TEST(Commissions, PickingUpEmptiesTheStore) {
    json full = commission("apple", 10, 0);
    full["nowhasrecyclenum"] = 72;
    full["recycleditemnbtlist"] = {applestext(64), "{Name:\"addon:gone\",Count:3b}", applestext(5)};
    Scene scene;
    scene.opens("pickup", full);
    const auto picks = [&](int index, int revision) {
        return scene.does(scene.ada, [&](ServerPlayer* player) {
            return pickupcommission(player, scene.owner, index, static_cast<std::uint32_t>(revision));
        });
    };
    EXPECT_EQ(picks(0, 1).why, refusal::shopchanged);
    EXPECT_EQ(picks(1, 0).why, refusal::recordgone);
    const auto result = picks(0, 0);
    EXPECT_TRUE(result.ok());
    EXPECT_EQ(result.pieces, 72) << "what is no item any more counts too";
    EXPECT_EQ(scene.ada.counts("minecraft:apple"), 69);
    EXPECT_EQ(scene.record()["nowhasrecyclenum"], 0);
    EXPECT_TRUE(scene.record()["recycleditemnbtlist"].empty());
    EXPECT_EQ(picks(0, 1).pieces, 0) << "an empty store gives nothing";
    EXPECT_EQ(scene.revision(), 2);
}
