// The purchase of goods: one confirm step for its four faces. Everything is tested before anything changes; the one
// failure that changes the shop is a stored item that is no item any more, whose entry goes. The form keeps copies of
// the row and no reference to the shop: a shop that has changed since is known by its revision.
#include <nlohmann/json.hpp>

#include "platform/text.h"
#include "plugin/base/effects.h"
#include "plugin/base/language.h"
#include "plugin/economy/economymanager.h"
#include "plugin/formparts/formtools.h"
#include "plugin/shopsystem/runtimeshopmanager.h"
#include "plugin/shopsystem/tradelog.h"
#include "plugin/trade/faces.h"
#include "plugin/trade/trade.h"
#include "plugin/trade/tryforms.h"

namespace ordomart {

namespace {

// In the order of tradeface.
constexpr facerecord faces[] = {
    {{}, "openOrdosellshopAsformmenu", {screen::sellform, false}, {screen::sellform}, {screen::mainmenuform}},
    {{.showscustomlore = true},
     "openOrdosystemshopsellAsformmenu",
     {screen::systemsellform, false},
     {screen::systemsellform},
     {screen::systemshopform, true}},
    {{.chest = true}, "openOrdosellshopsmenu", {screen::sellshops}, {screen::sellshops}},
    {{.chest = true}, "opensinglesellshopshopsmenu", {screen::singlesellshop}, {screen::singlesellshop}},
};

enum class outcome { bought, badquantity, shopchanged, entrygone, notenoughmoney, itembroken };

struct refusaltext {
    outcome why;
    const char* prefix;
    const char* key;
};
constexpr refusaltext refusaltexts[] = {
    {outcome::badquantity, "", "sellshop.error.invalid"},
    {outcome::shopchanged, "", "myshop.error.shopinfoupdate"},
    {outcome::entrygone, "catch checkexist error:", "myshop.error.itemchanged"},
    {outcome::notenoughmoney, "", "money.notenough"},
    {outcome::itembroken, "catch checkrawitemvalid error:", "myshop.error.itemchanged"},
};

std::string textof(outcome why, const std::string& language) {
    for (const auto& text : refusaltexts) {
        if (text.why == why) return text.prefix + tr(language, text.key);
    }
    return {};
}

struct purchase {
    std::string shopxuid;
    std::uint32_t revision;
    std::int32_t stock, index, price;
    std::int32_t quantity = 0;
    std::string language = {};
    std::int64_t total = 0;
    std::string shopname = {}, message = {};
};

std::string itemtext(const ItemStack& item, const std::string& language, std::int32_t quantity) {
    return fmt::format("{}*{}", itemlocalname(item, language), quantity);
}

json recordof(const ServerPlayer* player, const purchase& bought, const shopitem& entry, const ItemStack& item) {
    auto record = traderecord(item.save(), entry.itemnbt, bought.quantity, bought.total);
    record["prplayername"] = player->getRealName();
    record["shopitemname"] = entry.shopitemname;
    return record;
}

// Moves stock, money and goods. All tests have passed; what fails from here on does not stop the trade.
void settle(ServerPlayer* player, sellshop& shop, purchase& bought, const shopitem& entry, const ItemStack& item) {
    if (!shop.isopshop) {
        shop.items[static_cast<std::size_t>(bought.index)]["shopitemleftnum"] = bought.stock - bought.quantity;
    }
    countup(shop.sellcount, bought.quantity);
    countup(shop.salesvolume, bought.total);
    createmoneyTrans(player->getXuid(), shop.isopshop ? "0" : bought.shopxuid, bought.total,
                     "buy item :" + itemtext(item, I18n::currentlanguage(), bought.quantity));
    shop.writetradelog(recordof(player, bought, entry, item));
    bought.shopname = shop.shopname;
    bought.message = tradesentence(shop.ownerlang, purchasesentence, player->getRealName(), bought.total,
                                   itemtext(item, bought.language, bought.quantity), shop.shopname);
    givepieces(player, item, bought.quantity);
    player->refreshInventory();
    shop.markshopchanged();
    playsound(player, "mob.villager.yes");
}

outcome buy(ServerPlayer* player, purchase& wanted) {
    if (wanted.quantity < 1 || wanted.quantity > wanted.stock) return outcome::badquantity;
    auto& shop = globalruntimeshopmanager.getsellshop(wanted.shopxuid);
    if (!isatrevision(shop, wanted.revision)) return outcome::shopchanged;
    if (!shop.holds(wanted.index)) return outcome::entrygone;
    wanted.total = std::int64_t{wanted.price} * wanted.quantity;
    if (MCGLOBALECONOMYMANAGER::queryMoneyhas(player->getXuid()) < wanted.total) return outcome::notenoughmoney;

    const auto entry = shop.getshopitem(wanted.index);
    const auto item = itemfromsnbt(entry.itemnbt);
    if (!checkrawitemvalid(item)) {
        shop.items.erase(static_cast<std::size_t>(wanted.index));
        shop.markshopchanged();
        return outcome::itembroken;
    }
    settle(player, shop, wanted, entry, item);
    return outcome::bought;
}

void confirm(ServerPlayer* player, const facerecord& face, purchase wanted, const Form::Elements& answer) {
    wanted.language = answerlanguage(face, player, wanted.language);
    wanted.quantity = buyquantity.number(answer);
    const auto result = buy(player, wanted);
    if (result != outcome::bought) {
        tellrefusal(face, player, wanted.shopxuid, textof(result, wanted.language));
        return;
    }
    tellsuccess(face, player, wanted.shopxuid, wanted.language,
                {"sellshop.purchase.success", true, wanted.message, wanted.shopname, '-', wanted.total});
}

}  // namespace

bool isfresh(const globalsellshopitem& row) {
    return isatrevision(globalruntimeshopmanager.getsellshop(row.xuid), row.revision);
}

void offertrade(ServerPlayer* player, const globalsellshopitem& row, tradeface which) {
    const auto& face = faces[static_cast<std::size_t>(which)];
    const auto item = itemfromsnbt(row.itemnbt);
    if (!checkrawitemvalid(item)) {
        player->sendText(
            "catch checkrawitemvalid error: maybe your shopping item is from a mod that not installed in your server");
        return;
    }
    const auto language = player->getLanguageCode();
    const auto form = buildtrybuyform(language, row, hovertextfor(face, item, language),
                                      {item.getDamageValue(), item.getMaxDamage()}, player->getXuid());
    const purchase wanted{.shopxuid = row.xuid,
                          .revision = row.revision,
                          .stock = row.shopitemleftnum,
                          .index = row.index,
                          .price = row.realprice,
                          .language = language};
    sendform(player, form, {face.place, [&face, id = row.xuid](ServerPlayer* who) { reopen(who, face.closed, id); }},
             [&face, wanted](ServerPlayer* who, const Form::Elements& answer) { confirm(who, face, wanted, answer); });
}

}  // namespace ordomart
