// Discounts: what they take off a price, and the text of those that run. A record's text is "%xx", the share that is
// still paid, or "-xxx", an amount; nobody checks it before the price is computed.
#include "platform/clock.h"
#include "plugin/base/language.h"
#include "plugin/base/numbers.h"
#include "plugin/shopsystem/sellshop.h"

namespace shopsystem {

namespace {

bool haslapsed(const json& discount, std::int64_t now) { return discount.at("timeend").get<std::int64_t>() < now; }

// Prices have 32 bits and no guard against overflow; they wrap.
std::int32_t discounted(std::int32_t price, const std::string& discount) {
    const bool share = discount.at(0) == '%';
    const auto running = static_cast<std::uint32_t>(price);
    const auto number = static_cast<std::uint32_t>(ordomart::typednumber(discount.substr(1)));
    return share ? static_cast<std::int32_t>(running * number) / 100 : static_cast<std::int32_t>(running - number);
}

}  // namespace

void applydiscount(shopitem& item, const json& shopdiscount) {
    item.realprice = item.price;
    if (shopdiscount.is_array()) {
        const std::int64_t now = unixseconds();
        for (const json& discount : shopdiscount) {
            if (haslapsed(discount, now)) continue;
            if (discount.at("shopitemtag").get_ref<const std::string&>() != item.shopitemtag) continue;
            item.realprice = discounted(item.realprice, discount.at("discount").get_ref<const std::string&>());
        }
    }
    if (item.realprice < 0) item.realprice = 0;
}

std::string sellshop::getdiscountsummary() {
    std::string text;
    if (!shopdiscount.is_array()) return text;
    const std::int64_t now = unixseconds();
    namingfile(xuid, [&] {
        for (auto discount = shopdiscount.begin(); discount != shopdiscount.end();) {
            if (haslapsed(*discount, now)) {
                ordomart::debuglogger.info("discount is expired!");
                discount = shopdiscount.erase(discount);
                markshopchanged();
                continue;
            }
            text += "\n§f§r§o§b【§a" + ordomart::tr(ownerlang, "shop.sales") + "§b】§r§f" +
                    discount->at("shopitemtag").get<std::string>() + " : " +
                    discount->at("discount").get<std::string>() + "  §8" +
                    std::to_string(discount->at("timeend").get<std::int64_t>() - now);
            ++discount;
        }
    });
    return text;
}

}  // namespace shopsystem
