// From the selection to the row, from the row to the form.
#include "plugin/chestviews/tradechoice.h"

#include "plugin/chestmenu/decoration.h"
#include "plugin/forms/openers.h"
#include "plugin/frame/effects.h"
#include "plugin/frame/guards.h"
#include "plugin/frame/language.h"
#include "plugin/shopsystem/rowkinds.h"

namespace ordomart {

namespace {

constexpr int searchslot = 6;

void offer(ServerPlayer* player, const globalsellshopitem& row, tradeface face) { offerpurchase(player, row, face); }
void offer(ServerPlayer* player, const globalrecycleshopitem& row, tradeface face) {
    offerrecyclesale(player, row, face);
}

void telllostrow(ServerPlayer* player, const tradechoice& view) {
    if (view.lostrow != nullptr) logger.put(LogLevel::error, view.lostrow);
    if (view.tellchanged) player->sendTextPacket(tr(player, "myshop.error.itemchanged"));
    if (view.tellretry) player->sendTextPacket("wrong data ,Retry");
}

template <class Rows>
void chooserow(ServerPlayer* player, int slot, const tradechoice& view) {
    const auto& state = getplayershopstate(player->getXuid());
    const auto& list = state.*Rows::list;
    const auto index = std::int64_t{state.*Rows::page} * pagesize + slot - screen::firstlisted;
    if (!list.holds(index)) return telllostrow(player, view);
    const auto row = list.row(static_cast<std::size_t>(index));
    if (!isfresh(row)) {
        systemtoast(player, tr(player, "myshop.error.shopinfoupdate"));
        view.reopen(player, row.xuid);
        return;
    }
    offer(player, row, view.face);
}

}  // namespace

template <class Rows>
bool followchoice(ServerPlayer* player, const ListenRecorder& record, const tradechoice& view) {
    if (containermenuguihelper::nothingselected(player, record)) return false;
    const auto& chosen = record.selection;
    const bool isrow = chosen.isfrom(ContainerName::inventory);
    if (isrow || !view.soundforrows) playsound(player, "mob.villager.haggle");
    envelope([&] {
        if (isrow)
            chooserow<Rows>(player, chosen.fromslot, view);
        else if (view.searches && chosen.isfrom(ContainerName::hotbar) && chosen.fromslot == searchslot)
            opensearchitemform(player, Rows::type, true);
    });
    return true;
}

template bool followchoice<sellrows>(ServerPlayer*, const ListenRecorder&, const tradechoice&);
template bool followchoice<recyclerows>(ServerPlayer*, const ListenRecorder&, const tradechoice&);

}  // namespace ordomart
