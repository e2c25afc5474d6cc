#include "tests/story/books.h"

#include <stdexcept>

namespace story {

namespace {

void demand(bool holds, const std::string& otherwise) {
    if (!holds) throw std::runtime_error(otherwise);
}

json rowsof(const json& shop, section kind) {
    const auto& rows = shop[kind == sells ? "items" : "recycleitems"];
    return rows.is_array() ? rows : json::array();
}
std::int64_t promised(const json& row) { return row.value("sponsored", std::int64_t{0}); }
std::int64_t deposit(const json& row) {
    return row["recycleitemleftwanna"].get<std::int64_t>() * row["offer"].get<std::int64_t>() - promised(row);
}
pieces stored(const json& row) {
    pieces all;
    for (const auto& text : row["recycleditemnbtlist"]) count(all, stackof(text));
    return all;
}
std::int64_t sum(const pieces& all) {
    std::int64_t total = 0;
    for (const auto& [what, number] : all) total += number;
    return total;
}
void add(pieces& all, const pieces& more, std::int64_t times = 1) {
    for (const auto& [what, number] : more)
        if ((all[what] += number * times) == 0) all.erase(what);
}
json without(json row, std::initializer_list<const char*> keys) {
    for (const auto* key : keys) row.erase(key);
    return row;
}
std::string told(const pieces& all) {
    std::string text;
    for (const auto& [what, number] : all) text += fmt::format(" {:+} {}", number, what);
    return text.empty() ? " nothing" : text;
}

std::int64_t discounted(const json& shop, const json& row, std::int64_t now) {
    std::int64_t price = row["price"];
    if (shop["shopdiscount"].is_array())
        for (const auto& record : shop["shopdiscount"]) {
            if (record["shopitemtag"] != row["shopitemtag"] || record["timeend"].get<std::int64_t>() < now) continue;
            const std::string text = record["discount"];
            const int number = std::atoi(text.c_str() + 1);
            price = text[0] == '%' ? price * number / 100 : price - number;
        }
    return std::max<std::int64_t>(price, 0);
}

// Of rows that stand in both in the same order, the places where they differ.
std::vector<std::size_t> differing(const json& x, const json& y) {
    std::vector<std::size_t> places;
    for (std::size_t i = 0; i < x.size(); ++i)
        if (x[i] != y[i]) places.push_back(i);
    return places;
}
// Where the one row is that the shorter list lacks.
std::size_t gone(const json& x, const json& y) {
    std::size_t place = 0;
    while (place < y.size() && x[place] == y[place]) ++place;
    for (std::size_t i = place; i < y.size(); ++i) demand(x[i + 1] == y[i], "a row went, and others changed");
    return place;
}

class Reader {
public:
    Reader(const picture& then, const picture& now, const deed& by) : then_(then), now_(now), by_(by) {}
    std::string what = "nothing";
    bool inbanned = false;

    void read() {
        for (shop_ = 0; shop_ < parties; ++shop_)
            for (const auto kind : {sells, recycles}) readshop(kind);
        if (!changed_) keptfee();
        compare();
        if (changed_) standing();
    }

private:
    void readshop(section kind) {
        if (then_.shops[shop_][kind] == now_.shops[shop_][kind]) return;
        const char* const noted[] = {"ownername", "ownerlang"};  // at a look, without a change
        json x = then_.shops[shop_][kind], y = now_.shops[shop_][kind];
        for (const char* key : noted) x.erase(key), y.erase(key);
        const auto risen = now_.revisions[shop_][kind] - then_.revisions[shop_][kind];
        if (kind == sells && lapses(x, y)) demand(risen > 0, "a discount went without a new revision");
        const bool wasbanned = isbanned(x, now_.now);
        if (x["shopstate"] != y["shopstate"]) {
            // A shop that is read in the last second of its ban is banned no more.
            const bool stays = isbanned(x, now_.now + 1);
            demand(!stays || by_.bans || isbanned(y, now_.now),
                   fmt::format("a ban went by itself at {}: {} to {}", now_.now, x["shopstate"].dump(),
                               y["shopstate"].dump()));
            demand(wasbanned || by_.bans || !isbanned(y, now_.now), "a ban came by itself");
            if (by_.bans) what = wasbanned == isbanned(y, now_.now) ? "ban again" : wasbanned ? "unban" : "ban";
            x["shopstate"] = y["shopstate"];
        }
        if (x == y) return;
        demand(risen > 0, "a change without a new revision");
        demand(!changed_, "more than one shop changed");
        demand(by_.isalive, "a dead man changed a shop");
        changed_ = true;
        x_ = rowsof(x, kind), y_ = rowsof(y, kind);
        isbanned_ = wasbanned && isbanned(y, now_.now);
        if (y_.size() == x_.size() + 1)
            appended(kind);
        else if (y_.size() + 1 == x_.size())
            taken(kind, gone(x_, y_));
        else if (demand(x_.size() == y_.size(), "rows came or went"); kind == sells && x["sellcount"] != y["sellcount"])
            purchase(x, y);
        else if (kind == recycles && x["recycleamount"] != y["recycleamount"])
            sale(x, y);
        else if (const auto places = differing(x_, y_); places.empty())
            edited(x, y);
        else
            adjusted(kind, places);
    }

