// Lists whose rows are not goods but shops: one for each that a player may look at, with the stack that stands for it.
#pragma once

#include <functional>
#include <string>

#include "plugin/shopsystem/rowkinds.h"

namespace shopsystem {

// Fills the player's read list of the kind, where it is made anew, with the shops of others that have something to
// offer, in listing order, and has the stacks of his page ready. `cardof` gives a shop's stack as text, in a turn. Not
// on the server thread and not in a turn: one is taken for each shop of the page.
template <class Rows, class Shop>
void prepareshops(const std::string& playerxuid, bool anew, const std::function<std::string(Shop&)>& cardof);

}  // namespace shopsystem
