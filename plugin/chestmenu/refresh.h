// Fetching the rows of a goods view beside the server thread and showing them on it. What runs beside it holds a copy
// of what it needs to know of the player and never touches the table of menus or a packet.
#pragma once

#include "plugin/chestmenu/pageview.h"

namespace ordomart {

// Does not wait. `reload`: the list is made anew; else it is arranged and drawn as it is. Of several that wait, the
// last one's picture is drawn. Server thread.
void refresh(const goodsview& view, ServerPlayer* player, bool reload);
// The view has been closed: its picture is not wanted any more. Server thread.
void droprefresh(const goodsview& view, const ServerPlayer* player);

}  // namespace ordomart
