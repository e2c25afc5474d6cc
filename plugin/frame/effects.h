// What a player hears and sees beside the forms: sounds at his place, toasts, and numbers he typed.
#pragma once

#include <cstdint>
#include <string>

#include "platform/player.h"
#include "plugin/frame/globals.h"

namespace ordomart {

void playsound(ServerPlayer* player, const char* name, float pitch = 1.0F);
void systemtoast(ServerPlayer* player, const std::string& text);  // titled "SYSTEM"
// "+ {}" or "- {}" filled with a colour, the sum, " §r" and the money name, under a shop's name.
void moneytoast(ServerPlayer* player, const std::string& shopname, char sign, std::int64_t amount);

// As by atoi: leading blanks and a sign, digits until the first other character, 0 without digits; a number beyond the
// type's range is its limit.
[[nodiscard]] std::int32_t typednumber(const std::string& text);
[[nodiscard]] std::int64_t typednumber64(const std::string& text);

}  // namespace ordomart
