// Records are addressed by place and guarded by the shop's revision; what lies in a slot is read again at the answer.
#include "plugin/trade/goods.h"

#include <algorithm>
#include <limits>

#include "platform/clock.h"
#include "plugin/economy/economymanager.h"
#include "plugin/economy/paynotes.h"
#include "plugin/formparts/formtools.h"
#include "plugin/formparts/rememberedslots.h"
#include "plugin/ledger/ledger.h"
#include "plugin/shopsystem/playershopstate.h"
#include "plugin/shopsystem/runtimeshopmanager.h"

namespace ordomart {

namespace {

constexpr std::uint32_t uploadpricelimit = 10000000, adjustpricelimit = 100000000;
constexpr std::int64_t longestdiscount = 99999999;
constexpr auto moststock = std::numeric_limits<std::int32_t>::max();

// As an unsigned number, so that a negative one is too large.
bool isbelow(std::int32_t price, std::uint32_t limit) { return static_cast<std::uint32_t>(price) < limit; }

refusal staleness(const sellshop& shop, const goodsnapshot& at) {
    if (!isatrevision(shop, at.revision)) return refusal::shopchanged;
    return shop.holds(at.index) ? refusal::none : refusal::recordgone;
}

json recordof(const shopitem& item) {
    json record;
    tojson(item, record);
    return record;
}

void finish(ServerPlayer* player, sellshop& shop) {
    shop.markshopchanged();
    envelope([&] { player->refreshInventory(); });
}

// What of the stock has moved, and nothing where nothing has.
void enter(ledger::kind what, const Player& player, const sellshop& shop, const std::string& itemnbt,
           const std::optional<ledger::rowstate>& before, const std::optional<ledger::rowstate>& after,
           std::int64_t pieces, std::int64_t fee = 0) {
    if (before == after && fee == 0) return;
    ledger::write(shop, {.what = what,
                         .actor = player.getXuid(),
                         .byoperator = isoperator(player),
                         .itemnbt = itemnbt,
                         .pieces = pieces,
                         .fee = fee,
                         .before = before,
                         .after = after});
}

// Both kinds of shop bear their own flag.
template <class Shop>
ownerresult edit(Shop& shop, const Player& player, const shoptexts& texts) {
    shop.shopname = texts.shopname;
    shop.describe = texts.describe;
    shop.shopitemicon = texts.shopitemicon;
    shop.isopshop = texts.isopshop && isoperator(player);
    shop.markshopchanged();
    return refused(texts.isopshop && !shop.isopshop ? refusal::denied : refusal::none);
}

}  // namespace

ownerresult uploadgood(ServerPlayer* player, const std::string& shopxuid, const stackplace& from,
                       const std::string& shown, const shopitem& wanted, int quantity) {
    if (const auto why = mayact(*player, shopxuid); why != refusal::none) return refused(why);
    auto& shop = globalruntimeshopmanager.getsellshop(shopxuid);
    const bool isempty = from.stackof(*player).isNull();
    if (!isempty && !stillholds(*player, from, shown)) return refused(refusal::slotschanged);

    ownerresult result;
    if (paysfee(*player, shop.items)) {
        const auto fee = recordfee(*player, shop.items);
        result = mustown(player->getXuid(), fee, refusal::feeshort);
        if (!result.ok()) return result;
        if (fee != 0 && !MCGLOBALECONOMYMANAGER::reduceMoneyhas(player->getXuid(), fee))
            return refused(refusal::paymentrefused);
        writepayline(player->getXuid(), fee, "SYSTEM", "pay for extraslot");
        result.charged = fee;
        result.ischarged = true;
    }
    result.why = shop.isbanned()                            ? refusal::banned
                 : !isbelow(wanted.price, uploadpricelimit) ? refusal::badnumbers
                 : isempty                                  ? refusal::slotsempty
                                                            : refusal::none;
    if (!result.ok()) {
        enter(ledger::kind::keptfee, *player, shop, shown, {}, {}, 0, result.charged);
        return result;
    }

    shopitem item = wanted;
    item.itemnbt = shown;
    item.shopitemleftnum = std::clamp(quantity, 0, from.stackof(*player).getCount());
    if (!shop.items.is_array()) shop.items = json::array();
    shop.items.push_back(recordof(item));
    from.take(*player, item.shopitemleftnum);
    result.pieces = item.shopitemleftnum;
    finish(player, shop);
    enter(ledger::kind::upload, *player, shop, item.itemnbt, {}, ledger::stateof(item), result.pieces, result.charged);
    return result;
}

ownerresult adjustgood(ServerPlayer* player, const goodsnapshot& at, const shopitem& form, int left) {
    if (const auto why = mayact(*player, at.shopxuid); why != refusal::none) return refused(why);
    if (!isbelow(form.price, adjustpricelimit)) return refused(refusal::badnumbers);
    auto& shop = globalruntimeshopmanager.getsellshop(at.shopxuid);
    if (const auto why = staleness(shop, at); why != refusal::none) return refused(why);

    const shopitem before = shop.getshopitem(at.index);
    shopitem after = form;
    after.itemnbt = before.itemnbt;
    after.shopitemleftnum = std::clamp(left, 0, std::max(before.shopitemleftnum, 0));
    ownerresult result;
    result.pieces = std::max(before.shopitemleftnum, 0) - after.shopitemleftnum;
    result.name = before.shopitemname;
    const ItemStack item = itemfromsnbt(before.itemnbt);
    // Pieces of an item that this server does not know cannot be handed over, and must not be lost.
    if (result.pieces > 0 && !checkrawitemvalid(item)) return refused(refusal::itembroken);
    if (!canhandover(item, result.pieces)) return refused(refusal::toomany);

    const auto place = static_cast<std::size_t>(at.index);
    result.ended = after.shopitemleftnum == 0;
    if (result.ended)
        shop.items.erase(place);
    else
        shop.items[place] = recordof(after);
    givepieces(player, item, result.pieces);
    finish(player, shop);
    enter(ledger::kind::taken, *player, shop, before.itemnbt, ledger::stateof(before),
          result.ended ? std::nullopt : std::optional(ledger::stateof(after)), result.pieces);
    return result;
}

std::vector<slotcount> findsameitems(Player& player, const std::string& itemnbt) {
    std::vector<slotcount> found;
    const auto& supplies = player.getSupplies();
    for (int slot = 0; slot < supplies.getContainerSize(); ++slot)
        if (const ItemStack& stack = supplies.getItem(slot); !stack.isNull() && itemtosnbt(stack) == itemnbt)
            found.push_back({slot, stack.getCount()});
    return found;
}

ownerresult replenishgood(ServerPlayer* player, const goodsnapshot& at, const std::vector<slotcount>& slots,
                          const std::vector<int>& asked) {
    if (const auto why = mayact(*player, at.shopxuid); why != refusal::none) return refused(why);
    auto& shop = globalruntimeshopmanager.getsellshop(at.shopxuid);
    if (const auto why = staleness(shop, at); why != refusal::none) return refused(why);
    shopitem item = shop.getshopitem(at.index);
    const auto before = ledger::stateof(item);
    // A file may hold less than nothing, and what he puts in must not vanish in it.
    item.shopitemleftnum = std::max(item.shopitemleftnum, 0);
    ownerresult result;
    const auto now = matchagain(player->getSupplies(), slots, asked,
                                [&](const ItemStack& stack) { return itemtosnbt(stack) == item.itemnbt; });
    if (now.held.empty() && now.changed) return refused(refusal::slotschanged);
    result.slotschanged = now.changed;
    for (const auto& [slot, count] : now.held) {
        const int taken = std::min(count, moststock - item.shopitemleftnum);
        player->getSupplies().removeItem(slot, taken);
        item.shopitemleftnum += taken;
        result.pieces += taken;
    }
    shop.items[static_cast<std::size_t>(at.index)] = recordof(item);
    finish(player, shop);
    enter(ledger::kind::replenish, *player, shop, item.itemnbt, before, ledger::stateof(item), result.pieces);
    return result;
}

ownerresult setstock(ServerPlayer* player, const goodsnapshot& at, std::int32_t stock) {
    if (!isoperator(*player)) return refused(refusal::denied);
    if (const auto why = mayact(*player, at.shopxuid); why != refusal::none) return refused(why);
    auto& shop = globalruntimeshopmanager.getsellshop(at.shopxuid);
    if (const auto why = staleness(shop, at); why != refusal::none) return refused(why);
    const auto item = shop.getshopitem(at.index);
    shop.items[static_cast<std::size_t>(at.index)]["shopitemleftnum"] = std::max(stock, 0);
    finish(player, shop);
    auto after = ledger::stateof(item);
    after.left = std::max(stock, 0);
    enter(ledger::kind::setstock, *player, shop, item.itemnbt, ledger::stateof(item), after,
          after.left - item.shopitemleftnum);
    return {};
}

ownerresult publishdiscount(const Player& player, const std::string& shopxuid, const std::string& tag,
                            const std::string& discount, std::int64_t seconds) {
    if (const auto why = mayact(player, shopxuid); why != refusal::none) return refused(why);
    if (seconds < 1 || seconds > longestdiscount || discount.empty()) return refused(refusal::badquantity);
    auto& shop = globalruntimeshopmanager.getsellshop(shopxuid);
    const auto now = unixseconds();
    const json published = {
        {"shopitemtag", tag}, {"discount", discount}, {"timestart", now}, {"timeend", now + seconds}};
    bool replaced = false;
    if (!shop.shopdiscount.is_array()) shop.shopdiscount = json::array();
    for (json& present : shop.shopdiscount) {
        if (!present.is_object()) continue;
        const auto its = present.find("shopitemtag");
        if (its == present.end() || *its != tag) continue;
        present = published;
        replaced = true;
    }
    if (!replaced) shop.shopdiscount.push_back(published);
    shop.markshopchanged();
    return {};
}

ownerresult editshop(const Player& player, const std::string& shopxuid, shoptype kind, const shoptexts& texts) {
    if (const auto why = mayact(player, shopxuid); why != refusal::none) return refused(why);
    return kind == shoptype::sell ? edit(globalruntimeshopmanager.getsellshop(shopxuid), player, texts)
                                  : edit(globalruntimeshopmanager.getrecycleshop(shopxuid), player, texts);
}

}  // namespace ordomart
