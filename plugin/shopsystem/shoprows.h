// Lists whose rows are not goods but shops: one for each that a player may look at, with the stack that stands for it.
#pragma once

#include <functional>
#include <string>

#include "plugin/shopsystem/rowkinds.h"

namespace shopsystem {

// Fills the player's read list of the kind with the shops of others that have something to offer, in listing order.
// `cardof` gives a shop's stack as text, in a turn. Not on the server thread and not in a turn: one is taken for each
// shop.
template <class Rows, class Shop>
void prepareshops(const std::string& playerxuid, const std::function<std::string(Shop&)>& cardof);

}  // namespace shopsystem
