// Items as texts: how an item becomes SNBT and an item again, and how a commission decides whether a stack is wanted.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "platform/item.h"
#include "platform/player.h"
#include "plugin/shopsystem/shopitems.h"

namespace shopsystem {

using namespace platform;

// Stands for a missing tag.Damage, in comparisons and in trade records.
inline constexpr std::int32_t nodamage = -114514;

[[nodiscard]] std::string itemtosnbt(const ItemStack& stack);      // as a stack of one piece
[[nodiscard]] std::string itemtosnbtasis(const ItemStack& stack);  // with its real count
[[nodiscard]] ItemStack itemfromsnbt(const std::string& text);     // an invalid stack for a text that does not parse
[[nodiscard]] bool checkrawitemvalid(const ItemStack& stack);

// A stack out of a commission's store.
struct storedstack {
    ItemStack item;           // a single piece; invalid when this server cannot make it
    std::int64_t pieces = 0;  // as many as the text says, in whatever width; 0 for a text that does not parse
};
[[nodiscard]] storedstack readstored(const std::string& text);

using enchlist = std::vector<std::pair<std::int16_t, std::int16_t>>;  // id, level
[[nodiscard]] enchlist getenchlist(const CompoundTag& itemtag);
[[nodiscard]] std::int32_t gettagdamage(const CompoundTag& itemtag);  // nodamage when missing
void settagdamage(CompoundTag& itemtag, std::int32_t value);

struct slotcount {
    std::int32_t slot = 0, count = 0;
};

// One slot against the template. The template takes on the durability of the first stack that has one, and keeps it for
// the rest of the scan.
[[nodiscard]] bool matchrecycleitem(const recycleshopitem& wanted, CompoundTag& templatetag, const ItemStack& stack,
                                    std::int32_t& count);
// The scan over slots 0 to 35.
[[nodiscard]] std::vector<slotcount> findrecycleitems(Player& player, const recycleshopitem& wanted);

// ---- handing over
void givetoplayer(ServerPlayer* player, const ItemStack& stack);  // into the inventory, or at his feet
// Whether so many can be handed over in one step: what finds no room lies on the ground, where a world does not keep
// any number of stacks, and each stack takes its time.
[[nodiscard]] bool canhandover(const ItemStack& stack, std::int64_t pieces);
// In stacks of the item's maximal size. Nothing for 0 or less.
void givepieces(ServerPlayer* player, ItemStack stack, std::int64_t pieces);

}  // namespace shopsystem
