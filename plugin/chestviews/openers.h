// The openers of the thirteen chest menus. Each passes the guard first; see guards.h for the result.
#pragma once

#include <string>

#include "platform/player.h"
#include "plugin/base/guards.h"

namespace ordomart {

opresult openOrdomenu(ServerPlayer* player);
opresult openOrdosellshopsmenu(ServerPlayer* player);
opresult openOrdorecycleshopsmenu(ServerPlayer* player);
opresult openOrdosellshopfilterbyplayersmenu(ServerPlayer* player);
opresult openOrdorecycleshopfilterbyplayersmenu(ServerPlayer* player);
opresult opensinglesellshopshopsmenu(ServerPlayer* player, const std::string& shopxuid);
opresult opensinglerecycleshopshopsmenu(ServerPlayer* player, const std::string& shopxuid);
opresult openOrdomyshoppreviewmenu(ServerPlayer* player);
opresult openOrdomyshopreloaditempreviewmenu(ServerPlayer* player);
opresult openOrdomyshoponshopitempreviewmenu(ServerPlayer* player);
opresult openOrdomyrecycleshoppreviewmenu(ServerPlayer* player);
opresult openOrdomyrecycleshoponreshoppreviewmenu(ServerPlayer* player);
opresult openOrdomyrecycleshoppickupitemmenu(ServerPlayer* player);

}  // namespace ordomart
