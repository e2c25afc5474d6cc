// A click while a menu is open becomes a call of the menu's handler and is refused towards the client, so that the
// server's real stacks stay untouched. A close ends the menu before the server deals with it.
#include "plugin/chestmenu/hooks.h"

#include "platform/hook.h"
#include "platform/network.h"
#include "platform/packets/codec.h"
#include "plugin/base/globals.h"
#include "plugin/base/hooking.h"
#include "plugin/chestmenu/listeners.h"

namespace ordomart {

using ChestInvontorymenuguihelper::listenermanager;

namespace {

void* serversrequest = nullptr;
void* serversclose = nullptr;

void refuse(ServerPlayer* player, const std::vector<ItemStackRequest>& requests) {
    ItemStackResponsePacket response;
    for (const auto& request : requests) response.responses.push_back({ItemStackResponse::refused, request.id, {}});
    player->sendNetworkPacket(topacket(response));
}

void offer(ServerPlayer* player, std::uint8_t containerid, const ItemStackRequestAction& action) {
    auto offered = action;
    if (listenermanager().trylistenaction(player, containerid, &offered))
        listenermanager().runselectedaction(player, containerid, &offered);
}

// The three actions by which a client takes something out of the creative list.
bool iscreativepick(const ItemStackRequest& request) {
    return request.actions.size() == 3 && request.actions[0].is(ActionType::creativepick) &&
           request.actions[1].is(ActionType::craftresult) &&
           request.actions[2].type <= static_cast<std::uint8_t>(ActionType::drop);
}

bool takesingle(ServerPlayer* player, std::uint8_t containerid, const ItemStackRequest& request) {
    const auto open = [&] { return listenermanager().find(player, containerid) != nullptr; };
    if (request.actions.size() > 1) {
        if (!iscreativepick(request) || !open()) return false;
        debuglogger.info("detect recycle from creativeitem");
    }
    bool seen = false;
    for (const auto& action : request.actions) {
        if (!open()) continue;
        offer(player, containerid, action);
        seen = true;
    }
    return seen;
}

// With a stack on its cursor a client clicks a slot by two requests. The first, a swap from the cursor, is only a sign.
bool takepair(ServerPlayer* player, std::uint8_t containerid, const std::vector<ItemStackRequest>& requests) {
    if (requests.size() != 2 || requests[0].actions.size() != 1 || requests[1].actions.size() != 1) return false;
    if (listenermanager().find(player, containerid) == nullptr) return false;
    const auto& sign = requests[0].actions[0];
    if (!sign.is(ActionType::swap) || sign.source.container != static_cast<std::uint8_t>(ContainerName::cursor))
        return false;
    offer(player, containerid, requests[1].actions[0]);
    return true;
}

void handlerequest(ServerNetworkHandler* handler, const NetworkIdentifier& id, const ItemStackRequestPacket& packet) {
    auto* const player = handler->_getServerPlayer(id, packet.subclient);
    if (player != nullptr) {
        const auto containerid = player->currentContainerCounter();
        const bool taken = packet.requests.size() == 1 ? takesingle(player, containerid, packet.requests[0])
                                                       : takepair(player, containerid, packet.requests);
        if (taken) return refuse(player, packet.requests);
    }
    reinterpret_cast<HandleItemStackRequest>(serversrequest)(handler, id, packet);
}

void handleclose(ServerNetworkHandler* handler, const NetworkIdentifier& id, const ContainerClosePacket& packet) {
    // Clicks of a second player on one client count, his close does not: unlike above, always the first.
    constexpr std::uint8_t firstsubclient = 0;
    if (auto* const player = handler->_getServerPlayer(id, firstsubclient)) {
        listenermanager().notifycontainerclose(player, packet.containerid);
        listenermanager().removecontainerlistener(player, player->currentContainerCounter(), packet.containerid);
    }
    reinterpret_cast<HandleContainerClose>(serversclose)(handler, id, packet);
}

}  // namespace

void installpackethooks() {
    installhook(symbols::handleContainerClose, &serversclose, reinterpret_cast<void*>(&handleclose));
    installhook(symbols::handleItemStackRequest, &serversrequest, reinterpret_cast<void*>(&handlerequest));
}

}  // namespace ordomart
