// Sums and entries of the ledger, without a stage: against a plain computation, found by filters, and thinned.
#include <gmock/gmock.h>

#include <map>
#include <random>

#include "plugin/ledger/audit.h"
#include "plugin/ledger/ledger.h"
#include "plugin/ledger/queries.h"
#include "tests/market/shophost.h"

using namespace market_tests;
using testing::ElementsAre;

namespace {

constexpr const char* kinds[] = {
    R"({Count:1b,Damage:0s,Name:"minecraft:apple",WasPickedUp:0b})",
    R"({Count:1b,Damage:3s,Name:"minecraft:apple",WasPickedUp:0b})",
    R"({Count:1b,Damage:0s,Name:"minecraft:apple",WasPickedUp:0b,tag:{ench:[{id:9s,lvl:1s}]}})"};

struct LedgerHost : ShopHost {
    LedgerHost() {
        put("1", {{"items", json::array()}});
        ledger::start();
    }
    std::uint64_t trades(const ledger::happening& of) {
        auto& shop = sells("1");
        shopsystem::countup(shop.sellcount, of.pieces);
        shopsystem::countup(shop.salesvolume, of.pieces * of.price);
        const auto number = ledger::write(shop, of);
        records.endpass();
        return number;
    }
};

}  // namespace

TEST(LedgerPrices, AreThoseOfAPlainComputation) {
    LedgerHost host;
    std::mt19937 random(7);
    struct plain {
        std::int64_t pieces = 0, money = 0;
        std::vector<std::int64_t> prices;
    };
    std::map<std::pair<std::string, std::int64_t>, plain> expected;
    constexpr int days = 12;
    const auto first = host.clock.seconds / 86400;
    std::int64_t fees = 0;
    for (int i = 0; i < 1500; ++i) {
        const std::string text = kinds[random() % 3];
        host.clock.seconds = (first + i * days / 1500) * 86400 + static_cast<std::int64_t>(random() % 1000);
        ledger::happening trade{.what = ledger::kind::purchase, .actor = "2", .itemnbt = text};
        trade.pieces = 1 + random() % 64;
        trade.price = random() % 90;
        trade.paid = trade.pieces * trade.price;
        trade.fee = trade.paid / 20;
        const auto number = host.trades(trade);
        EXPECT_EQ(number, ledger::nextnumber() - 1);
        if (random() % 10 == 0) {  // and back again, a day later at times
            const auto undone = ledger::find(number).value();
            host.clock.seconds += static_cast<std::int64_t>(random() % 86400);
            trade.what = ledger::kind::undopurchase;
            trade.undoes = &undone;
            host.trades(trade);
            EXPECT_EQ(ledger::undoneby(number), number + 1);
            continue;
        }
        auto& day = expected[{ledger::variantof(text).text(), first + i * days / 1500}];
        day.pieces += trade.pieces;
        day.money += trade.paid;
        day.prices.push_back(trade.price);
        fees += trade.fee;
        if (i % 400 == 0) ledger::start();  // what is known of the days comes from the records again
    }
    std::size_t seen = 0;
    std::int64_t money = 0;
    for (const auto& line : ledger::pricesbyday("minecraft:apple", first + days - 1, days))
        for (int day = 0; day < days; ++day) {
            const auto& sum = line.days.at(static_cast<std::size_t>(day));
            auto& plain = expected[{line.what.text(), first + day}];
            std::ranges::sort(plain.prices);
            ASSERT_EQ(sum.trades, static_cast<std::int64_t>(plain.prices.size())) << line.what.text() << " " << day;
            EXPECT_EQ(sum.pieces, plain.pieces);
            EXPECT_EQ(sum.money, plain.money);
            EXPECT_EQ(sum.at.lowest(), plain.prices.front());
            EXPECT_EQ(sum.at.highest(), plain.prices.back());
            EXPECT_EQ(sum.at.median(), plain.prices[(plain.prices.size() - 1) / 2]);
            money += plain.money;
            ++seen;
        }
    EXPECT_EQ(seen, expected.size());
    const auto shops = ledger::topshops(first + days - 1, days, 9);
    ASSERT_EQ(shops.size(), 1U);
    EXPECT_EQ(shops[0].money, money);
    EXPECT_EQ(shops[0].fees, fees);
    EXPECT_EQ(ledger::topgoods(first + days - 1, days, 2).size(), 2U);
    EXPECT_GE(ledger::topgoods(first + days - 1, days, 3)[0].money,
              ledger::topgoods(first + days - 1, days, 3)[1].money);
}

