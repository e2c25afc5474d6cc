#include "plugin/handover/checking.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <set>
#include <stdexcept>
#include <tuple>
#include <unordered_set>

#include "plugin/ledger/audit.h"
#include "plugin/shopsystem/itemidentity.h"
#include "plugin/shopsystem/recycleshop.h"
#include "plugin/shopsystem/sellshop.h"
#include "plugin/shopsystem/shopfiles.h"

namespace handover {

using namespace shopsystem;

void numbering::add(std::uint64_t number) {
    if (runs_.empty() || runs_.back().number + runs_.back().length != number) runs_.push_back({number, size_, 0});
    ++runs_.back().length;
    ++size_;
}

std::uint64_t numbering::before(std::uint64_t number) const {
    const auto behind = std::ranges::upper_bound(runs_, number, {}, &run::number);
    if (behind == runs_.begin()) return 0;
    const auto& in = *std::prev(behind);
    return in.place + std::min(number - in.number, in.length);
}

namespace {

constexpr std::size_t longestkey = 64;
constexpr std::int64_t piecesbound = INT32_MAX, moneybound = INT64_C(1)
                                                             << 60;          // so that no product or sum of them wraps
constexpr std::uint64_t lastnumber = 999999999999;                           // of the digits that a key has
constexpr std::int64_t lasttime = 253402300799, lastday = lasttime / 86400;  // the year 9999

void atleast(const char* key, std::int64_t value, std::int64_t least = 0, std::int64_t most = INT64_MAX) {
    if (value < least || value > most)
        throw fielderror(key, most == INT64_MAX ? fmt::format("{} is below {}", value, least)
                                                : fmt::format("{} is not between {} and {}", value, least, most));
}

void checkstate(const char* key, const ledger::rowstate& row) {
    namingplace(key, [&] {
        atleast("left", row.left, INT32_MIN, piecesbound);
        atleast("waiting", row.waiting, INT32_MIN, piecesbound);
        atleast("offer", row.offer, INT32_MIN, piecesbound);
        atleast("sponsored", row.sponsored, -moneybound, moneybound);
    });
}

// It becomes the name of a file.
void checkowner(const std::string& key) {
    const auto fits = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '-' || c == '_'; };
    if (key.empty() || key == "0" || key.size() > longestkey || !std::ranges::all_of(key, fits))
        throw fielderror("owner", "is no owner's key");
}

// All keys are there, and what a shop of this kind has beside its lines.
template <class Row, class Visit>
void haskeys(const json& record, Row& row, Visit visit) {
    if (!record.is_object()) throw fielderror({}, "must be an object");
    visit(row, [&](const char* key, const auto&) {
        if (!record.contains(key)) throw fielderror(key, "is missing");
    });
    fromjson(record, row);
}

void checkitem(const std::string& itemnbt) {
    if (checkrawitemvalid(itemfromsnbt(itemnbt))) return;
    const auto name = ledger::variantof(itemnbt).name;
    throw fielderror("itemnbt", name.empty() ? "is no item" : fmt::format("this server knows no item \"{}\"", name));
}

void checkgood(const json& record) {
    shopitem row;
    haskeys(record, row, [](auto& of, auto visit) { visitsellfields(of, visit); });
    atleast("shopitemleftnum", row.shopitemleftnum);
    atleast("price", row.price);
    checkitem(row.itemnbt);
}

void checkcommission(const json& record) {
    recycleshopitem row;
    haskeys(record, row, [](auto& of, auto visit) { visitrecyclefields(of, visit); });
    atleast("recycleitemleftwanna", row.recycleitemleftwanna);
    atleast("nowhasrecyclenum", row.nowhasrecyclenum);
    atleast("offer", row.offer);
    atleast(sponsoredkey, row.sponsored, 0, std::int64_t{row.recycleitemleftwanna} * row.offer);
    checkitem(row.itemnbt);
    std::int64_t pieces = 0;
    bool allknown = true;
    for (const auto& text : row.recycleditemnbtlist) {
        const auto stack = readstored(text);
        pieces += stack.pieces;
        allknown &= checkrawitemvalid(stack.item);
    }
    // Of a stack that nobody here can make the count may not be in its text.
    if (allknown ? pieces != row.nowhasrecyclenum : pieces > row.nowhasrecyclenum)
        throw fielderror("nowhasrecyclenum",
                         fmt::format("{} pieces are counted, and {} are stored", row.nowhasrecyclenum, pieces));
}

void checkdiscount(const json& record) {
    std::string text;
    std::int64_t end = 0;
    for (const char* key : {"shopitemtag", "discount", "timeend"}) {
        if (!record.is_object() || !record.contains(key)) throw fielderror(key, "is missing");
        if (std::string_view(key) == "timeend")
            takefield(key, record.at(key), end);
        else
            takefield(key, record.at(key), text);
        if (std::string_view(key) == "discount" && text.empty()) throw fielderror(key, "is empty");
    }
}

template <class Shop>
ledger::shopbooks booksin(const shopline& head, const json& section) {
    Shop shop(head.owner);
    json known;
    shop.savetojson(known);
    for (const auto& [key, value] : section.items())
        if (!known.contains(key)) throw fielderror("about." + key, "is no key of a shop");
    for (const auto& [key, value] : known.items())
        if (!section.contains(key)) throw fielderror("about." + key, "is missing");
    namingplace("about", [&] { shop.loadfromjson(section); });
    return ledger::booksof(shop);
}

class checker : public linetaker {
public:
    explicit checker(checkedfile& into) : into_(into) {}

