// How money that has moved is told: a line in the common file of transfers, a toast to the player. Server thread.
#pragma once

#include <cstdint>
#include <string>

#include "platform/player.h"
#include "plugin/base/globals.h"

namespace ordomart {

// "{0} pay {1}{2} to {3},note:{4}" in the common file, once what it tells of is on
// the disk.
void writepayline(const std::string& from, std::int64_t amount, const std::string& to, const std::string& note);
// "+ {}" or "- {}" filled with a colour, the sum, " §r" and the money name, under a shop's name.
void moneytoast(ServerPlayer* player, const std::string& shopname, char sign, std::int64_t amount);

}  // namespace ordomart
