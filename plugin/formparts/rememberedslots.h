// A form remembers slots of the player's inventory, not the stacks in them, and until it is answered other things may
// have come to lie there. At the answer the slots are matched again, so that only what the form offered is taken.
#pragma once

#include <functional>
#include <vector>

#include "platform/player.h"
#include "plugin/base/globals.h"
#include "plugin/shopsystem/itemidentity.h"

namespace ordomart {

struct slotsnow {
    std::vector<slotcount> held;  // of each slot that still matches, as many of the pieces asked for as lie there
    bool changed = false;         // a stack was asked for that does not match any more
};

// `asked[i]` pieces of slot `remembered[i]`. `matches` is asked in the order of the slots, for each that is not empty.
[[nodiscard]] slotsnow matchagain(const PlayerInventory& inventory, const std::vector<slotcount>& remembered,
                                  const std::vector<int>& asked, const std::function<bool(const ItemStack&)>& matches);

}  // namespace ordomart
