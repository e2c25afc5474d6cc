// All that may be missing is looked for before anything changes, and told at once. The money of who has received it
// leaves him first, which is the one thing that may still be refused.
#include "plugin/ledger/undo.h"

#include <algorithm>
#include <utility>

#include "platform/host.h"
#include "platform/level.h"
#include "plugin/base/guards.h"
#include "plugin/base/language.h"
#include "plugin/base/owntexts.h"
#include "plugin/economy/economymanager.h"
#include "plugin/economy/marketopen.h"
#include "plugin/formparts/formtools.h"
#include "plugin/ledger/ledger.h"
#include "plugin/shopsystem/itemidentity.h"
#include "plugin/shopsystem/runtimeshopmanager.h"

namespace ledger {

using namespace shopsystem;
using ordomart::filled;
using ordomart::tr;
using platform::ServerPlayer;
using purse = ordomart::MCGLOBALECONOMYMANAGER;

namespace owntext = ordomart::owntext;

namespace {

constexpr std::int64_t mostwanted = 999999999, mostinstack = 255;

std::string partyname(const std::string& xuid) {
    const auto name = platform::PlayerInfo::fromXuid(xuid);
    return name.empty() ? xuid : name;
}

class undoing {
public:
    undoing(const ServerPlayer& by, entry trade) : by_(by), trade_(std::move(trade)) {
        party_ = platform::host().level->getPlayerByXuid(trade_.actor);
    }

    undoresult run() {
        if (party_ == nullptr || !party_->isAlive()) lacks(owntext::undoaway, partyname(trade_.actor));
        if (trade_.what == kind::purchase)
            purchase();
        else
            sale();
        return std::move(result_);
    }

private:
    template <class... A>
    void lacks(const char* key, const A&... values) {
        result_.missing.push_back(filled(tr(&by_, key), values...));
    }
    [[nodiscard]] bool isready() const { return result_.missing.empty(); }

    void musthave(const std::string& xuid, std::int64_t money) {
        if (money <= 0) return;
        const auto has = ordomart::moneyof(xuid);
        if (!has)
            lacks(owntext::paymentrefused);
        else if (*has < money)
            lacks(owntext::undomoney, partyname(xuid), *has, money, ordomart::getmoneyname());
    }
    // The one who has got it first; when the second half is refused, he has it back.
    bool paysback(const std::string& from, std::int64_t taken, const std::string& to, std::int64_t given) {
        const auto move = [](const std::string& xuid, std::int64_t money) {
            return money == 0 || (money > 0 ? purse::addMoney(xuid, money) : purse::reduceMoneyhas(xuid, -money));
        };
        if (!move(from, -taken)) return lacks(owntext::paymentrefused), false;
        if (move(to, given)) return true;
        if (!move(from, taken))
            ordomart::logger.fatal("{} LOST: taken from {} to undo trade {}, and it cannot be given back", taken, from,
                                   trade_.number);
        return lacks(owntext::paymentrefused), false;
    }

    // ---- a purchase: pieces from the buyer to the shelf, money from the owner to the buyer

    void purchase() {
        const auto text = textof(trade_.tag);
        const auto item = itemfromsnbt(text);
        const auto slots = slotsof(item);
        const std::string owner = trade_.isopshop ? "" : trade_.shop;
        const auto received = owner.empty() ? 0 : trade_.paid - trade_.fee;
        auto& shop = globalruntimeshopmanager.getsellshop(trade_.shop);
        const auto place = trade_.isopshop ? -1 : placeof(shop, text);
        musthave(owner, received);
        if (!isready() || !paysback(owner, received, trade_.actor, trade_.paid)) return;

        std::optional<rowstate> before, after;
        if (!trade_.isopshop) {
            auto row = place >= 0 ? shop.getshopitem(place) : freshrow(text);
            if (place >= 0) before = stateof(row);
            row.shopitemleftnum += static_cast<std::int32_t>(trade_.pieces);
            after = stateof(row);
            json record;
            tojson(row, record);
            if (!shop.items.is_array()) shop.items = json::array();
            if (place >= 0)
                shop.items[static_cast<std::size_t>(place)] = std::move(record);
            else
                shop.items.push_back(std::move(record));
        }
        for (const auto& [slot, count] : slots) party_->getSupplies().removeItem(slot, count);
        countup(shop.sellcount, -trade_.pieces);
        countup(shop.salesvolume, -trade_.pieces * trade_.price);
        finish(shop, kind::undopurchase, text, before, after);
    }

