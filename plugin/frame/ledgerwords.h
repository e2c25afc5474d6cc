// The words of the command that ask the ledger: prices, and the operators' trades, undo and audit. Server thread.
#pragma once

#include <optional>
#include <string>

#include "platform/command.h"
#include "platform/player.h"

namespace ordomart {

// False, and the player has been told, on a server without records.
bool hasledger(const platform::ServerPlayer* player, platform::CommandOutput& output);
[[nodiscard]] bool isauditing();

// What an item was sold for; without a name, the one in his hand.
void askprices(platform::ServerPlayer* player, const std::optional<std::string>& item, platform::CommandOutput& output);
// The newest trades of one player, by name or xuid, or of all.
void asktrades(platform::ServerPlayer* player, const std::string& party, platform::CommandOutput& output);
// Takes a trade back, or says everything that is missing.
void askundo(platform::ServerPlayer* player, std::int64_t number, platform::CommandOutput& output);
// Runs beside the server and tells him at its end. `accepts`: the shops in which something differs are right as they
// are, and the ledger goes on from there.
void askaudit(platform::ServerPlayer* player, bool accepts, platform::CommandOutput& output);

}  // namespace ordomart