    // What lapsed may go at any look at the shop, on its own.
    bool lapses(json& x, const json& y) {
        if (!x["shopdiscount"].is_array()) return false;
        json kept = json::array();
        for (const auto& record : x["shopdiscount"]) {
            const bool stays = std::ranges::find(y["shopdiscount"], record) != y["shopdiscount"].end();
            if (stays || record["timeend"].get<std::int64_t>() >= now_.now) kept.push_back(record);
        }
        const bool any = kept.size() < x["shopdiscount"].size();
        if (any && what == "nothing") what = "lapse";
        x["shopdiscount"] = kept;
        return any;
    }

    void ownersright() const {
        demand(by_.isoperator || by_.who == shop_, "somebody else's shop was changed: " + json::diff(x_, y_).dump());
    }
    void fresh(section kind) const {
        demand(!by_.asked || by_.asked->seen[shop_][kind] >= then_.revisions[shop_][kind], "an old form was taken");
    }
    void pays(std::int64_t amount) { money_[by_.who] -= by_.isoperator ? 0 : amount; }

    void appended(section kind) {
        const auto& row = y_.back();
        demand(std::equal(x_.begin(), x_.end(), y_.begin()), "a row came, and others changed");
        demand(!isbanned_, "a banned shop has a new row");
        ownersright();
        if (static_cast<std::int64_t>(x_.size()) > freeslots) pays(slotcost);
        if (kind == sells) {
            what = "upload";
            count(moved_, stackof(row["itemnbt"]), -row["shopitemleftnum"].get<std::int64_t>());
        } else {
            what = "publish";
            demand(row["recycleitemleftwanna"] > 0 && stored(row).empty(), "a commission begins wrongly");
            pays(deposit(row));
        }
    }

    void taken(section kind, std::size_t place) {
        const auto& row = x_[place];
        ownersright();
        fresh(kind);
        if (kind == sells) {
            what = "take off";
            count(moved_, stackof(row["itemnbt"]), row["shopitemleftnum"].get<std::int64_t>());
        } else {
            what = "end";
            pays(-deposit(row));
            add(moved_, stored(row));
        }
    }

    void adjusted(section kind, const std::vector<std::size_t>& places) {
        demand(places.size() == 1, "more than one row changed");
        const auto &x = x_[places[0]], &y = y_[places[0]];
        demand(x["itemnbt"] == y["itemnbt"], "a row holds another item");
        ownersright();
        fresh(kind);
        if (kind == sells) {
            const auto more = y["shopitemleftnum"].get<std::int64_t>() - x["shopitemleftnum"].get<std::int64_t>();
            // An operator's form with one input and nothing else sets the stock, and no piece moves.
            const auto& asked = by_.asked.value().form["content"];
            const bool sets = by_.isoperator && asked.size() == 2 && asked[1]["type"] == "input";
            what = sets ? "set stock" : more > 0 ? "replenish" : "adjust";
            if (!sets) count(moved_, stackof(x["itemnbt"]), -more);
        } else if (x["recycleditemnbtlist"] != y["recycleditemnbtlist"]) {
            what = "pick up";
            demand(stored(y).empty(), "not everything was picked up");
            const auto rest = {"recycleditemnbtlist", "nowhasrecyclenum"};
            demand(without(x, rest) == without(y, rest), "more was changed than what waited");
            add(moved_, stored(x));
        } else {
            what = deposit(x) > deposit(y) ? "lower" : deposit(x) < deposit(y) ? "raise" : "reword";
            pays(deposit(y) - deposit(x));
        }
    }

