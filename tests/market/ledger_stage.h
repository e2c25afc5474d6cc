// A market whose ledger is looked at, by players and by an operator.
#pragma once

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <chrono>

#include "platform/files.h"
#include "platform/records.h"
#include "plugin/ledger/ledger.h"
#include "tests/market/forms_stage.h"

namespace forms {

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
                        {commission("stone", 3, 8, "Stones"), sponsored(commission("dirt", 2, 4, "Earth"), 5)});
        stage.writeshop(root, {good("apple", 20, 5, "The state's")}, {commission("apple", 2, 50, "The state's wish")},
                        {{"isopshop", true}}, {{"isopshop", true}});
        joins();
        bob->setmoney(1000).gives(3, "stone", 5).gives(4, "stone", 5);
        alice->setmoney(100);
    }
    // So much of its deposit is an operator's.
    static json sponsored(json row, std::int64_t money) {
        row["sponsored"] = money;
        return row;
    }
    void joins() {
        alice = &stage.join("Alice", ada);
        bob = &stage.join("Carl", chest::bob);
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
        for (const auto& xuid : {ada, chest::bob, root}) text += fmt::format("{} ", stage.money(xuid));
        for (const char* item : {"apple", "stone", "dirt"})
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

}  // namespace forms
