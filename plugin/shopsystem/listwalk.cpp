// What each kind of list takes from the shops stands in one table; the walk is written once.
#include "plugin/shopsystem/listwalk.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "platform/turn.h"
#include "plugin/base/counts.h"
#include "plugin/shopsystem/catalogue.h"
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
    bool publicrows = false;  // neither private ones nor those of a banned shop
    bool searches = false;    // a search, while one is set, applies as well
    bool endssearch = false;  // and is used up
    bool appends = false;     // behind the rows that are there: the caller empties the list
};
constexpr walkrules everyshop{.shops = source::everyshop, .publicrows = true, .searches = true, .endssearch = true};
constexpr walkrules systemsell{.shops = source::systemshop, .publicrows = true, .searches = true};
constexpr walkrules systemrecycle{.shops = source::systemshop, .publicrows = true, .searches = true, .appends = true};
constexpr walkrules singleshop{.shops = source::oneshop};

template <class Rows>
class walk final : public listwalk {
public:
    using row = typename Rows::row;

    walk(const walkrules& rules, const listorder& order) : rules_(rules), order_(order) {}

    bool run(const question& goeson) override {
        const auto began = std::chrono::steady_clock::now();
        auto& all = catalogueof(Rows::type);
        const auto among = all.uptodate(goeson, order_.shop);
        if (among == nullptr) return false;
        found_ = all.find(among, {.issell = Rows::type == sell,
                                  .shop = order_.shop,
                                  .publicrows = rules_.publicrows,
                                  .standing = order_.standing,
                                  .searching = order_.searching,
                                  .search = order_.search});
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - began;
        ordomart::counts.making[Rows::type].observe(took.count());
        return true;
    }

    bool deliver(const std::string& xuid, const question& iswanted) const override {
        readlist<row> made(found_, rules_.shops == source::everyshop ? leftoutfor(xuid) : std::vector<std::string>());
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
    const walkrules& rules_;
    const listorder order_;
    std::shared_ptr<const foundrows> found_;
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

std::vector<std::string> leftoutfor(const std::string& xuid) {
    std::vector<std::string> shops{xuid};
    if (!ordomart::enablesystemshopinglobalshop) shops.emplace_back(ordomart::systemshopid);
    return shops;
}

std::unique_ptr<listwalk> walkfor(const listorder& order) {
    const auto& row = rowof(order.kind);
    return row.walk(row.rules, order);
}

}  // namespace shopsystem
