// A shop that cannot be read is told and left out.
#include "plugin/shopsystem/shoprows.h"

#include "platform/turn.h"
#include "plugin/shopsystem/brokenshops.h"

namespace shopsystem {

namespace {

bool hasnothing(const sellshop& shop) { return shop.issoldout(); }
bool hasnothing(const recycleshop& shop) { return shop.isfulfilled(); }

template <class Shop>
bool isshown(Shop& shop) {
    if (shop.issystemshop && !ordomart::enablesystemshopinglobalshop) return false;
    return !shop.isbanned() && !hasnothing(shop);
}

}  // namespace

template <class Rows, class Shop>
void prepareshops(const std::string& playerxuid, const std::function<std::string(Shop&)>& cardof) {
    using row = typename Rows::row;
    auto found = std::make_shared<typename readlist<row>::pile>();
    for (const std::string& owner : shopfilekeys()) {
        if (owner.empty() || owner == playerxuid) continue;
        try {
            globalruntimeshopmanager.bringin(owner, Rows::type);
            const Turn turn;
            auto& shop = Rows::shop(owner);
            if (!isshown(shop)) continue;
            row one;
            one.itemnbt = cardof(shop);
            one.allowbesearched = true;
            one.xuid = owner;
            one.shopname = shop.shopname;
            one.revision = shop.revision;
            found->push_back({std::move(one)});
        } catch (const std::exception& e) {
            const Turn turn;
            reportbroken(owner, Rows::type, e.what());
        }
    }
    const Turn turn;
    getplayershopstate(playerxuid).*Rows::list = readlist<row>(std::move(found), {});
}

template void prepareshops<sellrows, sellshop>(const std::string&, const std::function<std::string(sellshop&)>&);
template void prepareshops<recyclerows, recycleshop>(const std::string&,
                                                     const std::function<std::string(recycleshop&)>&);

}  // namespace shopsystem
