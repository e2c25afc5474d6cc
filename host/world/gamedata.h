// The tables of the game's own version (assets/game-1.19.50, built in): what it calls which item and block, and by what
// number. Made at first use and never changed, so that any thread may read them.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/core/embedded.h"

namespace host {

[[nodiscard]] std::span<const EmbeddedFile> gamefiles();
[[nodiscard]] std::string_view gamefile(std::string_view name);  // "entity_identifiers.nbt"

struct GameItem {
    std::string name;  // with "minecraft:"
    std::int32_t id = 0;
    bool componentbased = false;
    // Whether it is a block in the hand. Some things, such as a door, have an item of their own beside the block.
    [[nodiscard]] bool isblock() const { return id < firstpureitem; }

private:
    static constexpr std::int32_t firstpureitem = 256;
};

struct GameBlock {
    std::int32_t first = 0;           // the runtime id of its first state, which it has by default
    std::vector<std::int32_t> byaux;  // runtime ids, where an item's aux value stands for another state
};

struct CreativeItem {
    std::string name;
    std::int16_t aux = 0;
    std::string userdata;  // little-endian NBT, or nothing
};

[[nodiscard]] std::span<const GameItem> gameitems();
[[nodiscard]] const GameItem* gameitem(std::string_view name);    // null when there is none
[[nodiscard]] const GameBlock* gameblock(std::string_view name);  // null when there is none
[[nodiscard]] std::span<const CreativeItem> creativeitems();

}  // namespace host
