// Steps of a story of commissions, and the books that are held against the world behind each of them. Three owners and
// an operator publish, adjust and pick up, sell with forms of every age, die, leave and run their inventories full; now
// and then whoever keeps the money refuses; the shops are saved, forgotten and read again. The model is that of this
// program and not of the module beside it, since not all of its operations have a menu; forms, players, money and files
// are the server's.
#pragma once

#include <fmt/format.h>

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/host.h"
#include "platform/level.h"
#include "plugin/economy/economymanager.h"
#include "plugin/forms/openers.h"
#include "plugin/shopsystem/runtimeshopmanager.h"
#include "plugin/trade/commissions.h"
#include "tests/market/faultymoney.h"
#include "tests/stage/stage.h"

namespace recycling {

using nlohmann::json;
using shopsystem::globalruntimeshopmanager, shopsystem::ownerresult, shopsystem::recycleshopitem;

enum class act { publish, adjust, pickup, list, answer, stock, die, away, ban, opshop, save, forget };
inline constexpr const char* actnames[] = {"publish", "adjust", "pickup", "list",   "answer", "stock",
                                           "die",     "away",   "ban",    "opshop", "save",   "forget"};

// Who, on whose shop, at which place or slot; each act reads the numbers in its own way.
struct step {
    act what;
    std::size_t who = 0, shop = 0;
    int place = 0, a = 0, b = 0, c = 0;
};

// Whoever keeps the money refuses during the step.
inline bool isrefused(const step& s) { return s.b % 16 == 12; }
// A form from before the shop's last change.
inline bool isold(const step& s) { return s.c % 8 == 7; }

inline constexpr std::size_t players = 4, theoperator = 3, freeslots = 2;
inline constexpr std::int32_t slotcost = 7;

inline constexpr const char* kinds[] = {
    R"({Count:1b,Damage:0s,Name:"minecraft:apple",WasPickedUp:0b})",
    R"({Count:1b,Damage:0s,Name:"minecraft:apple",WasPickedUp:1b})",
    R"({Count:1b,Damage:0s,Name:"minecraft:ender_pearl",WasPickedUp:0b})",
    R"({Count:1b,Damage:0s,Name:"minecraft:diamond_sword",WasPickedUp:0b})",
    R"({Count:1b,Damage:0s,Name:"minecraft:diamond_sword",WasPickedUp:0b,tag:{Damage:5}})",
    R"({Count:1b,Damage:0s,Name:"minecraft:diamond_sword",WasPickedUp:0b,tag:{Damage:9,ench:[{id:9s,lvl:1s}]}})",
    R"({Count:1b,Damage:0s,Name:"minecraft:stone",WasPickedUp:0b})"};
inline constexpr int slots = 36, stone = 6;

// All that moves in a trade.
struct picture {
    std::vector<std::int64_t> money;
    std::map<std::string, int> items;  // pieces by what they are: in hands, on the ground and in the stores
    std::vector<json> shops;
    std::vector<std::uint32_t> revisions;
    bool operator==(const picture&) const = default;
};

inline void collect(std::map<std::string, int>& items, const platform::ItemStack& stack) {
    const auto* data = stack.getUserData();
    if (!stack.isNull())
        items[fmt::format("{}:{}{}", stack.getTypeName(), stack.getAuxValue(),
                          data != nullptr ? data->toSNBT() : "")] += stack.getCount();
}
inline int pieces(const picture& seen) {
    int sum = 0;
    for (const auto& [item, count] : seen.items) sum += count;
    return sum;
}

inline std::int64_t deposit(const json& record) {
    return record["recycleitemleftwanna"].get<std::int64_t>() * record["offer"].get<std::int64_t>();
}
inline std::int64_t promised(const picture& seen) {
    std::int64_t sum = 0;
    for (const auto& shop : seen.shops)
        for (const auto& record : shop["recycleitems"]) sum += deposit(record);
    return sum;
}

// Empties the cache of this program, which outlives every stage and would save what it holds into the next one.
inline void sweep(stage::Stage& stage) {
    for (int round = 0; round < 4; ++round)
        stage.onserver([] {
            for (int tick = 0; tick <= shopsystem::maxidleticks + 2; ++tick) globalruntimeshopmanager.tick();
        });
}

class Story {
public:
    std::map<std::string, int> happened;

