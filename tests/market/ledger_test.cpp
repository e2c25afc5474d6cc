// The ledger, seen from the market: what is entered, what players and operators are told out of it, trades taken back,
// and an audit that finds whatever was changed behind its back.
#include <prometheus/metric_family.h>

#include <regex>

#include "host/core/views.h"
#include "tests/market/ledger_stage.h"

using namespace forms;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

TEST(Ledger, NumbersGoOnAndEntriesTellWhatHappened) {
    Market m;
    m.buys("Red apples", 3);
    m.sells("Stones", 7);
    m.buys("The state's", 1);
    m.sells("The state's wish", 2);
    m.buys("Red apples", 99);  // refused
    EXPECT_EQ(m.audit(), "");
    m.stage.restart();
    m.joins();
    m.buys("bread", 5);
    EXPECT_THAT(m.entries(),
                ElementsAre("purchase Carl 3*10=30 fee 3", "sale Carl 7*3=21 fee 0", "purchase Carl 1*20=20 fee 2",
                            "sale Carl 2*2=4 fee 0", "purchase Carl 5*7=35 fee 3"));
    EXPECT_EQ(m.audit(), "") << "behind a restart";
}

TEST(Ledger, ATradeIsUndoneOnBothLegsOnce) {
    for (const bool llmoney : {true, false}) {
        SCOPED_TRACE(llmoney);
        Market m(10, llmoney);
        m.alice->dismisses();
        const auto fees = [&] {
            for (const auto& family : m.stage.server().views().counts())
                if (family.name == "ordomart_fees_total") return family.metric.at(0).counter.value;
            return -1.0;
        };
        const struct {
            const char *list, *title;
            int pieces;
        } trades[] = {
            {"Selling shops (form)", "Red apples", 3},  {"Recycle shops (form)", "Stones", 7},
            {"Selling shops (form)", "The state's", 1}, {"Recycle shops (form)", "The state's wish", 1},
            {"Recycle shops (form)", "Earth", 3},       {"Selling shops (form)", "Red apples", 10}};  // all there is
        m.bob->gives(5, "apple", 1).gives(6, "dirt", 4);
        int number = 0;
        for (const auto& [list, title, pieces] : trades) {
            SCOPED_TRACE(title);
            const auto before = m.state();
            m.trades(list, title, pieces);
            ++number;
            const auto behind = m.state();
            EXPECT_NE(behind, before);
            EXPECT_THAT(m.undo(number), HasSubstr(fmt::format("Trade {} is undone, as entry {}", number, number + 1)));
            EXPECT_EQ(m.state(), before);
            EXPECT_THAT(m.bob->chat(),
                        HasSubstr(fmt::format("An operator has undone trade {}: {} x ", number, pieces)));
            EXPECT_EQ(m.undo(number), fmt::format("Trade {} is undone already, by entry {}.", number, number + 1));
            EXPECT_THAT(m.undo(number + 1), HasSubstr(" undone."));
            EXPECT_EQ(m.state(), before);
            ++number;
        }
        const auto told = [&](const std::string& who) {
            m.olga->forgets().types("ordomart trades" + who);
            m.stage.ticks(2);
            const std::regex times(R"(§7\d{4}-\d\d-\d\d \d\d:\d\d§r |§.)");
            return std::regex_replace(m.olga->chat() + m.olga->replies(), times, "");
        };
        const std::string title = "The newest trades, by their numbers:\n";
        EXPECT_THAT(told(""),
                    testing::StartsWith(title + "12 trade 11 was undone\n11 Carl bought 10 x Apple from Alice "));
        EXPECT_THAT(told(" Olga"),
                    testing::StartsWith(title + "8 trade 7 was undone\n7 Carl sold 1 x Apple to Olga for "));
        EXPECT_EQ(told(" Olga"), told(" " + std::string(root)));
        EXPECT_EQ(told(" systemshop"), "There is no such trade in the ledger.");
        EXPECT_EQ(told(" Nobody"), "failed to find playerinfo:Nobody");
        EXPECT_EQ(fees(), 3 + 2 + 10) << "of trades, not of their undoing";
        // Of pieces that lie together some go.
        const auto before = m.state();
        m.sells("Stones", 3);
        m.sells("Stones", 4);
        for (const int pieces : {3, 4}) {
            EXPECT_THAT(m.undo(number + pieces - 2), HasSubstr("is undone, as entry"));
        }
        EXPECT_EQ(m.state(), before);
        EXPECT_EQ(m.audit(), "");
        for (const int none : {99, 0, -1})
            EXPECT_EQ(m.undo(none), fmt::format("There is no entry {} in the ledger.", none));
        EXPECT_EQ(m.bob->forgets().types("ordomart undo 1").replies(), "permission denied");
        EXPECT_EQ(m.bob->types("ordomart audit").types("ordomart trades").replies(),
                  "permission denied\npermission denied\npermission denied");
    }
}

