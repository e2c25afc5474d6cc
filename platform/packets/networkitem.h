// An item on the wire: numbers instead of names. ItemStack knows the way to it and back.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/item.h"
#include "platform/nbt/tags.h"

namespace platform {

struct NetworkItem {
    std::int32_t networkid = 0;  // 0 is the empty stack, and then nothing else is on the wire
    std::uint16_t count = 0;
    std::uint32_t aux = 0;
    std::optional<std::int32_t> stackid;  // not on the wire in a creative item
    std::int32_t blockruntimeid = 0;
    std::optional<CompoundTag> userdata;
    std::vector<std::string> canplaceon, candestroy;
    std::int64_t blockingtick = 0;  // on the wire for the shield alone
    bool operator==(const NetworkItem&) const = default;
};

// The shield's network id, which a reader must know before it has an item table. A host's table gives the shield this
// number.
inline constexpr std::int32_t shieldnetworkid = 355;

// The item's description, with or without the place of a stack id, for either direction (codec.h).
template <class IO>
void itemfields(IO& io, NetworkItem& item, bool withstackid);

[[nodiscard]] NetworkItem tonetwork(const ItemStack& stack);
// The null stack for an id that the item table does not hold.
[[nodiscard]] ItemStack fromnetwork(const NetworkItem& item);

}  // namespace platform
