// One row for each menu; the views bring theirs.
#include "plugin/chestmenu/menutable.h"

#include <array>

#include "plugin/chestmenu/decoration.h"
#include "plugin/chestviews/views.h"
#include "plugin/frame/effects.h"

namespace ordomart {

namespace {

bool refuse(ServerPlayer*, ItemStackRequestAction*, ListenRecorder*) { return false; }

// For the menus whose view is not there yet: nobody gets into one.
constexpr menurow noview{&refuse, &refuse, [](ServerPlayer*) {}};

// In the order of fakechest.
constexpr std::array<const menurow*, static_cast<std::size_t>(fakechest::count)> menus = {
    &mainmenu, &globalsellmenu, &globalrecyclemenu,
    &noview,   &noview,         &noview,
    &noview,   &noview,         &noview,
    &noview,   &noview,         &noview,
    &noview,
};

}  // namespace

const menurow& menuof(fakechest which) { return *menus.at(static_cast<std::size_t>(which)); }

void paint(ServerPlayer* player, fakechest which) {
    const auto& row = menuof(which);
    if (row.behind == backdrop::blank)
        clearplayerview(player);
    else
        player->refreshInventory();
    row.draw(player);
}

void switchmenu(ServerPlayer* player, ListenRecorder* record, fakechest target) {
    if (&menuof(target) == &noview) {
        playsound(player, "mob.villager.no");
        return;
    }
    paint(player, target);
    record->prehandler = menuof(target).prehandler;
    record->mainhandler = menuof(target).mainhandler;
}

bool isinfront(ServerPlayer* player, fakechest which) {
    const auto* const record =
        ChestInvontorymenuguihelper::listenermanager().find(player, player->currentContainerCounter());
    if (record == nullptr) return false;
    const auto* const running = record->prehandler.target<plainhandler>();
    return running != nullptr && *running == menuof(which).prehandler;
}

}  // namespace ordomart
