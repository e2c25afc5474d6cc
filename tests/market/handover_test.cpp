// A market that is handed over, seen by the operator: a random one comes out of a file as it went in, what is wrong in
// a file is named and nothing of it taken in, and a kill at any point leaves all of it or nothing.
#include <chrono>

#include "host/core/views.h"
#include "host/world/worldparts.h"
#include "platform/files.h"
#include "platform/records.h"
#include "tests/market/handover_stage.h"
#include "tests/story/operations.h"

using namespace handovers;

namespace {

namespace fs = std::filesystem;

// A name that a look notes is saved with the next change.
json lastingsection(const json& section) { return story::lasting(section, INT64_MAX); }

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
        EXPECT_THAT(target.imports(), HasSubstr("full.jsonl is taken in. Shops: 10, "));
        EXPECT_THAT(target.audits(), HasSubstr(nodifferences));
        for (const auto& [xuid, file] : market.files)
            for (const char* section : {"sell", "recycles"})
                EXPECT_EQ(lastingsection(target.stage.shopfile(xuid)[section]), lastingsection(file[section])) << xuid;
        EXPECT_EQ(lasting(target.exports("again")), lasting(market.exported));
        EXPECT_GT(lasting(market.exported).size(), 40U);
        EXPECT_NE(formrows(*target.olga, "Selling shops (form)"), "") << "the lists have it";
        EXPECT_THAT(target.imports(), HasSubstr("shops that are here and not empty: 2535400000000100"));
        target.stage.restart();
        target.joins();
        EXPECT_THAT(target.audits(), HasSubstr(nodifferences));
        EXPECT_EQ(lasting(target.exports("behind")), lasting(market.exported));
        // Without a file, but with a past in the ledger.
        for (const auto& [xuid, file] : market.files)
            target.stage.onserver([&, &of = xuid] {
                (void)target.stage.server().services().files->remove("plugins/Ordomart/data/" + of + ".json");
            });
        target.stage.restart();
        target.joins();
        EXPECT_THAT(target.imports(), HasSubstr("shops that are here and not empty: 2535400000000100"));
    }
}

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
        {"an entry behind its shop", sets(1, "/shop/entries", 4),
         "line 13: key \"entry.number\": lies behind the state"},
        {"undone twice",
         [](Lines& l) {
             l.insert(l.begin() + 13, l[12]), sets(13, "/entry/number", 5)(l), sets(1, "/shop/entries", 6)(l);
         },
         "line 14: key \"entry.undoes\": entry 3 is undone twice"},
        {"an owner of nothing", sets(1, "/shop/owner", "0"), "line 2: key \"shop.owner\": is no owner's key"},
        {"a good in a recycle shop", [](Lines& l) { l[6] = l[2]; },
         "line 7: key \"good\": cannot stand in a recycle shop"},
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
                HasSubstr("There is no " + filenamed("nothing")));
    target.stage.write(filenamed("full"), textof(whole));
    EXPECT_THAT(target.imports(),
                HasSubstr("is taken in. Shops: 2, goods: 1, commissions: 1, entries of the ledger: 4"));
    EXPECT_THAT(target.audits(), HasSubstr("Entries: 4, shops: 2" + std::string(nodifferences)));
}

