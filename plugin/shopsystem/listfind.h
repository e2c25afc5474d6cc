// What a list is made of: the rows of the catalogue that pass its filters. It is found once for all who ask the same of
// the same shops, shelf by shelf, and where a shelf did not change since the last time, not again. Any thread, not in a
// turn.
#pragma once

#include <array>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "plugin/shopsystem/rowruns.h"
#include "plugin/shopsystem/shopfilter.h"

namespace shopsystem {

// All shops of a kind at one moment, in the order of their files.
struct shelves {
    std::vector<std::shared_ptr<const shelf>> all;
    std::int64_t since, until;  // as a block's
    std::uint64_t number = 0;   // another one's for whatever has changed
};

// The first of some shelves all of whose shops stand behind the key.
template <class Shelves>
[[nodiscard]] Shelves shelfbehind(Shelves first, Shelves end, const std::string& xuid) {
    return std::upper_bound(first, end, xuid,
                            [](const auto& key, const auto& on) { return infileorder(key, on->firstkey()); });
}
// The one on which a shop stands; null when there is no such shop.
[[nodiscard]] std::shared_ptr<const shelf> shelfof(const shelves& among, const std::string& xuid);

// Which rows, and of which shops.
struct rowquery {
    bool issell = true;
    std::string shop;         // of this one alone; empty for all
    std::string item;         // of this item alone, by its full name; empty for all
    bool publicrows = false;  // neither private rows nor those of banned shops
    shopfilter standing;
    bool searching = false;
    shopfilter search;
    bool shopsalone = false;  // a row for each shop that has any and is not banned, whatever the row
    bool operator==(const rowquery&) const = default;
};

class foundrows {
public:
    // `last` is what was found for the same query before, or null.
    foundrows(std::shared_ptr<const shelves> among, rowquery query, const foundrows* last);
    [[nodiscard]] bool answers(const shelves* among, const rowquery& query) const {
        return among_.get() == among && query_ == query;
    }
    [[nodiscard]] const rowquery& query() const { return query_; }
    [[nodiscard]] bool isofshops() const { return query_.shopsalone; }
    // Sorted when somebody first asks.
    [[nodiscard]] const rowruns& inorder(sortstep step) const;
    // The order that costs least for who wants to know how many there are.
    [[nodiscard]] sortstep countedby() const { return tag_ == nullptr ? asread : byprice; }

private:
    // What was found on one shelf.
    struct part {
        const shelf* of;
        enum { all, tagged, some } what = all;
        std::shared_ptr<const shelf::rows> rows = nullptr;  // some, ascending
    };
    void findtagged(const std::string& text);
    void findpassing(const foundrows* last);
    void findofone();
    [[nodiscard]] rowrun runof(const part& found, sortstep step, std::uint32_t& tagrank) const;

    std::shared_ptr<const shelves> among_;
    rowquery query_;
    taghandle tag_;  // whose rows are `tagged`; held, so that its number stays its own
    std::vector<part> parts_;
    mutable std::mutex sorting_;
    mutable std::array<std::unique_ptr<const rowruns>, sortsteps> orders_;
};

// The runs without the rows of some shops; the runs are in the order of their shelves, one of each.
[[nodiscard]] rowruns without(rowruns runs, const std::vector<std::string>& shops);

}  // namespace shopsystem
