#include "plugin/ledger/days.h"

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <unordered_map>

#include "platform/binarystream.h"
#include "platform/host.h"
#include "platform/records.h"
#include "plugin/base/globals.h"
#include "plugin/shopsystem/shopfiles.h"

namespace ledger {

using platform::BinaryStream;

namespace {

constexpr const char *goodstable = "ledger.goodsdays", *shopstable = "ledger.shopdays";
constexpr std::size_t rowsatatime = 1000, mostknown = 20000;

// The rows of today, for the most part.
std::unordered_map<std::string, std::shared_ptr<daysum>> known;

std::string dayskey(std::int64_t day, const std::string& of) { return fmt::format("{:06}/{}", day, of); }

daysum unpacked(const std::string& key, const std::string& bytes) {
    try {
        return decodesum(bytes);
    } catch (const platform::ReadError& e) {
        ordomart::logger.error("The sum {} of the ledger is broken, and begins anew: {}", key, e.what());
        return {};
    }
}

void change(const char* table, const std::string& key, const daysum& by, bool back) {
    auto& records = *platform::host().records;
    if (known.size() > mostknown) known.clear();
    auto& row = known[table + key];
    if (row == nullptr) {
        const auto bytes = records.get(table, key);
        row = std::make_shared<daysum>(bytes ? unpacked(key, *bytes) : daysum());
    }
    const std::int64_t sign = back ? -1 : 1;
    row->trades += sign * by.trades;
    row->pieces += sign * by.pieces;
    row->money += sign * by.money;
    row->fees += sign * by.fees;
    for (const auto& [price, trades] : by.at.all()) row->at.add(price, sign * trades);
    records.put(table, key, [row = row] { return encode(*row); });
}

std::map<std::string, daysum> read(const char* table, const std::string& from, const std::string& until,
                                   std::size_t skipped) {
    std::map<std::string, daysum> found;
    platform::Records::Range range{from, until};
    for (;;) {
        const auto rows = platform::host().records->rows(table, range, rowsatatime);
        for (const auto& [key, bytes] : rows) found.emplace(key.substr(skipped), unpacked(key, bytes));
        if (rows.size() < rowsatatime) return found;
        range.from = rows.back().key + '\0';
    }
}

}  // namespace

void prices::add(std::int64_t price, std::int64_t trades) {
    const auto place = all_.try_emplace(price, 0).first;
    place->second += trades;
    if (place->second <= 0) all_.erase(place);
    if (all_.size() > most) thin();
}

void prices::add(const prices& others) {
    for (const auto& [price, trades] : others.all_) add(price, trades);
}

// The two that are nearest to each other, for their size, become the one at which there was more.
void prices::thin() {
    auto least = all_.end();
    double smallest = 2;
    for (auto place = std::next(all_.begin()), last = std::prev(all_.end(), 2); place != last; ++place) {
        const auto higher = std::next(place);
        const auto gap = static_cast<double>(higher->first - place->first) / static_cast<double>(higher->first);
        if (gap < smallest) smallest = gap, least = place;
    }
    if (least == all_.end()) return;
    const auto higher = std::next(least);
    const bool tohigher = higher->second > least->second;
    (tohigher ? higher : least)->second += (tohigher ? least : higher)->second;
    all_.erase(tohigher ? least : higher);
}

std::int64_t prices::median() const {
    std::int64_t trades = 0, passed = 0;
    for (const auto& [price, number] : all_) trades += number;
    for (const auto& [price, number] : all_)
        if ((passed += number) * 2 >= trades) return price;
    return 0;
}

void daysum::add(const daysum& other) {
    trades += other.trades;
    pieces += other.pieces;
    money += other.money;
    fees += other.fees;
    at.add(other.at);
}

void countday(const entry& trade, const std::vector<std::pair<variant, std::int64_t>>& goods, bool back) {
    const auto day = dayof(trade.time);
    for (const auto& [what, pieces] : goods) {
        daysum by{1, pieces, pieces * trade.price};
        by.at.add(trade.price, 1);
        change(goodstable, dayskey(day, what.text()), by, back);
    }
    change(shopstable, dayskey(day, trade.shop + "." + shopsystem::sectionkey(trade.section())),
           {1, trade.pieces, trade.paid, trade.fee}, back);
}

std::map<std::string, daysum> goodsof(std::int64_t day, const std::string& named) {
    const auto from = dayskey(day, named.empty() ? "" : named + ":");
    auto until = from;
    ++until.back();
    return read(goodstable, from, until, dayskey(day, "").size());
}

std::map<std::string, daysum> shopsof(std::int64_t day) {
    const auto from = dayskey(day, "");
    return read(shopstable, from, dayskey(day + 1, ""), from.size());
}

std::optional<std::int64_t> firstday() {
    std::optional<std::int64_t> first;
    for (const char* table : {goodstable, shopstable})
        for (const auto& row : platform::host().records->rows(table, {}, 1))
            first = std::min(first.value_or(INT64_MAX), static_cast<std::int64_t>(numberof(row.key)));
    return first;
}

void takein(sumof kind, std::int64_t day, const std::string& of, const daysum& sum) {
    change(kind == sumof::goods ? goodstable : shopstable, dayskey(day, of), sum, false);
}

std::string encode(const daysum& row) {
    BinaryStream out;
    for (const auto number : {row.trades, row.pieces, row.money, row.fees}) out.writeVarInt64(number);
    for (std::int64_t last = 0; const auto& [price, trades] : row.at.all()) {
        out.writeVarInt64(price - last);
        out.writeVarInt64(trades);
        last = price;
    }
    return out.bytes();
}

daysum decodesum(const std::string& bytes) {
    daysum row;
    BinaryStream in(bytes);
    for (auto* number : {&row.trades, &row.pieces, &row.money, &row.fees}) *number = in.getVarInt64();
    for (std::int64_t price = 0; in.unread() != 0;) {
        price += in.getVarInt64();
        row.at.add(price, in.getVarInt64());
    }
    return row;
}

bool thindays(std::int64_t before, std::size_t most) {
    auto& records = *platform::host().records;
    bool isleft = false;
    for (const char* table : {goodstable, shopstable}) {
        const auto old = records.rows(table, {"", dayskey(before, "")}, most);
        for (const auto& row : old) records.erase(table, row.key);
        isleft |= old.size() == most;
    }
    return isleft;
}

void forgetdays() { known.clear(); }

}  // namespace ledger
