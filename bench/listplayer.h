// What a player does with the list of all goods, what happens to shops meanwhile, and how it is timed.
#pragma once

#include <fmt/format.h>
#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <numeric>
#include <optional>
#include <string>
#include <vector>

#include "bench/listgoods.h"
#include "bench/listtable.h"
#include "platform/turn.h"
#include "plugin/shopsystem/catalogue.h"
#include "plugin/shopsystem/lists.h"
#include "plugin/shopsystem/runtimeshopmanager.h"

namespace listgoods {

using namespace shopsystem;

inline const std::string viewer = xuidof(ownshop), secondviewer = xuidof(othersshop);

inline double once(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}
inline double middle(std::vector<double> times) {
    std::ranges::sort(times);
    return times.empty() ? 0 : times[times.size() / 2];
}
inline std::size_t heap() {
    const auto info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

// One pass over so many bytes that lie end to end.
inline double onepass(const std::vector<std::uint64_t>& column) {
    return once([&] {
        volatile std::uint64_t sum = std::accumulate(column.begin(), column.end(), std::uint64_t{0});
        (void)sum;
    });
}

struct query {
    shopfilter standing;
    std::optional<shopfilter> search;
    sortstep order = byprice;
};

inline answer openpage(playershopstate& state) {
    sortsellreadlist(state);
    auto& list = state.sellreadlist;
    answer got{.hits = list.size()};
    const auto first = static_cast<std::size_t>(state.sellpage) * pagerows;
    for (auto i = first; i < std::min(first + pagerows, got.hits); ++i) got.prices += list.row(i).realprice;
    return got;
}

inline answer openlist(const query& asked, std::size_t page, const std::string& player = viewer) {
    auto& state = getplayershopstate(player);
    state.filter = asked.standing;
    state.searchmode = asked.search.has_value();
    state.searchfilter = asked.search.value_or(shopfilter());
    sellshop::prepareglobalsellshopfilterforplayer(player);
    state.filterstep = asked.order;
    state.sellpage = static_cast<std::int32_t>(page);
    return openpage(state);
}

// Of a good that stays in the lists so many pieces more.
inline void trade(const std::string& shop, int pieces) {
    const platform::Turn turn;
    auto& traded = globalruntimeshopmanager.getsellshop(shop);
    for (auto& good : traded.items) {
        auto& left = good["shopitemleftnum"];
        if (left < 2) continue;
        left = left.get<int>() + pieces;
        break;
    }
    traded.markshopchanged();
}

}  // namespace listgoods