TEST(LedgerEntries, AreReadAsTheyWereWritten) {
    ledger::entry one{.number = 7, .time = -5, .what = ledger::kind::undosale, .shop = "007", .actor = "systemshop"};
    one.isopshop = one.byoperator = true;
    one.tag = UINT64_MAX - 1;
    one.pieces = 3, one.price = 4, one.paid = -12, one.fee = 2;
    one.revision = UINT32_MAX, one.count = INT32_MIN, one.volume = INT32_MAX;
    one.before = ledger::rowstate{one.tag, 1, 2, 3, 4};
    one.after = ledger::rowstate{one.tag, -1, INT32_MAX, 0, INT64_C(1) << 60};
    one.piles = {{5, 6}, {7, 8}};
    one.undoes = 6, one.undoneby = "2535400000000001";
    EXPECT_EQ(ledger::decode(7, ledger::encode(one)), one);
    for (const auto what : {ledger::kind::sale, ledger::kind::publish, ledger::kind::adjust, ledger::kind::pickup})
        EXPECT_EQ((ledger::entry{.what = what}.section()), shopsystem::recycle);

    // What a step on a commission is paid with is what it asks for, unless an operator takes it.
    const struct {
        ledger::kind what;
        bool byoperator;
        std::int64_t left, sponsored, paid;
        bool differs;
    } steps[] = {
        {ledger::kind::publish, false, 5, 0, 15, false}, {ledger::kind::publish, false, 5, 0, 14, true},
        {ledger::kind::adjust, false, 5, 0, 15, false},  {ledger::kind::adjust, false, 5, 0, 0, true},
        {ledger::kind::adjust, true, 5, 0, 0, false},    {ledger::kind::adjust, false, 5, 99, 0, false},
        {ledger::kind::pickup, false, 5, 0, 0, false},
    };
    for (const auto& [what, byoperator, left, sponsored, paid, differs] : steps) {
        ledger::shopbooks books;
        std::vector<ledger::difference> found;
        ledger::entry step{.what = what, .byoperator = byoperator, .paid = paid};
        step.after = ledger::rowstate{0, left, 0, 3, sponsored};
        books.apply(step, found);
        EXPECT_EQ(!found.empty(), differs) << ledger::nameof(what) << " " << paid;
    }
}

TEST(LedgerPrices, OneAbsurdTradeMovesNoMiddleAndManyPricesStayNear) {
    ledger::prices few;
    for (const std::int64_t price : {9, 10, 10, 11}) few.add(price, 1);
    few.add(99999999, 1);
    EXPECT_EQ(few.median(), 10);
    EXPECT_EQ(few.highest(), 99999999);
    few.add(99999999, -1);
    EXPECT_EQ(few.highest(), 11);

    // The nearest two become the one at which there was more.
    ledger::prices near;
    near.add(1, 1);
    near.add(1000, 1);
    near.add(1001, 9);
    for (std::size_t i = 1; i + 1 < ledger::prices::most; ++i) near.add(static_cast<std::int64_t>(1100 * i * i), 1);
    EXPECT_EQ(near.all().contains(1000), false);
    EXPECT_EQ(near.all().at(1001), 10);

    ledger::prices many;
    std::mt19937 random(3);
    std::vector<std::int64_t> all;
    for (int i = 0; i < 3001; ++i) {
        all.push_back(100 + random() % 100000);
        many.add(all.back(), 1);
    }
    std::ranges::sort(all);
    EXPECT_LE(many.all().size(), ledger::prices::most);
    EXPECT_EQ(many.lowest(), all.front());
    EXPECT_EQ(many.highest(), all.back());
    EXPECT_NEAR(static_cast<double>(many.median()), static_cast<double>(all[1500]),
                0.05 * static_cast<double>(all[1500]));
}

TEST(LedgerPrices, ShowTheUsualFirstAndNothingThatWasUndone) {
    LedgerHost host;
    const auto trade = [&](const char* text, std::int64_t price) {
        return host.trades(
            {.what = ledger::kind::purchase, .itemnbt = text, .pieces = 1, .price = price, .paid = price});
    };
    const char* const pie = R"({Count:1b,Damage:0s,Name:"minecraft:apple_pie",WasPickedUp:0b})";
    for (const auto& [text, price] : {std::pair(kinds[0], 90), std::pair(kinds[1], 1), std::pair(kinds[1], 2)})
        trade(text, price);
    const auto undone = ledger::find(trade(pie, 5)).value();
    const auto today = host.clock.seconds / 86400;
    EXPECT_EQ(ledger::topgoods(today, 1, 9).size(), 3U);
    host.trades({.what = ledger::kind::undopurchase, .itemnbt = pie, .pieces = 1, .price = 5, .undoes = &undone});
    EXPECT_EQ(ledger::topgoods(today, 1, 9).size(), 2U);
    trade(pie, 4);
    std::vector<std::string> variants;
    for (const auto& line : ledger::pricesbyday("minecraft:apple", today, 1)) variants.push_back(line.what.text());
    EXPECT_THAT(variants, ElementsAre("minecraft:apple:3", "minecraft:apple:0"));
    EXPECT_EQ(ledger::latesttrades({}, 9).lines.size(), 6U) << "an undo is one, too";
}

