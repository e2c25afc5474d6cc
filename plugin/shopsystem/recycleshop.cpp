// The buying half of an owner's file.
#include "plugin/shopsystem/recycleshop.h"

#include "plugin/shopsystem/brokenshops.h"
#include "plugin/shopsystem/jsonfields.h"

namespace shopsystem {

namespace {

template <class Shop, class Visit>
void recyclesection(Shop& shop, Visit visit) {
    visit("recycleitems", shop.recycleitems);
    visit("recycleamount", shop.recycleamount);
    visit("recyclecost", shop.recyclecost);
    visit("isopshop", shop.isopshop);
}

}  // namespace

bool recycleshop::loadfromjson(const json& section) {
    recyclesection(*this, fieldreader{section});
    return baseshop::loadfromjson(section);
}

bool recycleshop::savetojson(json& section) {
    recyclesection(*this, fieldwriter{section});
    return baseshop::savetojson(section);
}

bool recycleshop::holds(int index) const { return holdsplace(recycleitems, index); }

recycleshopitem recycleshop::getrecycleitem(int index) const {
    recycleshopitem item;
    if (holds(index))
        namingsection(xuid, recycle, [&] {
            namingplace(recordplace{"recycleitems", index},
                        [&] { fromjson(recycleitems[static_cast<std::size_t>(index)], item); });
        });
    return item;
}

globalrecycleshopitem recycleshop::getglobalrecycleitem(int index) const {
    globalrecycleshopitem row;
    if (!holds(index)) {
        ordomart::logger.error("getindex error: at{0}", index);
        return row;
    }
    static_cast<recycleshopitem&>(row) = getrecycleitem(index);
    row.xuid = xuid;
    row.shopname = shopname;
    row.index = index;
    row.revision = revision;
    row.isopshop = isopshop;
    return row;
}

bool recycleshop::isfulfilled() const {
    for (int place = 0; holds(place); ++place) {
        std::int32_t wanted = 0;
        unlessbroken(*this, recycle, [&] { wanted = getrecycleitem(place).recycleitemleftwanna; });
        if (wanted != 0) return false;
    }
    return true;
}

}  // namespace shopsystem
