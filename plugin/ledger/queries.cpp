#include "plugin/ledger/queries.h"

#include <algorithm>
#include <map>

#include "platform/background.h"
#include "platform/clock.h"
#include "platform/host.h"
#include "platform/level.h"
#include "platform/turn.h"
#include "plugin/ledger/ledger.h"
#include "plugin/shopsystem/shopfiles.h"

namespace ledger {

using platform::Turn;

namespace {

constexpr std::size_t entriesatatime = 200;

std::string playername(const std::string& xuid) {
    const auto* const known = platform::host().knownplayers;  // none before there is a world
    return known != nullptr ? known->fromXuid(xuid) : std::string();
}

// In a turn, which knows items by their hashes.
bool isasked(const entry& one, const tradefilter& by) {
    if (by.tradesalone && !istrade(one.what) && !isundo(one.what)) return false;
    if (!by.player.empty() && one.actor != by.player && one.shop != by.player) return false;
    if (!by.shop.empty() && one.shop != by.shop) return false;
    if (one.time < by.from || one.time >= by.until) return false;
    if (by.item.empty()) return true;
    const auto goods = goodsin(one);
    return std::ranges::any_of(goods, [&](const auto& each) { return each.first.name == by.item; });
}

tradeline lineof(entry one) {
    tradeline line;
    line.actorname = playername(one.actor);
    line.shopname = playername(one.shop);
    line.item = variantof(one.tag);
    line.undoneby = undoneby(one.number);
    line.what = std::move(one);
    return line;
}

template <class Line>
void byspending(std::vector<Line>& all, std::size_t most) {
    std::ranges::stable_sort(all, std::ranges::greater(), &Line::money);
    all.resize(std::min(all.size(), most));
}

goodsline lineof(const variant& what, const daysum& sum) {
    goodsline line{what, sum.trades, sum.pieces, sum.money};
    if (!sum.at.empty()) {
        line.lowest = sum.at.lowest();
        line.median = sum.at.median();
        line.highest = sum.at.highest();
    }
    return line;
}

// All rows of some days together, by their key.
template <class Read>
std::map<std::string, daysum> together(std::int64_t last, int days, Read read) {
    std::map<std::string, daysum> all;
    for (auto day = last - days + 1; day <= last; ++day) {
        std::map<std::string, daysum> some;
        {
            const Turn turn;
            if (isopen()) some = read(day);
        }
        for (const auto& [key, sum] : some) all[key].add(sum);
    }
    return all;
}

}  // namespace

tradepage latesttrades(const tradefilter& filter, std::size_t most, std::uint64_t before, std::size_t patience) {
    tradepage page;
    {
        const Turn turn;
        if (!isopen()) return page;
        page.before = before != 0 ? before : nextnumber();
    }
    while (page.before != 0 && page.lines.size() < most && patience > 0 && !platform::Background::stopping()) {
        const Turn turn;
        auto some = readbefore(page.before, std::min(entriesatatime, patience));
        patience -= std::min(patience, entriesatatime);
        page.before = some.next;
        for (auto& one : some.all) {
            if (one.time < filter.from) {
                // Before what was taken over from another market there may be later ones.
                page.before = takenoverwith(one.number);
                break;
            }
            if (!isasked(one, filter)) continue;
            const auto number = one.number;
            page.lines.push_back(lineof(std::move(one)));
            if (page.lines.size() < most) continue;
            page.before = number;
            break;
        }
    }
    return page;
}

std::optional<tradeline> trade(std::uint64_t number) {
    const Turn turn;
    auto one = find(number);
    return one ? std::optional(lineof(*std::move(one))) : std::nullopt;
}

std::vector<dayline> sumsbyday(std::int64_t last, int days) {
    std::vector<dayline> lines;
    for (auto day = last - days + 1; day <= last; ++day) {
        dayline line{day};
        for (const auto& [key, sum] : together(day, 1, &shopsof)) {
            line.trades += sum.trades;
            line.pieces += sum.pieces;
            line.money += sum.money;
            line.fees += sum.fees;
        }
        lines.push_back(line);
    }
    return lines;
}

std::vector<goodsline> topgoods(std::int64_t last, int days, std::size_t most) {
    std::vector<goodsline> lines;
    for (const auto& [key, sum] : together(last, days, [](std::int64_t day) { return goodsof(day); }))
        if (sum.trades > 0) lines.push_back(lineof(readvariant(key), sum));
    byspending(lines, most);
    return lines;
}

std::vector<shopline> topshops(std::int64_t last, int days, std::size_t most) {
    std::vector<shopline> lines;
    for (const auto& [key, sum] : together(last, days, &shopsof)) {
        const auto dot = key.rfind('.');
        const auto xuid = key.substr(0, dot);
        if (sum.trades > 0)
            lines.push_back({xuid, playername(xuid), key.substr(dot + 1) == shopsystem::sectionkey(shopsystem::sell),
                             sum.trades, sum.pieces, sum.money, sum.fees});
    }
    byspending(lines, most);
    return lines;
}

std::vector<pricedays> pricesbyday(const std::string& item, std::int64_t last, int days) {
    std::map<std::string, pricedays> found;
    const auto first = last - days + 1;
    const Turn turn;
    for (auto day = first; isopen() && day <= last; ++day)
        for (auto& [key, sum] : goodsof(day, item)) {
            if (sum.trades <= 0) continue;
            auto& line = found[key];
            line.what = readvariant(key);
            line.days.resize(static_cast<std::size_t>(days));
            line.days[static_cast<std::size_t>(day - first)] = std::move(sum);
        }
    std::vector<pricedays> all;
    for (auto& [key, line] : found) all.push_back(std::move(line));
    std::ranges::stable_sort(all, std::ranges::greater(), [days](const auto& line) { return line.over(days).trades; });
    return all;
}

goodsline pricedays::over(int lastdays) const {
    daysum sum;
    const auto number = std::min<std::size_t>(days.size(), static_cast<std::size_t>(lastdays));
    for (auto place = days.size() - number; place < days.size(); ++place) sum.add(days[place]);
    return lineof(what, sum);
}

std::int64_t today() { return dayof(platform::unixseconds()); }

}  // namespace ledger
