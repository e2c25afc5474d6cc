// What lists need of one shop and kind, decoded once for each change and never changed itself: effective prices,
// counts, flags, and tags that are the same object wherever they are the same text. What is sorted or searched lies
// beside it, end to end with that of its neighbours on the shelf. Only rows with something left are in it, since no
// list shows others.
#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "plugin/shopsystem/rowtexts.h"
#include "plugin/shopsystem/shopitems.h"

namespace shopsystem {

struct goodstag {
    std::string text;
    std::uint32_t id;  // small, and another's again when nobody bears the tag any more
};
using taghandle = std::shared_ptr<const goodstag>;
// Any thread.
[[nodiscard]] taghandle interntag(std::string_view text);
[[nodiscard]] taghandle knowntag(std::string_view text);  // null when no row bears it

struct goodsblock {
    enum flag : std::uint8_t { isprivate = 1, byauxordamage = 2, byench = 4, bynbt = 8 };
    struct header {
        std::string xuid, shopname, ownername, describe;
        std::array<std::int32_t, 2> counters{};  // those that filters may demand a minimum of
        std::uint32_t revision = 0;
        bool isopshop = false, isbanned = false;
        // The Unix seconds between which prices and ban are what they are here: after the first, up to the second.
        std::int64_t since = std::numeric_limits<std::int64_t>::min();
        std::int64_t until = std::numeric_limits<std::int64_t>::max();
        bool operator==(const header&) const = default;
        [[nodiscard]] bool holdsat(std::int64_t now) const { return since < now && now <= until; }
    };
    struct row {
        std::uint32_t place : 28, flags : 4;
        std::int32_t other;  // list price of goods; pieces taken in of a commission
        bool operator==(const row&) const = default;
    };

    header shop;
    std::vector<row> rows;
};

// Of the rows of a shop what a shelf has in columns of its own.
struct rowcolumns {
    std::vector<std::int32_t> lefts, prices;
    std::vector<std::uint32_t> tagof;  // in `tags`
    std::vector<taghandle> tags;       // each once
};

// A shop's block and where its texts are.
struct shopgoods {
    std::shared_ptr<const goodsblock> block;
    std::shared_ptr<const rowtexts> texts;
    std::size_t firsttext = 0;
    std::shared_ptr<const rowcolumns> columns = nullptr;  // until it stands on a shelf
};

struct goodsrow {
    const goodsblock& block;
    std::size_t row;
    const rowtexts& texts;
    std::size_t text;
    std::int32_t left, price;
    const goodstag& tag;
};

// A row as the records that views and trades work with. The stacks that a commission has taken in stay in its shop.
void readrow(const goodsrow& of, globalsellshopitem& into);
void readrow(const goodsrow& of, globalrecycleshopitem& into);
// The shop alone, as a row of a list of shops.
template <class Row>
void readshop(const goodsblock& block, Row& into) {
    into.xuid = block.shop.xuid;
    into.shopname = block.shop.shopname;
    into.revision = block.shop.revision;
    into.allowbesearched = true;
}

// Puts a block together, row by row.
class blockbuilder {
public:
    void add(const globalsellshopitem& row);
    void add(const globalrecycleshopitem& row);
    [[nodiscard]] shopgoods finish(goodsblock::header shop);

private:
    void add(goodsblock::row row, std::int32_t left, std::int32_t price, std::string_view tag);

    goodsblock made_;
    rowcolumns columns_;
    std::unordered_map<std::string_view, std::uint32_t> tags_;
    textbuilder texts_;
};

}  // namespace shopsystem
