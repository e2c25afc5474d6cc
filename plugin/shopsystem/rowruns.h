// The rows of a list as runs of rows that are sorted already, one or a few for each shelf, so that nobody sorts all of
// them for the page that is looked at: the page is selected over the runs.
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

#include "plugin/shopsystem/shelf.h"

namespace shopsystem {

struct rowrun {
    const shelf* of;                     // kept by whoever keeps what was found
    std::span<const shelf::rowno> rows;  // in the order of the list; kept by the shelf or by `kept`
    std::shared_ptr<const shelf::rows> kept = nullptr;
};

struct rowplace {
    const rowrun* run;
    shelf::rowno row;
};

class rowruns {
public:
    explicit rowruns(sortstep step = asread, std::size_t most = 0) : step_(step) { all_.reserve(most); }
    void add(rowrun run);  // an empty one is left out
    void append(rowruns runs);
    // Leaves rows of a run's shelf out of it, from the first to the one before `end`.
    void leaveout(std::size_t run, shelf::rowno first, shelf::rowno end);
    [[nodiscard]] sortstep step() const { return step_; }
    [[nodiscard]] std::size_t size() const { return total_; }
    [[nodiscard]] const std::vector<rowrun>& all() const { return all_; }
    // The rows from the first-th on, at most so many. As read, runs stand one behind the other; else ties are in the
    // order of the runs.
    [[nodiscard]] std::vector<rowplace> page(std::size_t first, std::size_t most) const;

private:
    sortstep step_;
    std::vector<rowrun> all_;
    std::size_t total_ = 0;
};

}  // namespace shopsystem
