// The goods of one shop and the commissions of one shop, those that are private as well.
#include "plugin/base/language.h"
#include "plugin/chestmenu/refresh.h"
#include "plugin/chestmenu/viewentry.h"
#include "plugin/chestviews/globalgoods.h"
#include "plugin/chestviews/openers.h"
#include "plugin/chestviews/shopcard.h"
#include "plugin/chestviews/tradechoice.h"
#include "plugin/chestviews/views.h"

namespace ordomart {

namespace {

// What is private is locked, and can be chosen all the same.
template <class Rows>
std::string drawgood(ServerPlayer* player, falsestack& good, std::size_t i) {
    const auto row = (getplayershopstate(player->getXuid()).*Rows::list).row(i);
    good.startgood(row.itemnbt);
    addgoodlore(player, good, row);
    if (!row.allowbesearched) {
        setitemlock(good.tag);
        addloreline(good.tag, "§r§b【§c" + tr(player, "shop.locked") + "§b】");
    }
    good.finishgood();
    return entryname(row);
}

constexpr viewbutton buttons[] = {spyglassbutton};

constexpr tradechoice purchase{.face = tradeface::singlechest,
                               .menu = screen::singlesellshop,
                               .lostrow = "error at singlesellshop ,low readlist size",
                               .tellretry = true};
constexpr tradechoice sale{.face = tradeface::singlechest,
                           .menu = screen::singlerecycleshop,
                           .lostrow = "error at singlerecycleshop ,low size",
                           .tellretry = true};

constexpr goodsview sellview{
    .menu = screen::singlesellshop,
    .helpkey = "sellshop.helper1",
    .page = sellrows::page,
    .count = &countgoods<sellrows>,
    .row = &drawgood<sellrows>,
    .buttons = buttons,
    .back = screen::sellshoplist,
    .heardclose = {"mob.villager.haggle"},
    .chosen = [](ServerPlayer* player, const pageentry& entry) { followchoice<sellrows>(player, entry, purchase); },
    .plan = {.place = "singlesellshopprehandlermain",
             .list = listkind::singlesell,
             .timeline = "total singlesellshopquery time:{}s",
             .drawhead = &drawshopcard<sellrows>},
};
constexpr goodsview recycleview{
    .menu = screen::singlerecycleshop,
    .helpkey = "recycleshop.helper1",
    .page = recyclerows::page,
    .count = &countgoods<recyclerows>,
    .row = &drawgood<recyclerows>,
    .buttons = buttons,
    .back = screen::recycleshoplist,
    .heardclose = {"mob.villager.haggle"},
    .chosen = [](ServerPlayer* player, const pageentry& entry) { followchoice<recyclerows>(player, entry, sale); },
    .plan = {.place = "singlerecycleshopprehandlermain",
             .list = listkind::singlerecycle,
             .timeline = "total singlerecycleshopquery time:{}s",
             .drawhead = &drawshopcard<recyclerows>},
};

const viewentry<sellview, &singlesellshopprehandlermain, &opensinglesellshopshopsmenu> sellentered;
const viewentry<recycleview, &singlerecycleshopprehandlermain, &opensinglerecycleshopshopsmenu> recycleentered;

}  // namespace

void singlesellshopprehandlermain(ServerPlayer* player, bool reload) { refresh(sellview, player, reload); }
void singlerecycleshopprehandlermain(ServerPlayer* player, bool reload) { refresh(recycleview, player, reload); }

opresult opensinglesellshopshopsmenu(ServerPlayer* player, const std::string& shopxuid) {
    return openchestmenu(player, sellview.menu, shopxuid);
}
opresult opensinglerecycleshopshopsmenu(ServerPlayer* player, const std::string& shopxuid) {
    return openchestmenu(player, recycleview.menu, shopxuid);
}

}  // namespace ordomart
