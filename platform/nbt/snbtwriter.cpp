// The text form of tags, written; the grammar stands in snbt.cpp. Written are: keys in byte order, bare where they are
// words; every text in double quotes; bytes that are no UTF-8 as \xHH, so that any tree gives a text that fits into a
// JSON file. What is written reads back as the same tree.
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "platform/nbt/snbtwords.h"
#include "platform/nbt/tags.h"
#include "platform/utf8.h"

namespace platform {

using namespace snbt;

namespace {

void writehexbyte(std::string& out, char c) {
    constexpr char digits[] = "0123456789abcdef";
    const auto byte = static_cast<unsigned char>(c);
    out += {'\\', 'x', digits[byte >> 4], digits[byte & 15]};
}

void writetext(std::string& out, std::string_view text) {
    out += '"';
    while (!text.empty()) {
        const auto known = std::find_if(escapes, escapes + writtenescapes, [&](Escape e) { return e.byte == text[0]; });
        const auto length = utf8length(text);
        if (known != escapes + writtenescapes) {
            out += {'\\', known->letter};
        } else if (length == 0 || static_cast<unsigned char>(text[0]) < 0x20) {
            writehexbyte(out, text[0]);
        } else {
            out += text.substr(0, length);
        }
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    out += '"';
}

template <class Number>
void writenumber(std::string& out, Number value, std::string_view suffix) {
    std::array<char, 40> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    out.append(digits.data(), end);
    out += suffix;
}

template <class Number>
void writedecimal(std::string& out, Number value, char suffix) {
    if (std::isfinite(value)) return writenumber(out, value, std::string_view(&suffix, 1));
    out += nonfinites[std::isnan(value) ? 0 : value > 0 ? 1 : 2].word;
    out += suffix;
}

struct SnbtWriter {
    std::string& out;

    void operator()(const Tag& v) const { std::visit(*this, v.value()); }
    void operator()(std::int8_t v) const { writenumber(out, v, "b"); }
    void operator()(std::int16_t v) const { writenumber(out, v, "s"); }
    void operator()(std::int32_t v) const { writenumber(out, v, ""); }
    void operator()(std::int64_t v) const { writenumber(out, v, "l"); }
    void operator()(float v) const { writedecimal(out, v, 'f'); }
    void operator()(double v) const { writedecimal(out, v, 'd'); }
    void operator()(const std::string& v) const { writetext(out, v); }
    void operator()(const std::vector<std::int8_t>& v) const { row("[B;", v, *this, ']'); }
    void operator()(const std::vector<std::int32_t>& v) const { row("[I;", v, *this, ']'); }
    void operator()(const std::vector<std::int64_t>& v) const { row("[L;", v, *this, ']'); }
    void operator()(const ListTag& v) const { row("[", v.items(), *this, ']'); }
    void operator()(const CompoundTag& v) const {
        const auto entry = [this](const CompoundTag::Entry& e) {
            const bool bare = !e.key.empty() && std::all_of(e.key.begin(), e.key.end(), iswordbyte);
            bare ? void(out += e.key) : writetext(out, e.key);
            out += ':';
            (*this)(e.value);
        };
        row("{", v.entries(), entry, '}');
    }

private:
    template <class Items, class Each>
    void row(std::string_view open, const Items& items, const Each& each, char close) const {
        out += open;
        bool first = true;
        for (const auto& item : items) {
            if (!first) out += ',';
            first = false;
            each(item);
        }
        out += close;
    }
};

}  // namespace

std::string Tag::toSNBT() const {
    std::string out;
    std::visit(SnbtWriter{out}, value_);
    return out;
}

std::string CompoundTag::toSNBT() const {
    std::string out;
    SnbtWriter{out}(*this);
    return out;
}

}  // namespace platform
