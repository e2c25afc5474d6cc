// A shop as the block that lists look at: from its object, or from its file where nobody works on it.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "plugin/shopsystem/goodsblock.h"

namespace shopsystem {

// Not in a turn: brings the shop in and takes a few rows in each turn, so that the server thread never waits for a long
// shop. Records that are broken are left out and told. Throws what bringin throws.
[[nodiscard]] shopgoods decodeshop(const std::string& xuid, int kind);

// Not in a turn: reads the file with a parser that builds no tree, and brings nothing in. Nothing where that is not the
// whole story: the shop is in the cache or in the records, its file is missing, or anything in it is not as the market
// writes it; then decodeshop says what is to be said. `issame` is asked whether the shop was the same before.
[[nodiscard]] std::optional<shopgoods> decodefile(const std::string& xuid, int kind,
                                                  const std::function<bool(const shopgoods&)>& issame);

class sellshop;
class recycleshop;
// What lists need to know of the shop itself.
[[nodiscard]] goodsblock::header headof(sellshop& shop);
[[nodiscard]] goodsblock::header headof(recycleshop& shop);

}  // namespace shopsystem