TEST(Ledger, AnUndoSaysAllThatIsMissingAndChangesNothing) {
    Market m;
    m.buys("Red apples", 3);
    m.sells("Stones", 7);
    const auto refuses = [&](int number, const std::string& why) {
        const auto before = m.state();
        EXPECT_EQ(m.undo(number), why);
        EXPECT_EQ(m.state(), before);
    };
    m.bob->loses(0).gives(0, "apple", 1);
    m.bob->gives(1, "apple", 2,
                 R"({Count:2b,CanDestroy:["minecraft:dirt"],Damage:0s,Name:"minecraft:apple",WasPickedUp:0b})");
    m.alice->setmoney(20);
    refuses(1, "Carl lacks 2 of 3 x Apple.\nAlice has 20 of 27 LLmoney.");
    m.bob->gives(0, "apple", 3);
    refuses(1, "Alice has 20 of 27 LLmoney.");
    m.alice->setmoney(27);
    m.bob->setmoney(INT64_MAX);
    refuses(1, "The payment was refused, so nothing has been traded. If this goes on, please tell an operator.");
    m.bob->setmoney(20);
    refuses(2, "Carl has 20 of 21 LLmoney.");
    m.bob->setmoney(21);
    m.alice->dismisses()
        .types("ordomart formmenu")
        .presses("My shop (form)")
        .presses("change to")
        .presses("Pick up recycled items");
    m.alice->presses("Stones").presses("yes").dismisses();
    refuses(2, "Not in the commission of Alice any more: 7 of 7 x Stone.");
    m.alice->setmoney(27);
    m.bob->dies();
    refuses(1, "Carl is not here, or is dead.");
    m.bob->revives().leaves();
    EXPECT_THAT(m.undo(1), HasSubstr("Carl is not here, or is dead."));
    EXPECT_EQ(m.stage.money(ada), 27);
    EXPECT_EQ(m.audit(), "");
}

