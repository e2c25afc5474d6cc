// The ledger, seen from the market: what is entered, what players and operators are told out of it, trades taken back,
// and an audit that finds whatever was changed behind its back.
#include <fmt/format.h>
#include <gmock/gmock.h>

#include <chrono>
#include <regex>

#include "platform/records.h"
#include "plugin/ledger/audit.h"
#include "plugin/ledger/ledger.h"
#include "tests/market/books.h"
#include "tests/market/forms_stage.h"

using namespace forms;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

// Ada has goods and a commission, Bob trades with her, Olga is an operator. The clock is the real one, which is what
// the money library's history goes by.
struct Market {
    explicit Market(int percent = 10, bool llmoney = true)
        : stage({.config = {{"moneymode", llmoney ? 1 : 0}, {"tax", percent}},
                 .llmoney = llmoney,
                 .clock = std::chrono::duration_cast<std::chrono::milliseconds>(
                              std::chrono::system_clock::now().time_since_epoch())
                              .count()}) {
        stage.writeshop(ada, {good("apple", 10, 10, "Red apples"), good("bread", 7, 5)},
                        {commission("stone", 3, 8, "Stones")});
        stage.writeshop(root, {good("apple", 20, 5, "The state's")}, {commission("apple", 2, 50, "The state's wish")},
                        {{"isopshop", true}}, {{"isopshop", true}});
        joins();
        bob->setmoney(1000).gives(3, "stone", 5).gives(4, "stone", 5);
        alice->setmoney(100);
    }
    void joins() {
        alice = &stage.join("Alice", ada);
        bob = &stage.join("Carl", ::bob);
        olga = &stage.join("Olga", root, "en_US", desktop, 1);
    }
    void buys(const std::string& title, int pieces) { trades("Selling shops (form)", title, pieces); }
    void sells(const std::string& title, int pieces) { trades("Recycle shops (form)", title, pieces); }
    void trades(const std::string& list, const std::string& title, int pieces) {
        bob->dismisses().types("ordomart formmenu").presses(list).presses(title);
        Answers answers;
        int left = pieces;
        const json form = bob->form();
        for (const auto& element : form["content"]) {
            if (element["type"] == "input") answers.emplace_back(element["text"], std::to_string(pieces));
            if (element["type"] != "slider") continue;
            const int some = std::min(left, element["max"].get<int>());
            answers.emplace_back(element["text"], some);
            left -= some;
        }
        bob->fills(answers).dismisses();
    }
    std::string undo(int number) {
        olga->forgets().types(fmt::format("ordomart undo {}", number));
        return olga->replies();
    }
    // What the audit tells the operator, without the line that ends it.
    std::string audit(const std::string& then = {}) {
        olga->forgets().types("ordomart audit" + then);
        stage.ticks(2);
        auto told = olga->chat();
        const auto end = told.find("The audit has ended");
        EXPECT_NE(end, std::string::npos) << told << olga->replies();
        return told.substr(0, end);
    }
    platform::Records& records() { return *stage.server().services().records; }
    void changes(std::uint64_t number, const std::function<void(ledger::entry&)>& change) {
        stage.onserver([&] {
            auto one = ledger::decode(number, records().get("ledger", ledger::keyof(number)).value());
            change(one);
            records().put("ledger", ledger::keyof(number), [bytes = ledger::encode(one)] { return bytes; });
        });
    }
    // "purchase Carl 3*10=30 fee 3"
    std::vector<std::string> entries() {
        std::vector<std::string> all;
        stage.onserver([&] {
            for (const auto& [key, bytes] : records().rows("ledger", {}, 100)) {
                const auto one = ledger::decode(ledger::numberof(key), bytes);
                all.push_back(fmt::format("{} {} {}*{}={} fee {}", ledger::nameof(one.what),
                                          platform::PlayerInfo::fromXuid(one.actor), one.pieces, one.price, one.paid,
                                          one.fee));
            }
        });
        return all;
    }
    // Money, pieces, stocks and counters; a refused step leaves them, and an undone one brings them back.
    std::string state() {
        std::string text;
        for (const auto& xuid : {ada, ::bob, root}) text += fmt::format("{} ", stage.money(xuid));
        for (const char* item : {"apple", "stone"})
            text += fmt::format("{} {} ", bob->counts(std::string("minecraft:") + item), item);
        for (const auto& xuid : {ada, root}) {
            auto file = stage.shopfile(xuid);
            for (const char* key : {"items", "sellcount", "salesvolume"}) text += file["sell"][key].dump();
            auto& recycles = file["recycles"];
            // How the pieces that wait are parted into stacks is not what matters.
            for (auto& row : recycles["recycleitems"])
                EXPECT_TRUE(row["nowhasrecyclenum"] != 0 || row["recycleditemnbtlist"].empty());
            for (auto& row : recycles["recycleitems"]) row.erase("recycleditemnbtlist");
            for (const char* key : {"recycleitems", "recycleamount", "recyclecost"}) text += recycles[key].dump();
        }
        return text;
    }