    void market(const json& of) override { into_.money = of.at("money"); }
    void good(const json& record) override { checkgood(record); }
    void discount(const json& record) override { checkdiscount(record); }
    void commission(const json& record) override { checkcommission(record); }

    void shop(const shopline& head, const json& section) override {
        checkowner(head.owner);
        if (!shops_.emplace(head.key(), standing{}).second)
            throw fielderror("owner", fmt::format("the shop {} is there twice", head.key()));
        if (owners_.insert(head.owner).second) into_.owners.push_back(head.owner);
        auto& shop = shops_[head.key()];
        shop.head = head;
        shop.seen = head.section == sell ? booksin<sellshop>(head, section) : booksin<recycleshop>(head, section);
        shop.head.about = nullptr;
        shop.line = walk->shopat();
    }

    void opening(const shopline& of, const ledger::shopbooks& books) override {
        auto& shop = shops_.at(of.key());
        if (books.number > of.entries) throw fielderror("from", "lies behind the entries of the shop in this file");
        for (const auto& row : books.rows) checkstate("rows", row);
        shop.books = books;
    }

    void item(const std::string& text) override {
        if (!texts_.insert(ledger::hashof(text)).second) throw fielderror("tag", "is there twice");
    }

    void entry(const ledger::entry& one) override {
        const auto found = shops_.find(one.shop + "." + sectionkey(one.section()));
        if (found == shops_.end() || !found->second.books)
            throw fielderror("shop", fmt::format("{} has no such shop with a beginning above", one.shop));
        auto& shop = found->second;
        if (one.number <= last_) throw fielderror("number", fmt::format("{} stands behind {}", one.number, last_));
        if (one.number > lastnumber) throw fielderror("number", "is too large");
        last_ = one.number;
        if (one.number >= shop.head.entries) throw fielderror("number", "lies behind the state of its shop");
        atleast("time", one.time, 0, lasttime);
        atleast("pieces", one.pieces, -piecesbound, piecesbound);
        atleast("price", one.price, 0, piecesbound);
        atleast("paid", one.paid, -moneybound, moneybound);
        atleast("fee", one.fee, -moneybound, moneybound);
        if (one.before) checkstate("before", *one.before);
        if (one.after) checkstate("after", *one.after);
        checktag("tag", one.tag);
        for (const auto& pile : one.piles) checktag("piles", pile.tag);
        if (ledger::isundo(one.what)) {
            if (one.undoes == 0 || one.undoes >= one.number) throw fielderror("undoes", "is no entry above");
            if (!undone_.insert(one.undoes).second)
                throw fielderror("undoes", fmt::format("entry {} is undone twice", one.undoes));
        }
        into_.numbers.add(one.number);
        if (one.number < shop.books->number) return;
        std::vector<ledger::difference> differs;
        shop.books->apply(one, differs);
        if (!differs.empty()) throw std::runtime_error(ledger::lineof(differs.front()));
    }

    void sum(const sumline& one) override {
        atleast("day", one.day, 0, lastday);
        for (const auto& [key, value] : {std::pair("trades", one.sum.trades), std::pair("pieces", one.sum.pieces),
                                         std::pair("money", one.sum.money), std::pair("fees", one.sum.fees)})
            atleast(key, value, -moneybound, moneybound);
        const auto place = std::tuple(one.day, one.kind, one.of);
        if (lastsum_ >= place) throw fielderror("of", "is there twice, or not in its order");
        lastsum_ = place;
        if (one.kind == ledger::sumof::goods && ledger::readvariant(one.of).name.empty())
            throw fielderror("of", "is no item with its variant");
    }

    // Whether each shop is where its entries lead to.
    void compare() const {
        for (const auto& [key, shop] : shops_) {
            if (!shop.books) continue;
            std::vector<ledger::difference> differs;
            shop.books->compare(shop.seen, {shop.head.owner, shop.head.section, "", shop.books->number - 1, "", ""},
                                differs);
            if (!differs.empty())
                throw std::runtime_error(
                    fmt::format("{}, line {}: {}", name, shop.line, ledger::lineof(differs.front())));
        }
    }

    const filewalk* walk = nullptr;
    std::string name;

private:
    void checktag(const char* key, std::uint64_t tag) const {
        if (!texts_.contains(tag)) throw fielderror(key, "is no item above");
    }

    struct standing {
        shopline head;
        ledger::shopbooks seen;
        std::optional<ledger::shopbooks> books;  // as the ledger has it so far
        std::uint64_t line = 0;
    };
    checkedfile& into_;
    std::map<std::string, standing> shops_;
    std::set<std::string> owners_;
    std::unordered_set<std::uint64_t> texts_, undone_;
    std::uint64_t last_ = 0;
    std::tuple<std::int64_t, ledger::sumof, std::string> lastsum_ = {-1, {}, {}};
};

}  // namespace

checkedfile checkfile(const std::string& path, const std::function<bool()>& goeson) {
    checkedfile file;
    checker checks(file);
    filewalk walk(path, checks);
    checks.walk = &walk;
    checks.name = nameof(path);
    while (walk.step())
        if (!goeson()) throw std::runtime_error("the server stops");
    checks.compare();
    file.counts = walk.counts();
    file.sum = walk.sum();
    return file;
}

}  // namespace handover