TEST(Ledger, AnUndoneTradeNeedsItsRecordAsItWas) {
    const auto file = "plugins/Ordomart/data/" + ada + ".json";
    const struct {
        const char* what;
        std::function<void(json&)> inrows;
        const char* told;
    } cases[] = {
        {"gone", [](json& rows) { rows.erase(0); }, "The commission for Stone at 3 is not there any more."},
        {"another offer", [](json& rows) { rows[0]["offer"] = 4; },
         "The commission for Stone does not pay 3 any more."},
        {"full", [](json& rows) { rows[0]["recycleitemleftwanna"] = INT32_MAX; },
         "The commission for Stone at 3 is not there any more."},
        {"another item there, too", [](json& rows) { rows.insert(rows.begin(), commission("apple", 3, 8, "More")); },
         nullptr},
        {"one like it that is empty", [](json& rows) { rows.insert(rows.begin(), commission("stone", 3, 8, "More")); },
         nullptr},
    };
    for (const auto& [what, inrows, told] : cases) {
        SCOPED_TRACE(what);
        Market m;
        m.sells("Stones", 7);
        m.stage.restart();
        auto content = json::parse(m.stage.file(file));
        inrows(content["recycles"]["recycleitems"]);
        m.stage.write(file, content.dump());
        m.joins();
        const auto before = m.state();
        if (told == nullptr) {
            EXPECT_THAT(m.undo(1), HasSubstr("Trade 1 is undone"));
            EXPECT_EQ(m.bob->counts("minecraft:stone"), 10);
        } else {
            EXPECT_EQ(m.undo(1), told);
            EXPECT_EQ(m.state(), before);
        }
    }
    // A stock that has no room for them stays, and the pieces stand beside it.
    {
        Market m;
        m.buys("Red apples", 3);
        m.stage.restart();
        auto content = json::parse(m.stage.file(file));
        content["sell"]["items"][0]["shopitemleftnum"] = INT32_MAX;
        m.stage.write(file, content.dump());
        m.joins();
        EXPECT_THAT(m.undo(1), HasSubstr("Trade 1 is undone"));
        const json items = m.stage.shopfile(ada)["sell"]["items"];
        EXPECT_EQ(items.front()["shopitemleftnum"], INT32_MAX);
        EXPECT_EQ(items.back()["shopitemleftnum"], 3);
    }
    // An item that this server does not know any more is handed out to nobody.
    Market m;
    m.sells("Stones", 7);
    m.changes(1, [](auto& one) { one.piles.at(0).tag = 12345; });
    const auto before = m.state();
    EXPECT_THAT(m.undo(1), HasSubstr("cannot be handed out on this server, or not so much at once."));
    EXPECT_EQ(m.state(), before);
}

