// The owner's dialogs about commissions, each written once for both faces: publish, adjust, pick up. Server thread.
#pragma once

#include <cstdint>
#include <string>

#include "platform/player.h"
#include "plugin/shopsystem/stackplace.h"
#include "plugin/trade/ownerface.h"

namespace ordomart {

void offeradjustcommission(ServerPlayer* player, const std::string& shopxuid, std::int64_t index, ownerside side);
void offerpickup(ServerPlayer* player, const std::string& shopxuid, std::int64_t index, ownerside side);
// What is wanted is like the stack at the place.
void offercommission(ServerPlayer* player, const std::string& shopxuid, const stackplace& like, ownerside side);
// What is wanted is an item that he need not have. In the chest alone.
void offercommission(ServerPlayer* player, const std::string& shopxuid, const ItemStack& like);

}  // namespace ordomart