    // As many pieces as were bought; what the buyer lacks is told.
    std::vector<slotcount> slotsof(const ItemStack& item) {
        std::vector<slotcount> slots;
        if (party_ == nullptr) return slots;
        auto wanted = trade_.pieces;
        const auto& supplies = party_->getSupplies();
        for (int slot = 0; slot < supplies.getContainerSize() && wanted > 0; ++slot) {
            const auto& stack = supplies.getItem(slot);
            if (stack.isNull() || !stack.isStackable(item) || stack.others() != item.others()) continue;
            slots.push_back({slot, static_cast<std::int32_t>(std::min<std::int64_t>(stack.getCount(), wanted))});
            wanted -= slots.back().count;
        }
        if (wanted > 0)
            lacks(owntext::undopieces, partyname(trade_.actor), wanted, trade_.pieces, itemname(trade_.tag));
        return slots;
    }

    int placeof(const sellshop& shop, const std::string& text) const {
        for (int place = 0; shop.holds(place); ++place) {
            const auto row = shop.getshopitem(place);
            if (row.itemnbt == text && row.shopitemleftnum >= 0 && row.shopitemleftnum <= INT32_MAX - trade_.pieces)
                return place;
        }
        return -1;
    }
    // What was taken off the shelf meanwhile stands there again under the item's name.
    [[nodiscard]] shopitem freshrow(const std::string& text) const {
        shopitem row;
        row.itemnbt = text;
        row.shopitemname = itemname(trade_.tag);
        row.price = static_cast<std::int32_t>(trade_.price);
        row.shopitemleftnum = 0;
        row.allowbesearched = true;
        return row;
    }

    // ---- a sale: stored pieces to the seller, his money back into the deposit

    void sale() {
        auto& shop = globalruntimeshopmanager.getrecycleshop(trade_.shop);
        std::optional<rowstate> before, after;
        recycleshopitem row;
        int place = -1;
        if (!trade_.isopshop) {
            place = placeof(shop, row);
            if (place >= 0) {
                before = stateof(row);
                for (const auto& pile : trade_.piles) takeout(row, pile);
                giveroom(row);
                after = stateof(row);
            }
        }
        for (const auto& [tag, pieces] : trade_.piles)
            if (const auto item = itemfromsnbt(textof(tag)); !checkrawitemvalid(item) || !canhandover(item, pieces))
                lacks(owntext::undounknown, itemname(tag));
        musthave(trade_.actor, trade_.paid);
        if (!isready() || !paysback(trade_.actor, trade_.paid, "", 0)) return;

        if (place >= 0) {
            json record;
            tojson(row, record);
            shop.recycleitems[static_cast<std::size_t>(place)] = std::move(record);
        }
        for (const auto& [tag, pieces] : trade_.piles) givepieces(party_, itemfromsnbt(textof(tag)), pieces);
        countup(shop.recycleamount, -trade_.pieces);
        countup(shop.recyclecost, -trade_.paid);
        finish(shop, kind::undosale, textof(trade_.tag), before, after);
    }

    // Of several commissions like it, the one that still has what came in.
    int placeof(const recycleshop& shop, recycleshopitem& row) {
        const auto text = textof(trade_.tag);
        int found = -1;
        bool isother = false;
        for (int place = 0; shop.holds(place); ++place) {
            auto one = shop.getrecycleitem(place);
            if (one.itemnbt != text) continue;
            isother |= one.offer != trade_.price;
            if (one.offer != trade_.price || (found >= 0 && one.nowhasrecyclenum < trade_.pieces)) continue;
            if (found >= 0 && row.nowhasrecyclenum >= trade_.pieces) continue;
            found = place;
            row = std::move(one);
        }
        if (found < 0)
            lacks(isother ? owntext::undooffer : owntext::undocommission, itemname(trade_.tag), trade_.price);
        return found;
    }

