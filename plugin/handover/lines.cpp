// Each kind is described once, as its keys and fields, and written and read by that description.
#include "plugin/handover/lines.h"

#include <fmt/format.h>

#include <charconv>
#include <set>

#include "plugin/shopsystem/shopfiles.h"

namespace handover {

using namespace ledger;

namespace {

std::uint64_t readhex(const char* key, const json& value) {
    std::uint64_t hash = 0;
    const auto text = value.is_string() ? value.get<std::string>() : std::string();
    const auto read = std::from_chars(text.data(), text.data() + text.size(), hash, 16);
    if (read.ec != std::errc() || hexof(hash) != text) throw fielderror(key, "must be 16 hexadecimal digits");
    return hash;
}

struct writer {
    json to = json::object();
    template <class Field>
    void operator()(const char* key, const Field& field) {
        to[key] = field;
    }
    // Left out where it says nothing.
    template <class Field>
    void maybe(const char* key, const Field& field) {
        if (field != Field()) to[key] = field;
    }
    void hash(const char* key, std::uint64_t value) { to[key] = hexof(value); }
    template <class Names, class Value>
    void named(const char* key, const Names& names, Value value) {
        to[key] = names.nameof(value);
    }
    template <class Value, class Each>
    void optional(const char* key, const std::optional<Value>& value, Each each) {
        if (!value) return;
        writer inner;
        each(inner, *value);
        to[key] = std::move(inner.to);
    }
    template <class Value, class Each>
    void list(const char* key, const std::vector<Value>& values, Each each) {
        if (values.empty()) return;
        json& all = to[key] = json::array();
        for (const auto& value : values) {
            writer inner;
            each(inner, value);
            all.push_back(std::move(inner.to));
        }
    }
};

struct reader {
    const json& from;
    std::set<std::string_view> known = {};

