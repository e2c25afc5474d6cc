#include "host/network/connection.h"

#include "platform/packets/containers.h"
#include "platform/packets/forms.h"

namespace host {

using platform::PacketId;

void Connection::send(const platform::Packet& packet) {
    if (packet.id() == PacketId::ContainerClose || packet.id() == PacketId::ContainerOpen) note(packet);
    if (sink_) sink_(platform::sealpacket(packet));
}

void Connection::note(const platform::Packet& packet) try {
    if (packet.id() == PacketId::ContainerClose) {
        const auto close = platform::readpacket<platform::ContainerClosePacket>(packet.body());
        if (close.serverside) closing_ = close.containerid;
    } else {
        // An opening outdates what was closed in front of it.
        open_ = platform::readpacket<platform::ContainerOpenPacket>(packet.body()).containerid;
        closing_ = -1;
    }
} catch (const platform::ReadError&) {
    // Made by a plug-in's hand, and no client's business to answer.
}

Connection::Close Connection::closes(std::uint8_t containerid, std::uint64_t tick) {
    const bool open = open_ == containerid, asked = closing_ == containerid;
    if (open) open_ = -1;
    if (asked) closing_ = -1;
    if (asked) return Close::asked;
    if (open) return Close::own;
    return std::exchange(straytick_, tick) == tick ? Close::toooften : Close::stray;
}

void Connection::sendform(const std::string& json, platform::ServerPlayer::FormAnswer answer) {
    const std::uint32_t form = forms.add(json, std::move(answer));
    send(platform::topacket(platform::ModalFormRequestPacket{form, json}));
}

}  // namespace host
