// The commissions of all recycle shops. A choice offers the player to sell what matches in his inventory.
#include "plugin/chestmenu/clickgrammar.h"
#include "plugin/chestmenu/opening.h"
#include "plugin/chestmenu/refresh.h"
#include "plugin/chestviews/globalgoods.h"
#include "plugin/chestviews/openers.h"
#include "plugin/chestviews/tradechoice.h"
#include "plugin/chestviews/views.h"
#include "plugin/shopsystem/lists.h"

namespace ordomart {

namespace {

constexpr const char* privateline = "error at besearched it shouldnt happen!";
constexpr auto buttons = globalbuttons("recycleshop.filterbyplayer", fakechest::recycleshoplist);

constexpr goodsview view{
    .menu = fakechest::recycleshops,
    .helpkey = "recycleshop.helper1",
    .page = recyclerows::page,
    .count = &countgoods<recyclerows>,
    .row = &drawpublicgood<recyclerows, privateline>,
    .buttons = buttons,
    .back = fakechest::main,
    .plan = {.place = "Ordorecycleglobalshoppreviewprehandlermain",
             .prepare = [](const viewer& who) { recycleshop::prepareglobalrecycleshopfilterforplayer(who.xuid); },
             .sort = &sortrecyclereadlist,
             .timeline = "total query time:{}s",
             .timesalways = true,
             .drawhead = &drawsignandcursor},
};

constexpr tradechoice choice{
    .face = tradeface::globalchest,
    .reopen = [](ServerPlayer* player, const std::string&) { openOrdorecycleshopsmenu(player); },
    .tellchanged = true,
    .soundforrows = true,
    .searches = true};

bool onclose(ServerPlayer* player, ItemStackRequestAction*, ListenRecorder* record) {
    return followchoice<recyclerows>(player, *record, choice);
}
bool onclick(ServerPlayer* player, ItemStackRequestAction* action, ListenRecorder* record) {
    return handleclick(view, player, action, record);
}

}  // namespace

constinit const menurow globalrecyclemenu{
    &onclose, &onclick, [](ServerPlayer* player) { Ordorecycleglobalshoppreviewprehandlermain(player, true); }};

void Ordorecycleglobalshoppreviewprehandlermain(ServerPlayer* player, bool reload) { refresh(view, player, reload); }

opresult openOrdorecycleshopsmenu(ServerPlayer* player) { return openchestmenu(player, fakechest::recycleshops); }

}  // namespace ordomart