TEST(Ledger, TheAuditNamesWhatDiffersWithItsShopAndFirstTrade) {
    const auto file = "plugins/Ordomart/data/" + ada + ".json";
    const std::string sells = ada + ".sell (Alice), ", recycles = ada + ".recycles (Alice), ";
    const struct {
        const char* what;
        std::function<void(json&)> infile;
        std::function<void(Market&)> inledger;
        std::string told;
    } plants[] = {
        {"nothing", {}, {}, ""},
        {"a stock",
         [](json& f) { f["sell"]["items"][0]["shopitemleftnum"] = 9; },
         {},
         sells + "entry 3: stock of minecraft:apple 6 in the ledger, 9 in the shop\n"},
        {"a good gone",
         [](json& f) { f["sell"]["items"].erase(0); },
         {},
         sells + "entry 3: stock of minecraft:apple 6 in the ledger, none in the shop\n"},
        {"a counter",
         [](json& f) { f["sell"]["sellcount"] = 5; },
         {},
         sells + "entry 3: counter 4 in the ledger, 5 in the shop\n"},
        {"a volume",
         [](json& f) { f["recycles"]["recyclecost"] = 20; },
         {},
         recycles + "entry 2: volume 21 in the ledger, 20 in the shop\n"},
        {"a deposit",
         [](json& f) { f["recycles"]["recycleitems"][0]["offer"] = 4; },
         {},
         recycles + "entry 2: commission of minecraft:stone 1 wanted at 3, 7 waiting, deposit 3 in the ledger, 1 "
                    "wanted at 4, 7 waiting, "
                    "deposit 4 in the shop\n"},
        {"stored pieces",
         [](json& f) { f["recycles"]["recycleitems"][0]["nowhasrecyclenum"] = 6; },
         {},
         recycles + "entry 2: commission of minecraft:stone 1 wanted at 3, 7 waiting, deposit 3 in the ledger, 1 "
                    "wanted at 3, 6 waiting, "
                    "deposit 3 in the shop\n"},
        {"an entry",
         {},
         [](Market& m) { m.changes(1, [](auto& one) { one.after->left = 8; }); },
         sells + "entry 3: stock of minecraft:apple 8 in the ledger, 7 in the shop\n"},
        {"a counter in between",
         {},
         [](Market& m) { m.changes(1, [](auto& one) { one.count = 4; }); },
         sells + "entry 1: counter 3 in the ledger, 4 in the shop\n"},
        {"an entry gone",
         {},
         [](Market& m) { m.stage.onserver([&] { m.records().erase("ledger", ledger::keyof(2)); }); },
         sells + "entry 2: entry an entry in the ledger, none in the shop\n" + recycles +
             "no entry: counter 0 in the ledger, 7 in the shop\n" + recycles +
             "no entry: volume 0 in the ledger, 21 in the shop\n" + recycles +
             "no entry: commission of minecraft:stone 8 wanted at 3, 0 waiting, deposit 24 in the ledger, 1 wanted at "
             "3, 7 waiting, "
             "deposit 3 in the shop\n"},
        {"a payment",
         {},
         [](Market& m) { m.changes(2, [](auto& one) { one.paid = 22; }); },
         recycles +
             fmt::format("entry 2: money 22 from SYSTEM to {} in the ledger, nothing of it in the history in the "
                         "library\n",
                         bob)},
        {"a payment of two",
         {},
         [](Market& m) { m.changes(3, [](auto& one) { one.paid = 30, one.fee = 3; }); },
         sells +
             fmt::format("entry 3: money 3 from {} to SYSTEM in the ledger, nothing of it in the history in the "
                         "library\n{}entry 3: money 27 from {} to {} in the ledger, nothing of it in the history in "
                         "the library\n",
                         bob, sells, bob, ada)},
        {"a payment before all that is left of the history",
         {},
         [](Market& m) { m.changes(1, [](auto& one) { one.paid = 44, one.time -= 3600; }); },
         ""},
        {"the last entry gone",
         {},
         [](Market& m) { m.stage.onserver([&] { m.records().erase("ledger", ledger::keyof(3)); }); },
         ".sell, entry 3: entry an entry in the ledger, none in the shop\n" + sells +
             "entry 1: counter 3 in the ledger, 4 in the shop\n" + sells +
             "entry 1: volume 30 in the ledger, 40 in the shop\n" + sells +
             "entry 1: stock of minecraft:apple 7 in the ledger, 6 in the shop\n"},
        {"goods out of nowhere",
         [](json& f) { f["sell"]["items"].push_back(good("stone", 1, 2)); },
         {},
         sells + "entry 3: stock of minecraft:stone none in the ledger, 2 in the shop\n"},
        {"a shop gone", [](json& f) { f = nullptr; }, {}, "gone"},
    };
    for (const auto& plant : plants) {
        SCOPED_TRACE(plant.what);
        Market m;
        m.buys("Red apples", 3);
        m.sells("Stones", 7);
        m.buys("Red apples", 1);
        if (plant.inledger) plant.inledger(m);
        if (plant.infile) {
            m.stage.restart();
            auto content = json::parse(m.stage.file(file));
            plant.infile(content);
            if (content.is_null())
                m.stage.onserver([&] { EXPECT_TRUE(m.stage.server().services().files->remove(file)); });
            else
                m.stage.write(file, content.dump());
            m.joins();
        }
        const auto told = m.audit();
        if (plant.told == "gone") {
            EXPECT_THAT(told,
                        HasSubstr(sells + "entry 3: stock of minecraft:apple 6 in the ledger, none in the shop\n"));
            continue;
        }
        EXPECT_EQ(told, plant.told);
        if (!plant.infile) continue;
        EXPECT_EQ(m.audit(" accept"), plant.told) << "what was accepted is told";
        EXPECT_THAT(m.olga->chat(), HasSubstr("Taken as they are from now on: 1 of the shops."));
        EXPECT_EQ(m.audit(), "") << "and is right from then on";
    }
}

