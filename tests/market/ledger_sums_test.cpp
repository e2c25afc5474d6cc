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

TEST(LedgerPrices, OneAbsurdTradeMovesNoMiddleAndManyPricesStayNear) {
    ledger::prices few;
    for (const std::int64_t price : {9, 10, 10, 11}) few.add(price, 1);
    few.add(99999999, 1);
    EXPECT_EQ(few.median(), 10);
    EXPECT_EQ(few.highest(), 99999999);
    few.add(99999999, -1);
    EXPECT_EQ(few.highest(), 11);

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

    const auto whole = [] {
        const auto result = ledger::audit([] { return true; });
        EXPECT_EQ(result.differences, std::vector<ledger::difference>());
        return result.entries;
    };
    EXPECT_EQ(whole(), 900U);
    for (int i = 0; i < 8; ++i) {
        ledger::thin();
        host.records.endpass();
    }
    EXPECT_EQ(whole(), 401U) << "400 days are kept";
    EXPECT_FALSE(ledger::find(499).has_value());
    EXPECT_EQ(ledger::find(500).value().price, 500);
    EXPECT_TRUE(ledger::goodsof(host.clock.seconds / 86400 - 401).empty());
    EXPECT_FALSE(ledger::goodsof(host.clock.seconds / 86400 - 400).empty());
    ledger::start();
    EXPECT_EQ(host.trades({.itemnbt = kinds[0], .pieces = 1, .price = 1, .paid = 1}), 901U);
    EXPECT_EQ(whole(), 402U);
}
