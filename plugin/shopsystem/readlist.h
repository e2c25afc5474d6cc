// The rows that a player looks at. Whoever draws or trades asks for the size and for row i; what is inside is this
// class's own affair. Pages hold 26 rows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace shopsystem {

inline constexpr int pagesize = 26;

template <class Row>
class readlist {
public:
    using handle = std::shared_ptr<const Row>;

    [[nodiscard]] std::size_t size() const { return rows_.size(); }
    [[nodiscard]] bool holds(std::int64_t i) const { return i >= 0 && i < static_cast<std::int64_t>(rows_.size()); }
    [[nodiscard]] Row row(std::size_t i) const { return *rows_.at(i); }
    void clear() { rows_.clear(); }
    void add(Row row) { rows_.push_back(std::make_shared<const Row>(std::move(row))); }
    // Takes the rows of a list that was built apart, behind its own.
    void append(readlist&& other) {
        if (rows_.empty())
            rows_ = std::move(other.rows_);
        else
            rows_.insert(rows_.end(), other.rows_.begin(), other.rows_.end());
    }
    // The number of the last page. A list of exactly 26 rows has an empty second one.
    [[nodiscard]] int lastpage() const { return static_cast<int>(rows_.size()) / pagesize; }
    // For arranging a list beside the one that is shown; the rows themselves are shared and never change.
    [[nodiscard]] std::vector<handle>& rows() { return rows_; }

private:
    std::vector<handle> rows_;
};

}  // namespace shopsystem
