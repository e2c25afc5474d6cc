// A sale into a commission. The owner has paid when he published, so the seller's money comes from nobody now and
// bears no tax. The shop of an operator pays without end, keeps its numbers and stores nothing.
#include <algorithm>

#include "plugin/shopsystem/tradelog.h"
#include "plugin/trade/commissions.h"
#include "plugin/trade/commissionsteps.h"

namespace shopsystem {

namespace {

// What leaves one slot. Only its count is read again: whatever lies there by now is taken as it is.
int takeslot(PlayerInventory& inventory, int slot, int asked, bool stored, recycleshopitem& working) {
    ItemStack stack = inventory.getItem(slot);
    int taken = std::clamp(asked, 0, stack.getCount());
    if (stored) taken = std::min(taken, working.recycleitemleftwanna);
    if (stored && taken != 0) {
        working.recycleitemleftwanna -= taken;
        countup(working.nowhasrecyclenum, taken);
        stack.set(taken);
        working.recycleditemnbtlist.push_back(itemtosnbtasis(stack));
    }
    inventory.removeItem(slot, taken);
    return taken;
}

// The item fields are those of the template. A test that the commission does not make has nothing to tell.
json recyclingrecord(const Player& player, const recycleshopitem& working, const CompoundTag& templatetag,
                     std::int64_t pieces, std::int64_t money) {
    json record = traderecord(templatetag, working.itemnbt, pieces, money);
    record["replayername"] = player.getRealName();
    if (!working.filterauxordamage && !working.filteritemnbt) record["itemdamage"] = record["itemunbreakvalue"] = -1;
    if (!working.filterench && !working.filteritemnbt) record["isenchanted"] = false;
    return record;
}

}  // namespace

commissionresult takeinitems(ServerPlayer* player, recycleshop& shop, int index, recycleshopitem working,
                             const std::vector<slotcount>& slots, const std::vector<int>& asked) {
    commissionresult result;
    PlayerInventory& inventory = player->getSupplies();
    for (std::size_t i = 0; i < std::min(slots.size(), asked.size()) && working.recycleitemleftwanna >= 1; ++i)
        result.pieces += takeslot(inventory, slots[i].slot, asked[i], !shop.isopshop, working);

    result.refunded = result.pieces * working.offer;
    givemoney(player->getXuid(), result.refunded);

    const CompoundTag templatetag = CompoundTag::fromSNBT(working.itemnbt).value_or(CompoundTag());
    shop.writetradelog(recyclingrecord(*player, working, templatetag, result.pieces, result.refunded));

    writeback(shop, index, working);
    countup(shop.recycleamount, result.pieces);
    countup(shop.recyclecost, result.refunded);
    finish(player, shop);
    return result;
}

}  // namespace shopsystem