    const json* find(const char* key) {
        if (!from.is_object()) throw fielderror({}, "must be an object");
        known.insert(key);
        const auto found = from.find(key);
        return found == from.end() ? nullptr : &*found;
    }
    const json& get(const char* key) {
        const auto* const found = find(key);
        if (found == nullptr) throw fielderror(key, "is missing");
        return *found;
    }
    template <class Field>
    void operator()(const char* key, Field& field) {
        shopsystem::takefield(key, get(key), field);
    }
    template <class Field>
    void maybe(const char* key, Field& field) {
        if (const auto* const found = find(key)) shopsystem::takefield(key, *found, field);
    }
    void hash(const char* key, std::uint64_t& value) { value = readhex(key, get(key)); }
    template <class Names, class Value>
    void named(const char* key, const Names& names, Value& value) {
        std::string name;
        (*this)(key, name);
        const auto found = names.named(name);
        if (!found) throw fielderror(key, "is unknown: \"" + name + "\"");
        value = *found;
    }
    template <class Value, class Each>
    void optional(const char* key, std::optional<Value>& value, Each each) {
        if (const auto* const found = find(key))
            shopsystem::namingplace(key, [&] { readall(*found, value.emplace(), each); });
    }
    template <class Value, class Each>
    void list(const char* key, std::vector<Value>& values, Each each) {
        const auto* const found = find(key);
        if (found == nullptr) return;
        if (!found->is_array()) throw fielderror(key, "must be a list");
        for (std::int64_t place = 0; const auto& one : *found)
            shopsystem::namingplace(shopsystem::recordplace{key, place++},
                                    [&] { readall(one, values.emplace_back(), each); });
    }
    template <class Value, class Each>
    static void readall(const json& from, Value& value, Each each) {
        reader inner{from};
        each(inner, value);
        inner.end();
    }
    void end() const {
        for (const auto& [key, value] : from.items())
            if (!known.contains(key)) throw fielderror(key, "is no key of this line");
    }
};

constexpr struct {
    [[nodiscard]] static const char* nameof(kind what) { return ledger::nameof(what); }
    [[nodiscard]] static std::optional<kind> named(const std::string& name) { return kindof(name); }
} kinds;
constexpr struct {
    [[nodiscard]] static const char* nameof(shoptype section) { return shopsystem::sectionkey(section); }
    [[nodiscard]] static std::optional<shoptype> named(const std::string& name) {
        for (const auto section : {shopsystem::sell, shopsystem::recycle})
            if (name == shopsystem::sectionkey(section)) return section;
        return std::nullopt;
    }
} sections;
constexpr struct {
    [[nodiscard]] static const char* nameof(sumof what) { return what == sumof::goods ? "item" : "shop"; }
    [[nodiscard]] static std::optional<sumof> named(const std::string& name) {
        for (const auto what : {sumof::goods, sumof::shop})
            if (name == nameof(what)) return what;
        return std::nullopt;
    }
} sums;

constexpr auto visitshop = [](auto& visit, auto& of) {
    visit("owner", of.owner);
    visit.named("section", sections, of.section);
    visit("revision", of.revision);
    visit("entries", of.entries);
    visit("goods", of.goods);
    visit("discounts", of.discounts);
    visit("about", of.about);
};
constexpr auto visitstate = [](auto& visit, auto& row) {
    visit("left", row.left);
    visit.maybe("waiting", row.waiting);
    visit.maybe("offer", row.offer);
    visit.maybe("sponsored", row.sponsored);
};
constexpr auto visitrow = [](auto& visit, auto& row) {
    visit.hash("tag", row.tag);
    visitstate(visit, row);
};
constexpr auto visitpile = [](auto& visit, auto& pile) {
    visit.hash("tag", pile.tag);
    visit("pieces", pile.pieces);
};
constexpr auto visitentry = [](auto& visit, auto& of) {
    visit("number", of.number);
    visit("time", of.time);
    visit.named("what", kinds, of.what);
    visit("shop", of.shop);
    visit("actor", of.actor);
    visit.maybe("isopshop", of.isopshop);
    visit.maybe("byoperator", of.byoperator);
    visit.hash("tag", of.tag);
    visit("pieces", of.pieces);
    visit("price", of.price);
    visit("paid", of.paid);
    visit("fee", of.fee);
    visit("revision", of.revision);
    visit("count", of.count);
    visit("volume", of.volume);
    visit.optional("before", of.before, visitstate);
    visit.optional("after", of.after, visitstate);
    visit.list("piles", of.piles, visitpile);
    visit.maybe("undoes", of.undoes);
    visit.maybe("undoneby", of.undoneby);
};
constexpr auto visitbooks = [](auto& visit, auto& of) {
    visit("from", of.number);
    visit("count", of.count);
    visit("volume", of.volume);
    visit.list("rows", of.rows, visitrow);
};
constexpr auto visitsum = [](auto& visit, auto& of) {
    visit("day", of.day);
    visit.named("kind", sums, of.kind);
    visit("of", of.of);
    visit("trades", of.sum.trades);
    visit("pieces", of.sum.pieces);
    visit("money", of.sum.money);
    visit("fees", of.sum.fees);
};

template <class Value, class Visit>
json writtenby(const Value& of, Visit visit) {
    writer writing;
    visit(writing, of);
    return std::move(writing.to);
}
template <class Value, class Visit>
Value readby(const json& from, Visit visit) {
    Value value;
    reader::readall(from, value, visit);
    return value;
}

constexpr const char* pricekey = "prices";

}  // namespace

std::string shopline::key() const { return owner + "." + shopsystem::sectionkey(section); }

std::string hexof(std::uint64_t hash) { return fmt::format("{:016x}", hash); }

json written(const shopline& of) { return writtenby(of, visitshop); }
json written(const entry& of) { return writtenby(of, visitentry); }
json written(const shopbooks& opening) { return writtenby(opening, visitbooks); }
json written(const sumline& of) {
    auto made = writtenby(of, visitsum);
    json& all = made[pricekey] = json::array();
    for (const auto& [price, trades] : of.sum.at.all()) all.push_back({price, trades});
    return made;
}

shopline readshop(const json& from) {
    auto read = readby<shopline>(from, visitshop);
    if (!read.about.is_object()) throw fielderror("about", "must be an object");
    return read;
}

entry readentry(const json& from) {
    auto read = readby<entry>(from, visitentry);
    if (read.before) read.before->tag = read.tag;
    if (read.after) read.after->tag = read.tag;
    if ((read.undoes != 0 || !read.undoneby.empty()) && !isundo(read.what))
        throw fielderror("undoes", "only an undo undoes something");
    return read;
}

shopbooks readopening(const json& from) { return readby<shopbooks>(from, visitbooks); }

sumline readsum(const json& from) {
    json rest = from;
    json prices = json::array();
    if (rest.is_object() && rest.contains(pricekey)) {
        prices = std::move(rest[pricekey]);
        rest.erase(pricekey);
    }
    auto read = readby<sumline>(rest, visitsum);
    if (!prices.is_array()) throw fielderror(pricekey, "must be a list");
    std::int64_t last = INT64_MIN;
    for (const auto& one : prices) {
        std::int64_t price = 0, trades = 0;
        if (!one.is_array() || one.size() != 2) throw fielderror(pricekey, "must be pairs of price and trades");
        shopsystem::takefield(pricekey, one[0], price);
        shopsystem::takefield(pricekey, one[1], trades);
        if (price <= last || trades <= 0) throw fielderror(pricekey, "must rise, each with some trades");
        read.sum.at.add(last = price, trades);
    }
    if (prices.size() > ledger::prices::most) throw fielderror(pricekey, "are too many");
    return read;
}

}  // namespace handover
