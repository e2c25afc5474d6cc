// What both kinds of shop show is written once.
#include "plugin/formparts/shoplines.h"

#include <fmt/format.h>

#include "plugin/base/language.h"
#include "plugin/economy/economymanager.h"

namespace ordomart {

namespace {

shopcounters counters(const std::string& language, const char* firstkey, std::int32_t first, const char* secondkey,
                      std::int32_t second) {
    return {fmt::format("{}:§g{}", tr(language, firstkey), first),
            fmt::format("{}:§g{}", tr(language, secondkey), second)};
}

}  // namespace

shopcounters countersof(const sellshop& shop, const std::string& language) {
    return counters(language, "shop.sellcount", shop.sellcount, "shop.salesvolume", shop.salesvolume);
}
shopcounters countersof(const recycleshop& shop, const std::string& language) {
    return counters(language, "shop.recycleamount", shop.recycleamount, "shop.recyclecost", shop.recyclecost);
}

template <class Shop>
std::string shophead(const Shop& shop, const std::string& language, bool withowner) {
    const auto [first, second] = countersof(shop, language);
    const auto owner = withowner ? fmt::format("{}:{}\n", tr(language, "shop.owner"), shop.ownername) : std::string();
    return fmt::format("{}\n{}\n{}{}§f\n{}", shop.shopname, whiteline, owner, first, second);
}
template std::string shophead(const sellshop&, const std::string&, bool);
template std::string shophead(const recycleshop&, const std::string&, bool);

std::string banlines(baseshop& shop, const std::string& language) {
    if (!shop.isbanned()) return {};
    return fmt::format("\n§f§r§c{}\n§f§r§c Reason:{}", tr(language, "shop.banned"), shop.getbanreason());
}

std::string yourname(const Player& player) {
    return fmt::format("§f§r§b{}§f : §a{}", tr(&player, "shop.yourname"), player.getRealName());
}
std::string yourmoney(const Player& player) {
    return fmt::format("§f§r§b{}§f : §e{}{}", tr(&player, "shop.yourmoney"),
                       MCGLOBALECONOMYMANAGER::queryMoneyhas(player.getXuid()), coinglyph);
}

void notelook(baseshop& shop, const firstlook& look) {
    if (shop.xuid == look.xuid) {
        shop.ownername = look.realname;
        if (shop.shopname.empty()) shop.shopname = shop.ownername + look.titlesuffix;
    }
    if (look.updatelang) shop.ownerlang = look.language;
}

}  // namespace ordomart
