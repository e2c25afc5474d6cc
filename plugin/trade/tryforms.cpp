// The two confirm forms: what is traded, from whom, at which price, and how many.
#include "plugin/trade/tryforms.h"

#include <fmt/format.h>

#include "plugin/base/language.h"
#include "plugin/economy/economymanager.h"
#include "plugin/formparts/commissionflags.h"
#include "plugin/trade/trade.h"

namespace ordomart {

namespace {

constexpr const char* splitline = "§f§r§l§f===========================";

void addmoneyinfo(Form::CustomForm& form, const std::string& language, const std::string& playerxuid) {
    form.addLabel("moneyinfo", fmt::format("§f§r§b{}§f : §e{}{}", tr(language, "shop.yourmoney"),
                                           MCGLOBALECONOMYMANAGER::queryMoneyhas(playerxuid), coinglyph));
}

// The lines that goods and commissions share, in front of the count and behind the price.
std::string headlines(const std::string& language, const std::string& name, const std::string& describe,
                      const std::string& tag, std::pair<int, int> damage) {
    return fmt::format("§f§r{}:§b{}§f§r\n", tr(language, "shop.shopitemname"), name) +
           fmt::format("§d§l§o{}§f§r\n", describe) +  //
           fmt::format("§f§r§b【§2{}§b】§f§r\n", tag) +
           fmt::format("{}:§4{}§f/§2{}§f§r\n", tr(language, "item.damageinfo"), damage.first, damage.second);
}
std::string taillines(const std::string& language, const std::string& shopname, bool isopshop) {
    return fmt::format("§d§o{}:{}§f§r\n", tr(language, "shop.sourcefrom"), shopname) +
           (isopshop ? opshopmark + "§f§r\n" : "");
}
std::string pricepart(const std::string& language, std::int32_t price) {
    return fmt::format("§e{} {}/{}§f§r\n", price, getmoneyname(), tr(language, "measurement.entries"));
}
std::string countline(const std::string& language, const char* key, std::int32_t number) {
    return fmt::format("{}:{}§f§r\n", tr(language, key), number);
}

}  // namespace

Form::CustomForm buildtrybuyform(const std::string& language, const globalsellshopitem& item,
                                 const std::string& hovertext, std::pair<int, int> damagepair,
                                 const std::string& playerxuid) {
    Form::CustomForm form(tr(language, "sellshop.trybuy.form.menutitle"));
    addmoneyinfo(form, language, playerxuid);
    form.addLabel("Iteminfopre", tr(language, "sellshop.trybuy.tip") + ":\n" + hovertext);
    form.addLabel("Iteminfosplit", splitline);
    // Players know the bare word at the end as the mark of a discount.
    form.addLabel("combineinfo",
                  headlines(language, item.shopitemname, item.shopitemdescribe, item.shopitemtag, damagepair) +
                      countline(language, "shopitem.leftnum", item.shopitemleftnum) + "§f§r" +
                      pricepart(language, item.realprice) + taillines(language, item.shopname, item.isopshop) +
                      (item.price != item.realprice ? "saleornot" : ""));
    buyquantity.show(form, language);
    return form;
}

Form::CustomForm buildtryrecycleform(const std::string& language, const globalrecycleshopitem& item,
                                     const std::string& hovertext, const std::vector<slotcount>& slots,
                                     std::pair<int, int> damagepair, const std::string& playerxuid) {
    Form::CustomForm form(tr(language, "recycleshop.trysell.form.menutitle"));
    addmoneyinfo(form, language, playerxuid);
    form.addLabel("Iteminfo", hovertext);
    int number = 0;
    for (const auto& flag : commissionflags)
        form.addLabel(fmt::format("filter{}", ++number),
                      fmt::format("§f§r{}:{}", tr(language, flag.labelkey), flag.glyph(item)));
    form.addLabel("Iteminfosplit", splitline);
    form.addLabel("combineinfo",
                  headlines(language, item.recycleitemname, item.recycleitemdescribe, item.recycleitemtag, damagepair) +
                      countline(language, "recycleshopitem.leftnum", item.recycleitemleftwanna) +
                      countline(language, "recycleshopitem.hasrecyclenum", item.nowhasrecyclenum) +
                      pricepart(language, item.offer) + taillines(language, item.shopname, item.isopshop));
    form.addLabel("Itemcanre", tr(language, "recycleshop.canrecycleslot") + ":");
    sellamounts.show(form, language, slots);
    return form;
}

}  // namespace ordomart
