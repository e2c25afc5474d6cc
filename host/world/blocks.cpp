#include "host/world/blocks.h"

#include <fmt/format.h>

#include <stdexcept>

#include "host/world/gamedata.h"

namespace host {

namespace {

constexpr int bottom = -64, top = 319;

struct Stratum {
    int from;  // and up to the next one
    const char* block;
};
// Players stand on the grass, with their feet at 64.
constexpr Stratum strata[] = {
    {bottom, "minecraft:bedrock"}, {-63, "minecraft:dirt"}, {63, "minecraft:grass"}, {64, "minecraft:air"}};

const char* naturalblock(int y) {
    const char* block = strata[0].block;
    for (const Stratum& stratum : strata)
        if (y >= stratum.from) block = stratum.block;
    return block;
}

}  // namespace

std::uint32_t blockruntimeid(const std::string& name) {
    const GameBlock* block = gameblock(name);
    if (block == nullptr) throw std::runtime_error(fmt::format("there is no block \"{}\"", name));
    return static_cast<std::uint32_t>(block->first);
}

std::int64_t Blocks::getBlockRuntimeId(platform::BlockPos pos) const {
    if (pos.y < bottom || pos.y > top) return -1;
    if (const auto put = placed_.find({pos.x, pos.y, pos.z, 0}); put != placed_.end()) return put->second;
    return blockruntimeid(naturalblock(pos.y));
}

std::int64_t Blocks::getExtraBlockRuntimeId(platform::BlockPos pos) const {
    const auto put = placed_.find({pos.x, pos.y, pos.z, 1});
    return put == placed_.end() ? -1 : static_cast<std::int64_t>(put->second);
}

void Blocks::set(platform::BlockPos pos, int layer, const std::string& name) {
    if (layer < 0 || layer > 1 || pos.y < bottom || pos.y > top)
        throw std::runtime_error(fmt::format("no block can stand at {} {} {}, layer {}", pos.x, pos.y, pos.z, layer));
    placed_[{pos.x, pos.y, pos.z, layer}] = blockruntimeid(name);
}

}  // namespace host
