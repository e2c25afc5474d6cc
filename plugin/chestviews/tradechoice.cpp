// From the selection to the row, from the row to the form.
#include "plugin/chestviews/tradechoice.h"

#include "plugin/base/effects.h"
#include "plugin/base/guards.h"
#include "plugin/base/language.h"
#include "plugin/chestmenu/pageview.h"
#include "plugin/shopsystem/rowkinds.h"

namespace ordomart {

namespace {

constexpr int searchslot = 6;

void telllostrow(ServerPlayer* player, const tradechoice& view) {
    if (view.lostrow != nullptr) logger.put(LogLevel::error, view.lostrow);
    if (view.tellchanged) player->sendTextPacket(tr(player, "myshop.error.itemchanged"));
    if (view.tellretry) player->sendTextPacket("wrong data ,Retry");
}

template <class Rows>
void chooserow(ServerPlayer* player, const ListenRecorder& record, screen menu, const tradechoice& view) {
    const auto& state = getplayershopstate(player->getXuid());
    const auto& list = state.*Rows::list;
    const int slot = record.selection.fromslot;
    const auto index = std::int64_t{state.*Rows::page} * pagesize + slot - layout::firstlisted;
    const auto shown = shownentry(record, slot);
    if (shown.empty() || !list.holds(index)) return telllostrow(player, view);
    const auto row = list.row(static_cast<std::size_t>(index));
    if (!isfresh(row) || shown != entryname(row)) {
        systemtoast(player, tr(player, "myshop.error.shopinfoupdate"));
        openscreen(menu, player, {.shop = row.xuid});
        return;
    }
    offertrade(player, row, view.face);
}

}  // namespace

template <class Rows>
bool followchoice(ServerPlayer* player, const ListenRecorder& record, screen menu, const tradechoice& view) {
    if (containermenuguihelper::nothingselected(player, record)) return false;
    const auto& chosen = record.selection;
    const bool isrow = chosen.isfrom(ContainerName::inventory);
    if (isrow || !view.soundforrows) playsound(player, "mob.villager.haggle");
    envelope([&] {
        if (isrow)
            chooserow<Rows>(player, record, menu, view);
        else if (view.searches && chosen.isfrom(ContainerName::hotbar) && chosen.fromslot == searchslot)
            openscreen(screen::searchform, player, {.type = Rows::type, .indescription = true});
    });
    return true;
}

template bool followchoice<sellrows>(ServerPlayer*, const ListenRecorder&, screen, const tradechoice&);
template bool followchoice<recyclerows>(ServerPlayer*, const ListenRecorder&, screen, const tradechoice&);

}  // namespace ordomart