    explicit Story(bool llmoney)
        : llmoney_(llmoney),
          stage_({.llmoney = llmoney, .adjust = faulty_.adjust()}),
          actors_(players),
          books_(players) {
        static std::size_t count = 0;
        ordomart::maxfreeslot = freeslots;
        ordomart::extraslotcost = slotcost;
        stage_.onserver([&] {
            ordomart::moneymode = llmoney ? 1 : 0;
            ordomart::bindeconomy();
        });
        for (std::size_t i = 0; i < players; ++i) {
            xuids_.push_back(fmt::format("25354{:011}", ++count));
            stage_.writeshop(xuids_[i], nullptr);
            join(i);
            actors_[i]->setmoney(i == theoperator ? 0 : 300);
            stage_.onserver([&] {
                shop(i).markshopchanged();  // so that it is saved in its own words
                // Little room is left, so that what is picked up falls to the ground now and then.
                for (int slot = 0; slot < slots; ++slot)
                    if (slot < 6 || slot > 9) put(i, slot, std::min(slot, stone), 63);
            });
        }
        now_ = look();
    }
    ~Story() {
        sweep(stage_);
        ordomart::maxfreeslot = usualfreeslots_;
        ordomart::extraslotcost = usualslotcost_;
    }

    // What is wrong behind the step; empty when all is well.
    std::string plays(step s) {
        for (std::size_t i = 0; s.what == act::answer && i < players && !isasked(s.who); ++i)
            s.who = (s.who + 1) % players;
        if (arranges(s)) {
            now_ = look();
            return {};
        }
        if (s.what == act::away || s.what == act::save || s.what == act::forget) return keeps(s);
        if (actors_[s.who] == nullptr) return {};
        bool refused = false;
        faulty::refuses = [&](std::string_view) { return refused |= isrefused(s), isrefused(s); };
        const auto result = trades(s);
        faulty::refuses = nullptr;
        if (refused) ++happened["money refused"];
        const picture before = std::exchange(now_, look());
        return wrong(s, before, result);
    }

private:
    shopsystem::recycleshop& shop(std::size_t i) { return globalruntimeshopmanager.getrecycleshop(xuids_[i]); }
    platform::ServerPlayer* player(std::size_t i) { return platform::host().level->getPlayerByXuid(xuids_[i]); }
    bool isasked(std::size_t i) { return actors_[i] != nullptr && !actors_[i]->form().is_null(); }
    static std::string name(std::size_t i) { return fmt::format("P{}", i); }
    void join(std::size_t i) { actors_[i] = &stage_.join(name(i), xuids_[i], "en_US", 7, i == theoperator ? 1 : 0); }
    void put(std::size_t who, int slot, int kind, int count) {
        auto stack = kind <= stone ? shopsystem::itemfromsnbt(kinds[kind]) : platform::ItemStack();
        stack.set(1 + count % stack.getMaxStackSize());
        stage_.server().world().setitem(name(who), slot, stack);
    }
    void collectsupplies(std::map<std::string, int>& items, std::size_t i) {
        for (int slot = 0; slot < slots; ++slot) collect(items, player(i)->getSupplies().getItem(slot));
    }

    picture look() {
        picture seen;
        for (std::size_t i = 0; i < players; ++i)
            seen.money.push_back(llmoney_ ? stage_.money(xuids_[i]) : stage_.score(name(i), "money"));
        stage_.onserver([&] {
            for (const auto& dropped : stage_.server().world().droppeditems()) collect(seen.items, dropped.stack);
            for (std::size_t i = 0; i < players; ++i) {
                if (actors_[i] != nullptr) collectsupplies(seen.items, i);
                for (const auto& [item, count] : luggage_[i]) seen.items[item] += count;
                shop(i).savetojson(seen.shops.emplace_back());
                seen.revisions.push_back(shop(i).revision);
                for (const auto& record : seen.shops.back()["recycleitems"])
                    for (const auto& text : record["recycleditemnbtlist"])
                        collect(seen.items, shopsystem::itemfromsnbt(text.get<std::string>()));
            }
        });
        return seen;
    }

    // What comes from outside, behind which everything is looked at anew.
    bool arranges(const step& s) {
        if (s.what != act::stock && s.what != act::die && s.what != act::ban && s.what != act::opshop) return false;
        stage_.onserver([&] {
            const bool here = actors_[s.who] != nullptr;
            if (s.what == act::stock && here) {
                put(s.who, s.place + 6 * (s.c % 6), s.a % (stone + 2), s.b);
            } else if (s.what == act::die && here) {
                stage_.server().world().setalive(name(s.who), s.a % 4 != 0);
            } else if (s.what == act::ban) {
                shop(s.shop).setbanstate(s.a % 8 == 0, -1, "story");
                shop(s.shop).markshopchanged();
            } else if (s.what == act::opshop) {
                shop(s.shop).isopshop = s.a % 4 == 0;
                shop(s.shop).markshopchanged();
            }
        });
        return true;
    }

