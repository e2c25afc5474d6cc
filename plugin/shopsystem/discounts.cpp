// Discounts: what they take off a price, and the text of those that run. A record's text is "%xx", the share that is
// still paid, or "-xxx", an amount. A broken record takes nothing off, and nobody else's price suffers from it.
#include <fmt/format.h>

#include "platform/clock.h"
#include "plugin/base/language.h"
#include "plugin/base/numbers.h"
#include "plugin/shopsystem/brokenshops.h"
#include "plugin/shopsystem/jsonfields.h"
#include "plugin/shopsystem/sellshop.h"

namespace shopsystem {

namespace {

enum class standing { running, lapsed, broken };

struct discount {
    standing state = standing::broken;
    const char* fault = nullptr;  // key and rule of a broken one
    const std::string *tag = nullptr, *text = nullptr;
    std::int64_t timeend = 0;
};

discount broken(const char* fault) { return {.fault = fault}; }

// Without exceptions, since every row of a list asks.
discount readdiscount(const json& record, std::int64_t now) {
    const auto end = record.find("timeend");
    if (end == record.end() || !iswhole<std::int64_t>(*end)) return broken(".timeend: must be a whole number");
    discount found{.timeend = end->get<std::int64_t>()};
    if (found.timeend < now) {
        found.state = standing::lapsed;
        return found;
    }
    const auto text = [&](const char* key) {
        const auto at = record.find(key);
        return at != record.end() ? at->get_ptr<const std::string*>() : nullptr;
    };
    found.tag = text("shopitemtag");
    found.text = text("discount");
    if (found.tag == nullptr) return broken(".shopitemtag: must be a text");
    if (found.text == nullptr || found.text->empty()) return broken(".discount: must be a text that is not empty");
    found.state = standing::running;
    return found;
}

// Prices have 32 bits and no guard against overflow; they wrap.
std::int32_t discounted(std::int32_t price, const std::string& discount) {
    const bool share = discount.at(0) == '%';
    const auto running = static_cast<std::uint32_t>(price);
    const auto number = static_cast<std::uint32_t>(ordomart::typednumber(discount.substr(1)));
    return share ? static_cast<std::int32_t>(running * number) / 100 : static_cast<std::int32_t>(running - number);
}

}  // namespace

bool applydiscount(shopitem& item, const json& shopdiscount) {
    bool sound = true;
    item.realprice = item.price;
    if (shopdiscount.is_array()) {
        const std::int64_t now = unixseconds();
        for (const json& record : shopdiscount) {
            const auto found = readdiscount(record, now);
            if (found.state == standing::broken) sound = false;
            if (found.state == standing::running && *found.tag == item.shopitemtag)
                item.realprice = discounted(item.realprice, *found.text);
        }
    }
    if (item.realprice < 0) item.realprice = 0;
    return sound;
}

void sellshop::reportdiscounts() const {
    const std::int64_t now = unixseconds();
    for (std::size_t place = 0; place < shopdiscount.size(); ++place) {
        const auto found = readdiscount(shopdiscount[place], now);
        if (found.state == standing::broken)
            reportbroken(*this, sell, fmt::format("{}: sell.shopdiscount[{}]{}", shopfile(xuid), place, found.fault));
    }
}

std::string sellshop::getdiscountsummary() {
    std::string text;
    if (!shopdiscount.is_array()) return text;
    const std::int64_t now = unixseconds();
    bool sound = true;
    for (auto record = shopdiscount.begin(); record != shopdiscount.end();) {
        const auto found = readdiscount(*record, now);
        if (found.state == standing::lapsed) {
            ordomart::debuglogger.info("discount is expired!");
            record = shopdiscount.erase(record);
            markshopchanged();
            continue;
        }
        if (found.state == standing::running)
            text += "\n§f§r§o§b【§a" + ordomart::tr(ownerlang, "shop.sales") + "§b】§r§f" + *found.tag + " : " +
                    *found.text + "  §8" + std::to_string(found.timeend - now);
        else
            sound = false;
        ++record;
    }
    if (!sound) reportdiscounts();
    return text;
}

}  // namespace shopsystem
