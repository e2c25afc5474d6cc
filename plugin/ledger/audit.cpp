// A shop that is in the cache is compared in a turn, behind all entries there are by then. Any other is read from its
// file outside of a turn; what differs then is looked at once more in the cache, so that a file that lags behind is no
// difference.
#include "plugin/ledger/audit.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <set>
#include <tuple>

#include "platform/clock.h"
#include "platform/files.h"
#include "platform/host.h"
#include "platform/level.h"
#include "platform/turn.h"
#include "plugin/economy/moneylibrary.h"
#include "plugin/ledger/ledger.h"
#include "plugin/shopsystem/runtimeshopmanager.h"
#include "plugin/shopsystem/shoprecords.h"

namespace ledger {

using platform::Turn;
using shopsystem::globalruntimeshopmanager;

namespace {

constexpr std::size_t atatime = 200;
constexpr std::int64_t monthofseconds = 30 * 86400;
constexpr std::int64_t nearby = 60;  // seconds between an entry and the library's record of its money

struct movement {
    std::string from, to;  // empty: the system
    std::int64_t value = 0;
    auto operator<=>(const movement&) const = default;
};

// What an entry has asked of whoever keeps the money.
std::vector<movement> movementsof(const entry& of) {
    const auto seller = of.isopshop ? std::string() : of.shop;
    std::vector<movement> all;
    const auto add = [&](const std::string& from, const std::string& to, std::int64_t value) {
        if (value > 0) all.push_back({from, to, value});
        if (value < 0) all.push_back({to, from, -value});
    };
    switch (of.what) {
        case kind::purchase:
            add(of.actor, "", of.fee);
            add(of.actor, seller, of.paid - of.fee);
            break;
        case kind::undopurchase:
            if (!of.isopshop) add(of.shop, "", of.paid - of.fee);
            add("", of.actor, of.paid);
            break;
        case kind::sale:
            add("", of.actor, of.paid);
            break;
        case kind::undosale:
            add(of.actor, "", of.paid);
            break;
        default:
            add(of.actor, "", of.paid + of.fee);
    }
    return all;
}

class auditor {
public:
    explicit auditor(const std::function<bool()>& goeson) : goeson_(goeson) {}

    auditresult run() {
        readopenings();
        while (result_.whole && readsome()) result_.whole = goeson_();
        for (auto& [key, shop] : shops_) {
            if (!result_.whole) break;
            compare(key);
            result_.whole = goeson_();
        }
        for (const auto& [account, moved] : moved_) {
            if (!result_.whole) break;
            comparemoney(account);
            result_.whole = goeson_();
        }
        result_.shops = shops_.size();
        for (auto& one : result_.differences) {
            if (one.tag == 0) continue;
            const Turn turn;
            one.item = variantof(one.tag).name;
        }
        std::ranges::sort(result_.differences, {},
                          [](const auto& one) { return std::tie(one.shop, one.section, one.number); });
        return std::move(result_);
    }

private:
    struct standing {
        shopbooks books;
        std::uint64_t last = 0;         // of its entries
        std::set<std::string> differs;  // told of it already
    };
    struct expected {
        std::int64_t time;
        std::uint64_t number;
        std::string shop;
        shopsystem::shoptype section;
    };

    void readopenings() {
        for (std::string from;;) {
            const Turn turn;
            const auto some = openings(from, atatime);
            for (const auto& [key, books] : some) shops_[key].books = books;
            if (some.size() < atatime) return;
            from = some.back().first + '\0';
        }
    }

    // False when there is nothing more. The caller may be in a turn.
    bool readsome() {
        entries some;
        std::vector<bool> areours;
        {
            const Turn turn;
            some = readfrom(next_, atatime);
            for (const auto& one : some.all) areours.push_back(takenoverwith(one.number) == 0);
            if (first_) first_ = false, next_ = some.all.empty() ? nextnumber() : some.all.front().number;
            upto_ = some.next != 0 ? some.next : nextnumber();
        }
        for (std::size_t i = 0; i < some.all.size(); ++i) {
            const auto& one = some.all[i];
            if (one.number != next_) missing(next_, one);
            next_ = one.number + 1;
            take(one, areours[i]);
        }
        // Behind the last that can be read there may be some that cannot.
        if (next_ < upto_) tell({"", shopsystem::sell, "entry", next_, "an entry", "none"});
        next_ = upto_;
        return some.next != 0;
    }

    void missing(std::uint64_t number, const entry& behind) {
        tell({behind.shop, behind.section(), "entry", number, "an entry", "none"});
    }

