// Where a real stack of a player lies: the stack that he chose for a form, and that may have changed by the time he
// answers. Server thread.
#pragma once

#include <string>

#include "platform/player.h"
#include "plugin/base/globals.h"

namespace shopsystem {

struct stackplace {
    bool worn = false;  // an armour slot, 0 to 3; else a slot of the inventory, 0 to 35
    int slot = -1;      // none

    // The null stack for a place that is none.
    [[nodiscard]] ItemStack stackof(Player& player) const;
    // At most what lies there.
    void take(Player& player, int count) const;
};

// Whether the place still holds the item that was chosen; its count may have changed.
[[nodiscard]] bool stillholds(Player& player, const stackplace& place, const std::string& itemnbt);

}  // namespace shopsystem