    Stage stage;
    Actor *alice = nullptr, *bob = nullptr, *olga = nullptr;
};

}  // namespace

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
        const struct {
            const char *list, *title;
            int pieces;
        } trades[] = {{"Selling shops (form)", "Red apples", 3},
                      {"Recycle shops (form)", "Stones", 7},
                      {"Selling shops (form)", "The state's", 1},
                      {"Recycle shops (form)", "The state's wish", 1},
                      {"Selling shops (form)", "Red apples", 10}};  // all there is
        m.bob->gives(5, "apple", 1);
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
                        HasSubstr(fmt::format("An operator has undone trade {}: {} pieces", number, pieces)));
            EXPECT_EQ(m.undo(number), fmt::format("Trade {} is undone already, by entry {}.", number, number + 1));
            EXPECT_THAT(m.undo(number + 1), HasSubstr("is no trade"));
            EXPECT_EQ(m.state(), before);
            ++number;
        }
        EXPECT_EQ(m.audit(), "");
        const auto told = [&](const std::string& who) {
            m.olga->forgets().types("ordomart trades" + who);
            m.stage.ticks(2);
            const std::regex times(R"(§7\d{4}-\d\d-\d\d \d\d:\d\d§r |§.)");
            return std::regex_replace(m.olga->chat() + m.olga->replies(), times, "");
        };
        const std::string title = "The newest trades, by their numbers:\n";
        EXPECT_THAT(told(""),
                    testing::StartsWith(title + "10 trade 9 was undone\n9 Carl bought 10 x Apple from Alice "));
        EXPECT_THAT(told(" Olga"),
                    testing::StartsWith(title + "8 trade 7 was undone\n7 Carl sold 1 x Apple to Olga for "));
        EXPECT_EQ(told(" Olga"), told(" " + std::string(root)));
        EXPECT_EQ(told(" systemshop"), "There is no such trade in the ledger.");
        EXPECT_EQ(told(" Nobody"), "failed to find playerinfo:Nobody");
        EXPECT_EQ(m.undo(99), "There is no entry 99 in the ledger.");
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
    m.alice->setmoney(20);
    refuses(1, "Carl lacks 2 of 3 pieces of Apple.\nAlice has 20 of 27 LLmoney.");
    m.bob->gives(0, "apple", 3);
    refuses(1, "Alice has 20 of 27 LLmoney.");
    m.bob->setmoney(20);
    refuses(2, "Carl has 20 of 21 LLmoney.");
    m.bob->setmoney(21);
    m.alice->dismisses()
        .types("ordomart formmenu")
        .presses("My shop (form)")
        .presses("change to")
        .presses("Pick up recycled items");
    m.alice->presses("Stones").presses("yes").dismisses();
    refuses(2, "7 of 7 pieces of Stone are not in the commission of Alice any more.");
    m.alice->setmoney(27);
    m.bob->leaves();
    EXPECT_THAT(m.undo(1), HasSubstr("Carl is not here."));
    EXPECT_EQ(m.stage.money(ada), 27);
    EXPECT_EQ(m.audit(), "");
}

