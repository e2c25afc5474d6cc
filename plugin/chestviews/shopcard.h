// A shop as one stack: the card beside the goods of a single shop, the entry of a list of shops, the owner's own card.
#pragma once

#include <string>

#include "plugin/chestmenu/pageview.h"
#include "plugin/formparts/shoplines.h"
#include "plugin/shopsystem/rowkinds.h"

namespace ordomart {

// As text. Name, owner and counters are its display name, what the shop says of itself its lore, and the icon is the
// shop's, or a head where that is no item. In a turn; any thread.
template <class Shop>
[[nodiscard]] std::string cardtext(Shop& shop, const std::string& language);

// In the first armour slot: the card of the single shop in view, with the lines of who looks.
template <class Rows>
void drawshopcard(ServerPlayer* player, const goodsview& view);
// The same place: the owner's card of the shop that he works on.
template <class Rows>
void drawownercard(ServerPlayer* player, const goodsview& view);

}  // namespace ordomart
