// Which discounts apply and what they do to odd numbers, what is broken and left out, bans that end, and texts that are
// no item.
#include <gtest/gtest.h>

#include "plugin/base/language.h"
#include "plugin/shopsystem/brokenshops.h"
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
        EXPECT_TRUE(applydiscount(item, c.discounts)) << c.name;
        EXPECT_EQ(item.realprice, c.realprice) << c.name;
    }
}

// Prices and front page go on without the broken ones, and the lapsed go.
TEST(Discounts, TheBrokenAreLeftOutAndToldOnce) {
    const ShopHost host;
    const auto live = host.clock.seconds + 90;
    sellshop shop("summary");
    shop.items = {{{"shopitemtag", "fruit"}, {"price", 100}}};
    shop.shopdiscount = {{{"shopitemtag", "fruit"}, {"discount", ""}, {"timeend", live}},
                         {{"shopitemtag", "fruit"}, {"discount", "-7"}},
                         {{"shopitemtag", "fruit"}, {"discount", "-7"}, {"timeend", 1e300}},
                         {{"shopitemtag", "fruit"}, {"discount", 7}, {"timeend", live}},
                         {{"shopitemtag", "old"}, {"discount", ""}, {"timeend", live - 91}},
                         {{"discount", "-7"}, {"timeend", live}},
                         "-7",
                         {{"shopitemtag", "old"}, {"discount", "-7"}, {"timeend", live - 99}},
                         {{"shopitemtag", "fruit"}, {"discount", "%80"}, {"timeend", live}}};
    const auto told = [&](const std::string& what) {
        return host.told(ShopHost::path("summary") + ": sell.shopdiscount[" + what + "; it is left out");
    };
    for (const int lines : {1, 1, 2}) {
        if (lines == 2) shop.markshopchanged();
        EXPECT_EQ(shop.getglobalshopitem(0).realprice, 80);
        for (const char* what : {"0].discount: must be a text that is not empty", "1].timeend: must be a whole number",
                                 "2].timeend: must be a whole number", "3].discount: must be a text that is not empty",
                                 "5].shopitemtag: must be a text", "6].timeend: must be a whole number"})
            EXPECT_EQ(told(what), lines) << what;
        EXPECT_EQ(told("4].discount: must be a text that is not empty"), 0) << "has lapsed";
    }
    EXPECT_EQ(shop.getdiscountsummary(),
              "\n§f§r§o§b【§a" + ordomart::tr("", "shop.sales") + "§b】§r§ffruit : %80  §890");
    EXPECT_EQ(shop.shopdiscount.size(), 7U);
    EXPECT_EQ(shop.revision, 3U);
    EXPECT_TRUE(shop.isdirty);
}

TEST(BrokenRecords, CountForNothingAndAreToldOnce) {
    const ShopHost host;
    sellshop sells("broken");
    recycleshop buys("broken");
    for (int i = 0; i < 12; ++i) {
        sells.items.push_back({{"shopitemleftnum", i == 0 ? json(0) : json(0.5)}});
        buys.recycleitems.push_back(i == 0 ? json("?") : json({{"recycleitemleftwanna", 0}}));
    }
    for (const int times : {1, 1, 2}) {
        if (times == 2) sells.markshopchanged();
        EXPECT_TRUE(sells.issoldout() && buys.isfulfilled());
        EXPECT_EQ(host.told("sell.items["), 9 * times) << "the first eight, and that there is more";
        EXPECT_EQ(host.told("There is more"), times);
        EXPECT_EQ(host.told("recycles.recycleitems[0]: is no record, but string; it is left out"), 1);
    }
    sells.items.push_back({{"shopitemleftnum", 1}});
    buys.recycleitems.push_back({{"recycleitemleftwanna", -1}});
    EXPECT_FALSE(sells.issoldout() || buys.isfulfilled());

    const auto tell = [&](const char* fault) {
        reportbroken("nofile", sell, fault);
        return host.told(fault);
    };
    EXPECT_EQ(tell("cut"), 1);
    EXPECT_EQ(tell("cut"), 1);
    EXPECT_EQ(tell("torn"), 1);
    EXPECT_EQ(tell("cut"), 2) << "another state of the file";
    forgetbroken("nofile", sell);
    EXPECT_EQ(tell("cut"), 3) << "broken again behind a time without fault";
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
