// Shops that stand side by side, and the orders of their rows. Lists look at shelves: one that did not change keeps
// what was found on it and how it is sorted; one of which a shop changed is made anew from the one before. Never
// changed, and reached from any thread.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "plugin/shopsystem/goodsblock.h"

namespace shopsystem {

// How the rows of a list are sorted, as filterstep counts.
enum sortstep : std::uint8_t { asread = 0, byname = 1, bytag = 2, byleft = 3, byprice = 4, sortsteps = 5 };

// Shops are in the order of their file names.
[[nodiscard]] bool infileorder(const std::string& leftkey, const std::string& rightkey);

class shelf {
public:
    using rowno = std::uint32_t;  // counted over all blocks
    using rows = std::vector<rowno>;
    using blocks = std::vector<std::shared_ptr<const goodsblock>>;

    // What the one before had sorted is taken over.
    explicit shelf(blocks shops, const shelf* before = nullptr);

    struct place {
        const goodsblock& block;
        std::size_t row;
    };
    [[nodiscard]] place at(rowno row) const { return {*all_[blockof_[row]], row - firsts_[blockof_[row]]}; }
    [[nodiscard]] const blocks& shops() const { return all_; }
    [[nodiscard]] rowno firstof(std::size_t block) const { return firsts_[block]; }
    [[nodiscard]] rowno size() const { return firsts_.back(); }
    // The number of the shop's block; -1 when it is not here.
    [[nodiscard]] std::ptrdiff_t find(const std::string& xuid) const;
    // What everybody is shown: rows that are not private, of shops that are not banned.
    [[nodiscard]] bool isshown(rowno row) const { return shown_[row] != 0; }
    [[nodiscard]] std::uint32_t tagid(rowno row) const { return tagids_[row]; }

    [[nodiscard]] std::int32_t left(rowno row) const { return lefts_[row]; }
    [[nodiscard]] std::int32_t price(rowno row) const { return prices_[row]; }
    [[nodiscard]] std::string_view name(rowno row) const {
        const auto [block, i] = at(row);
        return block.name(i);
    }
    [[nodiscard]] std::string_view tag(rowno row) const {
        const auto [block, i] = at(row);
        return block.tag(i);
    }

    // The shown rows. Those of one tag stand by their prices in the order of tags. Sorted when somebody first asks.
    [[nodiscard]] const rows& inorder(sortstep step) const;
    // The rows of a tag in the order of tags.
    [[nodiscard]] std::span<const rowno> oftag(std::uint32_t tagid) const;
    // Sorts rows of this shelf.
    void sort(sortstep step, rows& some) const;

private:
    void takeover(const shelf& before);
    [[nodiscard]] bool isbefore(sortstep step, rowno a, rowno b) const;
    void makeranges() const;

    blocks all_;
    rows firsts_;  // and the end
    std::vector<std::uint16_t> blockof_;
    std::vector<std::uint8_t> shown_;
    std::vector<std::int32_t> lefts_, prices_;
    std::vector<std::uint32_t> tagids_;

    struct tagrange {
        std::uint32_t id;
        rowno first, end;
    };
    mutable std::mutex sorting_;
    mutable std::array<std::atomic<bool>, sortsteps> sorted_{};
    mutable std::array<rows, sortsteps> orders_;
    mutable std::vector<tagrange> ranges_;  // by id
};

}  // namespace shopsystem
