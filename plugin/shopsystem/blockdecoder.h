// A shop as the block that lists look at: from its object, or from its file where nobody works on it.
#pragma once

#include <memory>
#include <string>

#include "plugin/shopsystem/goodsblock.h"

namespace shopsystem {

// Not in a turn: brings the shop in and takes a few rows in each turn, so that the server thread never waits for a long
// shop. Records that are broken are left out and told. Throws what bringin throws.
[[nodiscard]] std::shared_ptr<const goodsblock> decodeshop(const std::string& xuid, int kind);

// Not in a turn: reads the file with a parser that builds no tree, and brings nothing in. Null where that is not the
// whole story: the shop is in the cache or in the records, its file is missing, or anything in it is not as the market
// writes it; then decodeshop says what is to be said. `before` is the shop's last block, or null.
[[nodiscard]] std::shared_ptr<const goodsblock> decodefile(const std::string& xuid, int kind, const goodsblock* before);

class sellshop;
class recycleshop;
// What lists need to know of the shop itself.
[[nodiscard]] goodsblock::header headof(sellshop& shop);
[[nodiscard]] goodsblock::header headof(recycleshop& shop);

}  // namespace shopsystem
