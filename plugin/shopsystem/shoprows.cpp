// The shops come from the catalogue, and only those of the page are looked at themselves.
#include "plugin/shopsystem/shoprows.h"

#include "platform/turn.h"
#include "plugin/shopsystem/brokenshops.h"
#include "plugin/shopsystem/catalogue.h"
#include "plugin/shopsystem/listwalk.h"

namespace shopsystem {

template <class Rows, class Shop>
void prepareshops(const std::string& playerxuid, bool anew, const std::function<std::string(Shop&)>& cardof) {
    using list = readlist<typename Rows::row>;
    if (anew) {
        auto& all = catalogueof(Rows::type);
        list made(all.find(all.uptodate([] { return true; }), {.issell = Rows::type == sell, .shopsalone = true}),
                  leftoutfor(playerxuid));
        const Turn turn;
        std::swap(getplayershopstate(playerxuid).*Rows::list, made);
    }
    list shown;
    {
        const Turn turn;
        auto& state = getplayershopstate(playerxuid);
        shown = state.*Rows::list;
        const bool islost = state.shoplistpage < 0 || state.shoplistpage > shown.lastpage();
        shown.openpage(islost ? 0 : static_cast<std::size_t>(state.shoplistpage));
    }
    const auto before = shown;
    const auto [first, end] = shown.pagebounds();
    for (auto i = first; i < end; ++i) {
        const auto owner = shown.row(i).xuid;
        try {
            globalruntimeshopmanager.glance(owner, Rows::type,
                                            [&](baseshop& shop) { shown.dress(i, cardof(static_cast<Shop&>(shop))); });
        } catch (const std::exception& e) {
            const Turn turn;
            reportbroken(owner, Rows::type, e.what());
        }
    }
    const Turn turn;
    auto& mine = getplayershopstate(playerxuid).*Rows::list;
    if (mine == before) std::swap(mine, shown);
}

template void prepareshops<sellrows, sellshop>(const std::string&, bool, const std::function<std::string(sellshop&)>&);
template void prepareshops<recyclerows, recycleshop>(const std::string&, bool,
                                                     const std::function<std::string(recycleshop&)>&);

}  // namespace shopsystem
