// One player's lists, and their orders.
#include "plugin/shopsystem/lists.h"

#include <algorithm>
#include <utility>

#include "platform/turn.h"
#include "plugin/shopsystem/listwalk.h"
#include "plugin/shopsystem/rowkinds.h"

namespace shopsystem {

namespace {

void prepare(const std::string& playerxuid, listkind kind, const std::string& shop = {}) {
    std::shared_ptr<void> oldrows;
    const auto begin = [&] {
        const Turn turn;
        auto& state = getplayershopstate(playerxuid);
        oldrows = emptylist(state, kind);
        return orderlist(state, kind, shop);
    };
    const auto always = [] { return true; };
    const auto walk = walkfor(begin());
    walk->run(always);
    walk->deliver(playerxuid, always);
}

template <class Rows>
void sortlist(playershopstate& state) {
    using row = typename Rows::row;
    auto& list = state.*Rows::list;
    readlist<row> before;
    std::uint8_t step = 0;
    std::int32_t page = 0;
    {
        const Turn turn;
        step = state.filterstep;
        page = std::max(state.*Rows::page, 0);
        if (step >= sortsteps) return;
        before = list;
    }
    auto sorted = before;
    if (step != asread && sorted.order() != step) sorted.arrange(static_cast<sortstep>(step));
    sorted.openpage(static_cast<std::size_t>(page));
    const Turn turn;
    if (list == before) std::swap(list, sorted);
}

}  // namespace

void sellshop::prepareglobalsellshopfilterforplayer(const std::string& player) {
    prepare(player, listkind::globalsell);
}
void recycleshop::prepareglobalrecycleshopfilterforplayer(const std::string& player) {
    prepare(player, listkind::globalrecycle);
}
void preparesystemsell(const std::string& playerxuid) { prepare(playerxuid, listkind::systemsell); }
void preparesystemrecycle(const std::string& playerxuid) { prepare(playerxuid, listkind::systemrecycle); }
void preparesinglesell(const std::string& playerxuid, const std::string& shopxuid) {
    prepare(playerxuid, listkind::singlesell, shopxuid);
}
void preparesinglerecycle(const std::string& playerxuid, const std::string& shopxuid) {
    prepare(playerxuid, listkind::singlerecycle, shopxuid);
}

void sortsellreadlist(playershopstate& state) { sortlist<sellrows>(state); }
void sortrecyclereadlist(playershopstate& state) { sortlist<recyclerows>(state); }

}  // namespace shopsystem
