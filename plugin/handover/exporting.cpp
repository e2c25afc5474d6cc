#include "plugin/handover/exporting.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <stdexcept>
#include <unordered_map>
#include <unordered_set>

#include "platform/clock.h"
#include "platform/turn.h"
#include "plugin/handover/linefile.h"
#include "plugin/shopsystem/runtimeshopmanager.h"
#include "plugin/shopsystem/shoprecords.h"

namespace handover {

using namespace shopsystem;
using platform::Turn;

namespace {

constexpr std::size_t entriesatatime = 200, mostnamed = 5;

struct takenshop {
    shopline head;
    json goods, discounts;
    std::vector<std::int64_t> deposits;  // of commissions
    std::optional<ledger::shopbooks> opening;
};

std::int64_t linesof(const json& list, const char* key) {
    if (!list.is_null() && !list.is_array()) throw fielderror(key, "is no list");
    return list.is_array() ? static_cast<std::int64_t>(list.size()) : -1;
}

// In a turn. Throws for what is broken in it.
takenshop taken(baseshop& shop) {
    takenshop made;
    made.head.owner = shop.xuid;
    made.head.section = shop.kind();
    made.head.revision = shop.revision;
    made.head.entries = ledger::nextnumber();
    made.opening = ledger::openingof(shop.xuid, shop.kind());
    shop.savetojson(made.head.about);
    made.goods = takeout(made.head.about, shop.goods().key);
    made.head.goods = linesof(made.goods, shop.goods().key);
    if (const auto* const sells = dynamic_cast<const sellshop*>(&shop)) {
        made.discounts = takeout(made.head.about, discountskey);
        made.head.discounts = linesof(made.discounts, discountskey);
        for (int place = 0; sells->holds(place); ++place) (void)sells->getshopitem(place);
    } else if (const auto* const recycles = dynamic_cast<const recycleshop*>(&shop)) {
        for (int place = 0; recycles->holds(place); ++place)
            made.deposits.push_back(ledger::stateof(recycles->getrecycleitem(place)).deposit());
    }
    return made;
}

class exporter {
public:
    exporter(const std::string& path, const std::function<bool()>& goeson) : out_(path), goeson_(goeson) {}

    linecounts run(const std::function<void(const linecounts&)>& wroteshops) {
        out_.add(json{{line::market,
                       {{"format", formatname},
                        {"version", formatversion},
                        {"market", ordomart::pluginversion.toString()},
                        {"time", platform::unixseconds()},
                        {"money", moneyhere()}}}}
                     .dump(-1, ' ', false, json::error_handler_t::ignore));
        const ledger::thinningheld held;
        addshops();
        wroteshops(counts_);
        addentries();
        adddays();
        out_.add(json{{line::end, {{"lines", counts_}, {"sum", hexof(out_.sum())}}}}.dump());
        out_.finish();
        return counts_;
    }

private:
    void add(const char* kind, json value) {
        ++counts_[kind];
        json whole = json::object();
        whole[kind] = std::move(value);
        out_.add(whole.dump(-1, ' ', false, json::error_handler_t::ignore));
    }
    void goon() const {
        if (!goeson_()) throw std::runtime_error("the server stops");
    }

    void addshops() {
        std::vector<std::string> broken;
        // Of a shop that was taken in or traded in just now there may be no file yet: only a record, and then the cache
        // has it.
        std::set<std::string> owners;
        for (auto& key : shopfilekeys()) owners.insert(std::move(key));
        for (auto& [owner, kind] : leftrecords(SIZE_MAX)) owners.insert(std::move(owner));
        {
            const Turn turn;
            owners.merge(globalruntimeshopmanager.cachedowners());
        }
        for (const auto& xuid : owners)
            for (const int kind : {shoptype::sell, shoptype::recycle}) {
                goon();
                if (xuid.empty()) continue;
                std::optional<takenshop> shop;
                try {
                    globalruntimeshopmanager.glance(
                        xuid, kind, [&](baseshop& of) { shop = namingsection(xuid, kind, [&] { return taken(of); }); });
                    add(*shop);
                } catch (const std::exception& e) {
                    broken.emplace_back(e.what());
                }
            }
        if (broken.empty()) return;
        std::string all;
        for (std::size_t i = 0; i < std::min(broken.size(), mostnamed); ++i) all += (i == 0 ? "" : "; ") + broken[i];
        if (broken.size() > mostnamed) all += fmt::format("; and {} more", broken.size() - mostnamed);
        throw std::runtime_error(all);
    }
    void add(const takenshop& shop) {
        upto_[shop.head.key()] = shop.head.entries;
        add(line::shop, written(shop.head));
        const bool sells = shop.head.section == shoptype::sell;
        for (std::size_t place = 0; const auto& record : shop.goods) {
            if (sells)
                add(line::good, record);
            else
                add(line::commission, {{"record", record}, {"deposit", shop.deposits[place++]}});
        }
        for (const auto& record : shop.discounts) add(line::discount, record);
        if (shop.opening) add(line::opening, written(*shop.opening));
    }

