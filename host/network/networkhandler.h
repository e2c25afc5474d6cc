// The object that the server's replaceable packet handlers are called on, and those handlers as the server itself has
// them. Calls go through the hook table's trampolines, so that a plug-in that replaced one is reached first.
#pragma once

#include <map>
#include <memory>

#include "host/network/connection.h"
#include "platform/network.h"

namespace host {

class Hooks;

using Connections = std::map<ConnectionId, std::unique_ptr<Connection>>;

class NetworkHandlerImpl : public platform::ServerNetworkHandler {
public:
    explicit NetworkHandlerImpl(const Connections& connections) : connections_(connections) {}
    [[nodiscard]] platform::ServerPlayer* _getServerPlayer(const platform::NetworkIdentifier& id,
                                                           std::uint8_t subclient) override;
    // Null for a connection that is none, and for the further players of a split screen, which there are not.
    [[nodiscard]] Connection* connection(ConnectionId connection, std::uint8_t subclient) const;

    void handle(ConnectionId connection, const platform::ItemStackRequestPacket& packet);
    void handle(ConnectionId connection, const platform::ContainerClosePacket& packet);

private:
    const Connections& connections_;
};

// Makes the server's own handlers what their names stand for.
void registerhandlers(Hooks& hooks);

}  // namespace host
