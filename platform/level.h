// The world: who is online, and what blocks stand where. Server thread only.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/player.h"

namespace platform {

class BlockSource {
public:
    virtual ~BlockSource() = default;
    // Runtime id of the block on layer 0 and of the extra block on layer 1; -1 where there is none.
    [[nodiscard]] virtual std::int64_t getBlockRuntimeId(BlockPos pos) const = 0;
    [[nodiscard]] virtual std::int64_t getExtraBlockRuntimeId(BlockPos pos) const = 0;
};

class Level {
public:
    virtual ~Level() = default;
    // Online players only; null when nobody fits.
    [[nodiscard]] virtual ServerPlayer* getPlayerByXuid(const std::string& xuid) = 0;
    [[nodiscard]] virtual ServerPlayer* getPlayer(std::uint64_t sessionid) = 0;
    [[nodiscard]] virtual std::vector<ServerPlayer*> getAllPlayers() = 0;
    // The blocks of a dimension's main chunks; null for a dimension that does not exist.
    [[nodiscard]] virtual BlockSource* getBlockSource(int dimension) = 0;
    // Runtime id of the default state of a block, by full name.
    [[nodiscard]] virtual std::uint32_t defaultBlockRuntimeId(const std::string& name) const = 0;
};

// The players that the server has ever seen. Any thread.
class KnownPlayers {
public:
    virtual ~KnownPlayers() = default;
    // Empty when unknown. Names are compared as at a join: where the server takes "bob" for Bob, his xuid is found.
    [[nodiscard]] virtual std::string getXuid(const std::string& name) const = 0;
    [[nodiscard]] virtual std::string fromXuid(const std::string& xuid) const = 0;  // name, empty when unknown
};

namespace PlayerInfo {
[[nodiscard]] std::string getXuid(const std::string& name);
[[nodiscard]] std::string fromXuid(const std::string& xuid);
}  // namespace PlayerInfo

}  // namespace platform
