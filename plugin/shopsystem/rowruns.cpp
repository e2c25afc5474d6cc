// Selecting a page: a row that is picked parts every run in what stands before it and what does not; the side on which
// the page does not begin is dropped, until the place is found, and from there the runs are merged. The row is picked
// where the page would begin if the run that it is picked from were like all others, which shelves mostly are; every
// third time by chance, for where they are not.
#include "plugin/shopsystem/rowruns.h"

#include <algorithm>
#include <random>
#include <utility>

namespace shopsystem {

namespace {

struct bounds {
    std::size_t low, high;
};

template <class Key>
class selection {
public:
    selection(const std::vector<rowrun>& runs, Key key) : runs_(runs), key_(key) {}

    // How much of each run stands before the row that is first-th of all.
    std::vector<std::size_t> begins(std::size_t first) const {
        std::vector<bounds> left;
        std::size_t open = 0, before = 0;
        for (const auto& run : runs_) {
            left.push_back({0, run.rows.size()});
            open += run.rows.size();
        }
        std::minstd_rand chance;  // the same each time
        std::vector<std::size_t> cuts(runs_.size());
        for (int turn = 1; open > 0 && before < first; ++turn) {
            auto [pivotrun, pivotat] = pick(left, chance() % open);
            if (turn % 3 != 0) {
                const auto [low, high] = left[pivotrun];
                pivotat = low + (high - low) * std::min(first - before, open - 1) / open;
            }
            std::size_t below = 0;
            for (std::size_t r = 0; r < runs_.size(); ++r) {
                cuts[r] = r == pivotrun ? pivotat : cut(r, left[r], pivotrun, pivotat);
                below += cuts[r] - left[r].low;
            }
            if (before + below > first) {
                for (std::size_t r = 0; r < runs_.size(); ++r) left[r].high = cuts[r];
                open = below;
            } else {
                // What is not above the pivot stands before the page, the pivot too unless it is its first row.
                const bool isfirst = before + below == first;
                for (std::size_t r = 0; r < runs_.size(); ++r) left[r].low = cuts[r];
                before += below;
                open -= below;
                if (isfirst) break;
                ++left[pivotrun].low;
                ++before;
                --open;
            }
        }
        std::vector<std::size_t> result;
        for (const auto& each : left) result.push_back(each.low);
        return result;
    }

    std::vector<rowplace> merge(std::vector<std::size_t> at, std::size_t most) const {
        using head = std::pair<decltype(keyat(0, 0)), std::size_t>;  // the key of a run's next row
        const auto isbehind = [](const head& a, const head& b) {
            return a.first == b.first ? a.second > b.second : b.first < a.first;
        };
        // All keys are fetched before any two are compared: no miss of the cache then waits for another.
        std::vector<head> heads;
        heads.reserve(runs_.size());
        for (std::size_t r = 0; r < runs_.size(); ++r)
            if (at[r] < runs_[r].rows.size()) heads.emplace_back(keyat(r, at[r]), r);
        std::ranges::make_heap(heads, isbehind);
        std::vector<rowplace> found;
        while (found.size() < most && !heads.empty()) {
            std::ranges::pop_heap(heads, isbehind);
            const auto r = heads.back().second;
            heads.pop_back();
            found.push_back({&runs_[r], runs_[r].rows[at[r]]});
            if (++at[r] == runs_[r].rows.size()) continue;
            heads.emplace_back(keyat(r, at[r]), r);
            std::ranges::push_heap(heads, isbehind);
        }
        return found;
    }

private:
    auto keyat(std::size_t run, std::size_t i) const { return key_(*runs_[run].of, runs_[run].rows[i]); }

    std::pair<std::size_t, std::size_t> pick(const std::vector<bounds>& left, std::size_t nth) const {
        for (std::size_t r = 0;; ++r) {
            const auto here = left[r].high - left[r].low;
            if (nth < here) return {r, left[r].low + nth};
            nth -= here;
        }
    }

    // Where the pivot would stand in another run: behind what is equal in those before its own, before it in those
    // behind.
    std::size_t cut(std::size_t r, bounds within, std::size_t pivotrun, std::size_t pivotat) const {
        const auto pivot = keyat(pivotrun, pivotat);
        while (within.low < within.high) {
            const auto middle = within.low + (within.high - within.low) / 2;
            const auto key = keyat(r, middle);
            if (key < pivot || (r < pivotrun && key == pivot))
                within.low = middle + 1;
            else
                within.high = middle;
        }
        return within.low;
    }

    const std::vector<rowrun>& runs_;
    Key key_;
};

template <class Key>
std::vector<rowplace> select(const std::vector<rowrun>& runs, std::size_t first, std::size_t most, Key key) {
    const selection<Key> among(runs, key);
    return among.merge(among.begins(first), most);
}

std::vector<rowplace> inturn(const std::vector<rowrun>& runs, std::size_t first, std::size_t most) {
    std::vector<rowplace> found;
    for (const auto& run : runs) {
        for (; first < run.rows.size() && found.size() < most; ++first) found.push_back({&run, run.rows[first]});
        first -= std::min(first, run.rows.size());
        if (found.size() == most) break;
    }
    return found;
}

}  // namespace

void rowruns::add(rowrun run) {
    if (run.rows.empty()) return;
    total_ += run.rows.size();
    all_.push_back(std::move(run));
}

void rowruns::append(rowruns runs) {
    total_ += runs.total_;
    if (all_.empty()) return all_.swap(runs.all_);
    all_.insert(all_.end(), runs.all_.begin(), runs.all_.end());
}

void rowruns::leaveout(std::size_t run, shelf::rowno first, shelf::rowno end) {
    auto& of = all_[run];
    shelf::rows left;
    left.reserve(of.rows.size());
    std::ranges::copy_if(of.rows, std::back_inserter(left), [&](auto row) { return row < first || row >= end; });
    total_ -= of.rows.size() - left.size();
    of.kept = std::make_shared<const shelf::rows>(std::move(left));
    of.rows = *of.kept;
}

namespace {

struct namekey {
    std::uint64_t head;
    const shelf* of;
    shelf::rowno row;
    bool operator==(const namekey& other) const {
        return head == other.head && of->name(row) == other.of->name(other.row);
    }
    bool operator<(const namekey& other) const {
        return head != other.head ? head < other.head : of->name(row) < other.of->name(other.row);
    }
};

struct tagkey {
    const goodstag* tag;  // the same for the same text
    std::int32_t price;
    bool operator==(const tagkey&) const = default;
    bool operator<(const tagkey& other) const {
        return tag == other.tag ? price < other.price : tag->text < other.tag->text;
    }
};

}  // namespace

std::vector<rowplace> rowruns::page(std::size_t first, std::size_t most) const {
    if (first >= total_) return {};
    switch (step_) {
        case byname:
            return select(all_, first, most, [](const shelf& of, shelf::rowno row) {
                return namekey{of.namehead(row), &of, row};
            });
        case bytag:
            return select(all_, first, most, [](const shelf& of, shelf::rowno row) {
                return tagkey{&of.tag(row), of.price(row)};
            });
        case byleft:
            return select(all_, first, most, [](const shelf& of, shelf::rowno row) { return of.left(row); });
        case byprice:
            return select(all_, first, most, [](const shelf& of, shelf::rowno row) { return of.price(row); });
        default:
            return inturn(all_, first, most);
    }
}

}  // namespace shopsystem
