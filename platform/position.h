// Places in the world: exact ones, and those of blocks.
#pragma once

#include <cmath>
#include <cstdint>

namespace platform {

struct BlockPos {
    std::int32_t x = 0, y = 0, z = 0;
    bool operator==(const BlockPos&) const = default;
};

struct Vec3 {
    float x = 0, y = 0, z = 0;
    [[nodiscard]] BlockPos toBlockPos() const {
        return {static_cast<std::int32_t>(std::floor(x)), static_cast<std::int32_t>(std::floor(y)),
                static_cast<std::int32_t>(std::floor(z))};
    }
};

}  // namespace platform
