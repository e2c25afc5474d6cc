// The goods of all selling shops.
#include "plugin/chestmenu/refresh.h"
#include "plugin/chestmenu/viewentry.h"
#include "plugin/chestviews/globalgoods.h"
#include "plugin/chestviews/openers.h"
#include "plugin/chestviews/tradechoice.h"
#include "plugin/chestviews/views.h"
#include "plugin/shopsystem/lists.h"

namespace ordomart {

namespace {

constexpr const char* privateline = "It shouldnt happen";
constexpr auto buttons = globalbuttons<sellrows>("sellshop.filterbyplayer", screen::sellshoplist);

constexpr tradechoice choice{.face = tradeface::globalchest,
                             .menu = screen::sellshops,
                             .lostrow = "error at globalsellshop ,low readlist size",
                             .tellchanged = true,
                             .tellretry = true};

constexpr goodsview view{
    .menu = screen::sellshops,
    .helpkey = "sellshop.helper1",
    .page = sellrows::page,
    .count = &countgoods<sellrows>,
    .row = &drawpublicgood<sellrows, privateline>,
    .buttons = buttons,
    .back = screen::ordomenu,
    .backblankstwice = true,
    .heardclose = {"mob.villager.haggle"},
    .chosen = [](ServerPlayer* player, const pageentry& entry) { followchoice<sellrows>(player, entry, choice); },
    .plan = {.place = "Ordosellglobalshoppreviewprehandlermain",
             .list = listkind::globalsell,
             .sort = &sortsellreadlist,
             .timeline = "total query and sort time:{}s",
             .timesalways = true,
             .drawhead = &drawsignandcursor},
};

const viewentry<view, &Ordosellglobalshoppreviewprehandlermain, &openOrdosellshopsmenu> entered;

}  // namespace

void Ordosellglobalshoppreviewprehandlermain(ServerPlayer* player, bool reload) { refresh(view, player, reload); }

opresult openOrdosellshopsmenu(ServerPlayer* player) { return openchestmenu(player, view.menu); }

}  // namespace ordomart
