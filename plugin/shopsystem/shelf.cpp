#include "plugin/shopsystem/shelf.h"

#include <algorithm>
#include <limits>
#include <unordered_map>

namespace shopsystem {

bool infileorder(const std::string& leftkey, const std::string& rightkey) {
    // A key that begins another comes behind it where the other goes on with something below the dot of ".json".
    const auto [left, right] = std::mismatch(leftkey.begin(), leftkey.end(), rightkey.begin(), rightkey.end());
    std::string lefttail(left, leftkey.end()), righttail(right, rightkey.end());
    lefttail += ".json";
    righttail += ".json";
    return lefttail < righttail;
}

shelf::shelf(blocks shops, const shelf* before) : all_(std::move(shops)) {
    firsts_.reserve(all_.size() + 1);
    std::size_t rowcount = 0;
    for (const auto& block : all_) rowcount += block->rows.size();
    for (auto* column : {&lefts_, &prices_}) column->reserve(rowcount);
    blockof_.reserve(rowcount);
    shown_.reserve(rowcount);
    tagids_.reserve(rowcount);
    for (std::size_t number = 0; number < all_.size(); ++number) {
        const auto& block = *all_[number];
        firsts_.push_back(static_cast<rowno>(lefts_.size()));
        for (const auto& row : block.rows) {
            lefts_.push_back(row.left);
            prices_.push_back(row.price);
            tagids_.push_back(block.tags[row.tag]->id);
            blockof_.push_back(static_cast<std::uint16_t>(number));
            shown_.push_back(!block.shop.isbanned && (row.flags & goodsblock::isprivate) == 0 ? 1 : 0);
        }
    }
    firsts_.push_back(static_cast<rowno>(lefts_.size()));
    if (before != nullptr) takeover(*before);
}

std::ptrdiff_t shelf::find(const std::string& xuid) const {
    const auto found = std::lower_bound(all_.begin(), all_.end(), xuid, [](const auto& block, const auto& key) {
        return infileorder(block->shop.xuid, key);
    });
    return found == all_.end() || (*found)->shop.xuid != xuid ? -1 : found - all_.begin();
}

bool shelf::isbefore(sortstep step, rowno a, rowno b) const {
    switch (step) {
        case byname:
            if (const auto order = name(a).compare(name(b)); order != 0) return order < 0;
            break;
        case bytag:
            if (tagids_[a] != tagids_[b]) return tag(a) < tag(b);
            if (prices_[a] != prices_[b]) return prices_[a] < prices_[b];
            break;
        case byleft:
            if (lefts_[a] != lefts_[b]) return lefts_[a] < lefts_[b];
            break;
        case byprice:
            if (prices_[a] != prices_[b]) return prices_[a] < prices_[b];
            break;
        default:
            break;
    }
    return a < b;
}

void shelf::sort(sortstep step, rows& some) const {
    std::sort(some.begin(), some.end(), [&](rowno a, rowno b) { return isbefore(step, a, b); });
}

const shelf::rows& shelf::inorder(sortstep step) const {
    if (sorted_[step].load(std::memory_order_acquire)) return orders_[step];
    const std::lock_guard alone(sorting_);
    if (sorted_[step].load(std::memory_order_relaxed)) return orders_[step];
    rows order;
    for (rowno row = 0; row < size(); ++row)
        if (isshown(row)) order.push_back(row);
    order.shrink_to_fit();
    if (step != asread) sort(step, order);
    orders_[step] = std::move(order);
    if (step == bytag) makeranges();
    sorted_[step].store(true, std::memory_order_release);
    return orders_[step];
}

void shelf::makeranges() const {
    const auto& order = orders_[bytag];
    for (rowno i = 0; i < order.size(); ++i) {
        const auto id = tagids_[order[i]];
        if (ranges_.empty() || ranges_.back().id != id) ranges_.push_back({id, i, i});
        ranges_.back().end = i + 1;
    }
    std::sort(ranges_.begin(), ranges_.end(), [](const auto& a, const auto& b) { return a.id < b.id; });
    ranges_.shrink_to_fit();
}

std::span<const shelf::rowno> shelf::oftag(std::uint32_t id) const {
    const auto& order = inorder(bytag);
    const auto found = std::lower_bound(ranges_.begin(), ranges_.end(), id,
                                        [](const auto& range, auto key) { return range.id < key; });
    if (found == ranges_.end() || found->id != id) return {};
    return std::span(order).subspan(found->first, found->end - found->first);
}

// The rows of blocks that stayed keep their order among themselves; those of new ones are sorted into it.
void shelf::takeover(const shelf& before) {
    constexpr rowno gone = std::numeric_limits<rowno>::max();
    std::unordered_map<const goodsblock*, std::size_t> stayed;
    for (std::size_t number = 0; number < before.all_.size(); ++number) stayed[before.all_[number].get()] = number;
    rows movedto(before.size(), gone), fresh;
    for (std::size_t number = 0; number < all_.size(); ++number) {
        const auto old = stayed.find(all_[number].get());
        for (rowno row = firsts_[number]; row < firsts_[number + 1]; ++row) {
            if (old != stayed.end())
                movedto[before.firsts_[old->second] + row - firsts_[number]] = row;
            else if (isshown(row))
                fresh.push_back(row);
        }
    }
    for (std::uint8_t step = byname; step < sortsteps; ++step) {
        const auto of = static_cast<sortstep>(step);
        if (!before.sorted_[of].load(std::memory_order_acquire)) continue;
        rows kept;
        kept.reserve(before.orders_[of].size());
        for (const auto row : before.orders_[of])
            if (movedto[row] != gone) kept.push_back(movedto[row]);
        sort(of, fresh);
        auto& order = orders_[of];
        order.resize(kept.size() + fresh.size());
        std::merge(kept.begin(), kept.end(), fresh.begin(), fresh.end(), order.begin(),
                   [&](rowno a, rowno b) { return isbefore(of, a, b); });
        if (of == bytag) makeranges();
        sorted_[of].store(true, std::memory_order_release);
    }
}

}  // namespace shopsystem
