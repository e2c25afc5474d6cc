// What happens in a player's shops while he is away, gathered in the records beside the trades and told once when he
// comes back: sales, what came in for his commissions, the money, what is sold out, which commissions are full. Server
// thread.
#pragma once

#include <string>

#include "platform/player.h"
#include "plugin/ledger/entry.h"

namespace ledger {

// A trade in the shop of somebody who is not here; nothing for others. `title`: as he calls the good.
void noteaway(const entry& trade, const std::string& title);
// He is back. Nothing is said when nothing happened.
void tellaway(platform::ServerPlayer& player);

}  // namespace ledger
