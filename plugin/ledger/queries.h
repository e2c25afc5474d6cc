// What views for operators ask of the ledger: plain structs, read only. Not on the server thread and not in a turn:
// each takes turns of its own, for some hundred rows at a time. Money is whole coins, times are Unix seconds, a day is
// 86,400 of them since 1970 (UTC). On a host without records everything is empty.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "plugin/ledger/days.h"
#include "plugin/ledger/entry.h"

namespace ledger {

// ---- entries, the newest first
struct tradefilter {
    std::string player = {};                   // xuid of either party; empty: any
    std::string shop = {};                     // owner's xuid
    std::string item = {};                     // full name, as "minecraft:apple"
    std::int64_t from = 0, until = INT64_MAX;  // seconds; `until` is not in it
    bool tradesalone = true;                   // else every movement of goods and deposits
};
struct tradeline {
    entry what;
    std::string actorname, shopname;        // players' names; empty when nobody knows them
    variant item;                           // of a sale of several things: of the commission
    std::optional<std::uint64_t> undoneby;  // an entry's number
};
struct tradepage {
    std::vector<tradeline> lines;
    std::uint64_t before = 0;  // to go on with; 0: there is nothing more
};
// At most `most` lines of entries before a number (0: from the newest on). Of a ledger in which little fits the filter
// no more than `patience` entries are looked at, and none once the server stops: then the page is short, or empty, and
// `before` goes on behind them.
[[nodiscard]] tradepage latesttrades(const tradefilter& filter, std::size_t most, std::uint64_t before = 0,
                                     std::size_t patience = 200000);
[[nodiscard]] std::optional<tradeline> trade(std::uint64_t number);

// ---- sums; `last` is the last day, and there are `days` of them
struct dayline {
    std::int64_t day = 0, trades = 0, pieces = 0, money = 0, fees = 0;
};
[[nodiscard]] std::vector<dayline> sumsbyday(std::int64_t last, int days);  // one for each day, the oldest first

struct goodsline {
    variant what;
    std::int64_t trades = 0, pieces = 0, money = 0, lowest = 0, median = 0, highest = 0;
};
struct shopline {
    std::string xuid, name;  // of the owner
    bool sells = true;       // else it is a recycle shop
    std::int64_t trades = 0, pieces = 0, money = 0, fees = 0;
};
// By money, the most first.
[[nodiscard]] std::vector<goodsline> topgoods(std::int64_t last, int days, std::size_t most);
[[nodiscard]] std::vector<shopline> topshops(std::int64_t last, int days, std::size_t most);

// ---- prices of an item; undone trades are not in them
struct pricedays {
    variant what;
    std::vector<daysum> days;                          // one for each day, the oldest first
    [[nodiscard]] goodsline over(int lastdays) const;  // of the last of them together
};
// Of each of its variants that was traded, that with the most trades first.
[[nodiscard]] std::vector<pricedays> pricesbyday(const std::string& item, std::int64_t last, int days);

[[nodiscard]] std::int64_t today();

}  // namespace ledger
