// The goods of all selling shops.
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

constexpr const char* privateline = "It shouldnt happen";
constexpr auto buttons = globalbuttons("sellshop.filterbyplayer", fakechest::sellshoplist);

constexpr goodsview view{
    .menu = fakechest::sellshops,
    .helpkey = "sellshop.helper1",
    .page = sellrows::page,
    .count = &countgoods<sellrows>,
    .row = &drawpublicgood<sellrows, privateline>,
    .buttons = buttons,
    .back = fakechest::main,
    .backblankstwice = true,
    .plan = {.place = "Ordosellglobalshoppreviewprehandlermain",
             .prepare = [](const viewer& who) { sellshop::prepareglobalsellshopfilterforplayer(who.xuid); },
             .sort = &sortsellreadlist,
             .timeline = "total query and sort time:{}s",
             .timesalways = true,
             .drawhead = &drawsignandcursor},
};

constexpr tradechoice choice{.face = tradeface::globalchest,
                             .reopen = [](ServerPlayer* player, const std::string&) { openOrdosellshopsmenu(player); },
                             .lostrow = "error at globalsellshop ,low readlist size",
                             .tellchanged = true,
                             .tellretry = true,
                             .searches = true};

bool onclose(ServerPlayer* player, ItemStackRequestAction*, ListenRecorder* record) {
    return followchoice<sellrows>(player, *record, choice);
}
bool onclick(ServerPlayer* player, ItemStackRequestAction* action, ListenRecorder* record) {
    return handleclick(view, player, action, record);
}

}  // namespace

constinit const menurow globalsellmenu{
    &onclose, &onclick, [](ServerPlayer* player) { Ordosellglobalshoppreviewprehandlermain(player, true); }};

void Ordosellglobalshoppreviewprehandlermain(ServerPlayer* player, bool reload) { refresh(view, player, reload); }

opresult openOrdosellshopsmenu(ServerPlayer* player) { return openchestmenu(player, fakechest::sellshops); }

}  // namespace ordomart
