// A shop as the ledger says that it is: begun from what it was when the ledger came to it, or when older entries were
// thinned out, and carried on entry by entry. What an entry does not fit is a difference, and then the entry is right:
// each is found once, at the first trade that shows it. Any thread, but for what looks at a shop.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "plugin/ledger/entry.h"

namespace ledger {

struct difference {
    std::string shop;
    shopsystem::shoptype section = shopsystem::sell;
    std::string what;          // "counter", "volume", "stock", "commission", "deposit", "money", "entry"
    std::uint64_t number = 0;  // the first entry that shows it; 0: the ledger has none
    std::string expected, found;
    std::uint64_t tag = 0;  // of the good or commission, as it is in the entries
    std::string item;       // what that stands for, when it is known
    bool operator==(const difference&) const = default;
};

struct shopbooks {
    std::uint64_t number = 0;  // entries from this one on are not in it yet
    std::int32_t count = 0, volume = 0;
    std::vector<rowstate> rows;  // in no order

    void apply(const entry& next, std::vector<difference>& found);
    // As it was before the entry, if it is now as behind it.
    void takeback(const entry& last);
    // Against the shop as it is.
    void compare(const shopbooks& shop, const difference& at, std::vector<difference>& found) const;
    bool operator==(const shopbooks&) const = default;
};

// In a turn. Records that cannot be read are left out.
[[nodiscard]] shopbooks booksof(const shopsystem::baseshop& shop);

[[nodiscard]] std::string encode(const shopbooks& of);
[[nodiscard]] shopbooks decodebooks(const std::string& bytes);  // throws platform::ReadError

}  // namespace ledger
