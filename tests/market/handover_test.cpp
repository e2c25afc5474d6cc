// A market that is handed over, seen by the operator: a random one comes out of a file as it went in, what is wrong in
// a file is named and nothing of it taken in, and a kill at any point leaves all of it or nothing.
#include <fmt/format.h>
#include <gmock/gmock.h>

#include <sstream>

#include "host/world/items.h"
#include "host/world/worldparts.h"
#include "plugin/handover/checking.h"
#include "plugin/handover/exporting.h"
#include "plugin/ledger/audit.h"
#include "plugin/shopsystem/shoprecords.h"
#include "tests/market/forms_stage.h"
#include "tests/market/shophost.h"
#include "tests/story/operations.h"

using namespace forms;
using testing::HasSubstr;

namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

std::string filenamed(const std::string& name) { return "plugins/Ordomart/exports/" + name + ".jsonl"; }

Lines linesof(const std::string& text) {
    Lines lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}
std::string textof(const Lines& lines) {
    std::string text;
    for (const auto& line : lines) text += line + "\n";
    return text;
}

// All that two exports of the same market have alike: revisions belong to a run.
Lines lasting(const std::string& text) {
    auto lines = linesof(text);
    lines.erase(lines.begin());
    if (!lines.empty()) lines.pop_back();
    for (auto& line : lines)
        if (line.starts_with(R"({"shop":)")) {
            auto shop = json::parse(line);
            shop["shop"].erase("revision");
            line = shop.dump();
        }
    return lines;
}

// What the operator is told, until nothing moves any more.
std::string told(Stage& stage, Actor& who, const std::string& line) {
    who.forgets().types(line);
    stage.ticks(60);
    return who.replies() + "\n" + who.chat();
}

// A server that a market is handed over to, and an operator of it.
struct Target {
    explicit Target(const std::string& content, stage::Setting setting = {})
        : stage(with(std::move(setting), content)) {
        joins();
    }
    static stage::Setting with(stage::Setting setting, const std::string& content) {
        if (setting.config.is_null()) setting.config = {{"moneymode", 1}};
        setting.files.emplace_back(filenamed("full"), content);
        return setting;
    }
    void joins() { olga = &stage.join("Olga", "2535400000000999", "en_US", desktop, 1); }
    std::string imports() { return told(stage, *olga, "ordomart import full"); }
    std::string audits() { return told(stage, *olga, "ordomart audit"); }
    std::string exports(const std::string& name) {
        EXPECT_THAT(told(stage, *olga, "ordomart export " + name), HasSubstr("is complete"));
        return stage.file(filenamed(name));
    }
    [[nodiscard]] bool isempty() {
        return exports(fmt::format("look{}", looks++)).find(R"("shop":{)") == std::string::npos;
    }

    Stage stage;
    Actor* olga = nullptr;
    int looks = 0;
};

// A name that a look notes is saved with the next change.
json lastingsection(const json& section) { return story::lasting(section, INT64_MAX); }

const char* const nodifferences = ", 0 differences.";

// A market that has been traded in at random, and its shop files.
struct randommarket {
    std::string exported;
    std::map<std::string, json> files;
};
randommarket tradedatrandom(bool llmoney, std::uint64_t seed) {
    story::World world(llmoney);
    std::mt19937_64 random(seed);
    std::vector<const story::operation*> choices;
    for (const auto& o : story::operations()) choices.insert(choices.end(), o.weight, &o);
    for (int step = 0; step < 400; ++step) {
        const auto& o = *choices[random() % choices.size()];
        const std::size_t who = random() % story::players;
        story::Dice dice(static_cast<std::uint32_t>(random()));
        if (!world.ishere(who) && o.behind == story::holds::books) continue;
        world.begins();
        o.run(world, who, dice);
    }
    if (!world.ishere(story::theoperator)) world.comesorgoes(story::theoperator);
    auto& stage = world.stage();
    auto& olga = world.actor(story::theoperator).dismisses().may(1);
    EXPECT_THAT(told(stage, olga, "ordomart export full"), HasSubstr("is complete"));
    randommarket made{stage.file(filenamed("full")), {}};
    for (std::size_t who = 0; who < story::parties; ++who)
        made.files[story::World::xuid(who)] = stage.shopfile(story::World::xuid(who));
    EXPECT_THAT(told(stage, olga, "ordomart export full"), HasSubstr("is there already"));
    return made;
}

}  // namespace

