// The operators' words by which a market is handed over: export and import. Server thread.
#pragma once

#include <optional>
#include <string>

#include "platform/command.h"
#include "platform/player.h"

namespace ordomart {

// Without a name the file is called by the time.
void askexport(platform::ServerPlayer* player, const std::optional<std::string>& name, platform::CommandOutput& output);
void askimport(platform::ServerPlayer* player, const std::string& name, platform::CommandOutput& output);

}  // namespace ordomart
