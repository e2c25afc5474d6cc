// Chest menus that have no view yet: they refuse, and whoever opens them tells so in his own words.
#include "plugin/chestviews/openers.h"

namespace ordomart {

opresult openOrdosellshopfilterbyplayersmenu(ServerPlayer*) { return opresult::refused; }
opresult openOrdorecycleshopfilterbyplayersmenu(ServerPlayer*) { return opresult::refused; }
opresult opensinglesellshopshopsmenu(ServerPlayer*, const std::string&) { return opresult::refused; }
opresult opensinglerecycleshopshopsmenu(ServerPlayer*, const std::string&) { return opresult::refused; }
opresult openOrdomyshoppreviewmenu(ServerPlayer*) { return opresult::refused; }
opresult openOrdomyshopreloaditempreviewmenu(ServerPlayer*) { return opresult::refused; }
opresult openOrdomyshoponshopitempreviewmenu(ServerPlayer*) { return opresult::refused; }
opresult openOrdomyrecycleshoppreviewmenu(ServerPlayer*) { return opresult::refused; }
opresult openOrdomyrecycleshoponreshoppreviewmenu(ServerPlayer*) { return opresult::refused; }
opresult openOrdomyrecycleshoppickupitemmenu(ServerPlayer*) { return opresult::refused; }

}  // namespace ordomart