TEST(Handover, ARandomMarketComesOutAsItWentIn) {
    for (const bool llmoney : {true, false}) {
        SCOPED_TRACE(llmoney);
        auto market = tradedatrandom(llmoney, llmoney ? 11 : 12);
        Target target(market.exported, {.config = {{"moneymode", llmoney ? 1 : 0}}, .llmoney = llmoney});
        EXPECT_THAT(target.imports(), HasSubstr("full.jsonl is taken in: 10 shops, "));
        EXPECT_THAT(target.audits(), HasSubstr(nodifferences));
        for (const auto& [xuid, file] : market.files)
            for (const char* section : {"sell", "recycles"})
                EXPECT_EQ(lastingsection(target.stage.shopfile(xuid)[section]), lastingsection(file[section])) << xuid;
        EXPECT_EQ(lasting(target.exports("again")), lasting(market.exported));
        EXPECT_GT(lasting(market.exported).size(), 40U);
        EXPECT_NE(formrows(*target.olga, "Selling shops (form)"), "") << "the lists have it";
        EXPECT_THAT(target.imports(), HasSubstr(" shops are here and not empty: 2535400000000100"));
        target.stage.restart();
        target.joins();
        EXPECT_THAT(target.audits(), HasSubstr(nodifferences));
        EXPECT_EQ(lasting(target.exports("behind")), lasting(market.exported));
    }
}

namespace {

// A market without a server, in which one good is bought and taken back, and which is written down.
struct Writing : market_tests::ShopHost {
    Writing() {
        services.items = &host::itemtable();
        clock.seconds = host::ServerOptions().manualclock / 1000;
        ledger::start();
    }
    // Behind its pass.
    std::uint64_t trades(const std::string& id, std::int64_t pieces, const ledger::entry* undoes = nullptr) {
        auto& shop = market_tests::sells(id);
        auto row = shop.getshopitem(0);
        const auto before = ledger::stateof(row);
        const auto sign = undoes != nullptr ? 1 : -1;
        row.shopitemleftnum += static_cast<std::int32_t>(sign * pieces);
        shopsystem::tojson(row, shop.items[0]);
        shopsystem::countup(shop.sellcount, -sign * pieces);
        shopsystem::countup(shop.salesvolume, -sign * pieces * row.price);
        shop.markshopchanged();
        const auto number =
            ledger::write(shop, {.what = undoes != nullptr ? ledger::kind::undopurchase : ledger::kind::purchase,
                                 .actor = bob,
                                 .itemnbt = row.itemnbt,
                                 .pieces = pieces,
                                 .price = row.price,
                                 .paid = pieces * row.price,
                                 .before = before,
                                 .after = ledger::stateof(row),
                                 .undoes = undoes,
                                 .undoneby = undoes != nullptr ? bob : ""});
        records.endpass();
        return number;
    }
    const std::string& writes(
        const std::string& name, const std::function<bool()>& goeson = [] { return true; }) {
        const auto path = handover::pathof(name);
        handover::exportmarket(path, goeson, [](const auto&) {});
        return disk.contents.at(path);
    }
};

// A small market in which every kind of line stands: 0 market, 1 shop, 2 good, 3 discount, 4 opening, 5 recycle shop,
// 6 commission, 7 opening, 8 item, from 9 on entries, of which the last undoes the one before, two sums and the end.
Lines smallmarket(int purchases) {
    Writing market;
    market.disk.contents[Writing::path(ada)] =
        stage::shopfileof(ada, good("apple", 10, 5 + purchases), commission("stone", 3, 8),
                          {{"shopdiscount", {{{"shopitemtag", "t"}, {"discount", "%50"}, {"timeend", 99}}}}})
            .dump();
    ledger::openanew(market_tests::buys(ada));
    market.records.endpass();
    std::uint64_t last = 0;
    for (int i = 0; i < purchases; ++i) last = market.trades(ada, 1);
    const auto undone = ledger::find(last).value();
    market.trades(ada, 1, &undone);
    auto lines = linesof(market.writes("small"));
    auto end = json::parse(lines.back());
    end["end"].erase("sum");  // so that it can be changed
    lines.back() = end.dump();
    return lines;
}

// One value changed in a line.
std::function<void(Lines&)> sets(std::size_t at, const char* pointer, json value) {
    return [=](Lines& lines) {
        auto line = json::parse(lines[at]);
        line[json::json_pointer(pointer)] = value;
        lines[at] = line.dump();
    };
}
std::function<void(Lines&)> drops(std::size_t at, const std::string& pointer) {
    return [=](Lines& lines) {
        auto line = json::parse(lines[at]);
        const auto cut = pointer.rfind('/');
        line[json::json_pointer(pointer.substr(0, cut))].erase(pointer.substr(cut + 1));
        lines[at] = line.dump();
    };
}

}  // namespace

