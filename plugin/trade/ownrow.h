// One row of an owner's own shop, read on the spot for a dialog: what stands in the way of it is told, once for all
// dialogs. Server thread.
#pragma once

#include <cstdint>
#include <optional>

#include "plugin/base/language.h"
#include "plugin/shopsystem/itemidentity.h"
#include "plugin/shopsystem/rowkinds.h"
#include "plugin/trade/ownerface.h"

namespace ordomart {

// The row's item goes into `item`. Nothing, with the player told, for a place behind the end, a record that cannot be
// read, and an item that this server does not know.
template <class Rows>
std::optional<typename Rows::row> ownrow(ServerPlayer* player, const std::string& shopxuid, std::int64_t index,
                                         ownerside side, ItemStack& item) {
    const auto& shop = Rows::shop(shopxuid);
    const auto fail = [player, side](const char* form, const std::string& chest) {
        if (side == ownerside::form) logger.error("{}", form);
        player->sendText(side == ownerside::form ? form : chest);
        return std::nullopt;
    };
    if (!holdsplace(shop.*Rows::records, index)) return fail("wrong castindex", tr(player, "myshop.error.itemchanged"));
    auto row = Rows::at(shop, static_cast<int>(index));
    if (row.*Rows::left == -1)
        return fail("should not be invalid when getgitem", tr(player, "myshop.error.itemchanged"));
    item = itemfromsnbt(row.itemnbt);
    if (checkrawitemvalid(item)) return row;
    player->sendText(
        "catch checkrawitemvalid error: maybe your edited item is from a mod that not installed in your server");
    return std::nullopt;
}

}  // namespace ordomart
