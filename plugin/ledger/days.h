// What trades come to, by day: for each item and variant and for each shop one row a day, written in the same pass as
// the trades that it counts, so that nobody has to read the ledger for a price. A day is 86,400 Unix seconds. In a
// turn.
//
// A price counts once a trade, however many pieces: the middle of a day is what half of the trades were above and half
// below, so that no single trade moves it, whatever its price and its size.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "plugin/ledger/entry.h"

namespace ledger {

[[nodiscard]] constexpr std::int64_t dayof(std::int64_t unixseconds) { return unixseconds / 86400; }

// Trades at prices, the lowest price first. Of more than `most` prices neighbours are taken together; lowest and
// highest stay what they are.
class prices {
public:
    static constexpr std::size_t most = 200;
    void add(std::int64_t price, std::int64_t trades);  // fewer than none: they are taken back
    void add(const prices& others);
    [[nodiscard]] bool empty() const { return all_.empty(); }
    [[nodiscard]] std::int64_t lowest() const { return all_.begin()->first; }
    [[nodiscard]] std::int64_t highest() const { return all_.rbegin()->first; }
    // The price of the trade in the middle; of two, the lower one's.
    [[nodiscard]] std::int64_t median() const;
    [[nodiscard]] const std::map<std::int64_t, std::int64_t>& all() const { return all_; }

private:
    void thin();
    std::map<std::int64_t, std::int64_t> all_;
};

struct daysum {
    std::int64_t trades = 0, pieces = 0, money = 0, fees = 0;
    prices at;  // of goods; empty for a shop
    void add(const daysum& other);
};

// Counts a trade, or takes it back from the day on which it was.
void countday(const entry& trade, const std::vector<std::pair<variant, std::int64_t>>& goods, bool back);

// By variant and by shop ("xuid.sell") of one day. `named` of goods: only of the item of that full name.
[[nodiscard]] std::map<std::string, daysum> goodsof(std::int64_t day, const std::string& named = {});
[[nodiscard]] std::map<std::string, daysum> shopsof(std::int64_t day);

// The first day of which there is a row.
[[nodiscard]] std::optional<std::int64_t> firstday();
// A row of another market: adds it to what there is of the item (its variant's text) or of the shop.
enum class sumof { goods, shop };
void takein(sumof kind, std::int64_t day, const std::string& of, const daysum& sum);
[[nodiscard]] std::string encode(const daysum& row);
[[nodiscard]] daysum decodesum(const std::string& bytes);  // throws platform::ReadError

// Erases rows of days before this one, at most so many; false when there is nothing left to do.
bool thindays(std::int64_t before, std::size_t most);
void forgetdays();  // what is known of them here

}  // namespace ledger
