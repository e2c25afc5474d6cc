// Publishing, selling into, adjusting and picking up: whose money and whose items move, and what refuses. The model is
// that of this program and not of the module beside it; the players, their inventories and scores are the server's.
#include <fmt/format.h>

#include "platform/host.h"
#include "platform/level.h"
#include "plugin/shopsystem/commissions.h"
#include "plugin/shopsystem/runtimeshopmanager.h"
#include "tests/stage/stage.h"

using namespace shopsystem;
using namespace stage;

namespace {

// A player in scoreboard mode, and a shop of whatever records. Owner keys are used once, since the cache outlives it.
struct Scene {
    Stage stage{Setting{.llmoney = false}};
    ::stage::Actor& ada;
    std::string owner;

    Scene(const std::string& name, const json& recycleitems, const json& extra = json::object(), int permission = 0)
        : ada(stage.join("Ada", "2535400000000001", "en_US", 7, permission)), owner(name) {
        ordomart::moneymode = 0;
        stage.writeshop(owner, nullptr, recycleitems, json::object(), extra);
    }
    recycleshop& shop() { return globalruntimeshopmanager.getrecycleshop(owner); }
    commissionresult does(const std::function<commissionresult(ServerPlayer*)>& operation) {
        commissionresult result;
        stage.onserver([&] { result = operation(platform::host().level->getPlayerByXuid(ada.xuid())); });
        return result;
    }
    json record() {
        json copy;
        stage.onserver([&] { copy = shop().recycleitems.at(0); });
        return copy;
    }
    std::uint16_t revision() {
        std::uint16_t now = 0;
        stage.onserver([&] { now = shop().revision; });
        return now;
    }
};

json records(int n) { return json::array_t(static_cast<std::size_t>(n), commission("apple", 1, 1)); }

std::string apples(int count) { return fmt::format("{{Name:\"minecraft:apple\",Count:{}b}}", count); }

std::vector<int> storedcounts(const json& record) {
    std::vector<int> counts;
    for (const auto& text : record["recycleditemnbtlist"])
        counts.push_back(itemfromsnbt(text.get<std::string>()).getCount());
    return counts;
}

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
    int number = 0;
    for (const auto& c : cases) {
        Scene scene(fmt::format("publish{}", ++number), c.records == 0 ? json() : records(c.records), c.shop,
                    c.permission);
        scene.ada.setmoney(c.money);
        const recycleshopitem wanted{.recycleitemname = "wish",
                                     .itemnbt = "{}",
                                     .recycleitemleftwanna = c.count,
                                     .nowhasrecyclenum = 9,
                                     .offer = c.offer};
        const auto result =
            scene.does([&](ServerPlayer* ada) { return publishcommission(ada, scene.owner, wanted, c.rules); });
        EXPECT_EQ(result.why, c.why) << c.name;
        EXPECT_EQ(result.needed, c.needed) << c.name;
        EXPECT_EQ(result.charged, c.why == ok ? c.needed : 0) << c.name;
        EXPECT_EQ(scene.ada.money(), c.left) << c.name;
        EXPECT_EQ(scene.revision(), c.why == ok ? 1 : 0) << c.name;
        scene.stage.onserver([&] {
            const auto& items = scene.shop().recycleitems;
            ASSERT_EQ(items.size(), static_cast<std::size_t>(c.records + (c.why == ok ? 1 : 0))) << c.name;
            if (c.why == ok) {
                EXPECT_EQ(items.back()["nowhasrecyclenum"], 0) << c.name;
            }
        });
        const auto lines = scene.stage.file("plugins/Ordomart/simpletrade.log");
        const bool paid = c.why == ok && c.permission == 0;
        EXPECT_EQ(lines.find("to SYSTEM,note:pay for upload recycleitem") != std::string::npos, paid) << c.name;
        EXPECT_EQ(lines.find("to SYSTEM,note:pay for extraslot") != std::string::npos, paid) << c.name;
    }
}

