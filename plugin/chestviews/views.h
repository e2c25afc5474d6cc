// The rows of the menu table, one for each view, and the refresh operations by which a view is shown.
#pragma once

#include "plugin/chestmenu/menutable.h"

namespace ordomart {

extern const menurow mainmenu, globalsellmenu, globalrecyclemenu;

// `reload`: the list is made anew. They do not wait for the picture.
void Ordosellglobalshoppreviewprehandlermain(ServerPlayer* player, bool reload);
void Ordorecycleglobalshoppreviewprehandlermain(ServerPlayer* player, bool reload);

}  // namespace ordomart
