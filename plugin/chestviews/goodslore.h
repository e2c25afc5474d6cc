// The lines that the market writes under a good or a commission, behind those that the item has. Long ones for a client
// that points with a mouse.
#pragma once

#include "plugin/chestmenu/decoration.h"
#include "plugin/shopsystem/shopitems.h"

namespace ordomart {

void addgoodlore(ServerPlayer* player, falsestack& good, const globalsellshopitem& row);
void addgoodlore(ServerPlayer* player, falsestack& good, const globalrecycleshopitem& row);

// What the owner reads under his own.
void addownlore(ServerPlayer* player, falsestack& good, const globalsellshopitem& row);
void addownlore(ServerPlayer* player, falsestack& good, const globalrecycleshopitem& row);

}  // namespace ordomart
