// Steps that the operations on commissions have in common. Server thread.
#pragma once

#include "platform/player.h"
#include "plugin/shopsystem/recycleshop.h"
#include "plugin/trade/commissions.h"

namespace shopsystem {

// The record takes the place of the one at the index, which holds.
void writeback(recycleshop& shop, int index, const recycleshopitem& item);
// Ends every operation: the shop counts as changed, the player sees his real inventory.
void finish(ServerPlayer* player, recycleshop& shop);

}  // namespace shopsystem