    void takeout(recycleshopitem& row, const pile& what) {
        const auto text = textof(what.tag);
        auto wanted = what.pieces;
        auto& stored = row.recycleditemnbtlist;
        for (auto place = stored.size(); place-- > 0 && wanted > 0;) {
            auto stack = readstored(stored[place]);
            if (!checkrawitemvalid(stack.item) || itemtosnbt(stack.item) != text) continue;
            const auto taken = std::min(wanted, stack.pieces);
            wanted -= taken;
            stored.erase(stored.begin() + static_cast<std::ptrdiff_t>(place));
            for (auto rest = stack.pieces - taken; rest > 0; rest -= mostinstack) {
                stack.item.set(static_cast<int>(std::min(rest, mostinstack)));
                stored.insert(stored.begin() + static_cast<std::ptrdiff_t>(place), itemtosnbtasis(stack.item));
            }
        }
        if (wanted > 0) lacks(owntext::undostored, partyname(trade_.shop), wanted, what.pieces, itemname(what.tag));
    }

    void giveroom(recycleshopitem& row) {
        if (row.recycleitemleftwanna + trade_.pieces > mostwanted)
            return lacks(owntext::undocommission, itemname(trade_.tag), trade_.price);
        row.recycleitemleftwanna += static_cast<std::int32_t>(trade_.pieces);
        row.nowhasrecyclenum -= static_cast<std::int32_t>(trade_.pieces);
        if (trade_.before && trade_.after) row.sponsored += trade_.before->sponsored - trade_.after->sponsored;
    }

    // ---- both

    [[nodiscard]] std::string itemname(std::uint64_t tag) const {
        const auto stack = itemfromsnbt(textof(tag));
        return stack.isNull() ? variantof(tag).name : ordomart::itemlocalname(stack, by_.getLanguageCode());
    }

    template <class Shop>
    void finish(Shop& shop, kind what, const std::string& text, const std::optional<rowstate>& before,
                const std::optional<rowstate>& after) {
        shop.markshopchanged();
        std::vector<std::pair<std::string, std::int64_t>> piles;
        for (const auto& [tag, pieces] : trade_.piles) piles.emplace_back(textof(tag), pieces);
        result_.number = write(shop, {.what = what,
                                      .actor = trade_.actor,
                                      .itemnbt = text,
                                      .pieces = trade_.pieces,
                                      .price = trade_.price,
                                      .paid = trade_.paid,
                                      .fee = trade_.fee,
                                      .before = before,
                                      .after = after,
                                      .piles = std::move(piles),
                                      .undoes = &trade_,
                                      .undoneby = by_.getXuid()});
        ordomart::logger.info("{} has undone trade {} of {} in the shop {}, as entry {}", by_.getRealName(),
                              trade_.number, partyname(trade_.actor), trade_.shop, result_.number);
        ordomart::envelope([&] { party_->refreshInventory(); });
        const auto told = [&](const ServerPlayer& who, const char* key) {
            return filled(tr(&who, key), trade_.number, trade_.pieces, itemname(trade_.tag), trade_.paid,
                          ordomart::getmoneyname(), partyname(trade_.actor), partyname(trade_.shop), result_.number);
        };
        result_.done = told(by_, owntext::undodone);
        for (const auto& xuid : {trade_.actor, trade_.shop})
            if (auto* const who = platform::host().level->getPlayerByXuid(xuid); who != nullptr && who != &by_)
                ordomart::envelope([&] { who->sendText(told(*who, owntext::undotold)); });
    }

    const ServerPlayer& by_;
    const entry trade_;
    ServerPlayer* party_;
    undoresult result_;
};

}  // namespace

undoresult undo(const ServerPlayer& by, std::uint64_t number) {
    const auto no = [&](const char* key, const auto&... values) {
        return undoresult{0, {filled(tr(&by, key), values...)}, {}};
    };
    if (!ordomart::marketopen()) return no(ordomart::closedtext());
    const auto trade = find(number);
    if (!trade) return no(owntext::undonone, number);
    if (!istrade(trade->what))
        return no(owntext::undonotrade, number, tr(&by, std::string(owntext::kindwords) + nameof(trade->what)));
    if (const auto twice = undoneby(number)) return no(owntext::undotwice, number, *twice);
    return undoing(by, *trade).run();
}

}  // namespace ledger
