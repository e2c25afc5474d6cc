// What the owner does with his commissions. The deposit, offer times wanted count, leaves him when he publishes or
// raises and comes back when he lowers or ends; operators pay and get nothing.
#include "plugin/trade/commissions.h"

#include <algorithm>
#include <utility>

#include "plugin/base/guards.h"
#include "plugin/base/language.h"
#include "plugin/base/owntexts.h"
#include "plugin/economy/economymanager.h"
#include "plugin/economy/marketopen.h"
#include "plugin/economy/paynotes.h"
#include "plugin/formparts/formtools.h"
#include "plugin/ledger/ledger.h"
#include "plugin/shopsystem/playershopstate.h"
#include "plugin/shopsystem/runtimeshopmanager.h"
#include "plugin/trade/commissionsteps.h"

namespace shopsystem {

using namespace ordomart;

namespace {

constexpr std::uint32_t offerlimit = 100000000;
constexpr std::int32_t countlimit = 1000000000;

// In 64 bits. Of a record that has a negative count, as old ones may, it is negative.
std::int64_t deposit(const recycleshopitem& item) {
    return static_cast<std::int64_t>(item.recycleitemleftwanna) * item.offer;
}

bool numberspass(const recycleshopitem& item) {
    return static_cast<std::uint32_t>(item.offer) < offerlimit && item.recycleitemleftwanna < countlimit;
}

// Two lines of one payment, the second also for a fee of nothing.
void writepublishlines(const std::string& xuid, std::int64_t deposited, std::int64_t fee) {
    envelope([&] {
        writepayline(xuid, deposited, "SYSTEM", "pay for upload recycleitem");
        writepayline(xuid, fee, "SYSTEM", "pay for extraslot");
    });
}

// The stacks that came in, parted by whether this server can make them.
struct store {
    std::vector<storedstack> here;
    std::int64_t pieces = 0;  // of those
    std::vector<std::string> elsewhere;
    std::int64_t elsewherepieces = 0;
    bool allread = true;  // else the count of what stays is not in its texts alone
};

store partstore(const recycleshopitem& item) {
    store parted;
    for (const std::string& text : item.recycleditemnbtlist) {
        storedstack stack = readstored(text);
        if (checkrawitemvalid(stack.item)) {
            parted.pieces += stack.pieces;
            parted.here.push_back(std::move(stack));
        } else {
            parted.elsewherepieces += stack.pieces;
            parted.allread &= stack.pieces != 0;
            parted.elsewhere.push_back(text);
        }
    }
    return parted;
}

// What stays in the record when the rest is handed over.
void keepelsewhere(recycleshopitem& item, const store& parted) {
    std::int64_t waiting = parted.elsewherepieces;
    if (!parted.allread) waiting = std::max(waiting, item.nowhasrecyclenum - parted.pieces);
    item.nowhasrecyclenum = static_cast<std::int32_t>(std::min<std::int64_t>(waiting, INT32_MAX));
    item.recycleditemnbtlist = parted.elsewhere;
}

void handover(ServerPlayer* player, const store& parted, ownerresult& result) {
    for (const storedstack& stack : parted.here) givepieces(player, stack.item, stack.pieces);
    result.pieces = parted.pieces;
    result.keptstacks = static_cast<std::int64_t>(parted.elsewhere.size());
    if (result.keptstacks != 0) player->sendText(filled(tr(player, owntext::stackskept), result.keptstacks));
}

// The tests of an answer about a commission that was on the player's screen.
refusal staleness(const recycleshop& shop, int index, std::uint32_t revision) {
    if (!isatrevision(shop, revision)) return refusal::shopchanged;
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

// What of the deposit or of the stacks that wait has moved, and nothing where nothing has.
void enter(ledger::kind what, const Player& player, const recycleshop& shop, const std::string& itemnbt,
           const std::optional<ledger::rowstate>& before, const std::optional<ledger::rowstate>& after,
           const ledger::happening& moved) {
    if (before == after) return;
    auto told = moved;
    told.what = what;
    told.actor = player.getXuid();
    told.byoperator = isoperator(player);
    told.itemnbt = itemnbt;
    told.before = before;
    told.after = after;
    ledger::write(shop, told);
}

// What somebody has paid of the deposit and can be paid back.
std::int64_t paidof(const recycleshopitem& item) {
    const auto whole = std::max<std::int64_t>(deposit(item), 0);
    return whole - std::clamp<std::int64_t>(item.sponsored, 0, whole);
}

// Makes the deposit fit what is wanted now, and notes what of it nobody has paid.
ownerresult settle(ServerPlayer* player, const recycleshopitem& item, recycleshopitem& wanted) {
    ownerresult result;
    const std::int64_t before = deposit(item), after = deposit(wanted), paid = paidof(item);
    const bool raises = after > before;
    const std::int64_t paidafter = raises && !isoperator(*player) ? paid + (after - before) : std::min(paid, after);
    wanted.sponsored = after - paidafter;
    if (isoperator(*player) || paidafter == paid) return result;
    const std::string& xuid = player->getXuid();
    if (!raises) {
        if (!MCGLOBALECONOMYMANAGER::addMoney(xuid, paid - paidafter)) return refused(refusal::paymentrefused);
        result.received = paid - paidafter;
        return result;
    }
    result = mustown(xuid, after - before, refusal::moneyshort);
    if (!result.ok()) return result;
    if (!MCGLOBALECONOMYMANAGER::reduceMoneyhas(xuid, after - before)) return refused(refusal::paymentrefused);
    result.charged = after - before;
    result.ischarged = true;
    return result;
}

}  // namespace

void writeback(recycleshop& shop, int index, const recycleshopitem& item) {
    json record;
    tojson(item, record);
    shop.recycleitems.at(static_cast<std::size_t>(index)) = std::move(record);
}

void finish(ServerPlayer* player, recycleshop& shop) {
    shop.markshopchanged();
    envelope([&] { player->refreshInventory(); });
}

ownerresult publishcommission(ServerPlayer* player, const std::string& shopxuid, const recycleshopitem& wanted,
                              const publishrules& rules) {
    if (!marketopen()) return refused(refusal::marketclosed);
    const std::string xuid = player->getXuid();
    recycleshop& shop = globalruntimeshopmanager.getrecycleshop(shopxuid);
    if (rules.banfirst && shop.isbanned()) return refused(refusal::banned);
    const std::int64_t fee = recordfee(*player, shop.recycleitems);
    if (paysfee(*player, shop.recycleitems))
        if (const auto result = mustown(xuid, fee, refusal::feeshort); !result.ok()) return result;
    if (!rules.banfirst && shop.isbanned()) return refused(refusal::banned);
    if (!numberspass(wanted) || wanted.recycleitemleftwanna < 1) return refused(refusal::badnumbers);

    recycleshopitem published = wanted;
    published.nowhasrecyclenum = 0;
    published.recycleditemnbtlist.clear();
    published.sponsored = isoperator(*player) ? deposit(wanted) : 0;
    json record;
    tojson(published, record);

    ownerresult result;
    if (!isoperator(*player)) {
        // Deposit and fee in one payment, so that neither can be refused behind the other.
        const std::int64_t price = deposit(wanted) + fee;
        result = mustown(xuid, price, refusal::moneyshort);
        if (!result.ok()) return result;
        if (price != 0 && !MCGLOBALECONOMYMANAGER::reduceMoneyhas(xuid, price)) return refused(refusal::paymentrefused);
        result.charged = price;
        result.ischarged = true;
    }
    if (!shop.recycleitems.is_array()) shop.recycleitems = json::array();
    shop.recycleitems.push_back(std::move(record));
    finish(player, shop);
    enter(ledger::kind::publish, *player, shop, published.itemnbt, {}, ledger::stateof(published),
          {.pieces = published.recycleitemleftwanna,
           .price = published.offer,
           .paid = result.charged - (result.ischarged ? fee : 0),
           .fee = result.ischarged ? fee : 0});
    if (!isoperator(*player)) writepublishlines(xuid, deposit(wanted), fee);
    return result;
}

ownerresult adjustcommission(ServerPlayer* player, const std::string& shopxuid, int index, std::uint32_t revision,
                             const recycleshopitem& form) {
    if (!marketopen()) return refused(refusal::marketclosed);
    if (!numberspass(form)) return refused(refusal::badnumbers);
    recycleshopitem wanted = form;
    wanted.recycleitemleftwanna = std::max(wanted.recycleitemleftwanna, 0);

    recycleshop& shop = globalruntimeshopmanager.getrecycleshop(shopxuid);
    if (const refusal why = staleness(shop, index, revision); why != refusal::none) return refused(why);
    recycleshopitem item = shop.getrecycleitem(index);
    const auto before = ledger::stateof(item);
    const bool ends = wanted.recycleitemleftwanna == 0;
    const store parted = ends ? partstore(item) : store();
    ownerresult result = settle(player, item, wanted);
    if (!result.ok()) return result;

    if (!ends) {
        takeform(item, wanted);
        writeback(shop, index, item);
    } else if (parted.elsewhere.empty()) {
        result.ended = true;
        result.name = item.recycleitemname;
        shop.recycleitems.erase(static_cast<std::size_t>(index));
    } else {
        item.recycleitemleftwanna = 0;
        item.sponsored = 0;
        keepelsewhere(item, parted);
        writeback(shop, index, item);
    }
    if (ends) handover(player, parted, result);
    finish(player, shop);
    enter(ledger::kind::adjust, *player, shop, item.itemnbt, before,
          result.ended ? std::nullopt : std::optional(ledger::stateof(item)),
          {.pieces = result.pieces, .price = wanted.offer, .paid = result.charged - result.received});
    return result;
}

ownerresult pickupcommission(ServerPlayer* player, const std::string& shopxuid, int index, std::uint32_t revision) {
    if (!marketopen()) return refused(refusal::marketclosed);
    recycleshop& shop = globalruntimeshopmanager.getrecycleshop(shopxuid);
    if (const refusal why = staleness(shop, index, revision); why != refusal::none) return refused(why);
    recycleshopitem item = shop.getrecycleitem(index);
    const auto before = ledger::stateof(item);
    const store parted = partstore(item);
    keepelsewhere(item, parted);
    writeback(shop, index, item);
    ownerresult result;
    handover(player, parted, result);
    finish(player, shop);
    enter(ledger::kind::pickup, *player, shop, item.itemnbt, before, ledger::stateof(item), {.pieces = result.pieces});
    return result;
}

}  // namespace shopsystem
