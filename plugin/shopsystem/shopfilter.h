// The filter record, the small language in which filters are written, and the test of a row.
#pragma once

#include <cstdint>
#include <string>

#include "plugin/shopsystem/shopitems.h"

namespace shopsystem {

class sellshop;
class recycleshop;

// Empty text and -1: not set.
struct shopfilter {
    std::string ownernamefilter, shopdescfilter;
    std::int32_t minsellcount = -1, minsalesvolume = -1, minrecycleamount = -1, minrecyclecost = -1;
    std::string itemnamefilter, itemdescfilter, itemtagfilter;
    bool operator==(const shopfilter&) const = default;
};

// Alternatives separated by "{||}"; one that ends in "$" must equal the source, any other must be part of it. Bytes.
[[nodiscard]] bool filterstring(const std::string& mfilter, const std::string& sourcestr);

enum passmode : int { allof = 0, anyof = 1 };

// In a turn: looks the row's shop up. A row that went stale or has nothing left never passes.
[[nodiscard]] bool passfilter(const shopfilter& filter, const globalsellshopitem& row, int mode);
[[nodiscard]] bool passfilter(const shopfilter& filter, const globalrecycleshopitem& row, int mode);
// The same for a row that was read from this shop a moment ago, in this turn.
[[nodiscard]] bool passfilter(const shopfilter& filter, const globalsellshopitem& row, const sellshop& shop, int mode);
[[nodiscard]] bool passfilter(const shopfilter& filter, const globalrecycleshopitem& row, const recycleshop& shop,
                              int mode);

}  // namespace shopsystem
