// What an owner does with his goods: upload, adjust, take off the shelf, replenish, publish a discount, edit the shop.
// The faces call these and turn the named outcome into what he reads; what belongs to the change itself is done here:
// money and its log lines, stacks that change hands, the shop marked as changed. Every test comes before the first
// change. Sounds, toasts and what is opened next are the face's. Server thread.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/player.h"
#include "plugin/shopsystem/itemidentity.h"
#include "plugin/shopsystem/sellshop.h"
#include "plugin/shopsystem/stackplace.h"
#include "plugin/trade/ownerstep.h"

namespace ordomart {

// A good as a form remembers it.
struct goodsnapshot {
    std::string shopxuid;
    std::int32_t index = 0;
    std::uint32_t revision = 0;
};

// `wanted`: names, price and whether it may be searched. `shown` is the item that the form was made for. The fee comes
// before the ban and the price, and is kept when one of these, or an emptied slot, refuses the rest.
ownerresult uploadgood(ServerPlayer* player, const std::string& shopxuid, const stackplace& from,
                       const std::string& shown, const shopitem& wanted, int quantity);
// `form`: names, price and whether it may be searched; `left` pieces stay, the others go to the player. None left takes
// the good off the shelf.
ownerresult adjustgood(ServerPlayer* player, const goodsnapshot& at, const shopitem& form, int left);
// Puts pieces of the same item from the chosen slots into the stock, at most `asked[i]` of slots[i].
ownerresult replenishgood(ServerPlayer* player, const goodsnapshot& at, const std::vector<slotcount>& slots,
                          const std::vector<int>& asked);
// An operator's way: the stock is what he says, and no piece moves.
ownerresult setstock(ServerPlayer* player, const goodsnapshot& at, std::int32_t stock);
// The slots of his inventory that hold exactly this item.
[[nodiscard]] std::vector<slotcount> findsameitems(Player& player, const std::string& itemnbt);

// `seconds` from now. Takes the place of every other discount of the tag.
ownerresult publishdiscount(const Player& player, const std::string& shopxuid, const std::string& tag,
                            const std::string& discount, std::int64_t seconds);

struct shoptexts {
    std::string shopname, describe, shopitemicon;
    bool isopshop = false;
};
// Texts are stored as they stand. Only an operator may have a shop without limits: for anybody else the flag is cleared
// and the outcome is `denied`.
ownerresult editshop(const Player& player, const std::string& shopxuid, shoptype kind, const shoptexts& texts);

}  // namespace ordomart
