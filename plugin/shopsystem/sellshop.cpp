// The selling half of an owner's file.
#include "plugin/shopsystem/sellshop.h"

#include "plugin/shopsystem/brokenshops.h"
#include "plugin/shopsystem/jsonfields.h"

namespace shopsystem {

namespace {

template <class Shop, class Visit>
void sellsection(Shop& shop, Visit visit) {
    visit("items", shop.items);
    visit("biditems", shop.biditems);
    visit("shopdiscount", shop.shopdiscount);
    visit("salesvolume", shop.salesvolume);
    visit("sellcount", shop.sellcount);
    visit("isopshop", shop.isopshop);
}

}  // namespace

bool sellshop::loadfromjson(const json& section) {
    sellsection(*this, fieldreader{section});
    return baseshop::loadfromjson(section);
}

bool sellshop::savetojson(json& section) {
    sellsection(*this, fieldwriter{section});
    return baseshop::savetojson(section);
}

bool sellshop::holds(int index) const { return holdsplace(items, index); }

shopitem sellshop::getshopitem(int index) const {
    shopitem item;
    if (holds(index))
        namingsection(xuid, sell, [&] {
            namingplace(recordplace{"items", index}, [&] { fromjson(items[static_cast<std::size_t>(index)], item); });
        });
    return item;
}

globalsellshopitem sellshop::getglobalshopitem(int index) const {
    globalsellshopitem row;
    if (!holds(index)) {
        ordomart::debuglogger.error("getindex error: at{0}'s {1}", xuid, index);
        return row;
    }
    static_cast<shopitem&>(row) = getshopitem(index);
    if (!applydiscount(row, shopdiscount)) reportdiscounts();
    row.xuid = xuid;
    row.shopname = shopname;
    row.index = index;
    row.revision = revision;
    row.isopshop = isopshop;
    return row;
}

bool sellshop::issoldout() const {
    for (int place = 0; holds(place); ++place) {
        std::int32_t left = 0;
        unlessbroken(*this, sell, [&] { left = getshopitem(place).shopitemleftnum; });
        if (left != 0) return false;
    }
    return true;
}

}  // namespace shopsystem
