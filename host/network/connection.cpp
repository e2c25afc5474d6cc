#include "host/network/connection.h"

#include "platform/packets/codec.h"
#include "platform/packets/forms.h"
#include "platform/packets/itemstackrequest.h"

namespace host {

using platform::PacketId;

void Connection::send(const platform::Packet& packet) {
    // An opening outdates what was closed in front of it.
    if (packet.id() == PacketId::ContainerClose) {
        const auto close = platform::readpacket<platform::ContainerClosePacket>(packet.body());
        if (close.serverside) closing_ = close.containerid;
    }
    if (packet.id() == PacketId::ContainerOpen) closing_ = -1;
    if (sink_) sink_(platform::sealpacket(packet));
}

bool Connection::takeclosing(std::uint8_t containerid) {
    if (closing_ != containerid) return false;
    closing_ = -1;
    return true;
}

void Connection::sendform(const std::string& json, platform::ServerPlayer::FormAnswer answer) {
    const std::uint32_t form = forms.add(json, std::move(answer));
    send(platform::topacket(platform::ModalFormRequestPacket{form, json}));
}

}  // namespace host
