// The openers of the chest menus. Each passes the guard first; see guards.h for the result.
#pragma once

#include "platform/player.h"
#include "plugin/base/guards.h"

namespace ordomart {

opresult openOrdomenu(ServerPlayer* player);
opresult openOrdosellshopsmenu(ServerPlayer* player);
opresult openOrdorecycleshopsmenu(ServerPlayer* player);

}  // namespace ordomart
