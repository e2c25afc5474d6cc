// Packets that open a container screen and paint its stacks, and the one that says which is held.
#pragma once

#include "platform/packets/codec.h"
#include "platform/packets/itemstackrequest.h"  // ContainerClosePacket goes both ways and stands there

namespace platform {

struct ContainerOpenPacket {
    static constexpr PacketId number = PacketId::ContainerOpen;
    std::uint8_t containerid = 0;
    std::int8_t type = -1;  // -1 the player's own inventory screen
    BlockPos position;
    std::int64_t entity = -1;
    template <class IO>
    void fields(IO& io) {
        containernumber(io, containerid);
        io.i8(type);
        blockposition(io, position);
        io.zigzag64(entity);
    }
};

struct InventoryContentPacket {
    static constexpr PacketId number = PacketId::InventoryContent;
    std::uint32_t containerid = 0;
    std::vector<NetworkItem> items;
    template <class IO>
    void fields(IO& io) {
        containernumber(io, containerid);
        io.list(items, 1, itemelement);
    }
};

struct InventorySlotPacket {
    static constexpr PacketId number = PacketId::InventorySlot;
    std::uint32_t containerid = 0, slot = 0;
    NetworkItem item;
    template <class IO>
    void fields(IO& io) {
        containernumber(io, containerid);
        io.varint(slot);
        itemelement(io, item);
    }
};

// What somebody holds in his hand from now on.
struct MobEquipmentPacket {
    static constexpr PacketId number = PacketId::MobEquipment;
    std::uint64_t runtimeentityid = 0;
    NetworkItem item;
    std::uint8_t slot = 0, selected = 0, containerid = 0;
    template <class IO>
    void fields(IO& io) {
        io.varint64(runtimeentityid);
        itemelement(io, item);
        io.u8(slot);
        io.u8(selected);
        containernumber(io, containerid);
    }
};

struct CreativeContentPacket {
    static constexpr PacketId number = PacketId::CreativeContent;
    struct Entry {
        std::uint32_t id = 0;
        NetworkItem item;
    };
    std::vector<Entry> entries;
    template <class IO>
    void fields(IO& io) {
        io.list(entries, 2, [](auto& inner, Entry& entry) {
            inner.varint(entry.id);
            creativeitemelement(inner, entry.item);
        });
    }
};

}  // namespace platform
