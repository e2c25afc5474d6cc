// Packets that show a block, and the data behind it.
#pragma once

#include "platform/packets/codec.h"

namespace platform {

struct UpdateBlockPacket {
    static constexpr PacketId number = PacketId::UpdateBlock;
    BlockPos position;
    std::uint32_t blockruntimeid = 0, flags = 3, layer = 0;
    template <class IO>
    void fields(IO& io) {
        blockposition(io, position);
        io.varint(blockruntimeid);
        io.varint(flags);
        io.varint(layer);
    }
};

struct BlockActorDataPacket {
    static constexpr PacketId number = PacketId::BlockActorData;
    BlockPos position;
    CompoundTag data;
    template <class IO>
    void fields(IO& io) {
        blockposition(io, position);
        io.networktag(data);
    }
};

}  // namespace platform