TEST(Handover, WhatIsWrongInAFileIsNamedAndNothingTakenIn) {
    const auto whole = smallmarket(3);
    const struct {
        const char* what;
        std::function<void(Lines&)> change;
        std::string told;
    } faults[] = {
        {"empty", [](Lines& l) { l.clear(); }, "line 1: the file ends here"},
        {"truncated", [](Lines& l) { l.pop_back(); }, "line 15: the file ends here, and its last line is missing"},
        {"a torn line", [](Lines& l) { l[12].resize(20); }, "line 13: the line is no JSON"},
        {"a line twice", [](Lines& l) { l.insert(l.begin() + 10, l[9]); },
         "line 11: key \"entry.number\": 1 stands behind 1"},
        {"an entry lost", [](Lines& l) { l.erase(l.begin() + 10); },
         "line 11: 2535400000000001.sell, entry 3: counter 2"},
        {"a sum lost", [](Lines& l) { l.erase(l.begin() + 13); }, "line 15: key \"end.lines\""},
        {"a good lost", [](Lines& l) { l.erase(l.begin() + 2); }, "line 3: key \"discount\": cannot stand before"},
        {"a discount lost", [](Lines& l) { l.erase(l.begin() + 3); },
         "line 4: the shop 2535400000000001.sell lacks 0 goods"},
        {"a shop twice",
         [](Lines& l) {
             l.insert(l.begin() + 5, {l[1], l[2], l[3]});
         },
         "line 6: key \"shop.owner\": the shop 2535400000000001.sell is there twice"},
        {"something behind the end", [](Lines& l) { l.push_back(l.back()); }, "line 17: \"end\" cannot stand here"},
        {"an order", [](Lines& l) { std::swap(l[9], l[13]); }, "\"entry\" cannot stand here"},
        {"format", sets(0, "/market/format", "other"), "line 1: key \"market.format\": is another"},
        {"version", sets(0, "/market/version", 2), "line 1: key \"market.version\": 2 is not 1"},
        {"kind", [](Lines& l) { l[2] = "{\"gold\":{}}"; }, "line 3: \"gold\" is no kind of line"},
        {"owner", sets(1, "/shop/owner", "../../x"), "line 2: key \"shop.owner\": is no owner's key"},
        {"counter", sets(1, "/shop/about/sellcount", 7),
         "line 2: 2535400000000001.sell, entry 4: counter 2 in the ledger, 7"},
        {"counter type", sets(1, "/shop/about/sellcount", "7"),
         "line 2: key \"shop.about.sellcount\": must be a whole"},
        {"key", sets(1, "/shop/about/gold", 7), "about.gold\": is no key of a shop"},
        {"key gone", drops(1, "/shop/about/shopname"), "about.shopname\": is missing"},
        {"price", sets(2, "/good/price", -1), "line 3: key \"good.price\": -1 is below 0"},
        {"price gone", drops(2, "/good/price"), "line 3: key \"good.price\": is missing"},
        {"large price", sets(2, "/good/price", 4294967296),
         "line 3: key \"good.price\": must be a whole number of 32 bits"},
        {"stock", sets(2, "/good/shopitemleftnum", 7),
         "line 2: 2535400000000001.sell, entry 4: stock 6 in the ledger, 7"},
        {"item", sets(2, "/good/itemnbt", "{Name:\"minecraft:gold\",Count:1b}"),
         "this server knows no item \"minecraft:gold\""},
        {"discount", sets(3, "/discount/timeend", "x"), "line 4: key \"discount.timeend\": must be a whole number"},
        {"deposit", sets(6, "/commission/deposit", 25),
         "line 7: key \"commission.record.deposit\": 25 is written, and"},
        {"offer", sets(6, "/commission/record/offer", 4), "24 is written, and what is wanted at its price comes to 32"},
        {"stored", sets(6, "/commission/record/nowhasrecyclenum", 1), "1 pieces are counted, and 0 are stored"},
        {"promised", sets(6, "/commission/record/sponsored", 25), "sponsored\": 25 is not between 0 and 24"},
        {"opening", sets(7, "/opening/rows/0/left", 9),
         "line 6: 2535400000000001.recycles, no entry: commission 9 wanted"},
        {"opening's key", sets(7, "/opening/gold", 9), "line 8: key \"opening.gold\": is no key of this line"},
        {"tag", sets(8, "/item/nbt", "{}"), "line 9: key \"item.tag\": is not that of the text"},
        {"tag gone", [](Lines& l) { l.erase(l.begin() + 8); }, "line 9: key \"entry.tag\": is no item above"},
        {"shop of an entry", sets(9, "/entry/shop", "77"), "line 10: key \"entry.shop\": 77 has no such shop"},
        {"what", sets(9, "/entry/what", "theft"), "line 10: key \"entry.what\": is unknown: \"theft\""},
        {"volume", sets(10, "/entry/volume", 21),
         "line 11: 2535400000000001.sell, entry 2: volume 20 in the ledger, 21"},
        {"before", sets(10, "/entry/before/left", 9), "line 11: 2535400000000001.sell, entry 2: stock 7"},
        {"undoes", sets(12, "/entry/undoes", 4), "line 13: key \"entry.undoes\": is no entry above"},
        {"day", sets(13, "/day/prices", json{{10, 1}, {10, 1}}), "line 14: key \"day.prices\": must rise"},
        {"days", [](Lines& l) { std::swap(l[13], l[14]); },
         "line 15: key \"day.of\": is there twice, or not in its order"},
        {"sum", sets(15, "/end/sum", "0000000000000000"), "line 16: key \"end.sum\": does not fit"},
    };
    Target target(textof(whole));
    for (const auto& fault : faults) {
        auto lines = whole;
        fault.change(lines);
        target.stage.write(filenamed("full"), textof(lines));
        const auto said = target.imports();
        EXPECT_THAT(said, HasSubstr("Nothing has been taken in: ")) << fault.what;
        EXPECT_THAT(said, HasSubstr(fault.told)) << fault.what;
    }
    EXPECT_TRUE(target.isempty());
    for (const char* name : {"../full", "a/b", "\"\"", ".hidden", "x.json"})
        EXPECT_THAT(told(target.stage, *target.olga, std::string("ordomart import ") + name),
                    HasSubstr("is no name for a file"));
    EXPECT_THAT(told(target.stage, *target.olga, "ordomart import nothing"),
                HasSubstr("line 1: the file cannot be read"));
    target.stage.write(filenamed("full"), textof(whole));
    EXPECT_THAT(target.imports(), HasSubstr("is taken in: 2 shops, 1 goods, 1 commissions, 4 entries"));
    EXPECT_THAT(target.audits(), HasSubstr("4 entries, 2 shops" + std::string(nodifferences)));
}

