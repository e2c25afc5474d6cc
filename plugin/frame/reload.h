// The operators' word "reload": settings and texts are read again while the server runs, whole or not at all. Server
// thread.
#pragma once

#include "platform/command.h"
#include "platform/player.h"

namespace ordomart {

// Reads beside the server, puts it in force in one turn and tells him what is new, or all that is wrong.
void askreload(platform::ServerPlayer* player, platform::CommandOutput& output);

}  // namespace ordomart
