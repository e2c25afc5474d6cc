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
constexpr auto buttons = globalbuttons("recycleshop.filterbyplayer", screen::recycleshoplist);

constexpr goodsview view{
    .menu = screen::recycleshops,
    .helpkey = "recycleshop.helper1",
    .page = recyclerows::page,
    .count = &countgoods<recyclerows>,
    .row = &drawpublicgood<recyclerows, privateline>,
    .buttons = buttons,
    .back = screen::ordomenu,
    .plan = {.place = "Ordorecycleglobalshoppreviewprehandlermain",
             .list = listkind::globalrecycle,
             .sort = &sortrecyclereadlist,
             .timeline = "total query time:{}s",
             .timesalways = true,
             .drawhead = &drawsignandcursor},
};

constexpr tradechoice choice{
    .face = tradeface::globalchest, .tellchanged = true, .soundforrows = true, .searches = true};

bool onclose(ServerPlayer* player, const ListenRecorder& record) {
    return followchoice<recyclerows>(player, record, view.menu, choice);
}

const viewentry<view, &onclose, &Ordorecycleglobalshoppreviewprehandlermain, &openOrdorecycleshopsmenu> entered;

}  // namespace

void Ordorecycleglobalshoppreviewprehandlermain(ServerPlayer* player, bool reload) { refresh(view, player, reload); }

opresult openOrdorecycleshopsmenu(ServerPlayer* player) { return openchestmenu(player, view.menu); }

}  // namespace ordomart
