// What the two kinds of rows call the same things, so that filtering, listing and sorting are written once.
#pragma once

#include <array>
#include <utility>

#include "plugin/shopsystem/playershopstate.h"
#include "plugin/shopsystem/runtimeshopmanager.h"

namespace shopsystem {

// A smallest number that a filter may demand (-1: none), and the shop's counter.
using minimum = std::pair<std::int32_t, std::int32_t>;

struct sellrows {
    using row = globalsellshopitem;
    static constexpr int type = shoptype::sell;
    static constexpr auto name = &row::shopitemname, describe = &row::shopitemdescribe, tag = &row::shopitemtag;
    static constexpr auto left = &row::shopitemleftnum, price = &row::realprice;
    static constexpr auto list = &playershopstate::sellreadlist;
    static constexpr auto page = &playershopstate::sellpage;
    static constexpr auto records = &sellshop::items;

    static sellshop& shop(const std::string& xuid) { return globalruntimeshopmanager.getsellshop(xuid); }
    static row at(const sellshop& shop, int index) { return shop.getglobalshopitem(index); }
    static std::array<minimum, 2> minima(const shopfilter& filter, const sellshop& shop) {
        return {{{filter.minsellcount, shop.sellcount}, {filter.minsalesvolume, shop.salesvolume}}};
    }
};

struct recyclerows {
    using row = globalrecycleshopitem;
    static constexpr int type = shoptype::recycle;
    static constexpr auto name = &row::recycleitemname, describe = &row::recycleitemdescribe;
    static constexpr auto tag = &row::recycleitemtag;
    static constexpr auto left = &row::recycleitemleftwanna, price = &row::offer;
    static constexpr auto list = &playershopstate::recyclereadlist;
    static constexpr auto page = &playershopstate::recyclepage;
    static constexpr auto records = &recycleshop::recycleitems;

    static recycleshop& shop(const std::string& xuid) { return globalruntimeshopmanager.getrecycleshop(xuid); }
    static row at(const recycleshop& shop, int index) { return shop.getglobalrecycleitem(index); }
    static std::array<minimum, 2> minima(const shopfilter& filter, const recycleshop& shop) {
        return {{{filter.minrecycleamount, shop.recycleamount}, {filter.minrecyclecost, shop.recyclecost}}};
    }
};

}  // namespace shopsystem
