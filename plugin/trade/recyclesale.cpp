// The sale to a commission: one confirm step for its four faces. The taking itself is takeinitems; here are the tests
// in front of it, in the order of the face, and what the player reads behind it.
#include <nlohmann/json.hpp>

#include "plugin/base/effects.h"
#include "plugin/base/language.h"
#include "plugin/formparts/formtools.h"
#include "plugin/shopsystem/runtimeshopmanager.h"
#include "plugin/shopsystem/tradelog.h"
#include "plugin/trade/commissions.h"
#include "plugin/trade/commissionsteps.h"
#include "plugin/trade/faces.h"
#include "plugin/trade/trade.h"
#include "plugin/trade/tryforms.h"

namespace ordomart {

namespace {

// In the order of tradeface.
constexpr facerecord salefaces[] = {
    {{}, "openOrdorecycleshopAsformmenu", {screen::recycleform, false}, {screen::recycleform}, {screen::mainmenuform}},
    {{.showscustomlore = true},
     "openOrdosystemshoprecycleAsformmenu",
     {screen::systemrecycleform, false},
     {screen::systemrecycleform},
     {screen::systemshopform, false}},
    {{.chest = true}, "openOrdorecycleshopsmenu", {screen::recycleshops}, {screen::recycleshops}},
    {{.chest = true}, "opensinglerecycleshopshopsmenu", {screen::singlerecycleshop}, {screen::singlerecycleshop}},
};

struct recyclesale {
    std::string shopxuid;
    std::uint32_t revision;
    std::int32_t index, offer;
    std::vector<slotcount> slots;
    std::string language;
};

std::string templatename(const recycleshopitem& commission) {
    return CompoundTag::fromSNBT(commission.itemnbt).value_or(CompoundTag()).getString("Name");
}

void confirm(ServerPlayer* player, const facerecord& face, const recyclesale& sale, const Form::Elements& answer) {
    const auto language = answerlanguage(face, player, sale.language);
    auto& shop = globalruntimeshopmanager.getrecycleshop(sale.shopxuid);
    // A list that has shrunk past the place is logged; the player reads of it what he reads of any change.
    const bool isread = face.manner.chest || formenvelope(face.place, [&] {
                            (void)shop.recycleitems.at(static_cast<std::size_t>(sale.index));
                        });
    if (!isread || !isatrevision(shop, sale.revision))
        return tellrefusal(face, player, sale.shopxuid, refusaltext(refusal::shopchanged, language));
    if (!shop.holds(sale.index)) {
        player->sendText("catcherror for recycle:" + refusaltext(refusal::recordgone, language));
        return;
    }
    const auto commission = shop.getrecycleitem(sale.index);
    const auto taken = commission.offer == sale.offer ? takeinitems(player, shop, sale.index, commission, sale.slots,
                                                                    sellamounts.values(answer, sale.slots))
                                                      : refused(refusal::shopchanged);
    if (!taken.ok()) return tellrefusal(face, player, sale.shopxuid, refusaltext(taken.why, language));
    if (taken.slotschanged) tell(face, player, refusaltext(refusal::slotschanged, language));
    const auto message = tradesentence(shop.ownerlang, recyclesentence, player->getRealName(), taken.received,
                                       fmt::format("{}*{}", templatename(commission), taken.pieces), shop.shopname);
    playsound(player, "mob.villager.yes");
    tellsuccess(face, player, sale.shopxuid, language,
                {"recycleshop.recycle.success", false, message, shop.shopname, '+', taken.received});
}

}  // namespace

bool isfresh(const globalrecycleshopitem& row) {
    return globalruntimeshopmanager.revisionof(row.xuid, recycle) == row.revision;
}

void offertrade(ServerPlayer* player, const globalrecycleshopitem& row, tradeface which) {
    const auto& face = salefaces[static_cast<std::size_t>(which)];
    const auto item = itemfromsnbt(row.itemnbt);
    if (!checkrawitemvalid(item)) {
        player->sendText(
            "catch checkrawitemvalid error: maybe your recycling item is from a mod that not installed in your server");
        return;
    }
    const auto language = player->getLanguageCode();
    const auto hovertext = hovertextfor(face, item, language);
    const recyclesale sale{row.xuid, row.revision, row.index, row.offer, findrecycleitems(*player, row), language};
    const auto form = buildtryrecycleform(language, row, hovertext, sale.slots,
                                          {item.getDamageValue(), item.getMaxDamage()}, player->getXuid());
    sendform(player, form, {face.place, [&face, id = row.xuid](ServerPlayer* who) { reopen(who, face.closed, id); }},
             [&face, sale](ServerPlayer* who, const Form::Elements& answer) { confirm(who, face, sale, answer); });
}

}  // namespace ordomart
