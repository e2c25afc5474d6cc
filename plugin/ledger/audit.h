// Whether everything is still there: the ledger against counters, stocks and commissions of the shops, what was paid
// for commissions against their deposits, and transfers of the last month against the money library's history. Nothing
// is changed by it.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "plugin/ledger/replay.h"

namespace ledger {

struct auditresult {
    std::vector<difference> differences;  // by shop, each at its first trade
    std::uint64_t entries = 0;            // looked at
    std::size_t shops = 0;
    bool whole = true;  // false when it was broken off
};

// Beside the server, which it takes a turn of for some hundred entries or one shop at a time. `goeson` is asked between
// two turns. What is traded meanwhile counts.
[[nodiscard]] auditresult audit(const std::function<bool()>& goeson);

// One line: "2535400000000001.sell (Rosa), entry 12: stock of minecraft:apple 9 in the ledger, 10 in the shop".
[[nodiscard]] std::string lineof(const difference& one);

}  // namespace ledger
