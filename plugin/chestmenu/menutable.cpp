// The table is there before the first entry: entries are made while the module loads, in no certain order.
#include "plugin/chestmenu/menutable.h"

#include <array>

#include "plugin/base/effects.h"
#include "plugin/chestmenu/decoration.h"

namespace ordomart {

namespace {

constinit std::array<menurow, static_cast<std::size_t>(screen::chestmenus)> menus{};

}  // namespace

menuentry::menuentry(screen which, const menurow& row) { menus.at(static_cast<std::size_t>(which)) = row; }

const menurow& menuof(screen which) { return menus.at(static_cast<std::size_t>(which)); }

void paint(ServerPlayer* player, screen which) {
    const auto& row = menuof(which);
    if (row.behind == backdrop::blank)
        clearplayerview(player);
    else
        player->refreshInventory();
    row.draw(player);
}

void switchmenu(ServerPlayer* player, ListenRecorder* record, screen target) {
    if (menuof(target).draw == nullptr) {
        playsound(player, "mob.villager.no");
        return;
    }
    paint(player, target);
    record->prehandler = menuof(target).prehandler;
    record->mainhandler = menuof(target).mainhandler;
}

bool isinfront(ServerPlayer* player, screen which) {
    const auto* const record =
        ChestInvontorymenuguihelper::listenermanager().find(player, player->currentContainerCounter());
    if (record == nullptr) return false;
    const auto* const running = record->prehandler.target<plainhandler>();
    return running != nullptr && *running == menuof(which).prehandler;
}

}  // namespace ordomart
