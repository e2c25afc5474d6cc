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

// A missing key keeps the field's value; a record that is no object, and a wrong type in it, throw fielderror.
void fromjson(const nlohmann::json& record, shopitem& item);  // realprice is the list price
void fromjson(const nlohmann::json& record, recycleshopitem& item);

}  // namespace shopsystem
