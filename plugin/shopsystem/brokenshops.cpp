// The accounts are kept by owner and kind; a shop that is read anew has another revision, and begins a new one.
#include "plugin/shopsystem/brokenshops.h"

#include <map>
#include <optional>
#include <set>
#include <utility>

namespace shopsystem {

namespace {

constexpr std::size_t mostlines = 8;

struct account {
    std::optional<std::uint32_t> revision;  // nothing: of a file that gave no shop
    std::set<std::string> told;
};

std::map<std::pair<std::string, int>, account>& accounts() {
    static std::map<std::pair<std::string, int>, account> all;
    return all;
}

int otherkind(int type) { return type == sell ? recycle : sell; }

void tell(account& of, std::optional<std::uint32_t> revision, const std::string& fault) {
    if (of.revision != revision) of = {revision, {}};
    // One more than there are lines for, so that the last one, too, is written once.
    if (of.told.size() > mostlines || !of.told.insert(fault).second) return;
    if (of.told.size() <= mostlines)
        ordomart::logger.error("{}; it is left out", fault);
    else
        ordomart::logger.error("There is more in this file that is left out, besides {}", fault);
}

}  // namespace

void reportbroken(const baseshop& shop, int type, const std::string& fault) {
    tell(accounts()[{shop.xuid, type}], shop.revision, fault);
}

void reportbroken(const std::string& xuid, int type, const std::string& fault) {
    account& of = accounts()[{xuid, type}];
    if (!of.told.contains(fault)) of = {};
    // A file that does not parse has one fault, whichever half was asked for.
    if (accounts()[{xuid, otherkind(type)}].told.contains(fault)) of.told.insert(fault);
    tell(of, std::nullopt, fault);
}

void forgetbroken(const std::string& xuid, int type) {
    for (const auto& fault : accounts()[{xuid, type}].told) accounts()[{xuid, otherkind(type)}].told.erase(fault);
    accounts().erase({xuid, type});
}

}  // namespace shopsystem