    // What must leave everything as it is: going and coming, saving, and reading from the disk.
    std::string keeps(const step& s) {
        if (s.what == act::away) {
            if (actors_[s.who] == nullptr) {
                luggage_[s.who].clear();
                join(s.who);
            } else if (s.a % 4 == 0) {
                stage_.onserver([&] { collectsupplies(luggage_[s.who], s.who); });
                actors_[s.who]->leaves();
                actors_[s.who] = nullptr;
            }
            return look() == now_ ? "" : "something changed on the way";
        }
        stage_.onserver([&] {
            for (std::size_t i = 0; s.what == act::forget && i < players; ++i)
                shop(i).idleticks = shopsystem::maxidleticks;
        });
        for (int tick = 0; tick < 4; ++tick) stage_.onserver([] { globalruntimeshopmanager.tick(); });
        const picture after = look();
        // A shop that is read again is never at a revision that an open form may have.
        for (auto& revision : now_.revisions) revision += s.what == act::forget ? 1 : 0;
        for (std::size_t i = 0; i < players; ++i)
            if (json::parse(stage_.file("plugins/Ordomart/data/" + xuids_[i] + ".json"))["recycles"] != after.shops[i])
                return fmt::format("the file of shop {} is not the shop", i);
        return now_ == after ? "" : "something changed on the disk";
    }

    std::optional<ownerresult> trades(const step& s) {
        std::optional<ownerresult> result;
        if (s.what == act::list) actors_[s.who]->dismisses();
        stage_.onserver([&] {
            auto* who = player(s.who);
            const std::size_t whose = s.who == theoperator ? s.shop : s.who;
            const auto revision = shop(whose).revision - (isold(s) ? 1 : 0);
            recycleshopitem wish{.recycleitemname = "wish",
                                 .recycleitemleftwanna = s.b % 90 - (s.what == act::adjust ? 25 : 3),
                                 .offer = s.a == 0 ? 100000000 : s.a % 8,
                                 .allowbesearched = s.c % 16 != 0,
                                 .filterauxordamage = s.c % 2 != 0,
                                 .filterench = s.c / 2 % 2 != 0,
                                 .filteritemnbt = s.c / 4 % 2 != 0};
            if (s.what == act::publish) {
                const shopsystem::publishrules rules[] = {shopsystem::formpublish, shopsystem::chestslotpublish,
                                                          shopsystem::chestcreativepublish};
                int slot = s.place;  // sometimes the template of an empty slot
                while (s.b % 8 != 0 && slot < 35 && who->getSupplies().getItem(slot).isNull()) ++slot;
                wish.itemnbt = shopsystem::itemtosnbtasis(who->getSupplies().getItem(slot));
                result = shopsystem::publishcommission(who, xuids_[whose], wish, rules[s.a % 3]);
            } else if (s.what == act::adjust) {
                result = shopsystem::adjustcommission(who, xuids_[whose], s.place, revision, wish);
            } else if (s.what == act::pickup) {
                result = shopsystem::pickupcommission(who, xuids_[whose], s.place, revision);
            } else if (s.what == act::list) {
                ordomart::openOrdorecycleshopAsformmenu(who, true);
            }
        });
        if (s.what == act::list || s.what == act::answer) answers(s);
        return result;
    }

    // A row of the list, the sliders of the try-recycle form, or one of the two ways on.
    void answers(const step& s) {
        if (!isasked(s.who)) return;
        const json form = actors_[s.who]->form();
        json answer;
        if (form["type"] == "modal") answer = s.a % 4 != 0;
        if (form["title"] == "Recycle shop" && !form["buttons"].empty()) answer = s.a % form["buttons"].size();
        if (form["type"] == "custom_form")
            for (const auto& element : form["content"])
                answer.push_back(element["type"] != "slider"
                                     ? json()
                                     : json(element["max"].get<std::size_t>() * ((s.a + answer.size()) % 5) / 4));
        actors_[s.who]->answers(answer);
    }

    // ---- the books

