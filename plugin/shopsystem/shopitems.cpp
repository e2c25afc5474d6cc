// The records of a shop file, each described once.
#include "plugin/shopsystem/shopitems.h"

#include "plugin/shopsystem/jsonfields.h"

namespace shopsystem {

using nlohmann::json;

namespace {

template <class Item, class Visit>
void sellfields(Item& item, Visit visit) {
    visit("shopitemtag", item.shopitemtag);
    visit("shopitemname", item.shopitemname);
    visit("shopitemdescribe", item.shopitemdescribe);
    visit("itemnbt", item.itemnbt);
    visit("shopitemleftnum", item.shopitemleftnum);
    visit("price", item.price);
    visit("allowbesearched", item.allowbesearched);
}

template <class Item, class Visit>
void recyclefields(Item& item, Visit visit) {
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

constexpr const char* sponsoredkey = "sponsored";

fieldreader recordreader(const json& record) {
    if (!record.is_object()) throw fielderror({}, std::string("is no record, but ") + record.type_name());
    return {record};
}

}  // namespace

void tojson(const shopitem& item, json& out) { sellfields(item, fieldwriter{out}); }
void tojson(const recycleshopitem& item, json& out) {
    recyclefields(item, fieldwriter{out});
    if (item.sponsored != 0) out[sponsoredkey] = item.sponsored;
}

void fromjson(const json& record, shopitem& item) {
    sellfields(item, recordreader(record));
    item.realprice = item.price;
}
void fromjson(const json& record, recycleshopitem& item) {
    recyclefields(item, recordreader(record));
    if (const auto found = record.find(sponsoredkey); found != record.end())
        takefield(sponsoredkey, *found, item.sponsored);
}

}  // namespace shopsystem
