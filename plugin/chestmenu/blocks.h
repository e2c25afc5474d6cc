// What a client is told of blocks: those that a block-backed menu pretends, and the real ones afterwards.
#pragma once

#include <cstdint>

#include "platform/player.h"
#include "plugin/chestmenu/listeners.h"

namespace ordomart {

using namespace platform;
using containermenuguihelper::ListenRecorder;

enum class blocklayer : std::uint32_t { block = 0, extrablock = 1 };

// The second half of a double container.
[[nodiscard]] BlockPos secondposition(BlockPos first);
// The block that stands for a container type; looked up once for the life of the process.
[[nodiscard]] std::uint32_t containerblock(std::int8_t containertype);

void sendblock(ServerPlayer* player, BlockPos position, std::uint32_t runtimeid, blocklayer layer);
void sendblockdata(ServerPlayer* player, BlockPos position, const CompoundTag& data);

// False, with an error line, while there is no world; then it is to be tried again.
bool showrealblocks(ServerPlayer* player, const ListenRecorder& record);

}  // namespace ordomart