    std::string wrong(const step& s, const picture& before, const std::optional<ownerresult>& result) {
        std::size_t changed = players;
        for (std::size_t i = 0; i < players; ++i) {
            if (i != s.who && now_.money[i] != before.money[i]) return "somebody else's money moved";
            if (now_.revisions[i] == before.revisions[i]) continue;
            if (changed != players || before.revisions[i] + 1 != now_.revisions[i]) return "more than one change";
            changed = i;
        }
        if (result && result->ok() != (changed != players)) return "the outcome is not what happened";
        if (result && result->ok() && s.what != act::publish && isold(s)) return "an old form was taken";
        if (changed == players) {
            if (result) ++happened["refused"];
            return now_ == before ? "" : "something moved without a change of a shop";
        }
        auto fault = balance(s, before, changed, result ? &*result : nullptr);
        return fault.empty() ? standing() : fault;
    }

    // Coins in purses and coins promised to sellers are one sum; pieces in hands, on the ground and in stores another.
    std::string balance(const step& s, const picture& before, std::size_t changed, const ownerresult* result) {
        const bool isoperator = s.who == theoperator;
        const auto &then = before.shops[changed], &shop = now_.shops[changed];
        const auto grown = [&](const char* key) { return shop[key].get<int>() - then[key].get<int>(); };
        const std::int64_t paid = before.money[s.who] - now_.money[s.who];
        auto& book = books_[changed];
        std::int64_t created = 0;
        int vanished = 0;
        std::string what = actnames[static_cast<int>(s.what)];
        if (s.what == act::publish) {
            const std::int64_t fee = !isoperator && then["recycleitems"].size() > freeslots ? slotcost : 0;
            created = isoperator ? deposit(shop["recycleitems"].back()) : -fee;
            book.push_back({paid - fee, !isoperator});
        } else if (s.what == act::adjust) {
            const auto entry = book.begin() + s.place;
            entry->held += paid;
            entry->plain &= !isoperator;
            if (isoperator) created = promised(now_) - promised(before);
            if (result->ended && entry->plain && entry->held != 0) return "an ended commission still holds money";
            if (result->ended) book.erase(entry), what = "end";
        } else if (s.what == act::answer) {
            if (grown("recyclecost") != -paid) return "the shop's cost is not the seller's gain";
            if (shop["isopshop"] == true) {
                if (shop["recycleitems"] != then["recycleitems"]) return "a sale changed an operator's record";
                created = -paid;
                vanished = grown("recycleamount");
            }
            for (std::size_t i = 0; i < book.size(); ++i) {
                if (shop["recycleitems"][i] == then["recycleitems"][i]) continue;
                if (shop["recycleitems"][i]["recycleitemleftwanna"] < 0) return "more was taken than wanted";
                book[i].held += paid;
                what = "sale";
            }
            if (vanished != 0) what = "sale to an operator";
        }
        ++happened[what];
        if (promised(now_) - promised(before) - paid != created) return "coins came or went";
        if (vanished == 0 ? now_.items != before.items : pieces(now_) != pieces(before) - vanished)
            return "pieces came or went";
        return {};
    }

    // What holds of every record at any moment.
    std::string standing() {
        for (std::size_t i = 0; i < players; ++i)
            for (std::size_t place = 0; place < books_[i].size(); ++place) {
                const auto& record = now_.shops[i]["recycleitems"][place];
                int waiting = 0;
                for (const auto& text : record["recycleditemnbtlist"])
                    waiting += shopsystem::itemfromsnbt(text.get<std::string>()).getCount();
                if (record["nowhasrecyclenum"] != waiting) return "the count of what waits is wrong";
                if (books_[i][place].plain && books_[i][place].held != deposit(record))
                    return fmt::format("record {} of shop {} holds {}: {}", place, i, books_[i][place].held,
                                       record.dump());
            }
        return {};
    }

    // What an owner has paid into a record and nobody has been paid out of it. An operator's hand ends the account.
    struct account {
        std::int64_t held = 0;
        bool plain = true;
    };

    faulty::Money faulty_;
    const bool llmoney_;
    const std::int32_t usualfreeslots_ = ordomart::maxfreeslot, usualslotcost_ = ordomart::extraslotcost;
    stage::Stage stage_;
    std::vector<std::string> xuids_;
    std::vector<stage::Actor*> actors_;                          // null while they are away
    std::map<std::size_t, std::map<std::string, int>> luggage_;  // what they have then
    std::vector<std::vector<account>> books_;
    picture now_;
};

}  // namespace recycling
