// The inventory takes pieces out by itself; an armour slot is set anew with what is left.
#include "plugin/shopsystem/stackplace.h"

#include <algorithm>

#include "plugin/shopsystem/itemidentity.h"

namespace shopsystem {

namespace {
constexpr int wornslots = 4;
}

ItemStack stackplace::stackof(Player& player) const {
    if (worn) return slot >= 0 && slot < wornslots ? player.getArmor(static_cast<ArmorSlot>(slot)) : ItemStack();
    const auto& supplies = player.getSupplies();
    return slot >= 0 && slot < supplies.getContainerSize() ? supplies.getItem(slot) : ItemStack();
}

void stackplace::take(Player& player, int count) const {
    auto stack = stackof(player);
    count = std::clamp(count, 0, stack.getCount());
    if (count == 0) return;
    if (!worn) {
        player.getSupplies().removeItem(slot, count);
        return;
    }
    stack.set(stack.getCount() - count);
    player.setArmor(static_cast<ArmorSlot>(slot), stack);
}

bool stillholds(Player& player, const stackplace& place, const std::string& itemnbt) {
    const auto stack = place.stackof(player);
    return !stack.isNull() && itemtosnbt(stack) == itemnbt;
}

}  // namespace shopsystem
