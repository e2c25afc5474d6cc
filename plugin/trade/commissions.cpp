// What the owner does with his commissions. The deposit, offer times wanted count, leaves him when he publishes or
// raises and comes back when he lowers or ends; operators pay and get nothing. Every test comes before the first
// change, and a failure of the money back end does not stop what has begun.
#include "plugin/trade/commissions.h"

#include <algorithm>

#include "plugin/economy/economymanager.h"
#include "plugin/economy/paynotes.h"
#include "plugin/shopsystem/runtimeshopmanager.h"
#include "plugin/trade/commissionsteps.h"

namespace shopsystem {

using ordomart::MCGLOBALECONOMYMANAGER;

namespace {

constexpr std::uint32_t offerlimit = 100000000;
constexpr std::int32_t countlimit = 1000000000;

bool isoperator(const Player& player) { return player.getCommandPermissionLevel() > CommandPermissionLevel::Any; }

// In 64 bits. Of a commission published with a negative count it is negative.
std::int64_t deposit(const recycleshopitem& item) {
    return static_cast<std::int64_t>(item.recycleitemleftwanna) * item.offer;
}

bool numberspass(const recycleshopitem& item, std::int32_t leastcount) {
    return static_cast<std::uint32_t>(item.offer) < offerlimit && item.recycleitemleftwanna < countlimit &&
           item.recycleitemleftwanna >= leastcount;
}

commissionresult refused(refusal why) {
    commissionresult result;
    result.why = why;
    return result;
}

// Nothing, or the refusal with both numbers.
commissionresult mustown(const std::string& xuid, std::int64_t needed, refusal why) {
    commissionresult result;
    result.has = MCGLOBALECONOMYMANAGER::queryMoneyhas(xuid);
    result.needed = needed;
    if (result.has < needed) result.why = why;
    return result;
}

bool paysfee(const Player& player, const recycleshop& shop) {
    return !isoperator(player) && shop.recycleitems.is_array() &&
           static_cast<std::int64_t>(shop.recycleitems.size()) > ordomart::maxfreeslot;
}

void pay(const std::string& xuid, std::int64_t amount, const char* note) {
    takemoney(xuid, amount);
    ordomart::writepayline(xuid, amount, "SYSTEM", note);
}

// Hands over all stacks that came in and returns the sum of their counts. What is no item of this server any more
// cannot be given, but counts.
std::int64_t handback(ServerPlayer* player, recycleshopitem& item) {
    std::int64_t total = 0;
    for (const std::string& text : item.recycleditemnbtlist) {
        const auto tag = CompoundTag::fromSNBT(text);
        if (!tag) continue;
        total += static_cast<std::uint8_t>(tag->getByte("Count", 1));
        givetoplayer(player, ItemStack::fromTag(*tag));
    }
    item.recycleditemnbtlist.clear();
    return total;
}

// The two tests of an answer about a commission that was on the player's screen.
refusal staleness(const recycleshop& shop, int index, std::uint32_t revision) {
    if (shop.revision != revision) return refusal::shopchanged;
    return shop.holds(index) ? refusal::none : refusal::recordgone;
}

// What the face has put into the form replaces what the record held; template and stacks stay.
void takeform(recycleshopitem& item, const recycleshopitem& form) {
    recycleshopitem changed = form;
    changed.itemnbt = std::move(item.itemnbt);
    changed.nowhasrecyclenum = item.nowhasrecyclenum;
    changed.recycleditemnbtlist = std::move(item.recycleditemnbtlist);
    item = std::move(changed);
}

commissionresult settle(ServerPlayer* player, std::int64_t before, std::int64_t after) {
    commissionresult result;
    if (isoperator(*player) || before == after) return result;
    const std::string& xuid = player->getXuid();
    if (after < before) {
        result.refunded = before - after;
        givemoney(xuid, result.refunded);
        return result;
    }
    result = mustown(xuid, after - before, refusal::moneyshort);
    if (!result.ok()) return result;
    result.charged = after - before;
    takemoney(xuid, result.charged);
    return result;
}

void reportmoney(bool moved, const char* what, std::int64_t amount, const std::string& xuid) {
    if (!moved && amount != 0)
        ordomart::logger.error("error at a commission when {} {} money for {}", what, amount, xuid);
}

}  // namespace

void givemoney(const std::string& xuid, std::int64_t amount) {
    reportmoney(MCGLOBALECONOMYMANAGER::addMoney(xuid, amount), "add", amount, xuid);
}

void takemoney(const std::string& xuid, std::int64_t amount) {
    reportmoney(MCGLOBALECONOMYMANAGER::reduceMoneyhas(xuid, amount), "reduce", amount, xuid);
}

void writeback(recycleshop& shop, int index, const recycleshopitem& item) {
    json record;
    tojson(item, record);
    shop.recycleitems.at(static_cast<std::size_t>(index)) = std::move(record);
}

void finish(ServerPlayer* player, recycleshop& shop) {
    player->refreshInventory();
    shop.markshopchanged();
}

std::int64_t publishfee(const Player& player, const recycleshop& shop) {
    return paysfee(player, shop) ? ordomart::extraslotcost : 0;
}

commissionresult publishcommission(ServerPlayer* player, const std::string& shopxuid, const recycleshopitem& wanted,
                                   const publishrules& rules) {
    const std::string xuid = player->getXuid();
    recycleshop& shop = globalruntimeshopmanager.getrecycleshop(shopxuid);
    if (rules.banfirst && shop.isbanned()) return refused(refusal::banned);
    const std::int64_t fee = publishfee(*player, shop);
    if (paysfee(*player, shop))
        if (const auto result = mustown(xuid, fee, refusal::feeshort); !result.ok()) return result;
    if (!rules.banfirst && shop.isbanned()) return refused(refusal::banned);
    if (!numberspass(wanted, rules.leastcount)) return refused(refusal::badnumbers);

    recycleshopitem published = wanted;
    published.nowhasrecyclenum = 0;
    published.recycleditemnbtlist.clear();
    json record;
    tojson(published, record);

    commissionresult result;
    if (!isoperator(*player)) {
        const std::int64_t price = deposit(wanted) + fee;
        result = mustown(xuid, price, refusal::moneyshort);
        if (!result.ok()) return result;
        pay(xuid, deposit(wanted), "pay for upload recycleitem");
        pay(xuid, fee, "pay for extraslot");
        result.charged = price;
    }
    if (!shop.recycleitems.is_array()) shop.recycleitems = json::array();
    shop.recycleitems.push_back(std::move(record));
    finish(player, shop);
    return result;
}

commissionresult adjustcommission(ServerPlayer* player, const std::string& shopxuid, int index, std::uint32_t revision,
                                  const recycleshopitem& form) {
    if (!numberspass(form, INT32_MIN)) return refused(refusal::badnumbers);
    recycleshopitem wanted = form;
    wanted.recycleitemleftwanna = std::max(wanted.recycleitemleftwanna, 0);

    recycleshop& shop = globalruntimeshopmanager.getrecycleshop(shopxuid);
    if (const refusal why = staleness(shop, index, revision); why != refusal::none) return refused(why);
    recycleshopitem item = shop.getrecycleitem(index);
    commissionresult result = settle(player, deposit(item), deposit(wanted));
    if (!result.ok()) return result;

    if (wanted.recycleitemleftwanna == 0) {
        result.pieces = handback(player, item);
        result.ended = true;
        result.name = item.recycleitemname;
        shop.recycleitems.erase(static_cast<std::size_t>(index));
    } else {
        takeform(item, wanted);
        writeback(shop, index, item);
    }
    finish(player, shop);
    return result;
}

commissionresult pickupcommission(ServerPlayer* player, const std::string& shopxuid, int index,
                                  std::uint32_t revision) {
    recycleshop& shop = globalruntimeshopmanager.getrecycleshop(shopxuid);
    if (const refusal why = staleness(shop, index, revision); why != refusal::none) return refused(why);
    recycleshopitem item = shop.getrecycleitem(index);
    commissionresult result;
    result.pieces = handback(player, item);
    countup(item.nowhasrecyclenum, -result.pieces);
    writeback(shop, index, item);
    finish(player, shop);
    return result;
}

}  // namespace shopsystem
