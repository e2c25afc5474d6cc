// The filter language, and what a filter lets through.
#include <gtest/gtest.h>

#include "plugin/shopsystem/runtimeshopmanager.h"
#include "plugin/shopsystem/shopfilter.h"
#include "tests/market/shophost.h"

using namespace shopsystem;
using market_tests::json;
using market_tests::ShopHost;

namespace {

TEST(FilterString, AlternativesAreParts_OrWholesWithADollar) {
    const std::string food = "cooked_{||}baked_{||}_stew{||}bread${||}_pie{||}cookie${||}cake";
    struct {
        std::string filter, source;
        bool passes;
    } const cases[] = {
        {"apple", "pineapple", true},
        {"apple$", "apple", true},
        {"apple$", "pineapple", false},
        {"Apple", "apple", false},
        {"", "abc", true},
        {"$", "", true},
        {"$", "a", false},
        {"$$", "$", true},
        {"a{||}", "a", true},
        {"a{||}", "b", false},
        {"{||}x", "b", true},
        {"a{||}{||}b", "z", true},
        {"${||}b", "", true},
        {"${||}b", "a", false},
        {"a${||}b$", "b", true},
        {"a${||}b$", "ab", false},
        {"a{|}b", "a{|}b", true},
        {"苹果{||}面包$", "金苹果", true},
        {food, "minecraft:cooked_beef", true},
        {food, "bread", true},
        {food, "minecraft:bread", false},
        {food, "pumpkin_pie", true},
        {food, "minecraft:cake", true},
        {food, "cookies", false},
    };
    for (const auto& c : cases) EXPECT_EQ(filterstring(c.filter, c.source), c.passes) << c.filter << " : " << c.source;
}

TEST(PassFilter, AllFieldsOrAny) {
    ShopHost host;
    host.put("filtered",
             {{"ownername", "Alice"},
              {"describe", "fresh fruit"},
              {"sellcount", 10},
              {"salesvolume", 500},
              {"items",
               {{{"shopitemname", "red apple"}, {"shopitemtag", "fruit"}, {"shopitemleftnum", 3}},
                {{"shopitemname", "sold out"}, {"shopitemleftnum", 0}}}}},
             {{"recycleamount", 7}, {"recyclecost", 70}, {"recycleitems", {{{"recycleitemleftwanna", -3}}}}});
    auto& shop = globalruntimeshopmanager.getsellshop("filtered");
    const auto row = shop.getglobalshopitem(0);

    struct {
        const char* name;
        shopfilter filter;
        bool all, any;
    } const cases[] = {
        {"nothing set", {}, true, false},
        {"one that holds", {.itemnamefilter = "apple"}, true, true},
        {"one that does not", {.itemnamefilter = "pear"}, false, false},
        {"one of two", {.ownernamefilter = "Bob", .itemtagfilter = "fruit$"}, false, true},
        {"unset number beside a text", {.minsellcount = -1, .itemnamefilter = "pear"}, false, false},
        {"number reached", {.minsellcount = 10}, true, true},
        {"number missed", {.minsellcount = 11}, false, false},
        {"second number reached", {.minsellcount = 11, .minsalesvolume = 500}, false, true},
        {"second number missed", {.minsellcount = 10, .minsalesvolume = 501}, false, true},
        {"numbers of the other kind", {.minrecycleamount = 1000, .minrecyclecost = 1000}, true, false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(passfilter(c.filter, row, allof), c.all) << c.name;
        EXPECT_EQ(passfilter(c.filter, row, anyof), c.any) << c.name;
    }
    const shopfilter apple{.itemnamefilter = "o"};
    EXPECT_FALSE(passfilter(apple, shop.getglobalshopitem(1), allof)) << "sold out";
    EXPECT_FALSE(passfilter(apple, shop.getglobalshopitem(1), anyof)) << "sold out";

    const auto commission = globalruntimeshopmanager.getrecycleshop("filtered").getglobalrecycleitem(0);
    EXPECT_TRUE(passfilter({.minsellcount = 1000, .minrecyclecost = 70}, commission, allof));
    EXPECT_FALSE(passfilter({.minrecycleamount = 8}, commission, anyof));

    auto wrapped = row;
    wrapped.revision += 0x10000;
    EXPECT_FALSE(passfilter({}, wrapped, allof)) << "all 32 bits count";
    shop.markshopchanged();
    EXPECT_FALSE(passfilter({}, row, allof)) << "stale";
}

}  // namespace
