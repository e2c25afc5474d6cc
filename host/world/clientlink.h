// What a player needs of his connection.
#pragma once

#include <string>

#include "platform/player.h"

namespace host {

class ClientLink {
public:
    virtual ~ClientLink() = default;
    [[nodiscard]] virtual bool isopen() const = 0;
    virtual void send(const platform::Packet& packet) = 0;  // nothing happens when it is closed
    virtual void sendform(const std::string& json, platform::ServerPlayer::FormAnswer answer) = 0;
};

}  // namespace host
