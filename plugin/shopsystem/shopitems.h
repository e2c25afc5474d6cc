// The rows of a shop as plain records, read from one JSON element; and the same with the snapshot behind them, which is
// what lists and forms keep: owner, place and revision, never a reference to the shop.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace shopsystem {

struct shopitem {
    std::string shopitemtag, shopitemname, shopitemdescribe, itemnbt;
    std::int32_t shopitemleftnum = -1;  // -1: the record could not be read
    std::int32_t price = 0;
    std::int32_t realprice = 0;  // after discounts; never stored
    bool allowbesearched = false;
};

struct globalsellshopitem : shopitem {
    std::string xuid, shopname;
    std::int32_t index = 0;
    std::uint32_t revision = 0;
    bool isopshop = false;
};

struct recycleshopitem {
    std::string recycleitemtag, recycleitemname, recycleitemdescribe, itemnbt;
    std::int32_t recycleitemleftwanna = -1;
    std::int32_t nowhasrecyclenum = 0;
    std::int32_t offer = 0;
    // What an operator has promised of the deposit, who pays none: it is paid out for goods and back to nobody.
    std::int64_t sponsored = 0;
    bool allowbesearched = false, filterauxordamage = false, filterench = false, filteritemnbt = false;
    std::vector<std::string> recycleditemnbtlist;
};

struct globalrecycleshopitem : recycleshopitem {
    std::string xuid, shopname;
    std::int32_t index = 0;
    std::uint32_t revision = 0;
    bool isopshop = false;
};

void tojson(const shopitem& item, nlohmann::json& out);         // all seven keys
void tojson(const recycleshopitem& item, nlohmann::json& out);  // all twelve keys, and "sponsored" when it is something

// Visits all fields that every record has, each with its key.
template <class Item, class Visit>
void visitsellfields(Item& item, Visit&& visit) {
    visit("shopitemtag", item.shopitemtag);
    visit("shopitemname", item.shopitemname);
    visit("shopitemdescribe", item.shopitemdescribe);
    visit("itemnbt", item.itemnbt);
    visit("shopitemleftnum", item.shopitemleftnum);
    visit("price", item.price);
    visit("allowbesearched", item.allowbesearched);
}
template <class Item, class Visit>
void visitrecyclefields(Item& item, Visit&& visit) {
    visit("recycleitemtag", item.recycleitemtag);
    visit("recycleitemname", item.recycleitemname);
    visit("recycleitemdescribe", item.recycleitemdescribe);
    visit("itemnbt", item.itemnbt);
    visit("recycleitemleftwanna", item.recycleitemleftwanna);
    visit("nowhasrecyclenum", item.nowhasrecyclenum);
    visit("offer", item.offer);
    visit("allowbesearched", item.allowbesearched);
    visit("filterauxordamage", item.filterauxordamage);
    visit("filterench", item.filterench);
    visit("filteritemnbt", item.filteritemnbt);
    visit("recycleditemnbtlist", item.recycleditemnbtlist);
}
inline constexpr const char* sponsoredkey = "sponsored";  // a commission has it only where it is something

// A missing key keeps the field's value; a record that is no object, and a wrong type in it, throw fielderror.
void fromjson(const nlohmann::json& record, shopitem& item);  // realprice is the list price
void fromjson(const nlohmann::json& record, recycleshopitem& item);

}  // namespace shopsystem