TEST(Handover, BesideALedgerThatHasEntriesNumbersAreGivenAnew) {
    Target target(textof(smallmarket(3)));
    const std::string other = "2535400000000005";
    target.stage.writeshop(other, {good("bread", 7, 5, "Rolls")});
    Actor& carl = target.stage.join("Carl", bob);
    carl.setmoney(100)
        .types("ordomart formmenu")
        .presses("Selling shops (form)")
        .presses("Rolls")
        .fills({{"quantity", "1"}})
        .dismisses();
    carl.gives(0, "apple", 1);
    target.stage.join("Alice", ada)
        .setmoney(100)
        .types("ordomart myshop")
        .closes();  // she has looked at her empty shop
    EXPECT_THAT(target.imports(), HasSubstr("is taken in"));
    EXPECT_THAT(target.audits(), HasSubstr("5 entries, 3 shops" + std::string(nodifferences)));
    EXPECT_THAT(told(target.stage, *target.olga, "ordomart undo 4"),
                HasSubstr("Trade 4 is undone already, by entry 5."));
    EXPECT_THAT(told(target.stage, *target.olga, "ordomart undo 3"), HasSubstr("Trade 3 is undone, as entry 6"));
    EXPECT_THAT(target.audits(), HasSubstr(nodifferences));
    target.stage.restart();
    target.joins();
    EXPECT_THAT(target.audits(), HasSubstr("6 entries, 3 shops" + std::string(nodifferences)));
    EXPECT_THAT(target.imports(), HasSubstr("1 shops are here and not empty: Alice"));
}

