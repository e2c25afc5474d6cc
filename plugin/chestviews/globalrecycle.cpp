// The commissions of all recycle shops. A choice offers the player to sell what matches in his inventory.
#include "plugin/chestmenu/refresh.h"
#include "plugin/chestmenu/viewentry.h"
#include "plugin/chestviews/globalgoods.h"
#include "plugin/chestviews/openers.h"
#include "plugin/chestviews/tradechoice.h"
#include "plugin/chestviews/views.h"
#include "plugin/shopsystem/lists.h"

namespace ordomart {

namespace {

constexpr const char* privateline = "error at besearched it shouldnt happen!";
constexpr auto buttons = globalbuttons<recyclerows>("recycleshop.filterbyplayer", screen::recycleshoplist);

constexpr tradechoice choice{
    .face = tradeface::globalchest, .menu = screen::recycleshops, .tellchanged = true, .villager = true};

constexpr goodsview view{
    .menu = screen::recycleshops,
    .helpkey = "recycleshop.helper1",
    .page = recyclerows::page,
    .count = &countgoods<recyclerows>,
    .row = &drawpublicgood<recyclerows, privateline>,
    .buttons = buttons,
    .back = screen::ordomenu,
    .chosen = [](ServerPlayer* player, const pageentry& entry) { followchoice<recyclerows>(player, entry, choice); },
    .plan = {.place = "Ordorecycleglobalshoppreviewprehandlermain",
             .list = listkind::globalrecycle,
             .sort = &sortrecyclereadlist,
             .timeline = "total query time:{}s",
             .timesalways = true,
             .drawhead = &drawsignandcursor},
};

const viewentry<view, &Ordorecycleglobalshoppreviewprehandlermain, &openOrdorecycleshopsmenu> entered;

}  // namespace

void Ordorecycleglobalshoppreviewprehandlermain(ServerPlayer* player, bool reload) { refresh(view, player, reload); }

opresult openOrdorecycleshopsmenu(ServerPlayer* player) { return openchestmenu(player, view.menu); }

}  // namespace ordomart