TEST(Commissions, TakeFromSlotToSlotUntilNothingIsWanted) {
    struct {
        const char* name;
        bool isop;
        int wanted;
        std::vector<int> asked;
        int pieces, leftwanna;
        std::vector<int> stored, left;
    } const cases[] = {
        {"all of it", false, 200, {64, 30, 5}, 99, 101, {64, 30, 5}, {0, 0, 0}},
        {"cut where it is filled", false, 70, {64, 30, 5}, 70, 0, {64, 6}, {0, 24, 5}},
        {"more than there is", false, 200, {64, 60, -5}, 94, 106, {64, 30}, {0, 0, 5}},
        {"nothing", false, 10, {0, 0, 0}, 0, 10, {}, {64, 30, 5}},
        {"an operator's shop keeps its numbers", true, 2, {64, 1, 0}, 65, 2, {}, {0, 29, 5}},
        {"an operator's shop that wants none", true, 0, {64, 30, 5}, 0, 0, {}, {64, 30, 5}},
    };
    int number = 0;
    for (const auto& c : cases) {
        Scene scene(fmt::format("takein{}", ++number), json::array({commission("apple", 7, c.wanted)}),
                    {{"isopshop", c.isop}, {"shopname", "Bob's"}, {"ownerlang", "en_US"}});
        scene.ada.setmoney(0).gives(3, "apple", 64).gives(4, "apple", 30).gives(35, "apple", 5);
        const auto result = scene.does([&](ServerPlayer* ada) {
            const auto working = scene.shop().getrecycleitem(0);
            return takeinitems(ada, scene.shop(), 0, working, findrecycleitems(*ada, working), c.asked);
        });
        EXPECT_EQ(result.pieces, c.pieces) << c.name;
        EXPECT_EQ(scene.ada.money(), c.pieces * 7) << c.name;
        const json record = scene.record();
        EXPECT_EQ(record["recycleitemleftwanna"], c.leftwanna) << c.name;
        EXPECT_EQ(record["nowhasrecyclenum"], c.isop ? 0 : c.pieces) << c.name;
        EXPECT_EQ(storedcounts(record), c.stored) << c.name;
        std::vector<int> left;
        for (const int slot : {3, 4, 35}) {
            const auto has = scene.ada.has(slot);
            left.push_back(has.empty() ? 0 : std::stoi(has.substr(has.find('*') + 1)));
        }
        EXPECT_EQ(left, c.left) << c.name;
        scene.stage.onserver([&] {
            EXPECT_EQ(scene.shop().recycleamount, c.pieces) << c.name;
            EXPECT_EQ(scene.shop().recyclecost, c.pieces * 7) << c.name;
        });
        const auto line =
            fmt::format("Player Ada gain {} for minecraft:apple:? * {} from Bob's", c.pieces * 7, c.pieces);
        EXPECT_NE(scene.stage.file("plugins/Ordomart/log/" + scene.owner + ".relog").find(line), std::string::npos);
    }
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
    int number = 0;
    for (const auto& c : cases) {
        json before = commission("apple", 10, 5, "old");
        before["nowhasrecyclenum"] = 3;
        before["recycleditemnbtlist"] = {apples(3)};
        Scene scene(fmt::format("adjust{}", ++number), json::array({before}), json::object(), c.permission);
        scene.ada.setmoney(c.money);
        const recycleshopitem form{.recycleitemname = "new",
                                   .itemnbt = "not this",
                                   .recycleitemleftwanna = c.count,
                                   .offer = c.offer,
                                   .filterench = true};
        const auto result = scene.does([&](ServerPlayer* ada) {
            return adjustcommission(ada, scene.owner, 0, static_cast<std::uint16_t>(c.revision), form);
        });
        EXPECT_EQ(result.why, c.why) << c.name;
        EXPECT_EQ(scene.ada.money(), c.left) << c.name;
        EXPECT_EQ(result.refunded - result.charged, c.left - c.money) << c.name;
        EXPECT_EQ(result.ended, c.ended) << c.name;
        EXPECT_EQ(scene.ada.counts("minecraft:apple"), c.ended ? 3 : 0) << c.name;
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
    full["recycleditemnbtlist"] = {apples(64), "{Name:\"addon:gone\",Count:3b}", apples(5)};
    Scene scene("pickup", json::array({full}));
    const auto picks = [&](int index, int revision) {
        return scene.does([&](ServerPlayer* ada) {
            return pickupcommission(ada, scene.owner, index, static_cast<std::uint16_t>(revision));
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