    void edited(const json& x, const json& y) {
        demand(by_.isoperator || by_.who == shop_, "somebody else's shop was changed: " + json::diff(x, y).dump());
        const auto texts = {"shopname", "describe", "shopitemicon", "isopshop"};
        what = "edit";
        if (without(x, texts) == without(y, texts)) {
            demand(!y["isopshop"].get<bool>() || x["isopshop"] == true || by_.isoperator, "a shop without limits");
            return;
        }
        what = "discount";
        demand(without(x, {"shopdiscount"}) == without(y, {"shopdiscount"}), "an edit changed more than texts");
    }

    [[nodiscard]] std::pair<quote, std::size_t> quoted() const {
        demand(by_.asked.has_value(), "a trade without a form");
        const auto asked = quoteof(*by_.asked);
        demand(asked.has_value(), "a trade by a form of something else");
        const auto* const key = x_[0].contains("price") ? "shopitemname" : "recycleitemname";
        for (std::size_t place = 0; place < x_.size(); ++place)
            if (x_[place][key] == asked->name) return {*asked, place};
        throw std::runtime_error("a trade in what is not there");
    }

    void purchase(const json& x, const json& y) {
        const auto [asked, place] = quoted();
        fresh(sells);
        inbanned = isbanned_;
        const bool isopshop = x["isopshop"];
        what = isopshop ? "purchase from an operator" : "purchase";
        const auto pieces = y["sellcount"].get<std::int64_t>() - x["sellcount"].get<std::int64_t>();
        const auto total = asked.price * pieces;
        demand(pieces == asked.quantity && pieces > 0, "another quantity than was asked for");
        demand(y["salesvolume"] == x["salesvolume"].get<std::int64_t>() + total, "the volume is not what was paid");
        auto expected = x_;
        if (!isopshop) {
            const auto left = x_[place]["shopitemleftnum"].get<std::int64_t>() - pieces;
            demand(left >= 0, "more was sold than there is");
            expected[place]["shopitemleftnum"] = left;
        }
        demand(y_ == expected, "the stock is not what was sold");
        demand(then_.money[by_.who] >= total, "bought on credit");
        // Of nothing there is a fee of 1, too: LLMoney asks the buyer for it, a scoreboard the owner.
        const auto fee = std::max<std::int64_t>(total * tax / 100, 1);
        const auto asfee = by_.llmoney && total == 0 ? std::clamp<std::int64_t>(then_.money[by_.who], 0, 1) : 0;
        money_[by_.who] -= total + asfee;
        if (!isopshop) money_[shop_] += by_.llmoney ? std::max<std::int64_t>(total - fee, 0) : total - fee;
        count(moved_, stackof(x_[place]["itemnbt"]), pieces);
    }

    void sale(const json& x, const json& y) {
        const auto [asked, place] = quoted();
        fresh(recycles);
        inbanned = isbanned_;
        const auto taken = y["recycleamount"].get<std::int64_t>() - x["recycleamount"].get<std::int64_t>();
        const auto paid = taken * x_[place]["offer"].get<std::int64_t>();
        demand(y["recyclecost"] == x["recyclecost"].get<std::int64_t>() + paid, "the cost is not what was paid");
        demand(x_[place]["offer"] == asked.price, "another offer than was shown");
        money_[by_.who] += paid;
        what = x["isopshop"] == true ? "sale to an operator" : "sale";
        if (x["isopshop"] == true) {
            demand(x_ == y_, "a sale changed an operator's row");
            moved_ = delta();
            demand(sum(moved_) == -taken, "other pieces left than were paid");
            for (const auto& [piece, number] : moved_)
                demand(number < 0 && piece.starts_with(stackof(x_[place]["itemnbt"]).getTypeName()),
                       "took another item");
            return;
        }
        demand(differing(x_, y_) == std::vector{place}, "a sale changed another row");
        auto added = stored(y_[place]);
        add(added, stored(x_[place]), -1);
        demand(sum(added) == taken, "not what was taken is stored");
        demand(y_[place]["recycleitemleftwanna"] == x_[place]["recycleitemleftwanna"].get<std::int64_t>() - taken,
               "not what was taken is no longer wanted");
        demand(deposit(y_[place]) == std::min(deposit(x_[place]), deposit(y_[place]) + promised(y_[place])),
               "a sale spends what was paid before what was promised");
        const auto rest = {"recycleditemnbtlist", "nowhasrecyclenum", "recycleitemleftwanna", "sponsored"};
        demand(without(x_[place], rest) == without(y_[place], rest), "a sale changed the row");
        add(moved_, added, -1);
    }

