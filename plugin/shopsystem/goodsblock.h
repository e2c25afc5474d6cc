// What lists need of one shop and kind, decoded once for each change and never changed itself: effective prices,
// counts, flags, tags that are the same object wherever they are the same text, and all texts end to end. Only rows
// with something left are in it, since no list shows others.
#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

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
[[nodiscard]] std::uint32_t mosttagids();                 // each id is below it

class goodsblock {
public:
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
        std::int32_t place, left, price;
        std::int32_t other;  // list price of goods; pieces taken in of a commission
        std::uint32_t tag;   // in `tags`
        std::uint8_t flags;
        bool operator==(const row&) const = default;
    };

    header shop;
    std::vector<row> rows;
    std::vector<taghandle> tags;  // each once
    // Text i is [offsets[i], offsets[i + 1]) of `texts`.
    std::vector<std::uint32_t> nameoffsets{0}, describeoffsets{0}, stackoffsets{0};
    std::string texts;

    // Whether all of it is the same, whatever the revision.
    [[nodiscard]] bool saysthesame(const goodsblock& other) const;
    [[nodiscard]] std::string_view name(std::size_t i) const { return text(nameoffsets, i); }
    [[nodiscard]] std::string_view describe(std::size_t i) const { return text(describeoffsets, i); }
    [[nodiscard]] std::string_view stack(std::size_t i) const { return text(stackoffsets, i); }
    [[nodiscard]] const std::string& tag(std::size_t i) const { return tags[rows[i].tag]->text; }

private:
    [[nodiscard]] std::string_view text(const std::vector<std::uint32_t>& offsets, std::size_t i) const {
        return std::string_view(texts).substr(offsets[i], offsets[i + 1] - offsets[i]);
    }
};

// Row i as the records that views and trades work with. The stacks that a commission has taken in stay in its shop.
void readrow(const goodsblock& block, std::size_t i, globalsellshopitem& into);
void readrow(const goodsblock& block, std::size_t i, globalrecycleshopitem& into);
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
    [[nodiscard]] std::shared_ptr<goodsblock> finish(goodsblock::header shop);

private:
    void add(goodsblock::row row, std::string_view tag, std::string_view name, std::string_view describe,
             std::string_view stack);

    goodsblock made_;
    std::unordered_map<std::string_view, std::uint32_t> tags_;
    std::string names_, describes_, stacks_;
};

}  // namespace shopsystem
