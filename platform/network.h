// The server's packet handlers that a plug-in may replace (hook.h).
#pragma once

#include <cstdint>
#include <string>

#include "platform/packets/itemstackrequest.h"

namespace platform {

class ServerPlayer;

struct NetworkIdentifier {
    std::uint64_t connection = 0;
};

class ServerNetworkHandler {
public:
    virtual ~ServerNetworkHandler() = default;
    // The player behind a connection and sub-client number, or null.
    [[nodiscard]] virtual ServerPlayer* _getServerPlayer(const NetworkIdentifier& id, std::uint8_t subclient) = 0;
};

using ChooseLanguageFunction = void (*)(const std::string& code);
using HandleItemStackRequest = void (*)(ServerNetworkHandler*, const NetworkIdentifier&, const ItemStackRequestPacket&);
using HandleContainerClose = void (*)(ServerNetworkHandler*, const NetworkIdentifier&, const ContainerClosePacket&);

}  // namespace platform
