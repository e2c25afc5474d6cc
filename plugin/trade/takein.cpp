// A sale into a commission. The owner has paid when he published, so the seller's money comes from nobody now and
// bears no tax. The shop of an operator pays without end, keeps its numbers and stores nothing. What is taken is put
// down first, without taking it; when the seller has been paid, it is taken.
#include <algorithm>

#include "plugin/base/guards.h"
#include "plugin/economy/economymanager.h"
#include "plugin/economy/marketopen.h"
#include "plugin/formparts/rememberedslots.h"
#include "plugin/ledger/ledger.h"
#include "plugin/shopsystem/tradelog.h"
#include "plugin/trade/commissions.h"
#include "plugin/trade/commissionsteps.h"

namespace shopsystem {

namespace {

// What leaves one slot, put down in the record. At most what is still wanted, where that is counted.
int putdown(ItemStack stack, int offered, bool stored, recycleshopitem& working) {
    if (!stored) return offered;
    const int taken = std::min(offered, working.recycleitemleftwanna);
    working.recycleitemleftwanna -= taken;
    countup(working.nowhasrecyclenum, taken);
    stack.set(taken);
    working.recycleditemnbtlist.push_back(itemtosnbtasis(stack));
    return taken;
}

ordomart::slotsnow wantedslots(const PlayerInventory& inventory, const recycleshopitem& working,
                               const std::vector<slotcount>& slots, const std::vector<int>& asked) {
    auto templatetag = CompoundTag::fromSNBT(working.itemnbt);
    return ordomart::matchagain(inventory, slots, asked, [&](const ItemStack& stack) {
        std::int32_t count = 0;
        return templatetag && matchrecycleitem(working, *templatetag, stack, count);
    });
}

// The item fields are those of the template. A test that the commission does not make has nothing to tell.
json recyclingrecord(const Player& player, const recycleshopitem& working, std::int64_t pieces, std::int64_t money) {
    const CompoundTag templatetag = CompoundTag::fromSNBT(working.itemnbt).value_or(CompoundTag());
    json record = traderecord(templatetag, working.itemnbt, pieces, money);
    record["replayername"] = player.getRealName();
    if (!working.filterauxordamage && !working.filteritemnbt) record["itemdamage"] = record["itemunbreakvalue"] = -1;
    if (!working.filterench && !working.filteritemnbt) record["isenchanted"] = false;
    return record;
}

}  // namespace

ownerresult takeinitems(ServerPlayer* player, recycleshop& shop, int index, recycleshopitem working,
                        const std::vector<slotcount>& slots, const std::vector<int>& asked) {
    if (!ordomart::marketopen()) return refused(refusal::marketclosed);
    PlayerInventory& inventory = player->getSupplies();
    const auto now = wantedslots(inventory, working, slots, asked);
    if (now.held.empty() && now.changed) return refused(refusal::slotschanged);

    ownerresult result;
    result.slotschanged = now.changed;
    const auto before = ledger::stateof(working);
    std::vector<slotcount> leaving;
    std::vector<std::pair<std::string, std::int64_t>> piles;
    for (const auto& [slot, offered] : now.held) {
        if (working.recycleitemleftwanna < 1) break;
        leaving.push_back({slot, putdown(inventory.getItem(slot), offered, !shop.isopshop, working)});
        result.pieces += leaving.back().count;
        if (ledger::isopen()) piles.emplace_back(itemtosnbt(inventory.getItem(slot)), leaving.back().count);
    }
    result.received = result.pieces * working.offer;
    const json record = recyclingrecord(*player, working, result.pieces, result.received);

    if (result.received != 0 && !ordomart::MCGLOBALECONOMYMANAGER::addMoney(player->getXuid(), result.received))
        return refused(refusal::paymentrefused);
    // What an operator has promised is spent first.
    if (!shop.isopshop) working.sponsored = std::max<std::int64_t>(working.sponsored - result.received, 0);
    for (const auto& [slot, count] : leaving) inventory.removeItem(slot, count);
    writeback(shop, index, working);
    countup(shop.recycleamount, result.pieces);
    countup(shop.recyclecost, result.received);
    finish(player, shop);
    if (result.pieces != 0)
        ledger::write(shop, {.what = ledger::kind::sale,
                             .actor = player->getXuid(),
                             .itemnbt = working.itemnbt,
                             .pieces = result.pieces,
                             .price = working.offer,
                             .paid = result.received,
                             .before = before,
                             .after = ledger::stateof(working),
                             .piles = std::move(piles),
                             .title = working.recycleitemname});
    ordomart::envelope([&] { shop.writetradelog(record); });
    return result;
}

}  // namespace shopsystem
