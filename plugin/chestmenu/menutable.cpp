// The table is there before the first entry: entries are made while the module loads, in no certain order.
#include "plugin/chestmenu/menutable.h"

#include <array>

#include "plugin/base/effects.h"
#include "plugin/chestmenu/decoration.h"

namespace ordomart {

using ChestInvontorymenuguihelper::listenermanager;
using containermenuguihelper::newpicturenumber;

namespace {

constinit std::array<menurow, static_cast<std::size_t>(screen::chestmenus)> menus{};

void paint(ServerPlayer* player, const menurow& row) {
    if (row.behind == backdrop::blank)
        clearplayerview(player);
    else
        player->refreshInventory();
    row.draw(player);
}

}  // namespace

menuentry::menuentry(screen which, const menurow& row) { menus.at(static_cast<std::size_t>(which)) = row; }

const menurow& menuof(screen which) { return menus.at(static_cast<std::size_t>(which)); }

void showmenu(ServerPlayer* player, ListenRecorder& record, screen which) {
    const auto& row = menuof(which);
    record.prehandler = row.prehandler;
    record.mainhandler = row.mainhandler;
    auto& picture = record.picture = {which, newpicturenumber()};
    const auto begun = picture.number;
    if (!envelopeat("showmenu", [&] { paint(player, row); })) return sendcontainerclose(player, record.containerid);
    // Unless a page was begun that comes later, that was all of it.
    picture.complete = picture.number == begun;
}

void switchmenu(ServerPlayer* player, ListenRecorder* record, screen target) {
    if (menuof(target).draw == nullptr)
        playsound(player, "mob.villager.no");
    else
        showmenu(player, *record, target);
}

std::uint64_t beginpage(ServerPlayer* player) {
    auto* const record = listenermanager().infront(player);
    if (record == nullptr) return 0;
    record->picture = {record->picture.menu, newpicturenumber()};
    return record->picture.number;
}

bool isawaited(const ServerPlayer* player, std::uint64_t picture) {
    const auto* const record = listenermanager().infront(player);
    return record != nullptr && record->picture.number == picture;
}

void completepage(const ServerPlayer* player, std::vector<pageentry> entries) {
    auto* const record = listenermanager().infront(player);
    if (record == nullptr) return;
    record->picture.complete = true;
    record->picture.entries = std::move(entries);
}

}  // namespace ordomart
