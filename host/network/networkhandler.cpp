#include "host/network/networkhandler.h"

#include "host/core/hooks.h"
#include "host/network/inventoryrequests.h"
#include "host/world/playerimpl.h"
#include "platform/packets/codec.h"

namespace host {

using platform::ContainerClosePacket;
using platform::ItemStackRequestPacket;
using platform::NetworkIdentifier;
using platform::ServerNetworkHandler;

namespace {

Connection* sender(ServerNetworkHandler* handler, const NetworkIdentifier& id, std::uint8_t subclient) {
    return static_cast<NetworkHandlerImpl*>(handler)->connection(id.connection, subclient);
}

void handleitemstackrequest(ServerNetworkHandler* handler, const NetworkIdentifier& id,
                            const ItemStackRequestPacket& packet) {
    Connection* const from = sender(handler, id, packet.subclient);
    if (from == nullptr || packet.requests.empty()) return;
    platform::ItemStackResponsePacket answer;
    for (const platform::ItemStackRequest& request : packet.requests)
        answer.responses.push_back(answerrequest(*from->player, request));
    from->send(platform::topacket(answer));
}

// The client that closes by itself waits for the echo; one that was asked to close, which then stands in the packet,
// does not. The server has no screens of its own, so that the id does not matter here. How often a client may ask for
// this is decided before (packetroutes.cpp).
void handlecontainerclose(ServerNetworkHandler* handler, const NetworkIdentifier& id,
                          const ContainerClosePacket& packet) {
    Connection* const from = sender(handler, id, 0);
    if (from == nullptr) return;
    from->player->putcursorback();
    if (!packet.serverside) from->send(platform::topacket(ContainerClosePacket{packet.containerid, false}));
}

using RequestHandler = Trampoline<&handleitemstackrequest>;
using CloseHandler = Trampoline<&handlecontainerclose>;

}  // namespace

Connection* NetworkHandlerImpl::connection(ConnectionId connection, std::uint8_t subclient) const {
    const auto found = connections_.find(connection);
    return found == connections_.end() || subclient != 0 ? nullptr : found->second.get();
}

platform::ServerPlayer* NetworkHandlerImpl::_getServerPlayer(const NetworkIdentifier& id, std::uint8_t subclient) {
    const Connection* const from = connection(id.connection, subclient);
    return from == nullptr ? nullptr : from->player;
}

void NetworkHandlerImpl::handle(ConnectionId connection, const ItemStackRequestPacket& packet) {
    RequestHandler::call(this, {connection}, packet);
}

void NetworkHandlerImpl::handle(ConnectionId connection, const ContainerClosePacket& packet) {
    CloseHandler::call(this, {connection}, packet);
}

void registerhandlers(Hooks& hooks) {
    hooks.registerfunction<&handleitemstackrequest>(platform::symbols::handleItemStackRequest);
    hooks.registerfunction<&handlecontainerclose>(platform::symbols::handleContainerClose);
}

}  // namespace host
