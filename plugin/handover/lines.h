// A market in writing: lines of JSON, each an object with one member, whose key says what the line is. This is the form
// of what is not written as it stands in a shop file; docs/handover.md has all of it. What is read is taken as it
// stands or refused: a missing key, one too many and a value out of bounds throw shopsystem::fielderror. Any thread.
#pragma once

#include <cstdint>
#include <string>

#include "plugin/ledger/ledger.h"
#include "plugin/shopsystem/jsonfields.h"

namespace handover {

using shopsystem::json, shopsystem::fielderror, shopsystem::shoptype;

inline constexpr const char* formatname = "ordomart-market";
inline constexpr int formatversion = 1;

// The kinds of lines, in the order of a file: the first line; for each shop its own, its goods and discounts or
// commissions, and its beginning in the ledger; texts of items, each before the entries that name it; sums; the last.
namespace line {
inline constexpr const char *market = "market", *shop = "shop", *good = "good", *discount = "discount",
                            *commission = "commission", *opening = "opening", *item = "item", *entry = "entry",
                            *day = "day", *end = "end";
}

struct shopline {
    std::string owner;
    shoptype section = shopsystem::sell;
    std::uint32_t revision = 0;
    std::uint64_t entries = 0;                // those of it below this number are in the file
    std::int64_t goods = -1, discounts = -1;  // lines; -1: it has never had any
    json about;                               // the section without those
    [[nodiscard]] std::string key() const;
};
struct sumline {
    ledger::sumof kind = ledger::sumof::goods;
    std::int64_t day = 0;
    std::string of;
    ledger::daysum sum;
};

[[nodiscard]] json written(const shopline& of);
[[nodiscard]] json written(const ledger::entry& of);
[[nodiscard]] json written(const ledger::shopbooks& opening);
[[nodiscard]] json written(const sumline& of);

[[nodiscard]] shopline readshop(const json& from);
[[nodiscard]] ledger::entry readentry(const json& from);
[[nodiscard]] ledger::shopbooks readopening(const json& from);
[[nodiscard]] sumline readsum(const json& from);

[[nodiscard]] std::string hexof(std::uint64_t hash);

}  // namespace handover