TEST(Ledger, WhoComesBackIsToldOnce) {
    Market m;
    m.alice->leaves();
    m.buys("Red apples", 3);
    m.buys("bread", 5);
    m.sells("Stones", 8);
    m.stage.restart();
    m.joins();
    EXPECT_EQ(m.alice->chat(),
              "§eWhile you were away:§r\n"
              "Sales of your shop: 2, pieces: 8, §a+ 59§r LLmoney\n"
              "Sold out: bread\n"
              "Sales to your commissions: 1, pieces: 8, paid with 24 LLmoney of your deposits\n"
              "Complete, ready to be picked up: Stones");
    EXPECT_EQ(m.bob->chat(), "");
    m.buys("Red apples", 1);
    m.alice->leaves();
    EXPECT_EQ(m.stage.join("Alice", ada, "zh_CN").chat(), "") << "nothing has happened since";
    m.stage.restart();
    m.joins();
    m.alice->leaves();
    m.buys("Red apples", 1);
    EXPECT_EQ(m.stage.join("Alice", ada, "zh_CN").chat(),
              "§e你离开期间：§r\n你的商店成交1笔，售出1件，收入§a9§rLLmoney");
    // Of many that are sold out the first are named.
    const std::string dora = "2535400000000008";
    json rows = json::array();
    for (const char* title : {"a1", "a2", "a3", "a4", "a5", "a6", "a7"}) rows.push_back(good("bread", 1, 1, title));
    m.stage.writeshop(dora, rows);
    for (const auto& row : rows) m.buys(row["shopitemname"], 1);
    EXPECT_THAT(m.stage.join("Dora", dora).chat(), HasSubstr("Sold out: a1, a2, a3, a4, a5 and 2 more"));
}

TEST(Ledger, APlayerAsksForPrices) {
    Market m;
    m.buys("Red apples", 3);
    m.buys("Red apples", 1);
    m.sells("The state's wish", 4);
    const auto wool = [](int colour) {
        return fmt::format("{{Count:1b,Damage:{}s,Name:\"minecraft:wool\",WasPickedUp:0b}}", colour);
    };
    const std::string dora = "2535400000000008";
    json secret = good("apple", 1, 5, "Secret");
    secret["allowbesearched"] = false;
    m.stage.writeshop(dora, {secret, good(wool(1), 5, 5), good(wool(14), 6, 5)}, commission("apple", 1, 5));
    const auto asks = [&](const std::string& line) {
        m.bob->forgets().types("ordomart prices" + line);
        m.stage.ticks(2);
        return m.bob->chat() + m.bob->replies();
    };
    const std::string week = ": §a10§r (2 to 10), trades: 3, pieces: 8, money: 48\n";
    const auto all = "§eApple§r: prices in LLmoney\n1 d" + week + "7 d" + week + "30 d" + week +
                     "§a·····························▄§r\n§7Cheapest offers now:§r\n§a10§r, 6 left: " + ada +
                     "'s shop§r\n§a20§r, 5 left: " + root +
                     "'s shop§r\n§7Best commissions now:§r\n§a2§r, 50 left: " + root +
                     "'s recycleshop§r\n§a1§r, 5 left: " + dora + "'s recycleshop§r";
    for (const char* name : {" apple", " minecraft:apple", " Apple"}) EXPECT_EQ(asks(name), all) << name;
    EXPECT_THAT(asks(" bread"), HasSubstr("Not traded within the last 30 days.\n§7Cheapest offers now:§r\n§a7§r, 5"));
    EXPECT_EQ(asks(" nothing"), "There is no item called nothing.");
    m.bob->gives(0, "apple", 1);
    EXPECT_EQ(asks(""), all) << "the item in his hand";
    m.bob->loses(0).gives(8, "apple", 1).holds(8);
    EXPECT_EQ(asks(""), all) << "and in another";
    m.bob->loses(8);
    EXPECT_THAT(asks(""), HasSubstr("Take an item in your hand"));
    EXPECT_THAT(asks(" wool"), HasSubstr("5 left: " + dora + "'s shop§r §bOrange Wool§r\n§a6§r, 5 left"));
    m.bob->gives(8, "wool", 1, wool(14));
    EXPECT_THAT(asks(""), AllOf(HasSubstr("§a6§r, 5 left"), Not(HasSubstr("§a5§r, 5 left"))));
    m.bob->gives(0, "apple", 3);
    EXPECT_THAT(m.undo(1), HasSubstr("Trade 1 is undone"));
    m.stage.advance(8LL * 86400 * 1000);
    EXPECT_THAT(asks(" apple"), HasSubstr("7 d: no trade\n30 d: §a2§r (2 to 10), trades: 2, pieces: 5, money: 18\n"));
}
