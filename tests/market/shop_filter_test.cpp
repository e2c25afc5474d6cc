// The filter language, and what a filter lets through.
#include <gtest/gtest.h>

#include <array>
#include <random>

#include "plugin/shopsystem/runtimeshopmanager.h"
#include "plugin/shopsystem/shopfilter.h"
#include "plugin/shopsystem/textfilter.h"
#include "plugin/shopsystem/textgrams.h"
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

// The language, step by step, and without a line of the market.
bool bydefinition(const std::string& filter, const std::string& source) {
    const auto contained = [&](const std::string& part) { return source.find(part) != std::string::npos; };
    std::size_t pos = 0, separator = filter.find("{||}");
    while (separator != std::string::npos) {
        if (separator != 0 && filter[separator - 1] == '$') {
            if (filter.substr(pos, separator - 1 - pos) == source) return true;
        } else if (contained(filter.substr(pos, separator - pos))) {
            return true;
        }
        pos = separator + 4;
        if (pos >= filter.size()) return false;
        separator = filter.find("{||}", pos);
    }
    if (pos > filter.size() - 1) return false;
    if (!filter.empty() && filter.back() == '$') return filter.substr(pos, filter.size() - 1 - pos) == source;
    return contained(filter.substr(pos));
}

// Few letters, so that matches are many and often run across the border of two texts; what stands before the first text
// and behind the last is made of the same letters.
TEST(TextFilter, SaysWhatTheDefinitionSays_OneByOneAndManyAtOnce) {
    using namespace std::string_literals;
    const std::array pieces = {""s,     "$"s,  "{||}"s, "{||"s,      "}"s,
                               "a"s,    "b"s,  "ab"s,   "aab"s,      "ba"s,
                               "苹果"s, "果"s, "\0"s,   "\xe6\x9e"s, std::string(61, 'z'),
                               "{||}"s, "$x"s, "苹"s,   "b\0a"s,     "z"s};
    std::mt19937 random(5);
    const auto below = [&](std::size_t n) { return random() % n; };
    const auto write = [&](std::size_t atmost) {
        std::string text;
        for (std::size_t n = below(atmost + 1); n > 0; --n) text += pieces[below(pieces.size())];
        return text;
    };
    std::size_t hits = 0, misses = 0;
    for (int round = 0; round < 100'000; ++round) {
        const std::string filter = write(9);
        const bool ismany = round % 400 == 0;
        std::vector<std::string> texts(ismany ? 1000 + below(200) : below(9));
        std::string bytes = write(3);
        std::vector<std::uint32_t> offsets{static_cast<std::uint32_t>(bytes.size())};
        for (auto& text : texts) {
            text = write(4);
            if (below(8) == 0) text = filter.substr(0, filter.find_first_of("${"));
            bytes += text;
            offsets.push_back(static_cast<std::uint32_t>(bytes.size()));
        }
        std::vector<char> store;
        store.reserve(bytes.size() + textfilter::slack);  // not a byte more, for a sanitizer to watch
        store.assign(bytes.begin(), bytes.end());
        for (std::size_t i = 0; i < textfilter::slack; ++i)
            store.push_back(filter.empty() ? 'a' : filter[i % filter.size()]);

        const auto kind = below(2) == 0 ? rowtexts::name : rowtexts::describe;
        textbuilder rows;
        for (const auto& text : texts)
            kind == rowtexts::name ? rows.add(text, filter, filter) : rows.add(filter, text, filter);
        const auto piece = rows.finish();
        if (below(2) == 0) market_tests::searchoften(*piece);

        const textfilter read(filter);
        ASSERT_EQ(read.isset(), !filter.empty());
        const std::size_t first = below(130);
        std::vector<std::uint64_t> marked((first + texts.size()) / 64 + 2);
        for (auto& word : marked) word = random() & random();
        auto expected = marked, skipping = marked;
        for (std::size_t i = 0; i < texts.size(); ++i) {
            const bool wanted = bydefinition(filter, texts[i]);
            ++(wanted ? hits : misses);
            if (wanted) expected[(first + i) / 64] |= std::uint64_t{1} << (first + i) % 64;
            ASSERT_EQ(read.passes(texts[i]), wanted) << filter << " : " << texts[i];
            ASSERT_EQ(filterstring(filter, texts[i]), wanted) << filter << " : " << texts[i];
        }
        read.mark(store.data(), offsets, marked, first);
        ASSERT_EQ(marked, expected) << filter << " : " << bytes << " (round " << round << ")";
        read.mark(*piece, kind, skipping, first);
        ASSERT_EQ(skipping, expected) << filter << " : " << bytes << " (round " << round << ")";
    }
    EXPECT_GT(hits, 100'000u);
    EXPECT_GT(misses, 100'000u);
}

// Long texts, in which most blocks of positions hold nothing: each place of a match, and of the border that cuts one.
TEST(TextFilter, FindsAMatchAtEveryPlaceAndNoneAcrossABorder) {
    const textfilter read("diamond sword{||}钻石");
    for (std::size_t place = 0; place < 200; ++place) {
        for (const std::string match : {"diamond sword", "钻石"}) {
            const std::string bytes = std::string(place, '.') + match + std::string(150, '.') + match;
            for (std::size_t cut = 0; cut <= match.size(); ++cut) {
                const std::array offsets = {0u, static_cast<std::uint32_t>(place + cut),
                                            static_cast<std::uint32_t>(bytes.size() - 150 - match.size()),
                                            static_cast<std::uint32_t>(bytes.size() - 1),
                                            static_cast<std::uint32_t>(bytes.size())};
                const std::string store = bytes + std::string(textfilter::slack, '.');
                std::uint64_t bits = 0;
                read.mark(store.data(), offsets, {&bits, 1}, 0);
                ASSERT_EQ(bits, (cut == match.size() ? 1u : 0u) | (cut == 0 ? 2u : 0u)) << match << place << ' ' << cut;
            }
        }
    }
}

// A text in one of 1,100 rows has to be looked for near that row alone, once the texts are searched often.
TEST(TextGrams, SayNearWhichRowsATextCanStand) {
    for (const std::size_t row : {0U, 63U, 64U, 511U, 512U, 1023U, 1099U}) {
        textbuilder rows;
        for (std::size_t i = 0; i < 1100; ++i) rows.add(i == row ? "a Lantern" : "an apple", "苹果", "");
        const auto texts = rows.finish();
        EXPECT_EQ(texts->grams(), nullptr) << "nothing is made for the first search";
        market_tests::searchoften(*texts);
        const auto& grams = *texts->grams();
        for (const std::size_t first : {0U, 512U, 1024U}) {
            const auto where = [&](const char* text, rowtexts::kind in = rowtexts::name) {
                return grams.where(textgrams::of(text), in, first);
            };
            const auto holds = [&](const textgrams::rows& in) { return in.begin <= row && row < in.end; };
            const auto isempty = [](const textgrams::rows& in) { return in.begin >= in.end; };
            const bool isthere = row / 512 == first / 512;
            const textgrams::rows near{row / 64 * 64, std::min<std::size_t>(row / 64 * 64 + 64, 1100)};
            for (const char* const text : {"Lantern", "Lan", "a Lan"}) {
                EXPECT_TRUE(isthere ? where(text) == near : isempty(where(text))) << text << row << ' ' << first;
                EXPECT_TRUE(isempty(where(text, rowtexts::describe))) << text;
            }
            EXPECT_TRUE(isempty(where("lantern"))) << "case and all";
            EXPECT_EQ(holds(where("La")), isthere) << "too short to tell";
            EXPECT_FALSE(isempty(where("苹", rowtexts::describe)));
        }
        // What is nearly everywhere is no longer asked for after some thousands of rows, and found all the same.
        const textfilter common("an apple"), rare("Lantern");
        for (int again = 0; again < 9; ++again) {
            std::vector<std::uint64_t> bits(18), others(18);
            common.mark(*texts, rowtexts::name, bits, 0);
            rare.mark(*texts, rowtexts::name, others, 0);
            for (std::size_t i = 0; i < 1100; ++i) {
                ASSERT_EQ(bits[i / 64] >> i % 64 & 1, i == row ? 0U : 1U) << again << ' ' << i;
                ASSERT_EQ(others[i / 64] >> i % 64 & 1, i == row ? 1U : 0U) << again << ' ' << i;
            }
        }
    }
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
