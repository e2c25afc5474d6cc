// The owner's dialogs about goods, each written once for both faces: adjust, upload, replenish, discount. Server
// thread.
#pragma once

#include <cstdint>
#include <string>

#include "platform/player.h"
#include "plugin/shopsystem/sellshop.h"
#include "plugin/shopsystem/stackplace.h"
#include "plugin/trade/ownerface.h"

namespace ordomart {

// The good at a place of the shop, as it is now.
void offeradjust(ServerPlayer* player, const std::string& shopxuid, std::int64_t index, ownerside side);
void offerreplenish(ServerPlayer* player, const std::string& shopxuid, std::int64_t index, ownerside side);
// The stack that he chose.
void offerupload(ServerPlayer* player, const std::string& shopxuid, const stackplace& from, ownerside side);
// A dialog of the chest alone.
void offerdiscount(ServerPlayer* player, const std::string& shopxuid);

}  // namespace ordomart
