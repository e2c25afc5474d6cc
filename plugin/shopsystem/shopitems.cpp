// The records of a shop file, each described once.
#include "plugin/shopsystem/shopitems.h"

#include "plugin/shopsystem/jsonfields.h"

namespace shopsystem {

using nlohmann::json;

namespace {

fieldreader recordreader(const json& record) {
    if (!record.is_object()) throw fielderror({}, std::string("is no record, but ") + record.type_name());
    return {record};
}

}  // namespace

void tojson(const shopitem& item, json& out) { visitsellfields(item, fieldwriter{out}); }
void tojson(const recycleshopitem& item, json& out) {
    visitrecyclefields(item, fieldwriter{out});
    if (item.sponsored != 0) out[sponsoredkey] = item.sponsored;
}

void fromjson(const json& record, shopitem& item) {
    visitsellfields(item, recordreader(record));
    item.realprice = item.price;
}
void fromjson(const json& record, recycleshopitem& item) {
    visitrecyclefields(item, recordreader(record));
    if (const auto found = record.find(sponsoredkey); found != record.end())
        takefield(sponsoredkey, *found, item.sponsored);
}

}  // namespace shopsystem