TEST(Ledger, AnUndoneSaleNeedsItsCommissionAsItWas) {
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
    const std::string sells = ada + ".sell, ", recycles = ada + ".recycles, ";
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
         sells + "entry 3: stock 6 in the ledger, 9 in the shop\n"},
        {"a good gone",
         [](json& f) { f["sell"]["items"].erase(0); },
         {},
         sells + "entry 3: stock 6 in the ledger, none in the shop\n"},
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
         recycles + "entry 2: commission 1 wanted at 3, 7 waiting, deposit 3 in the ledger, 1 wanted at 4, 7 waiting, "
                    "deposit 4 in the shop\n"},
        {"stored pieces",
         [](json& f) { f["recycles"]["recycleitems"][0]["nowhasrecyclenum"] = 6; },
         {},
         recycles + "entry 2: commission 1 wanted at 3, 7 waiting, deposit 3 in the ledger, 1 wanted at 3, 6 waiting, "
                    "deposit 3 in the shop\n"},
        {"an entry",
         {},
         [](Market& m) { m.changes(1, [](auto& one) { one.after->left = 8; }); },
         sells + "entry 3: stock 8 in the ledger, 7 in the shop\n"},
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
             "no entry: commission 8 wanted at 3, 0 waiting, deposit 24 in the ledger, 1 wanted at 3, 7 waiting, "
             "deposit 3 in the shop\n"},
        {"a payment",
         {},
         [](Market& m) { m.changes(2, [](auto& one) { one.paid = 22; }); },
         recycles +
             fmt::format("entry 2: money 22 from SYSTEM to {} in the ledger, nothing of it in the history in the "
                         "library\n",
                         bob)},
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
            EXPECT_THAT(told, HasSubstr(sells + "entry 3: stock 6 in the ledger, none in the shop\n"));
            continue;
        }
        EXPECT_EQ(told, plant.told);
        if (!plant.infile) continue;
        EXPECT_EQ(m.audit(" accept"), plant.told) << "what was accepted is told";
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
              "Your shop sold 8 pieces in 2 trades: §a+ 59§r LLmoney\n"
              "Sold out: bread\n"
              "Your commissions took in 8 pieces in 1 trades, paid with 24 LLmoney of your deposits\n"
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
}

TEST(Ledger, APlayerAsksForPrices) {
    Market m;
    m.buys("Red apples", 3);
    m.buys("Red apples", 1);
    m.sells("The state's wish", 4);
    const auto asks = [&](const std::string& line) {
        m.bob->forgets().types("ordomart prices" + line);
        m.stage.ticks(2);
        return m.bob->chat() + m.bob->replies();
    };
    const std::string week = ": §a10§r (2 to 10), 3 trades, 8 pieces, 48 in all\n";
    const auto all = "§eApple§r: prices in LLmoney\n1 d" + week + "7 d" + week + "30 d" + week +
                     "§a·····························▄§r\n§7Cheapest offers now:§r\n§a10§r, 6 pieces: " + ada +
                     "'s shop§r\n§a20§r, 5 pieces: " + root +
                     "'s shop§r\n§7Best commissions now:§r\n§a2§r, 50 pieces: " + root + "'s recycleshop§r";
    for (const char* name : {" apple", " minecraft:apple", " Apple"}) EXPECT_EQ(asks(name), all) << name;
    EXPECT_THAT(asks(" bread"), HasSubstr("Not traded within the last 30 days.\n§7Cheapest offers now:§r\n§a7§r, 5"));
    EXPECT_EQ(asks(" nothing"), "There is no item called nothing.");
    m.bob->gives(0, "apple", 1);
    EXPECT_EQ(asks(""), all) << "the item in his hand";
    m.bob->loses(0).gives(8, "apple", 1).holds(8);
    EXPECT_EQ(asks(""), all) << "and in another";
    m.bob->loses(8);
    EXPECT_THAT(asks(""), HasSubstr("Take an item in your hand"));
    m.bob->gives(0, "apple", 3);
    EXPECT_THAT(m.undo(1), HasSubstr("Trade 1 is undone"));
    m.stage.advance(8LL * 86400 * 1000);
    EXPECT_THAT(asks(" apple"), HasSubstr("7 d: no trade\n30 d: §a2§r (2 to 10), 2 trades, 5 pieces, 18 in all\n"));
}
