// The rows that a player looks at. Whoever draws or trades asks it for its size and for row i; what is inside is this
// class's own affair: runs over the rows of the catalogue, which it keeps as they were when it was made, and the page
// that was looked at last, ready to be read. Pages hold 26 rows. Reached only in a turn, but for a copy that nobody
// else has.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "plugin/shopsystem/listfind.h"

namespace shopsystem {

inline constexpr int pagesize = 26;

template <class Row>
class readlist {
public:
    readlist() = default;
    // All rows that were found but those of some shops, as read. They are only counted until somebody looks at one,
    // since most lists are sorted before.
    readlist(std::shared_ptr<const foundrows> found, std::vector<std::string> leftout) {
        const auto step = found->countedby();
        sources_.push_back({std::move(found), std::move(leftout)});
        runs_ = runsby(step);
    }

    [[nodiscard]] std::size_t size() const { return runs_ == nullptr ? 0 : runs_->size(); }
    [[nodiscard]] bool holds(std::int64_t i) const { return i >= 0 && i < static_cast<std::int64_t>(size()); }
    [[nodiscard]] Row row(std::size_t i) const {
        if (i >= size()) throw std::out_of_range("readlist: no such row");
        if (i < pagefirst_ || i >= pagefirst_ + page_.size()) openpage(i / pagesize);
        return page_[i - pagefirst_];
    }
    // The memory goes back, too.
    void clear() { *this = readlist(); }
    void append(const readlist& other) {
        sources_.insert(sources_.end(), other.sources_.begin(), other.sources_.end());
        arrange(asread);
    }
    // The number of the last page. A list of exactly 26 rows has an empty second one.
    [[nodiscard]] std::int32_t lastpage() const { return static_cast<std::int32_t>(size()) / pagesize; }

    // Ties are in the order of the files; rows of one tag are first by their prices.
    void arrange(sortstep step) {
        step_ = step;
        runs_ = runsby(step);
        page_.clear();
    }
    [[nodiscard]] sortstep order() const { return step_; }
    // Reads the rows of a page, so that whoever asks for them need not look for them.
    void openpage(std::size_t page) const {
        page_.clear();
        pagefirst_ = page * pagesize;
        if (runs_ == nullptr) return;
        if (runs_->step() != step_) runs_ = runsby(step_);
        for (const auto& [run, number] : runs_->page(pagefirst_, pagesize)) {
            const auto row = run->of->at(number);
            page_.emplace_back();
            if (sources_.front().found->isofshops())
                readshop(row.block, page_.back());
            else
                readrow(row, page_.back());
        }
    }
    // The first row of the open page, and the one behind its last.
    [[nodiscard]] std::pair<std::size_t, std::size_t> pagebounds() const {
        return {pagefirst_, pagefirst_ + page_.size()};
    }
    // The stack that stands for a shop, row i of the open page.
    void dress(std::size_t i, std::string itemnbt) { page_.at(i - pagefirst_).itemnbt = std::move(itemnbt); }
    // Of the same rows in the same order, but for the shops that are left out.
    bool operator==(const readlist& other) const {
        const auto isequal = [](const source& a, const source& b) { return a.found == b.found; };
        return order() == other.order() &&
               std::equal(sources_.begin(), sources_.end(), other.sources_.begin(), other.sources_.end(), isequal);
    }

private:
    struct source {
        std::shared_ptr<const foundrows> found;
        std::vector<std::string> leftout;
    };
    [[nodiscard]] std::shared_ptr<const rowruns> runsby(sortstep step) const {
        auto runs = std::make_shared<rowruns>(step);
        for (const auto& from : sources_) runs->append(without(from.found->inorder(step), from.leftout));
        return runs;
    }

    std::vector<source> sources_;
    sortstep step_ = asread;
    mutable std::shared_ptr<const rowruns> runs_;  // by step_, or only counted
    mutable std::vector<Row> page_;
    mutable std::size_t pagefirst_ = 0;
};

}  // namespace shopsystem
