// The owner's dialogs about his shop as a whole, each written once for both kinds of shop and both faces: its texts,
// and its history. Server thread.
#pragma once

#include <string>

#include "platform/player.h"
#include "plugin/shopsystem/baseshop.h"
#include "plugin/trade/ownerface.h"

namespace ordomart {

void offeredit(ServerPlayer* player, const std::string& shopxuid, shoptype kind, ownerside side);
// Collects the money that waits for him first, where money lives on the scoreboard.
void showeventlog(ServerPlayer* player, const std::string& shopxuid, shoptype kind, ownerside side);

}  // namespace ordomart
