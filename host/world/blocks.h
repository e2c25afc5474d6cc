// The blocks of one dimension: a flat world, and what has been put on it since the start. What is put there is kept for
// the run only.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <tuple>

#include "platform/level.h"

namespace host {

// The runtime id of a block's default state, by its full name. Throws std::runtime_error when there is no such block.
[[nodiscard]] std::uint32_t blockruntimeid(const std::string& name);

class Blocks : public platform::BlockSource {
public:
    [[nodiscard]] std::int64_t getBlockRuntimeId(platform::BlockPos pos) const override;
    [[nodiscard]] std::int64_t getExtraBlockRuntimeId(platform::BlockPos pos) const override;
    void set(platform::BlockPos pos, int layer, const std::string& name);

private:
    std::map<std::tuple<int, int, int, int>, std::uint32_t> placed_;  // by x, y, z, layer
};

}  // namespace host
