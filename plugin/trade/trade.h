// The purchase and the recycle sale, written once. Each has four faces: how a failure is told, in which language, what
// is reopened, how success is shown. A view hands over a row of its list and names its face.
#pragma once

#include <string>

#include "platform/form.h"
#include "platform/player.h"
#include "plugin/shopsystem/itemidentity.h"
#include "plugin/shopsystem/shopitems.h"

namespace ordomart {

using namespace platform;
using namespace shopsystem;

enum class tradeface { formlist, systemform, globalchest, singlechest };

// A row's shop is still at the revision that the row was read at. Server thread.
[[nodiscard]] bool isfresh(const globalsellshopitem& row);
[[nodiscard]] bool isfresh(const globalrecycleshopitem& row);

// Rebuilds the item, tells the player when it is no item any more, else sends the try-buy form, whose answer runs the
// confirm steps. The caller has compared the revision.
void offertrade(ServerPlayer* player, const globalsellshopitem& row, tradeface face);
// The same for a commission; the player's matching slots are searched here.
void offertrade(ServerPlayer* player, const globalrecycleshopitem& row, tradeface face);

[[nodiscard]] Form::CustomForm buildtrybuyform(const std::string& language, const globalsellshopitem& item,
                                               const std::string& hovertext, std::pair<int, int> damagepair,
                                               const std::string& playerxuid);
[[nodiscard]] Form::CustomForm buildtryrecycleform(const std::string& language, const globalrecycleshopitem& item,
                                                   const std::string& hovertext, const std::vector<slotcount>& slots,
                                                   std::pair<int, int> damagepair, const std::string& playerxuid);

}  // namespace ordomart