    void addentries() {
        std::uint64_t next = 0;
        {
            const Turn turn;
            tail_ = ledger::nextnumber();
        }
        while (next < tail_) {
            goon();
            std::vector<std::pair<ledger::entry, std::vector<std::string>>> kept;  // with texts that are new
            {
                const Turn turn;
                auto some = ledger::readfrom(next, entriesatatime);
                for (auto& one : some.all) {
                    if (one.number >= tail_) continue;
                    if (isin(one))
                        kept.emplace_back(std::move(one), std::vector<std::string>());
                    else
                        leaveout(one);
                }
                for (auto& [one, texts] : kept) {
                    want(one.tag, texts);
                    for (const auto& pile : one.piles) want(pile.tag, texts);
                }
                next = some.next != 0 ? some.next : tail_;
            }
            for (const auto& [one, texts] : kept) {
                for (const auto& text : texts) add(line::item, {{"tag", hexof(ledger::hashof(text))}, {"nbt", text}});
                add(line::entry, written(one));
            }
        }
    }
    void want(std::uint64_t tag, std::vector<std::string>& texts) {
        if (known_.insert(tag).second) texts.push_back(ledger::textof(tag));
    }
    [[nodiscard]] bool isin(const ledger::entry& one) const {
        const auto found = upto_.find(one.shop + "." + sectionkey(one.section()));
        return found != upto_.end() && one.number < found->second;
    }

    // In a turn: what the entry counts for in the sums is to be taken off.
    void leaveout(const ledger::entry& one) {
        if (ledger::istrade(one.what) && one.pieces > 0) correct(one, -1);
        if (!ledger::isundo(one.what)) return;
        if (const auto trade = ledger::find(one.undoes); trade && trade->pieces > 0) correct(*trade, 1);
    }
    void correct(const ledger::entry& trade, std::int64_t sign) {
        auto& day = corrections_[ledger::dayof(trade.time)];
        for (const auto& [what, pieces] : ledger::goodsin(trade))
            day.push_back({true, what.text(), {sign, sign * pieces, sign * pieces * trade.price}, trade.price});
        day.push_back({false,
                       trade.shop + "." + sectionkey(trade.section()),
                       {sign, sign * trade.pieces, sign * trade.paid, sign * trade.fee},
                       0});
    }

    void adddays() {
        std::optional<std::int64_t> day;
        {
            const Turn turn;
            if (ledger::isopen()) day = ledger::firstday();
        }
        for (; day && *day <= ledger::dayof(platform::unixseconds()); ++*day) {
            goon();
            std::map<std::string, ledger::daysum> goods, shops;
            {
                const Turn turn;
                goods = ledger::goodsof(*day);
                shops = ledger::shopsof(*day);
                readtail();
            }
            for (const auto& each : corrections_[*day]) {
                auto& row = (each.isgood ? goods : shops)[each.of];
                row.add(each.by);
                if (each.isgood) row.at.add(each.price, each.by.trades);
            }
            add(ledger::sumof::goods, *day, goods);
            add(ledger::sumof::shop, *day, shops);
        }
    }
    void readtail() {
        for (;;) {
            const auto some = ledger::readfrom(tail_, entriesatatime);
            for (const auto& one : some.all) leaveout(one);
            tail_ = ledger::nextnumber();
            if (some.next == 0) return;
            tail_ = some.next;
        }
    }
    void add(ledger::sumof kind, std::int64_t day, const std::map<std::string, ledger::daysum>& rows) {
        for (const auto& [of, sum] : rows)
            if (sum.trades != 0 || sum.pieces != 0 || sum.money != 0 || sum.fees != 0 || !sum.at.empty())
                add(line::day, written(sumline{kind, day, of, sum}));
    }

    struct correction {
        bool isgood;
        std::string of;
        ledger::daysum by;
        std::int64_t price;
    };
    linewriter out_;
    const std::function<bool()>& goeson_;
    linecounts counts_;
    std::unordered_map<std::string, std::uint64_t> upto_;  // by shop: its entries below this are in the file
    std::uint64_t tail_ = 0;                   // entries from here on are not in it, and have not been looked at
    std::unordered_set<std::uint64_t> known_;  // texts that are in the file
    std::map<std::int64_t, std::vector<correction>> corrections_;  // by day
};

}  // namespace

linecounts exportmarket(const std::string& path, const std::function<bool()>& goeson,
                        const std::function<void(const linecounts&)>& wroteshops) {
    return exporter(path, goeson).run(wroteshops);
}

}  // namespace handover
