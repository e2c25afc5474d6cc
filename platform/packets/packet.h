// A packet on its way: number and finished body. The header varint is added and taken off by the transport.
#pragma once

#include <string>

#include "platform/binarystream.h"

namespace platform {

enum class PacketId : int {
    Text = 9,
    UpdateBlock = 21,
    MobEquipment = 31,
    ContainerOpen = 46,
    ContainerClose = 47,
    InventoryContent = 49,
    InventorySlot = 50,
    BlockActorData = 56,
    SetPlayerGameType = 62,
    CommandRequest = 77,
    CommandOutput = 79,
    PlaySound = 86,
    ModalFormRequest = 100,
    ModalFormResponse = 101,
    AvailableEntityIdentifiers = 119,
    BiomeDefinitionList = 122,
    CreativeContent = 145,
    ItemStackRequest = 147,
    ItemStackResponse = 148,
    ToastRequest = 186,
};

class Packet {
public:
    Packet(PacketId id, std::string body = {}) : id_(id), body_(std::move(body)) {}
    // Takes everything the stream holds as the packet's body.
    void read(const BinaryStream& stream) { body_ = stream.bytes(); }
    [[nodiscard]] PacketId id() const { return id_; }
    [[nodiscard]] const std::string& body() const { return body_; }

private:
    PacketId id_;
    std::string body_;
};

namespace MinecraftPackets {
[[nodiscard]] inline Packet createPacket(PacketId id) { return Packet(id); }
}  // namespace MinecraftPackets

}  // namespace platform
