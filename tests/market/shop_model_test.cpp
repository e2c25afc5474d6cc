// Which discounts apply and what they do to odd numbers, bans that end, and texts that are no item.
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
        {"truncated", 99, {live("%50")}, 49},
        {"letters", 100, {live("-1x9")}, 99},
        {"wraps at 32 bits", 50000000, {live("%100")}, 7050327},
    };
    for (const auto& c : cases) {
        shopitem item{.shopitemtag = "fruit", .price = c.price};
        applydiscount(item, c.discounts);
        EXPECT_EQ(item.realprice, c.realprice) << c.name;
    }
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
