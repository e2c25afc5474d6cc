// Money that waits for somebody who is away, in scoreboard mode: a fake player on a second objective. Server thread.
#pragma once

#include <string>

#include "platform/player.h"
#include "plugin/base/globals.h"

namespace ordomart {

[[nodiscard]] std::string offlineaccount(const std::string& xuid);  // "a" and the xuid
// Makes the account, with a score of 0. Throws std::runtime_error when the objective is missing.
bool ensureofflineaccount(const std::string& name);
// Moves what waits to the player. `verbose`: an empty account is told as well.
void getoffmoney(ServerPlayer* player, bool verbose);

}  // namespace ordomart
