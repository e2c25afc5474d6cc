// From the entry to the row, from the row to the form.
#include "plugin/chestviews/tradechoice.h"

#include "plugin/base/effects.h"
#include "plugin/base/language.h"
#include "plugin/shopsystem/rowkinds.h"

namespace ordomart {

namespace {

void telllostrow(ServerPlayer* player, const tradechoice& view) {
    if (view.lostrow != nullptr) logger.put(LogLevel::error, view.lostrow);
    if (view.tellchanged) player->sendTextPacket(tr(player, "myshop.error.itemchanged"));
    if (view.tellretry) player->sendTextPacket("wrong data ,Retry");
}

}  // namespace

template <class Rows>
void followchoice(ServerPlayer* player, const pageentry& entry, const tradechoice& view) {
    if (view.villager) playsound(player, "mob.villager.haggle");
    const auto& list = getplayershopstate(player->getXuid()).*Rows::list;
    if (!list.holds(entry.row)) return telllostrow(player, view);
    const auto row = list.row(static_cast<std::size_t>(entry.row));
    if (!isfresh(row) || entry.name != entryname(row)) {
        systemtoast(player, tr(player, "myshop.error.shopinfoupdate"));
        openscreen(view.menu, player, {.shop = row.xuid});
        return;
    }
    offertrade(player, row, view.face);
}

template void followchoice<sellrows>(ServerPlayer*, const pageentry&, const tradechoice&);
template void followchoice<recyclerows>(ServerPlayer*, const pageentry&, const tradechoice&);

}  // namespace ordomart