    // `isours`: its money was moved by the library that is here.
    void take(const entry& one, bool isours) {
        ++result_.entries;
        const auto key = one.shop + "." + shopsystem::sectionkey(one.section());
        const auto found = shops_.find(key);
        if (found == shops_.end()) {
            const Turn turn;
            // A shop of which the ledger heard only now.
            const auto fresh = openings(key, 1);
            if (fresh.empty() || fresh.front().first != key)
                return tell({one.shop, one.section(), "entry", one.number, "an opening balance", "none"});
            shops_[key].books = fresh.front().second;
        }
        auto& shop = shops_[key];
        if (one.number >= shop.books.number) {
            std::vector<difference> differs;
            shop.books.apply(one, differs);
            // What once differed may differ at every trade; the first one tells it.
            for (const auto& each : differs)
                if (shop.differs.insert(each.what).second) tell(each);
        }
        shop.last = one.number;
        if (!isours || ordomart::moneymode != 1 || one.time < platform::unixseconds() - monthofseconds) return;
        for (const auto& money : movementsof(one))
            moved_[money.from.empty() ? money.to : money.from][money].push_back(
                {one.time, one.number, one.shop, one.section()});
    }

    void tell(const difference& one) { result_.differences.push_back(one); }

    void compare(const std::string& key) {
        const auto dot = key.rfind('.');
        const auto xuid = key.substr(0, dot);
        const auto section =
            key.substr(dot + 1) == shopsystem::sectionkey(shopsystem::sell) ? shopsystem::sell : shopsystem::recycle;
        try {
            if (comparecached(key, xuid, section) || !comparefile(key, xuid, section)) return;
            globalruntimeshopmanager.bringin(xuid, section);
            comparecached(key, xuid, section);
        } catch (const std::exception& e) {
            tell({xuid, section, "file", shops_[key].last, "a shop", e.what()});
        }
    }

    // False when it is not in the cache.
    bool comparecached(const std::string& key, const std::string& xuid, shopsystem::shoptype section) {
        const Turn turn;
        const auto* const shop = globalruntimeshopmanager.cached(xuid, section);
        if (shop == nullptr) return false;
        while (readsome()) {
        }
        for (const auto& one : differencesto(booksof(*shop), key, xuid, section)) tell(one);
        return true;
    }

    // Whether there is something to look at in the cache.
    bool comparefile(const std::string& key, const std::string& xuid, shopsystem::shoptype section) {
        if (shopsystem::hasleftrecord(xuid, section)) return true;
        if (!platform::host().files->exists(shopsystem::shopfile(xuid))) {
            for (const auto& one : differencesto({}, key, xuid, section)) tell(one);
            return false;
        }
        const auto content = shopsystem::loadsection(xuid, section).content;
        const auto booksin = [&](auto shop) {
            shopsystem::namingsection(xuid, section, [&] { shop.loadfromjson(content); });
            const Turn turn;
            return booksof(shop);
        };
        const auto seen =
            section == shopsystem::sell ? booksin(shopsystem::sellshop(xuid)) : booksin(shopsystem::recycleshop(xuid));
        return !differencesto(seen, key, xuid, section).empty();
    }

    std::vector<difference> differencesto(const shopbooks& seen, const std::string& key, const std::string& xuid,
                                          shopsystem::shoptype section) {
        std::vector<difference> all;
        shops_[key].books.compare(seen, {xuid, section, "", shops_[key].last, "", ""}, all);
        return all;
    }

    void comparemoney(const std::string& account) {
        std::map<movement, std::vector<std::int64_t>> history;
        std::int64_t oldest = INT64_MAX;
        {
            const Turn turn;
            const auto known =
                ordomart::moneylibrary::history(account, platform::unixseconds() - monthofseconds - nearby);
            if (!known) return;
            for (const auto& one : *known) {
                history[{one.from, one.to, one.value}].push_back(one.time);
                oldest = std::min<std::int64_t>(oldest, one.time);
            }
        }
        for (auto& [money, all] : moved_[account]) {
            // What is older than all that is left was cleared from the history.
            std::erase_if(all, [&](const auto& one) { return one.time < oldest - nearby; });
            const auto& there = history[money];
            if (there.size() >= all.size()) continue;
            std::size_t at = 0;
            while (at < there.size() && std::abs(there[at] - all[at].time) <= nearby) ++at;
            tell({all[at].shop, all[at].section, "money", all[at].number,
                  fmt::format("{} from {} to {}", money.value, money.from.empty() ? "SYSTEM" : money.from,
                              money.to.empty() ? "SYSTEM" : money.to),
                  "nothing of it in the history"});
        }
    }

    const std::function<bool()>& goeson_;
    auditresult result_;
    std::map<std::string, standing> shops_;
    std::map<std::string, std::map<movement, std::vector<expected>>> moved_;
    std::uint64_t next_ = 0, upto_ = 0;
    bool first_ = true;
};

}  // namespace

auditresult audit(const std::function<bool()>& goeson) { return auditor(goeson).run(); }

std::string lineof(const difference& one) {
    const auto owner = platform::PlayerInfo::fromXuid(one.shop);
    return fmt::format("{}.{}{}, {}: {}{} {} in the ledger, {} in the {}", one.shop,
                       shopsystem::sectionkey(one.section), owner.empty() ? "" : " (" + owner + ")",
                       one.number != 0 ? fmt::format("entry {}", one.number) : "no entry", one.what,
                       one.item.empty() ? "" : " of " + one.item, one.expected, one.found,
                       one.what == "money" ? "library" : "shop");
}

}  // namespace ledger
