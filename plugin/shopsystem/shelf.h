// Shops that stand side by side, the texts of their rows and the orders of these. Lists look at shelves: one that did
// not change keeps what was found on it and how it is sorted; one of which a shop changed is made anew from the one
// before. Never changed, and reached from any thread.
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
[[nodiscard]] bool infileorder(std::string_view leftkey, std::string_view rightkey);

class shelf {
public:
    using rowno = std::uint32_t;  // counted over all blocks
    using rows = std::vector<rowno>;

    struct shop {
        shopgoods goods;
        std::ptrdiff_t stood = -1;  // its number on the shelf before, where it is the same block
        std::size_t rows;
    };
    // The shops in the order of their files. Those that stood on the one before are in its order, and what it had
    // sorted is taken over.
    explicit shelf(const std::vector<shop>& shops, const shelf* before = nullptr);

    [[nodiscard]] const std::vector<std::shared_ptr<const goodsblock>>& shops() const { return all_; }
    [[nodiscard]] const std::string& firstkey() const { return all_.front()->shop.xuid; }
    [[nodiscard]] shopgoods goods(std::size_t block) const {
        return {all_[block], texts_[textsof_[block]], firsts_[block] - textfirsts_[textsof_[block]]};
    }
    // Whether the shop is the same, whatever its revision.
    [[nodiscard]] bool issame(std::size_t block, const shopgoods& fresh) const;
    [[nodiscard]] rowno firstof(std::size_t block) const { return firsts_[block]; }
    [[nodiscard]] rowno size() const { return firsts_.back(); }
    // The first shop that does not stand before the key.
    [[nodiscard]] std::size_t behind(std::string_view xuid) const;
    // The number of the shop's block; -1 when it is not here.
    [[nodiscard]] std::ptrdiff_t find(std::string_view xuid) const;
    // When all shops are what they are here, as a block's.
    [[nodiscard]] std::int64_t since() const { return since_; }
    [[nodiscard]] std::int64_t until() const { return until_; }
    // The texts of all rows in pieces, and the first row of each.
    [[nodiscard]] std::span<const std::shared_ptr<const rowtexts>> texts() const { return texts_; }
    [[nodiscard]] rowno firstoftexts(std::size_t piece) const { return textfirsts_[piece]; }

    [[nodiscard]] goodsrow at(rowno row) const {
        const auto block = blockof_[row];
        const auto piece = textsof_[block];
        return {*all_[block], row - firsts_[block], *texts_[piece], row - textfirsts_[piece],
                lefts_[row],  prices_[row],         tag(row)};
    }
    // What everybody is shown: rows that are not private, of shops that are not banned; a byte of 1 or 0 for each.
    [[nodiscard]] std::span<const std::uint8_t> shown() const { return shown_; }
    // All tags that rows bear, by their texts, and which of them each row bears.
    [[nodiscard]] const std::vector<taghandle>& tags() const { return *tags_; }
    [[nodiscard]] std::span<const std::uint32_t> ranks() const { return ranks_; }

    [[nodiscard]] std::int32_t left(rowno row) const { return lefts_[row]; }
    [[nodiscard]] std::int32_t price(rowno row) const { return prices_[row]; }
    [[nodiscard]] const goodstag& tag(rowno row) const { return *(*tags_)[ranks_[row]]; }
    [[nodiscard]] std::string_view name(rowno row) const {
        const auto piece = textsof_[blockof_[row]];
        return texts_[piece]->at(rowtexts::name, row - textfirsts_[piece]);
    }
    // The first bytes of the name as a number that sorts as they do; there once inorder(byname) was asked for.
    [[nodiscard]] std::uint64_t namehead(rowno row) const { return nameheads_[row]; }

    // The shown rows. Those of one tag stand by their prices in the order of tags. Sorted when somebody first asks.
    [[nodiscard]] const rows& inorder(sortstep step) const;
    // The rows of a tag in the order of tags. `rank` is where the tag is looked for first, and becomes where it is.
    [[nodiscard]] std::span<const rowno> oftag(const goodstag& tag, std::uint32_t& rank) const;
    // Sorts rows of this shelf.
    void sort(sortstep step, rows& some) const;

private:
    void jointexts(const std::vector<shop>& shops);
    void maketags(const std::vector<shop>& shops, const shelf* before);
    void takeover(const std::vector<shop>& shops, const shelf& before);
    [[nodiscard]] std::uint32_t findtag(std::string_view text) const;  // its rank, or how many there are
    void maketagruns() const;
    void makeheads(rowno first, rowno end) const;
    [[nodiscard]] bool isbefore(sortstep step, rowno a, rowno b) const;

    // First what a list of one tag touches on every shelf: where the rows of each tag, by rank, end in their order.
    struct tagrun {
        std::uint32_t id;
        rowno end;
    };
    mutable std::vector<tagrun> tagruns_;  // there with the order of tags, as nameheads_ with that of names
    mutable std::array<std::atomic<bool>, sortsteps> sorted_{};
    mutable std::array<rows, sortsteps> orders_;
    std::vector<std::int32_t> lefts_, prices_;  // by row

    std::vector<std::shared_ptr<const goodsblock>> all_;
    rows firsts_;  // and the end
    std::vector<std::shared_ptr<const rowtexts>> texts_;
    rows textfirsts_;
    std::vector<std::uint16_t> textsof_;  // by block
    struct bounds {
        std::int64_t since, until;
    };
    std::vector<bounds> holds_;  // by block
    std::int64_t since_ = goodsblock::header().since, until_ = goodsblock::header().until;
    // By row.
    std::vector<std::uint16_t> blockof_;
    std::vector<std::uint8_t> shown_;
    std::vector<std::uint32_t> ranks_;
    std::shared_ptr<const std::vector<taghandle>> tags_;

    mutable std::mutex sorting_;
    mutable std::vector<std::uint64_t> nameheads_;
};

}  // namespace shopsystem
