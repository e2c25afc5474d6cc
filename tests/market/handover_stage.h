// Markets in files, servers that they are handed over to, and a market that writes itself down without a server.
#pragma once

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <sstream>

#include "host/world/items.h"
#include "plugin/handover/exporting.h"
#include "plugin/handover/linefile.h"
#include "plugin/ledger/ledger.h"
#include "tests/market/forms_stage.h"
#include "tests/market/shophost.h"

namespace handovers {

using namespace forms;
using testing::HasSubstr;

using Lines = std::vector<std::string>;

inline std::string filenamed(const std::string& name) { return "plugins/Ordomart/exports/" + name + ".jsonl"; }

inline Lines linesof(const std::string& text) {
    Lines lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}
inline std::string textof(const Lines& lines) {
    std::string text;
    for (const auto& line : lines) text += line + "\n";
    return text;
}

// All that two exports of the same market have alike: revisions belong to a run.
inline Lines lasting(const std::string& text) {
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
inline std::string told(Stage& stage, Actor& who, const std::string& line) {
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

inline constexpr const char* nodifferences = ", differences: 0.";

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
inline Lines smallmarket(int purchases) {
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
inline std::function<void(Lines&)> sets(std::size_t at, const char* pointer, json value) {
    return [=](Lines& lines) {
        auto line = json::parse(lines[at]);
        line[json::json_pointer(pointer)] = value;
        lines[at] = line.dump();
    };
}
inline std::function<void(Lines&)> drops(std::size_t at, const std::string& pointer) {
    return [=](Lines& lines) {
        auto line = json::parse(lines[at]);
        const auto cut = pointer.rfind('/');
        line[json::json_pointer(pointer.substr(0, cut))].erase(pointer.substr(cut + 1));
        lines[at] = line.dump();
    };
}

}  // namespace handovers
