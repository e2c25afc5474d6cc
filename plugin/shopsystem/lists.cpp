// One player's lists, and their orders.
#include "plugin/shopsystem/lists.h"

#include <iterator>
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
    walk->run(playerxuid, always);
    walk->deliver(playerxuid, always);
}

template <class Row>
using order = bool (*)(const Row&, const Row&);

template <class Row, auto Field>
bool by(const Row& left, const Row& right) {
    return left.*Field < right.*Field;
}

template <class Rows>
void sortlist(playershopstate& state) {
    using row = typename Rows::row;
    static constexpr order<row> orders[] = {nullptr, by<row, Rows::name>, by<row, Rows::tag>, by<row, Rows::left>,
                                            by<row, Rows::price>};
    auto& list = state.*Rows::list;
    std::uint8_t step = 0;
    readlist<row> asread;
    {
        const Turn turn;
        step = state.filterstep;
        if (step >= std::size(orders) || orders[step] == nullptr || list.isarranged(step)) return;
        asread = list;
    }
    auto sorted = asread;
    sorted.arrange(step, orders[step]);
    const Turn turn;
    if (list == asread) std::swap(list, sorted);
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
