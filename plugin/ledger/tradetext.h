// What an operator is told of the newest trades: the number that takes each back, when it was, who traded what with
// whom and for how much.
#pragma once

#include <string>

#include "platform/player.h"

namespace ledger {

// Gathers them beside the server and tells the player. `party`: the xuid of either side, or "systemshop"; empty: all.
// Server thread.
void telltrades(const platform::ServerPlayer& player, const std::string& party);

}  // namespace ledger
