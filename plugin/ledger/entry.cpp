// An entry is described once, as its fields in order, and both written and read by that description.
#include "plugin/ledger/entry.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

#include "platform/binarystream.h"
#include "plugin/shopsystem/itemidentity.h"

namespace ledger {

using platform::BinaryStream;
using platform::ReadError;

namespace {

constexpr std::uint8_t format = 1;
constexpr struct {
    kind what;
    const char* name;
} names[] = {{kind::purchase, "purchase"},
             {kind::sale, "sale"},
             {kind::upload, "upload"},
             {kind::taken, "taken"},
             {kind::replenish, "replenish"},
             {kind::setstock, "setstock"},
             {kind::broken, "broken"},
             {kind::publish, "publish"},
             {kind::adjust, "adjust"},
             {kind::pickup, "pickup"},
             {kind::undopurchase, "undo purchase"},
             {kind::undosale, "undo sale"},
             {kind::keptfee, "kept fee"}};

struct writer {
    BinaryStream out;

    template <std::integral Number>
    void operator()(Number value) {
        out.writeVarInt64(static_cast<std::int64_t>(value));
    }
    void operator()(bool value) { out.writeBool(value); }
    void operator()(kind value) { out.writeByte(static_cast<std::uint8_t>(value)); }
    // A hash has no short form.
    void hash(std::uint64_t value) { out.writeSignedInt64(static_cast<std::int64_t>(value)); }
    // A decimal xuid is a number, where it can be told from it again.
    void party(const std::string& xuid) {
        std::int64_t number = 0;
        const auto* const end = xuid.data() + xuid.size();
        const auto read = std::from_chars(xuid.data(), end, number);
        const bool isnumber = read.ec == std::errc() && read.ptr == end && std::to_string(number) == xuid;
        out.writeBool(isnumber);
        if (isnumber)
            out.writeVarInt64(number);
        else
            out.writeString(xuid);
    }
    template <class Value, class Each>
    void maybe(const std::optional<Value>& value, Each each) {
        out.writeBool(value.has_value());
        if (value) each(*this, *value);
    }
    template <class Value, class Each>
    void all(const std::vector<Value>& values, Each each) {
        out.writeUnsignedVarInt(static_cast<std::uint32_t>(values.size()));
        for (const auto& value : values) each(*this, value);
    }
};

struct reader {
    BinaryStream in;

    template <std::integral Number>
    void operator()(Number& value) {
        value = static_cast<Number>(in.getVarInt64());
    }
    void operator()(bool& value) { value = in.getBool(); }
    void operator()(kind& value) {
        value = static_cast<kind>(in.getByte());
        if (std::ranges::find(names, value, [](const auto& row) { return row.what; }) == std::end(names))
            throw ReadError("no such kind of entry");
    }
    void hash(std::uint64_t& value) { value = static_cast<std::uint64_t>(in.getSignedInt64()); }
    void party(std::string& xuid) { xuid = in.getBool() ? std::to_string(in.getVarInt64()) : in.getString(); }
    template <class Value, class Each>
    void maybe(std::optional<Value>& value, Each each) {
        if (in.getBool()) each(*this, value.emplace());
    }
    template <class Value, class Each>
    void all(std::vector<Value>& values, Each each) {
        values.resize(in.getCount());
        for (auto& value : values) each(*this, value);
    }
};

// The tag of a row is that of its entry.
constexpr auto visitrow = [](auto& visit, auto& row) {
    visit(row.left);
    visit(row.waiting);
    visit(row.offer);
    visit(row.sponsored);
};
constexpr auto visitpile = [](auto& visit, auto& pile) {
    visit.hash(pile.tag);
    visit(pile.pieces);
};

template <class Visit, class Entry>
void visitentry(Visit& visit, Entry& of) {
    visit(of.what);
    visit(of.time);
    visit.party(of.shop);
    visit.party(of.actor);
    visit(of.isopshop);
    visit(of.byoperator);
    visit.hash(of.tag);
    visit(of.pieces);
    visit(of.price);
    visit(of.paid);
    visit(of.fee);
    visit(of.revision);
    visit(of.count);
    visit(of.volume);
    visit.maybe(of.before, visitrow);
    visit.maybe(of.after, visitrow);
    visit.all(of.piles, visitpile);
    if (!isundo(of.what)) return;
    visit(of.undoes);
    visit.party(of.undoneby);
}

}  // namespace

const char* nameof(kind what) {
    const auto* const found = std::ranges::find(names, what, [](const auto& row) { return row.what; });
    return found != std::end(names) ? found->name : "";
}

std::optional<kind> kindof(std::string_view name) {
    const auto* const found =
        std::ranges::find(names, name, [](const auto& row) { return std::string_view(row.name); });
    return found != std::end(names) ? std::optional(found->what) : std::nullopt;
}

std::int64_t rowstate::deposit() const {
    const auto whole = std::max<std::int64_t>(left * offer, 0);
    return whole - std::clamp<std::int64_t>(sponsored, 0, whole);
}

rowstate stateof(const shopsystem::shopitem& item) { return {hashof(item.itemnbt), item.shopitemleftnum}; }

rowstate stateof(const shopsystem::recycleshopitem& item) {
    return {hashof(item.itemnbt), item.recycleitemleftwanna, item.nowhasrecyclenum, item.offer, item.sponsored};
}

shopsystem::shoptype entry::section() const {
    constexpr kind ofcommissions[] = {kind::sale, kind::publish, kind::adjust, kind::pickup, kind::undosale};
    return std::ranges::find(ofcommissions, what) != std::end(ofcommissions) ? shopsystem::recycle : shopsystem::sell;
}

std::string encode(const entry& of) {
    writer writing;
    writing.out.reserve(96);
    writing.out.writeByte(format);
    visitentry(writing, of);
    return writing.out.bytes();
}

entry decode(std::uint64_t number, const std::string& bytes) {
    reader reading{BinaryStream(bytes)};
    if (reading.in.getByte() != format) throw ReadError("an entry of another version");
    entry read;
    read.number = number;
    visitentry(reading, read);
    reading.in.expectEnd();
    if (read.before) read.before->tag = read.tag;
    if (read.after) read.after->tag = read.tag;
    return read;
}

std::string keyof(std::uint64_t number) { return fmt::format("{:012}", number); }

std::uint64_t numberof(const std::string& key) {
    std::uint64_t number = 0;
    std::from_chars(key.data(), key.data() + key.size(), number);
    return number;
}

// FNV-1a, which is the same on every machine.
std::uint64_t hashof(std::string_view text) {
    std::uint64_t hash = 14695981039346656037ULL;
    for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211ULL;
    return hash;
}

std::string variant::text() const { return fmt::format("{}:{}{}", name, aux, enchanted ? "+" : ""); }

variant variantof(const std::string& itemnbt) {
    const auto tag = platform::CompoundTag::fromSNBT(itemnbt).value_or(platform::CompoundTag());
    return {tag.getString("Name"), tag.getShort("Damage"), !shopsystem::getenchlist(tag).empty()};
}

variant readvariant(std::string_view text) {
    variant read;
    read.enchanted = text.ends_with('+');
    if (read.enchanted) text.remove_suffix(1);
    const auto colon = text.rfind(':');
    if (colon == std::string_view::npos) return {};
    std::from_chars(text.data() + colon + 1, text.data() + text.size(), read.aux);
    read.name = text.substr(0, colon);
    return read;
}

}  // namespace ledger
