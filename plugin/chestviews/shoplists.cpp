// The shops of the server, a stack for each: those that sell something, and those that want something. A choice shows
// the shop in the same container.
#include "plugin/base/effects.h"
#include "plugin/chestmenu/refresh.h"
#include "plugin/chestmenu/viewentry.h"
#include "plugin/chestviews/globalgoods.h"
#include "plugin/chestviews/openers.h"
#include "plugin/chestviews/shopcard.h"
#include "plugin/chestviews/views.h"
#include "plugin/shopsystem/shoprows.h"

namespace ordomart {

namespace {

template <class Rows, const char* const& privateline>
std::string drawshop(ServerPlayer* player, falsestack& entry, std::size_t i) {
    const auto row = (getplayershopstate(player->getXuid()).*Rows::list).row(i);
    entry.startgood(row.itemnbt);
    if (!row.allowbesearched) logger.put(LogLevel::error, privateline);
    return row.xuid;
}

template <class Rows, const char* const& lostline>
bool showshop(const press& at) {
    auto& state = getplayershopstate(at.player->getXuid());
    const auto& list = state.*Rows::list;
    const auto& [row, xuid] = at.record->chosen;
    if (!list.holds(row) || list.row(static_cast<std::size_t>(row)).xuid != xuid) {
        logger.put(LogLevel::error, lostline);
        at.player->sendText("wrong data ,Retry");
        return false;
    }
    playsound(at.player, "random.click");
    clearplayerview(at.player);
    state.viewedshopid = xuid;
    switchmenu(at.player, at.record, Rows::type == sell ? screen::singlesellshop : screen::singlerecycleshop);
    return false;
}

template <class Rows, class Shop>
void prepare(const viewer& who) {
    prepareshops<Rows, Shop>(who.xuid, who.reload, [&who](Shop& shop) { return cardtext(shop, who.language); });
}

constexpr const char *sellprivate = "Its should not happen! in globalsellshopfilterbyplayerprehandlermain",
                     *recycleprivate = "Its shouldnt happen";
constexpr const char *selllost = "error at singlesellshop ,low size",
                     *recyclelost = "error at singlerecycleshop ,low size";
constexpr viewbutton buttons[] = {spyglassbutton};

constexpr goodsview sellview{
    .menu = screen::sellshoplist,
    .helpkey = "sellshopfilterbyplayer.helper1",
    .page = &playershopstate::shoplistpage,
    .count = &countgoods<sellrows>,
    .row = &drawshop<sellrows, sellprivate>,
    .buttons = buttons,
    .back = screen::sellshops,
    .lostpageisfirst = true,
    .choice = &showshop<sellrows, selllost>,
    .closed = &containermenuguihelper::playerlisthandler,
    .plan = {.place = "globalsellshopfilterbyplayerprehandlermain",
             .prepare = &prepare<sellrows, sellshop>,
             .preparesalways = true,
             .drawhead = &drawsign,
             .onetask = true,
             .ticks = 1},
};
constexpr goodsview recycleview{
    .menu = screen::recycleshoplist,
    .helpkey = "recyleshopfilterbyplayer.helper1",
    .page = &playershopstate::shoplistpage,
    .count = &countgoods<recyclerows>,
    .row = &drawshop<recyclerows, recycleprivate>,
    .buttons = buttons,
    .back = screen::recycleshops,
    .lostpageisfirst = true,
    .choice = &showshop<recyclerows, recyclelost>,
    .closed = &containermenuguihelper::playerlisthandler,
    .plan = {.place = "globalrecycleshopfilterbyplayerprehandlermain",
             .prepare = &prepare<recyclerows, recycleshop>,
             .preparesalways = true,
             .drawhead = &drawsign,
             .onetask = true,
             .ticks = 1},
};

const viewentry<sellview, &globalsellshopfilterbyplayerprehandlermain, &openOrdosellshopfilterbyplayersmenu>
    sellentered;
const viewentry<recycleview, &globalrecycleshopfilterbyplayerprehandlermain, &openOrdorecycleshopfilterbyplayersmenu>
    recycleentered;

}  // namespace

void globalsellshopfilterbyplayerprehandlermain(ServerPlayer* player, bool reload) {
    refresh(sellview, player, reload);
}
void globalrecycleshopfilterbyplayerprehandlermain(ServerPlayer* player, bool reload) {
    refresh(recycleview, player, reload);
}

opresult openOrdosellshopfilterbyplayersmenu(ServerPlayer* player) { return openchestmenu(player, sellview.menu); }
opresult openOrdorecycleshopfilterbyplayersmenu(ServerPlayer* player) {
    return openchestmenu(player, recycleview.menu);
}

}  // namespace ordomart
