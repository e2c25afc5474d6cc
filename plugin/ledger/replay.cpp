#include "plugin/ledger/replay.h"

#include <fmt/format.h>

#include <algorithm>

#include "platform/binarystream.h"
#include "plugin/shopsystem/brokenshops.h"
#include "plugin/shopsystem/recycleshop.h"
#include "plugin/shopsystem/sellshop.h"

namespace ledger {

namespace {

// What an entry adds to the counters.
struct counted {
    std::int64_t count = 0, volume = 0;
};
counted countedof(const entry& of) {
    if (!istrade(of.what) && !isundo(of.what)) return {};
    const std::int64_t sign = isundo(of.what) ? -1 : 1;
    return {sign * of.pieces, sign * of.pieces * of.price};
}

std::string told(const std::optional<rowstate>& row, shopsystem::shoptype section) {
    if (!row) return "none";
    if (section == shopsystem::sell) return std::to_string(row->left);
    return fmt::format("{} wanted at {}, {} waiting, deposit {}", row->left, row->offer, row->waiting, row->deposit());
}

// Money that a step on a commission asks for.
std::int64_t depositasked(const entry& of) {
    return (of.after ? of.after->deposit() : 0) - (of.before ? of.before->deposit() : 0);
}

}  // namespace

void shopbooks::apply(const entry& next, std::vector<difference>& found) {
    const auto section = next.section();
    const auto tell = [&](const char* what, const auto& expected, const auto& seen, std::uint64_t tag = 0) {
        found.push_back(
            {next.shop, section, what, next.number, fmt::format("{}", expected), fmt::format("{}", seen), tag, {}});
    };
    const auto by = countedof(next);
    shopsystem::countup(count, by.count);
    shopsystem::countup(volume, by.volume);
    if (count != next.count) tell("counter", count, next.count);
    if (volume != next.volume) tell("volume", volume, next.volume);
    count = next.count;
    volume = next.volume;
    if (next.before) {
        auto place = std::ranges::find(rows, *next.before);
        if (place == rows.end()) {
            place = std::ranges::find(rows, next.tag, &rowstate::tag);
            tell(section == shopsystem::sell ? "stock" : "commission",
                 told(place != rows.end() ? std::optional(*place) : std::nullopt, section), told(next.before, section),
                 next.before->tag);
        }
        if (place != rows.end()) {
            *place = rows.back();
            rows.pop_back();
        }
    }
    if (next.after) rows.push_back(*next.after);
    const bool asksmoney = next.what == kind::publish || next.what == kind::adjust;
    if (asksmoney && !next.byoperator && next.paid != depositasked(next))
        tell("deposit", depositasked(next), next.paid);
    number = next.number + 1;
}

void shopbooks::takeback(const entry& last) {
    const auto by = countedof(last);
    shopsystem::countup(count, -by.count);
    shopsystem::countup(volume, -by.volume);
    if (last.after)
        if (const auto place = std::ranges::find(rows, *last.after); place != rows.end()) rows.erase(place);
    if (last.before) rows.push_back(*last.before);
    number = last.number;
}

void shopbooks::compare(const shopbooks& shop, const difference& at, std::vector<difference>& found) const {
    const auto tell = [&](const char* what, const std::string& expected, const std::string& seen,
                          std::uint64_t tag = 0) {
        auto one = at;
        one.what = what;
        one.expected = expected;
        one.found = seen;
        one.tag = tag;
        found.push_back(std::move(one));
    };
    if (count != shop.count) tell("counter", std::to_string(count), std::to_string(shop.count));
    if (volume != shop.volume) tell("volume", std::to_string(volume), std::to_string(shop.volume));
    // Rows that stand in both go; of the others those of one tag are one difference.
    std::vector<rowstate> mine = rows, its = shop.rows, onlymine, onlyits;
    std::ranges::sort(mine);
    std::ranges::sort(its);
    std::ranges::set_difference(mine, its, std::back_inserter(onlymine));
    std::ranges::set_difference(its, mine, std::back_inserter(onlyits));
    const char* const what = at.section == shopsystem::sell ? "stock" : "commission";
    for (const auto& row : onlymine) {
        const auto other = std::ranges::find(onlyits, row.tag, &rowstate::tag);
        const bool isthere = other != onlyits.end();
        tell(what, told(row, at.section), told(isthere ? std::optional(*other) : std::nullopt, at.section), row.tag);
        if (isthere) onlyits.erase(other);
    }
    for (const auto& row : onlyits) tell(what, "none", told(row, at.section), row.tag);
}

shopbooks booksof(const shopsystem::baseshop& shop) {
    shopbooks books;
    const auto read = [&](int section, const auto& rows, const auto& at) {
        for (int place = 0; rows.is_array() && place < static_cast<int>(rows.size()); ++place)
            shopsystem::unlessbroken(shop, section, [&] { books.rows.push_back(stateof(at(place))); });
    };
    if (const auto* sells = dynamic_cast<const shopsystem::sellshop*>(&shop)) {
        books.count = sells->sellcount;
        books.volume = sells->salesvolume;
        read(shopsystem::sell, sells->items, [&](int place) { return sells->getshopitem(place); });
    } else if (const auto* recycles = dynamic_cast<const shopsystem::recycleshop*>(&shop)) {
        books.count = recycles->recycleamount;
        books.volume = recycles->recyclecost;
        read(shopsystem::recycle, recycles->recycleitems, [&](int place) { return recycles->getrecycleitem(place); });
    }
    return books;
}

std::string encode(const shopbooks& of) {
    platform::BinaryStream out;
    out.writeVarInt64(static_cast<std::int64_t>(of.number));
    out.writeVarInt(of.count);
    out.writeVarInt(of.volume);
    for (const auto& row : of.rows) {
        out.writeSignedInt64(static_cast<std::int64_t>(row.tag));
        for (const auto number : {row.left, row.waiting, row.offer, row.sponsored}) out.writeVarInt64(number);
    }
    return out.bytes();
}

shopbooks decodebooks(const std::string& bytes) {
    platform::BinaryStream in(bytes);
    shopbooks books;
    books.number = static_cast<std::uint64_t>(in.getVarInt64());
    books.count = in.getVarInt();
    books.volume = in.getVarInt();
    while (in.unread() != 0) {
        rowstate row;
        row.tag = static_cast<std::uint64_t>(in.getSignedInt64());
        for (auto* number : {&row.left, &row.waiting, &row.offer, &row.sponsored}) *number = in.getVarInt64();
        books.rows.push_back(row);
    }
    return books;
}

}  // namespace ledger
