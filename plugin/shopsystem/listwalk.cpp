// What each kind of list takes from the shops stands in one table; the walk is written once.
#include "plugin/shopsystem/listwalk.h"

#include <algorithm>
#include <exception>
#include <utility>
#include <vector>

#include "platform/turn.h"
#include "plugin/shopsystem/brokenshops.h"
#include "plugin/shopsystem/rowkinds.h"

namespace shopsystem {

namespace {

enum class source {
    everyshop,  // all files but the viewer's own, and the system shop only where the settings let it in
    systemshop,
    oneshop
};

struct walkrules {
    source shops;
    bool bantest = false;     // no rows of a banned shop
    bool publicrows = false;  // no private ones
    bool searches = false;    // a search, while one is set, applies as well
    bool endssearch = false;  // and is used up
    bool appends = false;     // behind the rows that are there: the caller empties the list
};
constexpr walkrules everyshop{
    .shops = source::everyshop, .bantest = true, .publicrows = true, .searches = true, .endssearch = true};
constexpr walkrules systemsell{.shops = source::systemshop, .bantest = true, .publicrows = true, .searches = true};
constexpr walkrules systemrecycle{
    .shops = source::systemshop, .bantest = true, .publicrows = true, .searches = true, .appends = true};
constexpr walkrules singleshop{.shops = source::oneshop};

// A long shop is read in several turns, so that the server thread never waits for the whole of it.
constexpr int rowsperturn = 64;

template <class Rows>
class walk final : public listwalk {
public:
    using row = typename Rows::row;
    using pile = typename readlist<row>::pile;

    walk(const walkrules& rules, const listorder& order) : rules_(rules), order_(order) {}

    bool run(const std::string& leftout, const question& goeson) override {
        auto found = std::make_shared<pile>();
        for (const auto& shop : shops()) {
            if (!goeson()) return false;
            if (!iseveryshop() || (!shop.empty() && shop != leftout)) visit(shop, *found);
        }
        found_ = std::move(found);
        return true;
    }

    bool deliver(const std::string& xuid, const question& iswanted) const override {
        readlist<row> made(found_, iseveryshop() ? xuid : std::string());
        // Made in front of the turn and with the old rows freed behind it.
        const Turn turn;
        if (!iswanted()) return false;
        auto& state = getplayershopstate(xuid);
        auto& list = state.*Rows::list;
        if (rules_.appends)
            list.append(made);
        else
            std::swap(list, made);
        state.*Rows::page = std::min(state.*Rows::page, list.lastpage());
        return true;
    }

private:
    [[nodiscard]] bool iseveryshop() const { return rules_.shops == source::everyshop; }
    [[nodiscard]] std::vector<std::string> shops() const {
        return iseveryshop() ? shopfilekeys() : std::vector{order_.shop};
    }

    // A following getshop finds the shop in the cache: it is read here, outside of the turns.
    void visit(const std::string& shop, pile& found) {
        pile rows;
        try {
            globalruntimeshopmanager.bringin(shop, Rows::type);
            for (int place = 0; place >= 0;) place = take(shop, place, rows);
        } catch (const std::exception& e) {
            const Turn turn;
            reportbroken(shop, Rows::type, e.what());
        }
        std::move(rows.begin(), rows.end(), std::back_inserter(found));
    }

    // Where the next turn goes on; -1 when there is nothing more.
    int take(const std::string& shopxuid, int first, pile& rows) {
        const Turn turn;
        auto& shop = Rows::shop(shopxuid);
        const json& records = shop.*Rows::records;
        const bool isout = (rules_.bantest && shop.isbanned()) ||
                           (iseveryshop() && shop.issystemshop && !ordomart::enablesystemshopinglobalshop);
        if (isout || !records.is_array()) {
            rows.clear();  // banned while it was being read
            return -1;
        }
        const int size = static_cast<int>(records.size());
        const int last = std::min(size, first + rowsperturn);
        std::vector<row> kept;
        kept.reserve(static_cast<std::size_t>(last - first));
        for (int place = first; place < last; ++place) {
            unlessbroken(shop, Rows::type, [&] {
                auto next = Rows::at(shop, place);
                if (iswanted(next, shop)) kept.push_back(std::move(next));
            });
        }
        kept.shrink_to_fit();
        if (!kept.empty()) rows.push_back(std::move(kept));
        return last < size ? last : -1;
    }
    template <class Shop>
    [[nodiscard]] bool iswanted(const row& good, const Shop& shop) const {
        if (rules_.publicrows && !good.allowbesearched) return false;
        if (!passfilter(order_.standing, good, shop, allof)) return false;
        return !order_.searching || passfilter(order_.search, good, shop, anyof);
    }

    const walkrules& rules_;
    const listorder order_;
    std::shared_ptr<const pile> found_;
};

template <class Rows>
std::unique_ptr<listwalk> walkof(const walkrules& rules, const listorder& order) {
    return std::make_unique<walk<Rows>>(rules, order);
}

template <class Rows>
std::shared_ptr<void> taken(playershopstate& state) {
    using list = readlist<typename Rows::row>;
    return std::make_shared<list>(std::exchange(state.*Rows::list, list()));
}

struct kindrow {
    const walkrules& rules;
    std::unique_ptr<listwalk> (*walk)(const walkrules&, const listorder&);
    std::shared_ptr<void> (*take)(playershopstate&);
};
constexpr kindrow kinds[] = {
    {everyshop, &walkof<sellrows>, &taken<sellrows>},  {everyshop, &walkof<recyclerows>, &taken<recyclerows>},
    {systemsell, &walkof<sellrows>, &taken<sellrows>}, {systemrecycle, &walkof<recyclerows>, &taken<recyclerows>},
    {singleshop, &walkof<sellrows>, &taken<sellrows>}, {singleshop, &walkof<recyclerows>, &taken<recyclerows>},
};
const kindrow& rowof(listkind kind) { return kinds[static_cast<std::size_t>(kind)]; }

}  // namespace

listorder orderlist(playershopstate& state, listkind kind, const std::string& oneshop) {
    const auto& rules = rowof(kind).rules;
    listorder order{.kind = kind, .standing = state.filter};
    if (rules.shops == source::oneshop) order.shop = oneshop;
    if (rules.shops == source::systemshop) order.shop = ordomart::systemshopid;
    if (rules.searches && state.searchmode) {
        order.searching = true;
        order.search = state.searchfilter;
    }
    if (rules.endssearch) state.searchmode = false;
    return order;
}

std::shared_ptr<void> emptylist(playershopstate& state, listkind kind) {
    const auto& row = rowof(kind);
    return row.rules.appends ? nullptr : row.take(state);
}

std::unique_ptr<listwalk> walkfor(const listorder& order) {
    const auto& row = rowof(order.kind);
    return row.walk(row.rules, order);
}

}  // namespace shopsystem
