#include "plugin/formparts/rememberedslots.h"

#include <algorithm>

namespace ordomart {

slotsnow matchagain(const PlayerInventory& inventory, const std::vector<slotcount>& remembered,
                    const std::vector<int>& asked, const std::function<bool(const ItemStack&)>& matches) {
    slotsnow now;
    for (std::size_t i = 0; i < std::min(remembered.size(), asked.size()); ++i) {
        const ItemStack& stack = inventory.getItem(remembered[i].slot);
        if (stack.isNull()) continue;
        const bool same = matches(stack);
        if (asked[i] <= 0) continue;
        if (same)
            now.held.push_back({remembered[i].slot, std::min(asked[i], stack.getCount())});
        else
            now.changed = true;
    }
    return now;
}

}  // namespace ordomart
