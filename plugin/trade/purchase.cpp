// The purchase of goods: one confirm step for its four faces. Everything is tested before anything changes, and payment
// is the first change: where it is refused, nothing has happened. The one failure that changes the shop is a stored
// item that is no item any more, whose entry goes. The form keeps copies of the row and no reference to the shop: a
// shop that has changed since is known by its revision.
#include <nlohmann/json.hpp>

#include "platform/text.h"
#include "plugin/base/effects.h"
#include "plugin/base/guards.h"
#include "plugin/base/language.h"
#include "plugin/economy/economymanager.h"
#include "plugin/economy/marketopen.h"
#include "plugin/formparts/formtools.h"
#include "plugin/ledger/ledger.h"
#include "plugin/shopsystem/runtimeshopmanager.h"
#include "plugin/shopsystem/tradelog.h"
#include "plugin/trade/faces.h"
#include "plugin/trade/refusal.h"
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

// What stands in front of a text, where something stands in front of it.
std::string textof(refusal why, const std::string& language) {
    const char* const prefix = why == refusal::recordgone   ? "catch checkexist error:"
                               : why == refusal::itembroken ? "catch checkrawitemvalid error:"
                                                            : "";
    return prefix + refusaltext(why, language);
}

struct purchase {
    std::string shopxuid;
    std::uint32_t revision;
    std::int32_t index;
    shopitem offered;  // as the form shows it
    std::string language;
    std::int32_t quantity = 0;
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

// Beside the revision, so that nothing is sold but what was on the form. A discount is no part of it: the price seen is
// the price paid.
bool isasoffered(const shopitem& entry, const shopitem& offered) {
    return entry.shopitemleftnum == offered.shopitemleftnum && entry.price == offered.price;
}

void enter(const ServerPlayer* player, const sellshop& shop, const purchase& bought, const shopitem& entry,
           const transferred& money) {
    const auto before = ledger::stateof(entry);
    auto after = before;
    if (!shop.isopshop) after.left -= bought.quantity;
    ledger::write(shop, {.what = ledger::kind::purchase,
                         .actor = player->getXuid(),
                         .itemnbt = entry.itemnbt,
                         .pieces = bought.quantity,
                         .price = bought.offered.realprice,
                         .paid = money.paid,
                         .fee = money.fee,
                         .before = before,
                         .after = after,
                         .title = entry.shopitemname});
}

// Behind the payment: stock and counters, then the goods, and what can only be told last.
void settle(ServerPlayer* player, sellshop& shop, const purchase& bought, const shopitem& entry, const ItemStack& item,
            const transferred& money, const json& record) {
    if (!shop.isopshop)
        shop.items[static_cast<std::size_t>(bought.index)]["shopitemleftnum"] =
            bought.offered.shopitemleftnum - bought.quantity;
    countup(shop.sellcount, bought.quantity);
    countup(shop.salesvolume, bought.total);
    shop.markshopchanged();
    enter(player, shop, bought, entry, money);
    givepieces(player, item, bought.quantity);
    envelope([&] { shop.writetradelog(record); });
    envelope([&] { player->refreshInventory(); });
}

refusal buy(ServerPlayer* player, purchase& wanted) {
    if (!marketopen()) return refusal::marketclosed;
    if (wanted.quantity < 1 || wanted.quantity > wanted.offered.shopitemleftnum) return refusal::badquantity;
    auto& shop = globalruntimeshopmanager.getsellshop(wanted.shopxuid);
    if (!isatrevision(shop, wanted.revision)) return refusal::shopchanged;
    if (!shop.holds(wanted.index)) return refusal::recordgone;
    const auto entry = shop.getshopitem(wanted.index);
    if (!isasoffered(entry, wanted.offered)) return refusal::shopchanged;
    wanted.total = std::int64_t{wanted.offered.realprice} * wanted.quantity;
    const auto has = moneyof(player->getXuid());
    if (!has) return refusal::paymentrefused;
    if (*has < wanted.total) return refusal::moneyshort;

    const auto item = itemfromsnbt(entry.itemnbt);
    if (!checkrawitemvalid(item)) {
        shop.items.erase(static_cast<std::size_t>(wanted.index));
        shop.markshopchanged();
        ledger::write(shop, {.what = ledger::kind::broken,
                             .actor = player->getXuid(),
                             .itemnbt = entry.itemnbt,
                             .pieces = entry.shopitemleftnum,
                             .before = ledger::stateof(entry)});
        return refusal::itembroken;
    }
    if (entry.itemnbt != wanted.offered.itemnbt) return refusal::shopchanged;
    if (!canhandover(item, wanted.quantity)) return refusal::toomany;

    const auto record = recordof(player, wanted, entry, item);
    wanted.shopname = shop.shopname;
    wanted.message = tradesentence(shop.ownerlang, purchasesentence, player->getRealName(), wanted.total,
                                   itemtext(item, wanted.language, wanted.quantity), shop.shopname);
    const auto note = "buy item :" + itemtext(item, I18n::currentlanguage(), wanted.quantity);
    transferred money;
    if (!createmoneyTrans(player->getXuid(), shop.isopshop ? "0" : wanted.shopxuid, wanted.total, note, &money))
        return refusal::paymentrefused;
    settle(player, shop, wanted, entry, item, money, record);
    return refusal::none;
}

void confirm(ServerPlayer* player, const facerecord& face, purchase wanted, const Form::Elements& answer) {
    wanted.language = answerlanguage(face, player, wanted.language);
    wanted.quantity = buyquantity.number(answer);
    const auto result = buy(player, wanted);
    if (result != refusal::none) return tellrefusal(face, player, wanted.shopxuid, textof(result, wanted.language));
    playsound(player, "mob.villager.yes");
    tellsuccess(face, player, wanted.shopxuid, wanted.language,
                {"sellshop.purchase.success", true, wanted.message, wanted.shopname, '-', wanted.total});
}

}  // namespace

bool isfresh(const globalsellshopitem& row) {
    return globalruntimeshopmanager.revisionof(row.xuid, sell) == row.revision;
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
    const purchase wanted{
        .shopxuid = row.xuid, .revision = row.revision, .index = row.index, .offered = row, .language = language};
    sendform(player, form, {face.place, [&face, id = row.xuid](ServerPlayer* who) { reopen(who, face.closed, id); }},
             [&face, wanted](ServerPlayer* who, const Form::Elements& answer) { confirm(who, face, wanted, answer); });
}

}  // namespace ordomart
