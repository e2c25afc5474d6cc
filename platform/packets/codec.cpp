// The packet header.
#include "platform/packets/codec.h"

#include <limits>
#include <stdexcept>

namespace platform {

namespace {
constexpr int numberbits = 10, subclientbits = 2;
constexpr std::uint32_t numbermask = (1u << numberbits) - 1, subclientmask = (1u << subclientbits) - 1;
}  // namespace

void PacketWriter::shorttext(const std::string& v) {
    if (v.size() > std::numeric_limits<std::uint16_t>::max()) {
        throw std::length_error("a text of " + std::to_string(v.size()) + " bytes is too long for an item");
    }
    out_.writeUnsignedShort(static_cast<std::uint16_t>(v.size()));
    out_.writeRaw(v);
}

std::string sealpacket(const Packet& packet, std::uint8_t sender, std::uint8_t target) {
    BinaryStream out;
    const std::uint32_t subclients = (sender & subclientmask) | (target & subclientmask) << subclientbits;
    out.writeUnsignedVarInt((static_cast<std::uint32_t>(packet.id()) & numbermask) | subclients << numberbits);
    out.writeRaw(packet.body());
    return out.bytes();
}

Envelope openpacket(std::string_view bytes) {
    constexpr std::size_t longest = 5;
    BinaryStream in{std::string(bytes.substr(0, longest))};
    const auto available = in.unread();
    const auto header = in.getUnsignedVarInt();
    if (header >> (numberbits + 2 * subclientbits) != 0) throw ReadError("a packet header has bits that mean nothing");
    const auto subclient = [&](int place) {
        return static_cast<std::uint8_t>(header >> (numberbits + place * subclientbits) & subclientmask);
    };
    return {static_cast<int>(header & numbermask), subclient(0), subclient(1), bytes.substr(available - in.unread())};
}

}  // namespace platform