// A copy of the directory behind each pass that is written is what a kill there would leave.
TEST(Handover, AKillAtAnyPointLeavesAllOrNothing) {
    const auto content = textof(smallmarket(2500));
    const auto copies = fs::temp_directory_path() / fmt::format("ordomart-handover-{}", ::getpid());
    fs::remove_all(copies);
    const auto directory = copies / "server";
    fs::create_directories(directory);
    int killed = 0;
    std::string exported;
    {
        Target target(content, {.directory = directory});
        target.stage.server().world().parts().atwrite = [&](std::string_view at) {
            if (at == "committed") fs::copy(directory, copies / std::to_string(killed++), fs::copy_options::recursive);
        };
        EXPECT_THAT(target.imports(), HasSubstr("is taken in"));
        target.stage.server().world().parts().atwrite = [](std::string_view) {};
        EXPECT_THAT(target.audits(), HasSubstr("2501 entries, 2 shops" + std::string(nodifferences)));
        exported = target.exports("all");
    }
    EXPECT_GT(killed, 8);
    int nothing = 0, all = 0, wereunderway = 0;
    for (int kill = 0; kill < killed; ++kill) {
        SCOPED_TRACE(kill);
        Target target(content, {.directory = copies / std::to_string(kill)});
        wereunderway += target.stage.log().find("goes on with it") != std::string::npos ? 1 : 0;
        target.stage.ticks(60);
        EXPECT_THAT(target.audits(), HasSubstr(nodifferences));
        if (target.isempty()) {
            ++nothing;
            EXPECT_THAT(target.imports(), HasSubstr("is taken in")) << "it can be done again";
        } else {
            ++all;
        }
        EXPECT_EQ(lasting(target.exports("behind")), lasting(exported));
    }
    fs::remove_all(copies);
    EXPECT_GT(nothing, 2);
    EXPECT_GT(all, wereunderway);
    EXPECT_GT(wereunderway, 2);
}

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
    market.records.endpass();
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
}