    // An upload keeps its fee where the shop is banned, the price is none, or the slot has been emptied.
    void keptfee() {
        if (now_.money[by_.who] - then_.money[by_.who] != -slotcost || !by_.asked || by_.isoperator) return;
        const auto& form = by_.asked->form;
        if (form["type"] != "custom_form" || form["content"].size() < 3) return;
        bool hasslider = false,
             isown = static_cast<std::int64_t>(rowsof(then_.shops[by_.who][sells], sells).size()) > freeslots;
        for (const auto& element : form["content"]) hasslider |= element["type"] == "slider";
        if (!hasslider || !isown || form["content"][1]["type"] != "label") return;
        what = "fee kept";
        money_[by_.who] -= slotcost;
    }

    // What has come to who did it, into his hands or to his feet.
    [[nodiscard]] pieces delta() const {
        pieces all = now_.hands[by_.who];
        add(all, now_.ground);
        add(all, then_.hands[by_.who], -1);
        add(all, then_.ground, -1);
        return all;
    }

    void compare() const {
        for (std::size_t who = 0; who < parties; ++who) {
            const auto moved = now_.money[who] - then_.money[who];
            demand(moved == money_[who], fmt::format("{}: the money of {} changes by {} and not by {}", what,
                                                     World::name(who), moved, money_[who]));
            if (who < players && who != by_.who)
                demand(now_.hands[who] == then_.hands[who], "somebody else's pieces moved");
        }
        demand(delta() == moved_, fmt::format("{}: moved{} and not{}", what, told(delta()), told(moved_)));
    }

    // What holds behind every change.
    void standing() const {
        for (const auto& shop : now_.shops) {
            for (const auto& row : rowsof(shop[sells], sells)) demand(row["shopitemleftnum"] >= 0, "a negative stock");
            for (const auto& row : rowsof(shop[recycles], recycles)) {
                demand(row["recycleitemleftwanna"] >= 0, "less than nothing is wanted");
                demand(promised(row) >= 0 && deposit(row) >= 0, "more is promised than is wanted");
                demand(row["nowhasrecyclenum"] == sum(stored(row)), "the count of what waits is wrong");
            }
        }
    }

    const picture &then_, &now_;
    const deed& by_;
    std::size_t shop_ = 0;
    json x_, y_;  // the rows of the shop that has changed
    bool changed_ = false, isbanned_ = false;
    std::array<std::int64_t, parties> money_{};  // what must have moved
    pieces moved_;
};

}  // namespace

entry book(const picture& then, const picture& now, const deed& by) {
    Reader reader(then, now, by);
    try {
        reader.read();
    } catch (const std::exception& fault) {
        return {reader.what, fault.what(), false};
    }
    return {reader.what, {}, reader.inbanned};
}

std::optional<quote> quoteof(const dialog& asked) {
    if (asked.form["type"] != "custom_form") return {};
    quote found;
    for (std::size_t i = 0; i < asked.form["content"].size(); ++i) {
        const auto& element = asked.form["content"][i];
        const std::string text = element["text"];
        const auto name = text.find(":§b"), end = text.find("§f§r\n"), price = text.find("§e");
        if (element["type"] == "label" && text.find("【§2") != std::string::npos && price != std::string::npos) {
            found.name = text.substr(name + 4, end - name - 4);
            found.price = std::atoll(text.c_str() + price + 3);
        }
        if (element["type"] == "input" && asked.answer.is_array())
            found.quantity = std::atoll(asked.answer[i].get<std::string>().c_str());
    }
    if (found.name.empty()) return {};
    return found;
}

std::string wrongprice(const picture& then, const picture& now, const dialog& asked) {
    const auto offered = quoteof(asked);
    if (!offered) return {};
    for (const auto& shop : then.shops)
        for (const auto& row : rowsof(shop[sells], sells)) {
            if (row["shopitemname"] != offered->name) continue;
            for (auto moment = then.now; moment <= now.now; ++moment)
                if (discounted(shop[sells], row, moment) == offered->price) return {};
            return fmt::format("{} is offered for {}", row.dump(), offered->price);
        }
    return {};
}

}  // namespace story
