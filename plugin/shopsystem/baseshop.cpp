// Presentation and ban state of a shop. The load lifts a ban that ends at the present second, the query does not yet;
// neither marks the shop as changed.
#include "plugin/shopsystem/baseshop.h"

#include "platform/clock.h"
#include "plugin/shopsystem/catalogue.h"
#include "plugin/shopsystem/jsonfields.h"
#include "plugin/shopsystem/shoprecords.h"

namespace shopsystem {

namespace {

constexpr std::int64_t forever = -1;

template <class Shop, class Visit>
void basefields(Shop& shop, Visit visit) {
    visit("ownername", shop.ownername);
    visit("describe", shop.describe);
    visit("shopname", shop.shopname);
    visit("shopitemicon", shop.shopitemicon);
    visit("ownerlang", shop.ownerlang);
    visit("shopstate", shop.shopstate);
}

// Here, so that nobody meets a wrong type when the shop is in use. Any of the three may be null.
void checkban(const json& record) {
    const auto check = [&](const char* key, auto field) {
        if (const auto found = record.find(key); found != record.end() && !found->is_null())
            takefield(key, *found, field);
    };
    check("isbaned", false);
    check("bantimeend", std::int64_t{});
    check("banreason", std::string());
}

}  // namespace

baseshop::baseshop(const std::string& owner)
    : keepincache(owner == ordomart::systemshopid), issystemshop(keepincache), xuid(owner) {}

bool baseshop::loadfromjson(const json& section) {
    basefields(*this, fieldreader{section});
    refreshbanstate();
    return true;
}

bool baseshop::savetojson(json& section) {
    basefields(*this, fieldwriter{section});
    return true;
}

void baseshop::refreshbanstate() {
    if (!shopstate.is_object()) {
        shopstate = nullptr;
        return;
    }
    namingplace("shopstate", [&] { checkban(shopstate); });
    if (const json& banned = shopstate["isbaned"]; !banned.is_null()) isbaned = banned.get<bool>();
    if (!isbaned) return;
    const json& end = shopstate["bantimeend"];
    if (end.is_null() || end.get<std::int64_t>() == forever || end.get<std::int64_t>() > unixseconds()) return;
    isbaned = false;
    shopstate["isbaned"] = false;
    if (json& reason = shopstate["banreason"]; !reason.is_null()) reason = "";
}

bool baseshop::isbanned() {
    if (!isbaned || shopstate.is_null()) return isbaned;
    const json& end = shopstate["bantimeend"];
    if (!end.is_null() && end.get<std::int64_t>() != forever && end.get<std::int64_t>() < unixseconds())
        setbanstate(false, 0, "no reason");
    return isbaned;
}

void baseshop::setbanstate(bool banned, std::int64_t timeend, const std::string& reason) {
    shopstate["isbaned"] = banned;
    shopstate["bantimeend"] = banned ? timeend : 0;
    shopstate["banreason"] = banned ? reason : "";
    isbaned = banned;
}

std::string baseshop::getbanreason() const {
    const auto reason = shopstate.find("banreason");
    return reason == shopstate.end() || reason->is_null() ? std::string() : reason->get<std::string>();
}

std::optional<std::int64_t> baseshop::banend() const {
    const auto end = shopstate.find("bantimeend");
    if (end == shopstate.end() || end->is_null() || end->get<std::int64_t>() == forever) return std::nullopt;
    return end->get<std::int64_t>();
}

void baseshop::markshopchanged() {
    idleticks = 0;
    ++revision;
    isdirty = true;
    putrecord(*this);
    catalogueof(kind()).changed(xuid);
}

}  // namespace shopsystem
