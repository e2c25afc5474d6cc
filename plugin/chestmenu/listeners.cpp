// The table of open menus, and the steps of a click and of a close through it.
#include "plugin/chestmenu/listeners.h"

#include <algorithm>
#include <limits>

#include "platform/host.h"
#include "platform/level.h"
#include "platform/packets/containers.h"
#include "plugin/base/effects.h"
#include "plugin/base/globals.h"
#include "plugin/chestmenu/blocks.h"
#include "plugin/chestmenu/decoration.h"
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

// A copy of the handler, since it may put another menu's in its place.
bool call(handler run, ServerPlayer* player, ItemStackRequestAction* action, ListenRecorder* record) {
    bool result = false;
    ordomart::envelope([&] { result = run(player, action, record); });
    return result;
}

}  // namespace

bool menupicture::takes(const ItemStackRequestAction& click) const {
    if (menu == ordomart::screen::none) return false;
    const auto pressed = click.is(ActionType::swap) ? click.destination.container : click.source.container;
    return complete || pressed == static_cast<std::uint8_t>(ContainerName::offhand) ||
           pressed == static_cast<std::uint8_t>(ContainerName::cursor);
}

std::uint64_t newpicturenumber() {
    static std::uint64_t last = 0;
    return ++last;
}

void BlockcontainerItemRequestListermanager::addnewblockcontainerpacketlistener(
    ServerPlayer* player, unsigned char containerid, const ListenRecorder& record,
    const newblockcontainerlistenersconfig& config) {
    auto* kept = find(player, containerid);
    if (kept != nullptr) {
        logger.info("warning:notemptyrecordfix tryoverwrite");
        *kept = record;
    } else {
        entries_.push_back({{player->sessionid(), containerid}, std::make_unique<ListenRecorder>(record)});
        kept = entries_.back().record.get();
    }
    kept->picture.number = newpicturenumber();
    if (!config.delayopen) return;
    ordomart::later(player->sessionid(), wholeticks(config.delayticks),
                    [this, containerid, opening = kept->picture.number](ServerPlayer* who) {
                        const auto* waiting = find(who, containerid);
                        if (waiting == nullptr || waiting->picture.number != opening) return;
                        if (who->isReadyForContainer())
                            who->sendNetworkPacket(
                                topacket(ContainerOpenPacket{containerid, waiting->containertype, waiting->blockpos}));
                        else
                            removecontainerlistener(who, containerid, containerid);
                    });
}

ListenRecorder* BlockcontainerItemRequestListermanager::find(const ServerPlayer* player,
                                                             unsigned char containerid) const {
    const menukey wanted{player->sessionid(), containerid};
    for (const auto& held : entries_)
        if (held.key == wanted) return held.record.get();
    return nullptr;
}

ListenRecorder* BlockcontainerItemRequestListermanager::infront(const ServerPlayer* player) const {
    auto* const record = find(player, player->currentContainerCounter());
    return record != nullptr && !record->selected ? record : nullptr;
}

bool BlockcontainerItemRequestListermanager::isusedbyanother(const ServerPlayer* player, BlockPos blockpos) const {
    auto* const level = host().level;
    return std::any_of(entries_.begin(), entries_.end(), [&](const auto& held) {
        if (held.record->blockpos != blockpos || held.key.session == player->sessionid() || level == nullptr)
            return false;
        const auto* const holder = level->getPlayer(held.key.session);
        return holder != nullptr && holder->isReadyForContainer();
    });
}

void BlockcontainerItemRequestListermanager::forgetsession(std::uint64_t session) {
    std::erase_if(entries_, [&](const entry& each) { return each.key.session == session; });
    std::erase(answered_, session);
}

void BlockcontainerItemRequestListermanager::answerclose(ServerPlayer* player) {
    const auto session = player->sessionid();
    if (std::find(answered_.begin(), answered_.end(), session) != answered_.end()) return;
    answered_.push_back(session);
    ordomart::later(session, 1, [this, session](ServerPlayer*) { std::erase(answered_, session); });
    player->refreshInventory();
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
    if (!player->isAlive()) {
        // He looks at nothing any more; the menu ends with his client's answer.
        ordomart::sendcontainerclose(player, containerid);
        return false;
    }
    if (!record->picture.takes(*action) || !call(record->prehandler, player, action, record)) return false;
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
    const bool result = !record->handleonclose && call(record->mainhandler, player, action, record);
    if (record->closeonselect || record->handleonclose) ordomart::sendcontainerclose(player, containerid);
    recoverrawblockenvir(player, record);
    return result;
}

void ChestInvontoryItemRequestListermanager::notifycontainerclose(ServerPlayer* player, unsigned char containerid) {
    auto* const record = find(player, containerid);
    const auto* const front = infront(player);
    // A picture that stands in front of him is not painted over, whatever else he closes.
    if (front == nullptr || front == record || front->picture.menu == ordomart::screen::none) {
        if (record != nullptr)
            player->refreshInventory();
        else
            answerclose(player);
    }
    if (record != nullptr && record->handleonclose) call(record->mainhandler, player, nullptr, record);
}

bool ChestInvontoryItemRequestListermanager::removecontainerlistener(ServerPlayer* player, unsigned char,
                                                                     unsigned char containerid) {
    const menukey wanted{player->sessionid(), containerid};
    const auto held =
        std::find_if(entries_.begin(), entries_.end(), [&](const entry& each) { return each.key == wanted; });
    if (held == entries_.end()) return false;
    const auto ended = std::move(held->record);
    entries_.erase(held);
    recoverrawblockenvir(player, ended.get());
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