TEST(LedgerEntries, AreFoundByFilterThinnedAndStayBalanced) {
    LedgerHost host;
    for (int i = 1; i <= 900; ++i) {
        host.clock.seconds += 86400;
        host.trades({.what = ledger::kind::purchase,
                     .actor = std::to_string(i % 3 + 2),
                     .itemnbt = kinds[i % 2],
                     .pieces = 1,
                     .price = i,
                     .paid = i});
    }
    const auto numbers = [](const ledger::tradepage& page) {
        std::vector<std::uint64_t> all;
        for (const auto& line : page.lines) all.push_back(line.what.number);
        return all;
    };
    const auto page = ledger::latesttrades({.player = "3"}, 2);
    EXPECT_THAT(numbers(page), ElementsAre(898U, 895U));
    EXPECT_THAT(numbers(ledger::latesttrades({.player = "3"}, 2, page.before)), ElementsAre(892U, 889U));
    EXPECT_THAT(numbers(ledger::latesttrades({.until = host.clock.seconds - 2 * 86400}, 1)), ElementsAre(897U));
    EXPECT_THAT(numbers(ledger::latesttrades({.from = host.clock.seconds - 86400}, 9)), ElementsAre(900U, 899U));
    EXPECT_TRUE(ledger::latesttrades({.item = "minecraft:dirt"}, 9).lines.empty());
    EXPECT_TRUE(ledger::latesttrades({.shop = "2"}, 9).lines.empty());
    EXPECT_THAT(numbers(ledger::latesttrades({.player = "1"}, 1)), ElementsAre(900U)) << "as the owner";
    // What was taken over has times of its own, and what is earlier in it ends no search.
    ledger::notetakenover(800, 850);
    host.records.endpass();
    for (const std::uint64_t number : {799, 850}) EXPECT_EQ(ledger::takenoverwith(number), 0U);
    for (const std::uint64_t number : {800, 849}) EXPECT_EQ(ledger::takenoverwith(number), 800U);
    for (std::uint64_t number = 820; number < 850; ++number) {
        auto one = ledger::find(number).value();
        one.time -= 200LL * 86400;
        host.records.put("ledger", ledger::keyof(number), [bytes = ledger::encode(one)] { return bytes; });
    }
    host.records.endpass();
    EXPECT_EQ(ledger::latesttrades({.from = host.clock.seconds - 105LL * 86400}, 99).lines.size(), 51U + 5U);

    const auto whole = [] {
        const auto result = ledger::audit([] { return true; });
        EXPECT_EQ(result.differences, std::vector<ledger::difference>());
        return result.entries;
    };
    EXPECT_EQ(whole(), 900U);
    const auto thins = [&] {
        for (int i = 0; i < 80; ++i) {
            ledger::thin();
            host.records.endpass();
        }
    };
    {
        const ledger::thinningheld held;
        thins();
        EXPECT_EQ(whole(), 900U) << "somebody writes it down";
    }
    thins();
    EXPECT_EQ(whole(), 401U) << "400 days are kept";
    EXPECT_FALSE(ledger::find(499).has_value());
    EXPECT_EQ(ledger::find(500).value().price, 500);
    EXPECT_TRUE(ledger::goodsof(host.clock.seconds / 86400 - 401).empty());
    EXPECT_TRUE(ledger::shopsof(host.clock.seconds / 86400 - 401).empty());
    EXPECT_FALSE(ledger::goodsof(host.clock.seconds / 86400 - 400).empty());
    ledger::start();
    const ledger::happening trade{
        .what = ledger::kind::purchase, .itemnbt = kinds[0], .pieces = 1, .price = 1, .paid = 1};
    EXPECT_EQ(host.trades(trade), 901U);
    EXPECT_EQ(whole(), 402U);

    // One is undone, and the shop declared right; in the end the last entry is there alone, so that no number comes
    // again, and nothing of the others.
    auto back = trade;
    const auto undone = ledger::find(901).value();
    back.what = ledger::kind::undopurchase;
    back.undoes = &undone;
    EXPECT_EQ(host.trades(back), 902U);
    ledger::openanew(sells("1"));
    host.records.endpass();
    host.clock.seconds += 500LL * 86400;
    thins();
    EXPECT_EQ(whole(), 1U);
    EXPECT_TRUE(host.records.tables["ledger.undone"].empty());
    ledger::start();
    EXPECT_EQ(host.trades(trade), 903U);
    EXPECT_EQ(whole(), 2U);
}
