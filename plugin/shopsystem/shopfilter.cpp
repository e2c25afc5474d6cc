// The two ways of holding a filter against a row.
#include "plugin/shopsystem/shopfilter.h"

#include <exception>

#include "plugin/shopsystem/rowkinds.h"
#include "plugin/shopsystem/textfilter.h"

namespace shopsystem {

namespace {

constexpr std::int32_t notdemanded = -1;

bool passes(const minimum& demanded) { return demanded.first <= demanded.second; }

template <class Rows, class Shop>
bool passfields(const shopfilter& filter, const typename Rows::row& row, const Shop& shop, int mode) {
    if (shop.revision != row.revision || row.*Rows::left == 0) return false;

    const std::pair<const std::string&, const std::string&> texts[] = {{filter.ownernamefilter, shop.ownername},
                                                                       {filter.shopdescfilter, shop.describe},
                                                                       {filter.itemnamefilter, row.*Rows::name},
                                                                       {filter.itemdescfilter, row.*Rows::describe},
                                                                       {filter.itemtagfilter, row.*Rows::tag}};
    const bool any = mode == anyof;
    // The first set field that says yes decides in one mode, the first that says no in the other.
    for (const auto& [wanted, source] : texts)
        if (!wanted.empty() && filterstring(wanted, source) == any) return any;
    for (const minimum& demanded : Rows::minima(filter, shop))
        if (demanded.first != notdemanded && passes(demanded) == any) return any;
    return !any;
}

}  // namespace

bool filterstring(const std::string& mfilter, const std::string& sourcestr) {
    alternatives filter(mfilter);
    try {
        while (const auto wanted = filter.next())
            if (wanted->passes(sourcestr)) return true;
    } catch (const std::exception&) {
        ordomart::logger.error("unkownerror in filterstring,mfilter:{},sourcestr:{},orflag:{},lastflag:{}", mfilter,
                               sourcestr, filter.orflag, filter.lastflag);
    }
    return false;
}

bool passfilter(const shopfilter& filter, const globalsellshopitem& row, int mode) {
    return passfilter(filter, row, sellrows::shop(row.xuid), mode);
}
bool passfilter(const shopfilter& filter, const globalrecycleshopitem& row, int mode) {
    return passfilter(filter, row, recyclerows::shop(row.xuid), mode);
}
bool passfilter(const shopfilter& filter, const globalsellshopitem& row, const sellshop& shop, int mode) {
    return passfields<sellrows>(filter, row, shop, mode);
}
bool passfilter(const shopfilter& filter, const globalrecycleshopitem& row, const recycleshop& shop, int mode) {
    return passfields<recyclerows>(filter, row, shop, mode);
}

}  // namespace shopsystem
