// A shop object as the block that lists look at.
#pragma once

#include <memory>
#include <string>

#include "plugin/shopsystem/goodsblock.h"

namespace shopsystem {

// Not in a turn: brings the shop in and takes a few rows in each turn, so that the server thread never waits for a long
// shop. Records that are broken are left out and told. Throws what bringin throws.
[[nodiscard]] std::shared_ptr<const goodsblock> decodeshop(const std::string& xuid, int kind);

}  // namespace shopsystem
