// What a player hears and sees beside the menus: sounds at his place, and toasts of the system. Server thread.
#pragma once

#include <string>

#include "platform/player.h"
#include "plugin/base/globals.h"

namespace ordomart {

void playsound(ServerPlayer* player, const char* name, float pitch = 1.0F);
void systemtoast(ServerPlayer* player, const std::string& text);  // titled "SYSTEM"

}  // namespace ordomart
