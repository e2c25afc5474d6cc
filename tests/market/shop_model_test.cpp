// Prices under discounts, bans that end, and which stack a commission wants.
#include <gtest/gtest.h>

#include "plugin/shopsystem/itemidentity.h"
#include "plugin/shopsystem/recycleshop.h"
#include "plugin/shopsystem/sellshop.h"
#include "tests/market/shophost.h"

using namespace shopsystem;
using market_tests::json;
using market_tests::ShopHost;

namespace {

TEST(Discounts, ChangeThePriceOfTheirTag) {
    const ShopHost host;
    const auto live = [&](const std::string& text, const char* tag = "fruit", std::int64_t seconds = 0) -> json {
        return {{"shopitemtag", tag}, {"discount", text}, {"timestart", 0}, {"timeend", host.clock.seconds + seconds}};
    };
    struct {
        const char* name;
        std::int32_t price;
        json discounts;
        std::int32_t realprice;
    } const cases[] = {
        {"no array", 100, nullptr, 100},
        {"ends this second", 100, {live("%80")}, 80},
        {"has lapsed", 100, {live("%80", "fruit", -1)}, 100},
        {"another tag", 100, {live("%80", "")}, 100},
        {"minus, then percent", 100, {live("-30"), live("%50")}, 35},
        {"percent, then minus", 100, {live("%50"), live("-30")}, 20},
        {"nothing is paid", 100, {live("%0")}, 0},
        {"never negative", 10, {live("-50")}, 0},
        {"dearer", 100, {live("%150")}, 150},
        {"truncated", 99, {live("%50")}, 49},
        {"first character is the mark", 100, {live("80")}, 100},
        {"letters", 100, {live("-1x9")}, 99},
        {"wraps at 32 bits", 50000000, {live("%100")}, 7050327},
    };
    for (const auto& c : cases) {
        shopitem item{.shopitemtag = "fruit", .price = c.price};
        applydiscount(item, c.discounts);
        EXPECT_EQ(item.realprice, c.realprice) << c.name;
    }
    shopitem item{.shopitemtag = "fruit"};
    EXPECT_THROW(applydiscount(item, json::array({live("")})), std::out_of_range);
}

TEST(Discounts, TheSummaryRemovesTheLapsed) {
    const ShopHost host;
    sellshop shop("summary");
    for (const int seconds : {-1, 90, -5})
        shop.shopdiscount.push_back({{"shopitemtag", "t" + std::to_string(seconds)},
                                     {"discount", "%80"},
                                     {"timeend", host.clock.seconds + seconds}});
    EXPECT_EQ(shop.getdiscountsummary().substr(0, 4), "\n§f");
    EXPECT_NE(shop.getdiscountsummary().find("§b】§r§ft90 : %80  §890"), std::string::npos);
    EXPECT_EQ(shop.shopdiscount.size(), 1U);
    EXPECT_EQ(shop.revision, 2);
    EXPECT_TRUE(shop.isdirty);
}

TEST(Ban, TheLoadLiftsItASecondBeforeTheQuery) {
    const ShopHost host;
    struct {
        std::int64_t end;
        bool atload, atquery;
    } const cases[] = {{-1, true, true},
                       {host.clock.seconds + 1, true, true},
                       {host.clock.seconds, false, true},
                       {host.clock.seconds - 1, false, false}};
    for (const auto& c : cases) {
        sellshop loaded("ban"), queried("ban");
        loaded.loadfromjson(
            {{"shopstate", {{"isbaned", true}, {"bantimeend", c.end - host.clock.seconds}, {"banreason", "x"}}}});
        loaded.loadfromjson({{"shopstate", {{"isbaned", true}, {"bantimeend", c.end}, {"banreason", "x"}}}});
        EXPECT_EQ(loaded.isbaned, c.atload) << c.end;
        EXPECT_EQ(loaded.getbanreason(), c.atload ? "x" : "") << c.end;
        EXPECT_EQ(loaded.shopstate["bantimeend"], c.end) << "kept by the load";
        queried.setbanstate(true, c.end, "x");
        EXPECT_EQ(queried.isbanned(), c.atquery) << c.end;
        EXPECT_EQ(queried.shopstate["bantimeend"], c.atquery ? c.end : 0) << "set to 0 by the query";
        EXPECT_FALSE(loaded.isdirty || queried.isdirty);
    }
    sellshop never("ban");
    never.loadfromjson({{"shopstate", 0}});
    EXPECT_TRUE(never.shopstate.is_null());
    EXPECT_FALSE(never.isbanned());
    EXPECT_EQ(never.getbanreason(), "");
}

// ---- commissions

std::string sword(const std::string& data, int aux = 0, bool pickedup = false) {
    return fmt::format("{{Count:1b,Damage:{}s,Name:\"minecraft:diamond_sword\",WasPickedUp:{}b{}}}", aux,
                       pickedup ? 1 : 0, data.empty() ? "" : ",tag:{" + data + "}");
}
std::string worn(int damage) { return "Damage:" + std::to_string(damage); }
std::string sharp(int level, const std::string& more = {}) {
    return fmt::format("ench:[{{id:9s,lvl:{}s}}{}]", level, more);
}
constexpr const char* unbreaking = ",{id:17s,lvl:3s}";

TEST(MatchRecycleItem, ComparesWhatTheCommissionAsksFor) {
    const ShopHost host;
    enum { none = 0, damage = 1, ench = 2, nbt = 4 };
    const std::string named = "display:{Name:\"Excalibur\"}";
    struct {
        const char* name;
        std::string wanted;
        int flags;
        std::vector<std::string> stacks;
        std::vector<bool> match;
    } const cases[] = {
        {"by name alone",
         sword(""),
         none,
         {sword(worn(9) + "," + sharp(5)), "{Name:\"minecraft:apple\",Count:1b}", ""},
         {true, false, false}},
        {"aux", sword(""), damage, {sword("", 1), sword("")}, {false, true}},
        {"the first worn stack sets the template",
         sword(""),
         damage,
         {sword(worn(5)), sword(worn(9)), sword(worn(5))},
         {true, false, true}},
        {"a marker in the template is none", sword(worn(-114514)), damage, {sword(worn(5)), sword("")}, {true, false}},
        {"stored wear is asked for", sword(worn(5)), damage, {sword(worn(5)), sword("")}, {true, false}},
        {"another item's wear is not taken on",
         "{Name:\"minecraft:apple\",Count:1b,Damage:0s}",
         damage,
         {sword(worn(5)), "{Name:\"minecraft:apple\",Count:1b,Damage:0s}"},
         {false, true}},
        {"enchantments",
         sword(sharp(1)),
         ench,
         {sword(sharp(2)), sword(sharp(1, unbreaking)), sword("")},
         {false, true, false}},
        {"without enchantments every sword is wanted", sword(""), ench, {sword(sharp(2))}, {true}},
        {"the whole item",
         sword(named),
         nbt,
         {sword(""), sword(named), sword(named, 0, true), sword(named, 3)},
         {false, true, true, false}},
        {"the whole item, wear taken on",
         sword(""),
         nbt | damage | ench,
         {sword(worn(5)), sword(worn(6))},
         {true, false}},
    };
    for (const auto& c : cases) {
        const recycleshopitem wanted{.itemnbt = c.wanted,
                                     .filterauxordamage = (c.flags & damage) != 0,
                                     .filterench = (c.flags & ench) != 0,
                                     .filteritemnbt = (c.flags & nbt) != 0};
        auto templatetag = platform::CompoundTag::fromSNBT(c.wanted).value();
        for (std::size_t i = 0; i < c.stacks.size(); ++i) {
            auto stack = itemfromsnbt(c.stacks[i]);
            if (c.stacks[i] == sword(worn(5))) stack.set(200);
            std::int32_t count = -1;
            EXPECT_EQ(matchrecycleitem(wanted, templatetag, stack, count), c.match[i]) << c.name << ", stack " << i;
            EXPECT_EQ(count, stack.getCount()) << c.name;
        }
    }
}

TEST(ItemIdentity, ATextThatIsNoItemIsNoStack) {
    const ShopHost host;
    for (const char* text :
         {"", "{", "[]", "{Name:\"addon:gone\",Count:1b}", "{Count:1b}", "{Name:\"apple\",Count:0b}"})
        EXPECT_FALSE(checkrawitemvalid(itemfromsnbt(text))) << text;
    const auto stack = platform::ItemStack::create("apple", 17);
    EXPECT_EQ(itemfromsnbt(itemtosnbt(stack)).getCount(), 1);
    EXPECT_EQ(itemfromsnbt(itemtosnbtasis(stack)).getCount(), 17);
}

}  // namespace
