// Block packets to one client; the world is read and never written.
#include "plugin/chestmenu/blocks.h"

#include <limits>

#include "platform/host.h"
#include "platform/level.h"
#include "platform/packets/blocks.h"
#include "plugin/base/globals.h"
#include "plugin/chestmenu/templates.h"

namespace ordomart {

namespace {

constexpr std::int8_t anviltype = 5;
constexpr std::uint32_t unsetblock = std::numeric_limits<std::uint32_t>::max();

struct blockname {
    const char* name;
    std::uint32_t runtimeid = unsetblock;
};
blockname chestblock{"minecraft:chest"}, anvilblock{"minecraft:anvil"};

void showrealblock(ServerPlayer* player, const BlockSource& source, BlockPos position) {
    const auto show = [&](std::int64_t runtimeid, blocklayer layer) {
        if (runtimeid >= 0) sendblock(player, position, static_cast<std::uint32_t>(runtimeid), layer);
    };
    show(source.getBlockRuntimeId(position), blocklayer::block);
    show(source.getExtraBlockRuntimeId(position), blocklayer::extrablock);
}

}  // namespace

BlockPos secondposition(BlockPos first) { return {first.x + 1, first.y, first.z}; }

std::uint32_t containerblock(std::int8_t containertype) {
    auto& block = containertype == anviltype ? anvilblock : chestblock;
    const auto* const level = host().level;
    if (block.runtimeid == unsetblock && level != nullptr) block.runtimeid = level->defaultBlockRuntimeId(block.name);
    return block.runtimeid;
}

void sendblock(ServerPlayer* player, BlockPos position, std::uint32_t runtimeid, blocklayer layer) {
    constexpr std::uint32_t updateflags = 3;
    player->sendNetworkPacket(
        topacket(UpdateBlockPacket{position, runtimeid, updateflags, static_cast<std::uint32_t>(layer)}));
}

void sendblockdata(ServerPlayer* player, BlockPos position, const CompoundTag& data) {
    player->sendNetworkPacket(topacket(BlockActorDataPacket{position, data}));
}

bool showrealblocks(ServerPlayer* player, const ListenRecorder& record) {
    const auto second = secondposition(record.blockpos);
    // A plain chest comes first, so that the client lets go of the pair.
    if (record.doublecontainer) {
        sendblock(player, second, containerblock(record.containertype), blocklayer::block);
        sendblockdata(player, second, readtoleranttag(templates::plainchest));
    }
    auto* const level = host().level;
    if (level == nullptr) {
        logger.error("error: Global<level> is NULL at recoverrawblockenvir");
        return false;
    }
    const auto* const source = level->getBlockSource(record.dimensionid);
    if (source == nullptr) return false;
    showrealblock(player, *source, record.blockpos);
    if (record.doublecontainer) showrealblock(player, *source, second);
    return true;
}

}  // namespace ordomart
