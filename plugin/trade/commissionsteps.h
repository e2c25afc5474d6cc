// Steps that the operations on commissions have in common. Server thread.
#pragma once

#include <cstdint>
#include <string>

#include "platform/player.h"
#include "plugin/shopsystem/recycleshop.h"

namespace shopsystem {

// A failure is logged and does not stop the operation.
void givemoney(const std::string& xuid, std::int64_t amount);
void takemoney(const std::string& xuid, std::int64_t amount);

// The record takes the place of the one at the index, which holds.
void writeback(recycleshop& shop, int index, const recycleshopitem& item);
// Ends every operation: the player sees his real inventory, the shop counts as changed.
void finish(ServerPlayer* player, recycleshop& shop);

}  // namespace shopsystem
