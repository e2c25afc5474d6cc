// What gets through to the server's own handling of clicks and closes, behind the market.
#pragma once

#include "platform/hook.h"
#include "platform/host.h"
#include "platform/network.h"
#include "plugin/chestmenu/listeners.h"
#include "tests/market/chest_stage.h"

namespace chest {

inline int passedon = 0, closed = 0;
inline bool recordatclose = false;  // of this program's own menus
inline void *serversown = nullptr, *serversclose = nullptr;

inline void count(platform::ServerNetworkHandler* handler, const platform::NetworkIdentifier& id,
                  const platform::ItemStackRequestPacket& packet) {
    ++passedon;
    reinterpret_cast<platform::HandleItemStackRequest>(serversown)(handler, id, packet);
}
inline void countclose(platform::ServerNetworkHandler* handler, const platform::NetworkIdentifier& id,
                       const platform::ContainerClosePacket& packet) {
    ++closed;
    recordatclose = ChestInvontorymenuguihelper::listenermanager().find(handler->_getServerPlayer(id, 0),
                                                                        packet.containerid) != nullptr;
    reinterpret_cast<platform::HandleContainerClose>(serversclose)(handler, id, packet);
}
// An `adjust` of the stage.
inline void watchserver(platform::Host& host) {
    passedon = closed = 0;
    const auto replace = [&](const char* name, void** original, void* replacement) {
        host.hooks->replace(host.hooks->find(name), original, replacement);
    };
    replace(platform::symbols::handleItemStackRequest, &serversown, reinterpret_cast<void*>(&count));
    replace(platform::symbols::handleContainerClose, &serversclose, reinterpret_cast<void*>(&countclose));
}

}  // namespace chest
