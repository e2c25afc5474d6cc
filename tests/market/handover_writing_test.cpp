// A market that is written down while it is traded in.
#include <random>

#include "plugin/handover/checking.h"
#include "plugin/ledger/audit.h"
#include "plugin/shopsystem/lists.h"
#include "plugin/shopsystem/shoprecords.h"
#include "tests/market/handover_stage.h"

using namespace handovers;
using testing::AllOf;
using testing::Not;

namespace {

// What a file holds, added up.
struct addedup : handover::linetaker {
    using sums = std::map<std::string, std::vector<std::int64_t>>;  // by day, kind and what of
    sums ofentries, ofdays;
    std::map<std::uint64_t, ledger::entry> entries;
    std::map<std::uint64_t, std::string> texts;

    void shop(const handover::shopline&, const json&) override {}
    void opening(const handover::shopline&, const ledger::shopbooks&) override {}
    void item(const std::string& text) override { texts[ledger::hashof(text)] = text; }
    void entry(const ledger::entry& one) override {
        entries[one.number] = one;
        const auto& trade = ledger::isundo(one.what) ? entries.at(one.undoes) : one;
        const std::int64_t sign = ledger::isundo(one.what) ? -1 : 1;
        const auto day = trade.time / 86400;
        add(ofentries, fmt::format("{} {}", day, ledger::variantof(texts.at(trade.tag)).text()), sign * trade.pieces,
            sign * trade.pieces * trade.price);
        add(ofentries, fmt::format("{} {}.sell", day, trade.shop), sign * trade.pieces, sign * trade.paid);
    }
    void sum(const handover::sumline& one) override {
        add(ofdays, fmt::format("{} {}", one.day, one.of), one.sum.pieces, one.sum.money);
    }
    static void add(sums& to, const std::string& of, std::int64_t pieces, std::int64_t money) {
        auto& sum = to[of];
        sum.resize(2);
        sum[0] += pieces;
        sum[1] += money;
        if (sum[0] == 0 && sum[1] == 0) to.erase(of);
    }
};

}  // namespace

TEST(Handover, WhatIsTradedWhileItIsWrittenFits) {
    Writing market;
    for (const char* id : {"1", "2", "3"}) market.put(id, {{"items", {good("apple", 7, 100000)}}});
    std::mt19937 random(3);
    std::vector<ledger::entry> open;
    const auto trades = [&] {
        const std::string id(1, static_cast<char>('1' + random() % 3));
        if (open.empty() || random() % 3 != 0) {
            open.push_back(ledger::find(market.trades(id, 1 + random() % 5)).value());
        } else {
            const auto place = open.begin() + static_cast<std::ptrdiff_t>(random() % open.size());
            market.trades(place->shop, place->pieces, &*place);
            open.erase(place);
        }
    };
    for (int i = 0; i < 500; ++i) {
        trades();
        market.clock.seconds += 600;
    }
    // Taken in just now, and its file is not there yet.
    shopsystem::putsection("5", shopsystem::sell, {{"items", {good("apple", 7, 1)}}});
    ledger::takein("5", shopsystem::sell,
                   {1, 0, 0, {{ledger::hashof(good("apple", 7, 1)["itemnbt"].get<std::string>()), 1}}});
    market.records.endpass();
    EXPECT_EQ(ledger::audit([] { return true; }).differences, std::vector<ledger::difference>());
    int asked = 0;
    market.writes("busy", [&] { return trades(), trades(), ++asked; });
    EXPECT_GT(asked, 8);
    const auto path = handover::pathof("busy");
    EXPECT_EQ(handover::checkfile(path, [] { return true; }).counts.at("shop"), 8) << "shops and entries fit";
    addedup file;
    for (handover::filewalk walk(path, file); walk.step();) {
    }
    EXPECT_EQ(file.ofdays, file.ofentries);
    EXPECT_LT(file.entries.size(), ledger::nextnumber() - 1) << "something was left out";
    const auto fault = [&](const char* name, bool goeson) {
        return market_tests::fault([&] { market.writes(name, [goeson] { return goeson; }); });
    };
    EXPECT_THAT(fault("ends", false), HasSubstr("the server stops"));
    EXPECT_FALSE(market.disk.contents.contains(handover::pathof("ends")));
    market.put("4", {{"items", {{{"price", "x"}}}}});
    EXPECT_THAT(fault("broken", true), HasSubstr("data/4.json: sell.items[0].price: must be a whole number"));

    // Lists know what is ahead of its file.
    market.put("6", {{"items", {good("apple", 7, 9, "Old")}}});
    shopsystem::putsection("6", shopsystem::sell, {{"items", {good("apple", 7, 1, "New")}}});
    market.records.endpass();
    shopsystem::sellshop::prepareglobalsellshopfilterforplayer("viewer");
    std::string names;
    const auto& list = shopsystem::getplayershopstate("viewer").sellreadlist;
    for (std::size_t i = 0; i < list.size(); ++i) names += list.row(i).shopitemname + " ";
    EXPECT_THAT(names, AllOf(HasSubstr("New"), Not(HasSubstr("Old"))));
}
