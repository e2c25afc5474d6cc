// What a player is told of an item's prices: what it was sold for in 1, 7 and 30 days, each of its variants with a
// small picture of the daily middle, the cheapest offers and the best commissions there are now.
#pragma once

#include <optional>
#include <string>

#include "platform/player.h"
#include "plugin/ledger/entry.h"

namespace ledger {

// The item that somebody means: by its full or short name, or as it is called in a language. Any thread.
[[nodiscard]] std::optional<std::string> itemnamed(const std::string& text, const std::string& language);

// As a player calls it: "Red Wool", "Diamond Sword (enchanted)". Server thread.
[[nodiscard]] std::string nameof(const variant& what, const std::string& language);

// Gathers it beside the server and tells the player. `exact`: this variant alone. Server thread.
void tellprices(const platform::ServerPlayer& player, const std::string& item, const std::optional<variant>& exact);

}  // namespace ledger