TEST(Handover, BesideALedgerThatHasEntriesNumbersAreGivenAnew) {
    // At the time that the money library goes by, which has nothing of what was paid elsewhere.
    const auto now = std::chrono::system_clock::now().time_since_epoch() / std::chrono::seconds(1);
    auto lines = smallmarket(3);
    for (std::size_t at = 9; at < 13; ++at) sets(at, "/entry/time", now)(lines);
    Target target(textof(lines), {.clock = now * 1000});
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
    EXPECT_THAT(target.audits(), HasSubstr("Entries: 5, shops: 3" + std::string(nodifferences)));
    EXPECT_THAT(told(target.stage, *target.olga, "ordomart undo 4"),
                HasSubstr("Trade 4 is undone already, by entry 5."));
    EXPECT_THAT(told(target.stage, *target.olga, "ordomart undo 3"), HasSubstr("Trade 3 is undone, as entry 6"));
    EXPECT_THAT(target.audits(), HasSubstr(nodifferences));
    target.stage.restart();
    target.joins();
    EXPECT_THAT(target.audits(), HasSubstr("Entries: 6, shops: 3" + std::string(nodifferences)));
    EXPECT_THAT(target.imports(), HasSubstr("shops that are here and not empty: Alice"));
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
        EXPECT_THAT(target.audits(), HasSubstr("Entries: 2501, shops: 2" + std::string(nodifferences)));
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
        target.stage.onserver(
            [&] { EXPECT_TRUE(target.stage.server().services().records->keys("handover.staged", "", 1).empty()); });
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

TEST(Handover, WhatWouldBeLostIsNotOverwritten) {
    const json state = {{"shopstate", {{"isbaned", true}, {"bantimeend", 4102444800}, {"banreason", "r"}}}};
    const json none = json::object(), discounts = {{"shopdiscount", {{{"shopitemtag", "t"}}}}};
    const struct {
        const char* what;
        json sells, recycles;
        bool isempty = false;
    } cases[] = {{"a name", {{"shopname", "Fruit"}}, {{"describe", "d"}}, true},
                 {"a ban", state, none},
                 {"another ban", none, state},
                 {"a discount", discounts, none},
                 {"sales", {{"salesvolume", 1}}, none},
                 {"pieces taken in", none, {{"recycleamount", 1}}},
                 {"an operator's", none, {{"isopshop", true}}}};
    const auto content = textof(smallmarket(1));
    for (const auto& [what, sells, recycles, isempty] : cases) {
        SCOPED_TRACE(what);
        Target target(content);
        target.stage.writeshop(ada, json::array(), json::array(), sells, recycles);
        EXPECT_THAT(target.imports(), HasSubstr(isempty ? "is taken in" : "shops that are here and not empty: "));
    }
    // While it is under way: the shop gets something, or the file is written anew. And once that is too late, nobody
    // trades.
    const auto large = textof(smallmarket(2500));
    const std::function<void(Target&)> meanwhile[] = {
        [](Target& target) { target.stage.writeshop(ada, good("bread", 1, 1)); },
        [&](Target& target) {
            auto lines = linesof(large);
            sets(lines.size() - 3, "/day/money", 7)(lines);
            target.stage.write(filenamed("full"), textof(lines));
        },
        [](Target&) {}};
    const char* const told[] = {
        "shops that are here and not empty: ", "full.jsonl: has been changed since it was checked", "is taken in"};
    for (std::size_t i = 0; i < std::size(told); ++i) {
        Target target(large);
        target.olga->types("ordomart import full");
        for (int n = 0; n < 600 && target.olga->chat().find("is being taken in") == std::string::npos; ++n)
            target.stage.ticks(1);
        meanwhile[i](target);
        for (int n = 0; n < 60; ++n) {
            target.stage.ticks(1);
            target.olga->types("ordomart undo 9999");
        }
        const auto replies = target.olga->replies();
        EXPECT_THAT(target.olga->chat(), HasSubstr(told[i]));
        if (i == 2) {
            EXPECT_THAT(replies, HasSubstr("The shops of another market are being taken in"));
        }
        EXPECT_THAT(replies, testing::EndsWith("There is no entry 9999 in the ledger."));
    }
}

// The numbers of a file may have gaps, and what an undo has undone need not be in it.
TEST(Handover, AnUndoOfWhatIsNotThereUndoesNothingElse) {
    auto lines = smallmarket(5);
    sets(4, "/opening",
         {{"from", 5}, {"count", 4}, {"volume", 40}, {"rows", json::parse(lines[4])["opening"]["rows"]}})(lines);
    sets(4, "/opening/rows/0/left", 6)(lines);
    sets(14, "/entry/undoes", 3)(lines);
    lines.erase(lines.begin() + 11, lines.begin() + 13);
    sets(lines.size() - 1, "/end/lines/entry", 4)(lines);
    Target target(textof(lines));
    EXPECT_THAT(target.imports(), HasSubstr("is taken in"));
    EXPECT_THAT(target.audits(), HasSubstr("Entries: 4, shops: 2" + std::string(nodifferences)));
    EXPECT_THAT(told(target.stage, *target.olga, "ordomart undo 3"), HasSubstr(bob + " is not here, or is dead."));
}

// More than are written at a time.
TEST(Handover, ManyShopsReachTheirFilesAndTheLists) {
    const auto lines = smallmarket(1);
    Lines many{lines[0]};
    constexpr int shops = 450;
    for (int i = 0; i < shops; ++i) {
        Lines shop{lines[1], lines[2], lines[3]};
        sets(0, "/shop/owner", "many" + std::to_string(i))(shop);
        many.insert(many.end(), shop.begin(), shop.end());
    }
    many.push_back(json{{"end", {{"lines", {{"shop", shops}, {"good", shops}, {"discount", shops}}}}}}.dump());
    Target target(textof(many));
    EXPECT_THAT(target.imports(), HasSubstr(fmt::format("is taken in. Shops: {},", shops)));
    target.stage.ticks(200);
    int saved = 0;
    for (int i = 0; i < shops; ++i)
        saved += target.stage.exists(fmt::format("plugins/Ordomart/data/many{}.json", i)) ? 1 : 0;
    EXPECT_EQ(saved, shops);
    const json all = json::parse(target.stage.server().views().ask("goods", "{}"));
    EXPECT_EQ(all["count"], shops);
}
