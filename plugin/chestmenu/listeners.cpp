// The table of open menus, and the steps of a click and of a close through it.
#include "plugin/chestmenu/listeners.h"

#include <algorithm>
#include <limits>

#include "platform/packets/containers.h"
#include "plugin/base/effects.h"
#include "plugin/base/globals.h"
#include "plugin/chestmenu/blocks.h"
#include "plugin/chestmenu/later.h"

namespace containermenuguihelper {

using ordomart::logger;
using ordomart::playsound;

namespace {

// Any number becomes a number of ticks; a plain conversion is undefined outside of the range.
std::uint64_t wholeticks(double ticks) {
    if (!(ticks > 0)) return 0;
    if (ticks >= 18446744073709551616.0) return std::numeric_limits<std::uint64_t>::max();
    return static_cast<std::uint64_t>(ticks);
}

acceptedclick selectionof(const ItemStackRequestAction& action) {
    return {
        action.source.slot, action.source.container, action.destination.slot, action.destination.container, action.type,
        action.flag};
}

bool isfromcursortohotbar(const ItemStackRequestAction& action) {
    return action.source.container == static_cast<std::uint8_t>(ContainerName::cursor) &&
           action.destination.container == static_cast<std::uint8_t>(ContainerName::hotbar);
}

}  // namespace

void BlockcontainerItemRequestListermanager::addnewblockcontainerpacketlistener(
    ServerPlayer* player, unsigned char containerid, const ListenRecorder& record,
    const newblockcontainerlistenersconfig& config) {
    if (auto* known = find(player, containerid)) {
        logger.info("warning:notemptyrecordfix tryoverwrite");
        *known = record;
    } else {
        entries_.push_back({{player->sessionid(), containerid}, std::make_unique<ListenRecorder>(record)});
    }
    if (!config.delayopen) return;
    ordomart::later(player->sessionid(), wholeticks(config.delayticks),
                    [position = record.blockpos, containerid, type = record.containertype](ServerPlayer* who) {
                        who->sendNetworkPacket(topacket(ContainerOpenPacket{containerid, type, position}));
                    });
}

ListenRecorder* BlockcontainerItemRequestListermanager::find(const ServerPlayer* player,
                                                             unsigned char containerid) const {
    const menukey wanted{player->sessionid(), containerid};
    for (const auto& held : entries_)
        if (held.key == wanted) return held.record.get();
    return nullptr;
}

bool BlockcontainerItemRequestListermanager::isusedbyanother(const ServerPlayer* player, BlockPos blockpos) const {
    return std::any_of(entries_.begin(), entries_.end(), [&](const auto& held) {
        return held.record->blockpos == blockpos && held.key.session != player->sessionid();
    });
}

// ---- handlers

bool nothingselected(ServerPlayer* player, const ListenRecorder& record) {
    if (!record.selection.empty()) return false;
    player->sendTextPacket("NULL selected ");
    return true;
}

bool welcomehandler(ServerPlayer* player, ItemStackRequestAction*, ListenRecorder* record) {
    if (record->selection.empty()) {
        player->sendText("NULL selected");
        return false;
    }
    player->sendText("Actioner:welcome to use containermenu!");
    playsound(player, "random.levelup");
    return true;
}

// The lists deal with a choice at the click, so that nothing ever gets behind the first line.
bool playerlisthandler(ServerPlayer* player, ItemStackRequestAction*, ListenRecorder* record) {
    if (nothingselected(player, *record)) return false;
    player->sendText("你不应该来到这个地方");
    return true;
}

bool acceptatclose(ServerPlayer*, ItemStackRequestAction*, ListenRecorder*) { return true; }
bool acceptclick(ServerPlayer*, ItemStackRequestAction*, ListenRecorder*) { return true; }

bool takeorplacefilter(ServerPlayer*, ItemStackRequestAction* action, ListenRecorder*) {
    return action->type < static_cast<std::uint8_t>(ActionType::swap) &&
           action->source.container == static_cast<std::uint8_t>(ContainerName::blockentity) && action->amount >= 1;
}

}  // namespace containermenuguihelper

namespace ChestInvontorymenuguihelper {

using ordomart::logger;

bool ChestInvontoryItemRequestListermanager::trylistenaction(ServerPlayer* player, unsigned char containerid,
                                                             ItemStackRequestAction* action) {
    if (action->is(ActionType::swap) && !isfromcursortohotbar(*action)) return false;
    auto* record = find(player, containerid);
    if (record == nullptr || record->selected) return false;
    // A copy, since the handler may put another menu's handlers in its place.
    const auto asked = record->prehandler;
    if (!asked(player, action, record)) return false;
    record->selected = true;
    if (record->handleonclose) record->selection = selectionof(*action);
    return true;
}

bool ChestInvontoryItemRequestListermanager::runselectedaction(ServerPlayer* player, unsigned char containerid,
                                                               ItemStackRequestAction* action) {
    if (find(player, containerid) == nullptr) {
        logger.info("error at actioner cant't find recorder");
        return false;
    }
    // Looked up once more for use. Nothing comes between the two; a log with the second line tells of a broken table.
    auto* record = find(player, containerid);
    if (record == nullptr) {
        logger.info("error at NULL actioner");
        return false;
    }
    bool result = false;
    if (!record->handleonclose) {
        const auto run = record->mainhandler;
        result = run(player, action, record);
    }
    if (record->closeonselect || record->handleonclose)
        player->sendNetworkPacket(topacket(ContainerClosePacket{containerid, true}));
    recoverrawblockenvir(player, record);
    return result;
}

void ChestInvontoryItemRequestListermanager::notifycontainerclose(ServerPlayer* player, unsigned char containerid) {
    // Whatever the client showed, it shows its real stacks from here on.
    player->refreshInventory();
    auto* record = find(player, containerid);
    if (record == nullptr || !record->handleonclose) return;
    const auto run = record->mainhandler;
    run(player, nullptr, record);
}

bool ChestInvontoryItemRequestListermanager::removecontainerlistener(ServerPlayer* player, unsigned char,
                                                                     unsigned char containerid) {
    const menukey wanted{player->sessionid(), containerid};
    const auto held =
        std::find_if(entries_.begin(), entries_.end(), [&](const entry& each) { return each.key == wanted; });
    if (held == entries_.end()) return false;
    recoverrawblockenvir(player, held->record.get());
    entries_.erase(held);
    return true;
}

void ChestInvontoryItemRequestListermanager::recoverrawblockenvir(ServerPlayer* player, ListenRecorder* record) {
    if (record->restorepending) record->restorepending = !ordomart::showrealblocks(player, *record);
}

ChestInvontoryItemRequestListermanager& listenermanager() {
    static ChestInvontoryItemRequestListermanager manager;
    return manager;
}

}  // namespace ChestInvontorymenuguihelper
