// The five builders of read lists: one walk, and what each of them does differently. A list is built apart and handed
// over at the end, so that two refreshes of one player do not mix their rows.
#include "plugin/shopsystem/lists.h"

#include <algorithm>
#include <exception>

#include "platform/turn.h"
#include "plugin/shopsystem/rowkinds.h"

namespace shopsystem {

namespace {

struct walkrules {
    bool everyshop;    // all files but the viewer's own, and the system shop only where the settings let it in
    bool bantest;      // no rows from a banned shop
    bool searchable;   // no private rows
    bool search;       // a search, while one is set, applies as well
    bool clears;       // empties the list
    bool clearsearch;  // the search is used up
};
constexpr walkrules everyshop{true, true, true, true, true, true};
constexpr walkrules systemsell{false, true, true, true, true, false};
constexpr walkrules systemrecycle{false, true, true, true, false, false};
constexpr walkrules singleshop{false, false, false, false, true, false};

// A long shop is read in several turns, so that the server thread never waits for the whole of it.
constexpr int rowsperturn = 64;

struct playerfilters {
    shopfilter standing, search;
    bool searching;
};

template <class Rows>
class walk {
public:
    walk(const walkrules& rules, const playerfilters& filters) : rules_(rules), filters_(filters) {}

    // A following getshop finds the shop in the cache: it is read here, outside of the turns.
    void visit(const std::string& shopxuid) {
        globalruntimeshopmanager.bringin(shopxuid, Rows::type);
        for (int place = 0; take(shopxuid, place);) place += rowsperturn;
    }
    [[nodiscard]] readlist<typename Rows::row>& found() { return found_; }

private:
    // True when the shop has more rows.
    bool take(const std::string& shopxuid, int first) {
        const Turn turn;
        auto& shop = Rows::shop(shopxuid);
        const json& records = shop.*Rows::records;
        if (rules_.bantest && shop.isbanned()) return false;
        if (rules_.everyshop && shop.issystemshop && !ordomart::enablesystemshopinglobalshop) return false;
        if (!records.is_array()) return false;
        const int size = static_cast<int>(records.size());
        const int last = std::min(size, first + rowsperturn);
        for (int place = first; place < last; ++place) {
            auto row = Rows::at(shop, place);
            if (wanted(row)) found_.add(std::move(row));
        }
        return last < size;
    }
    bool wanted(const typename Rows::row& row) const {
        if (rules_.searchable && !row.allowbesearched) return false;
        if (!passfilter(filters_.standing, row, allof)) return false;
        return !rules_.search || !filters_.searching || passfilter(filters_.search, row, anyof);
    }

    const walkrules& rules_;
    const playerfilters& filters_;
    readlist<typename Rows::row> found_;
};

template <class Rows>
void prepare(const std::string& playerxuid, const std::vector<std::string>& shops, const walkrules& rules) {
    const auto begin = [&] {
        const Turn turn;
        auto& state = getplayershopstate(playerxuid);
        if (rules.clears) (state.*Rows::list).clear();
        return playerfilters{state.filter, state.searchfilter, state.searchmode};
    };
    const playerfilters filters = begin();

    walk<Rows> rows(rules, filters);
    std::exception_ptr broken;
    try {
        for (const std::string& shop : shops)
            if (!rules.everyshop || (!shop.empty() && shop != playerxuid)) rows.visit(shop);
    } catch (...) {
        broken = std::current_exception();
    }

    const Turn turn;
    auto& state = getplayershopstate(playerxuid);
    auto& list = state.*Rows::list;
    if (rules.clears) list.clear();
    list.append(std::move(rows.found()));
    if (broken) std::rethrow_exception(broken);
    state.*Rows::page = std::min(state.*Rows::page, list.lastpage());
    // A search that was set while this walk ran is left for its own.
    if (rules.clearsearch && filters.searching) state.searchmode = false;
}

template <class Rows>
using rowhandle = typename readlist<typename Rows::row>::handle;

template <class Rows>
using order = bool (*)(const rowhandle<Rows>&, const rowhandle<Rows>&);

template <class Rows, auto Field>
bool by(const rowhandle<Rows>& left, const rowhandle<Rows>& right) {
    return (*left).*Field < (*right).*Field;
}

template <class Rows>
void sortlist(playershopstate& state) {
    static constexpr order<Rows> orders[] = {nullptr, by<Rows, Rows::name>, by<Rows, Rows::tag>, by<Rows, Rows::left>,
                                             by<Rows, Rows::price>};
    auto& shown = (state.*Rows::list).rows();
    order<Rows> before = nullptr;
    const auto copy = [&] {
        const Turn turn;
        if (state.filterstep < std::size(orders)) before = orders[state.filterstep];
        return before == nullptr ? std::vector<rowhandle<Rows>>() : shown;
    };
    const auto asread = copy();
    if (before == nullptr) return;
    auto sorted = asread;
    std::stable_sort(sorted.begin(), sorted.end(), before);
    const Turn turn;
    if (shown == asread) shown = std::move(sorted);
}

}  // namespace

void sellshop::prepareglobalsellshopfilterforplayer(const std::string& player) {
    prepare<sellrows>(player, shopfilekeys(), everyshop);
}
void recycleshop::prepareglobalrecycleshopfilterforplayer(const std::string& player) {
    prepare<recyclerows>(player, shopfilekeys(), everyshop);
}
void preparesystemsell(const std::string& playerxuid) {
    prepare<sellrows>(playerxuid, {ordomart::systemshopid}, systemsell);
}
void preparesystemrecycle(const std::string& playerxuid) {
    prepare<recyclerows>(playerxuid, {ordomart::systemshopid}, systemrecycle);
}
void preparesinglesell(const std::string& playerxuid, const std::string& shopxuid) {
    prepare<sellrows>(playerxuid, {shopxuid}, singleshop);
}
void preparesinglerecycle(const std::string& playerxuid, const std::string& shopxuid) {
    prepare<recyclerows>(playerxuid, {shopxuid}, singleshop);
}

void sortsellreadlist(playershopstate& state) { sortlist<sellrows>(state); }
void sortrecyclereadlist(playershopstate& state) { sortlist<recyclerows>(state); }

}  // namespace shopsystem
