// The rows that a player looks at. Whoever draws or trades asks for the size and for row i; what is inside is this
// class's own affair: rows that were read once and never change, and for each list a handle of 8 bytes a row. Lists
// that were made by one walk share its rows. Pages hold 26 rows.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace shopsystem {

inline constexpr int pagesize = 26;

template <class Row>
class readlist {
public:
    using handle = const Row*;
    // Rows as they were read, in batches of one shop each; no batch is empty.
    using pile = std::vector<std::vector<Row>>;

    readlist() = default;
    // All rows of the pile but those of one owner.
    readlist(std::shared_ptr<const pile> rows, const std::string& leftout) {
        std::size_t most = 0;
        for (const auto& batch : *rows) most += batch.size();
        shown_.reserve(most);
        for (const auto& batch : *rows) {
            if (batch.front().xuid == leftout) continue;
            for (const Row& row : batch) shown_.push_back(&row);
        }
        if (!shown_.empty()) piles_.push_back(std::move(rows));
    }

    [[nodiscard]] std::size_t size() const { return shown_.size(); }
    [[nodiscard]] bool holds(std::int64_t i) const { return i >= 0 && i < static_cast<std::int64_t>(shown_.size()); }
    [[nodiscard]] Row row(std::size_t i) const { return *shown_.at(i); }
    // The memory goes back, too.
    void clear() { *this = readlist(); }
    void append(const readlist& other) {
        piles_.insert(piles_.end(), other.piles_.begin(), other.piles_.end());
        shown_.insert(shown_.end(), other.shown_.begin(), other.shown_.end());
        arrangedby_ = 0;
    }
    // The number of the last page. A list of exactly 26 rows has an empty second one.
    [[nodiscard]] std::int32_t lastpage() const { return static_cast<std::int32_t>(shown_.size()) / pagesize; }

    // What ties keeps its order. `step` names the order, so that a list that is in it already is left alone.
    template <class Before>
    void arrange(std::uint8_t step, Before before) {
        std::stable_sort(shown_.begin(), shown_.end(), [&](handle a, handle b) { return before(*a, *b); });
        arrangedby_ = step;
    }
    [[nodiscard]] bool isarranged(std::uint8_t step) const { return arrangedby_ == step; }
    // The same rows in the same order.
    bool operator==(const readlist& other) const { return shown_ == other.shown_; }

private:
    std::vector<std::shared_ptr<const pile>> piles_;  // keep what the handles point to
    std::vector<handle> shown_;
    std::uint8_t arrangedby_ = 0;  // 0: as read
};

}  // namespace shopsystem
