// The text form of tags, read. The writing stands in snbtwriter.cpp.
//
//   value    = compound | list | array | text | word
//   compound = "{" [ key ":" value { "," key ":" value } ] "}"      key = text | word
//   list     = "[" [ value { "," value } ] "]"                       all of one type
//   array    = "[" ("B" | "I" | "L") ";" [ number { "," number } ] "]"
//   text     = "..." or '...', with \\ \" \' \n \r \t \b \f \s \/ \xHH (one byte) and \uHHHH
//   word     = letters, digits, "_", "-", "." and "+": a number, true or false (bytes), otherwise a text
//   number   = whole number and b, s, l or nothing (an int), or decimal number and f, d or, with a point, nothing
#include <algorithm>
#include <charconv>

#include "platform/nbt/snbtwords.h"
#include "platform/nbt/tags.h"

namespace platform {

using namespace snbt;

namespace {

struct Malformed {};

template <class Number>
Number parsed(std::string_view digits) {
    Number value{};
    if (digits.front() == '+') digits.remove_prefix(1);
    const auto end = digits.data() + digits.size();
    const auto result = std::from_chars(digits.data(), end, value);
    if (result.ec != std::errc() || result.ptr != end) throw Malformed{};
    return value;
}

std::string_view unsignedpart(std::string_view word) {
    if (!word.empty() && (word[0] == '-' || word[0] == '+')) word.remove_prefix(1);
    return word;
}

// "07" is a text, as in the game.
bool iswhole(std::string_view word) {
    word = unsignedpart(word);
    return !word.empty() && std::all_of(word.begin(), word.end(), isdigit) && (word.size() == 1 || word[0] != '0');
}

bool isdecimal(std::string_view word) {
    word = unsignedpart(word);
    if (const auto e = word.find_first_of("eE"); e != std::string_view::npos) {
        const auto power = unsignedpart(word.substr(e + 1));
        if (power.empty() || !std::all_of(power.begin(), power.end(), isdigit)) return false;
        word = word.substr(0, e);
    }
    return std::count(word.begin(), word.end(), '.') <= 1 && std::any_of(word.begin(), word.end(), isdigit) &&
           std::all_of(word.begin(), word.end(), [](char c) { return isdigit(c) || c == '.'; });
}

template <class Decimal>
std::optional<Tag> decimal(std::string_view word) {
    for (const auto& n : nonfinites) {
        if (word == n.word) return Tag(static_cast<Decimal>(n.value));
    }
    return isdecimal(word) ? std::optional<Tag>(parsed<Decimal>(word)) : std::nullopt;
}

template <class Whole>
std::optional<Tag> whole(std::string_view word) {
    return iswhole(word) ? std::optional<Tag>(parsed<Whole>(word)) : std::nullopt;
}

// Nothing when the word is no number; a number that its type does not hold is a fault.
std::optional<Tag> number(std::string_view word, TagType unsuffixed = TagType::Int) {
    const auto body = word.substr(0, word.size() - 1);
    switch (word.back() | 0x20) {
        case 'b':
            return whole<std::int8_t>(body);
        case 's':
            return whole<std::int16_t>(body);
        case 'l':
            return whole<std::int64_t>(body);
        case 'f':
            return decimal<float>(body);
        case 'd':
            return decimal<double>(body);
        default:
            break;
    }
    if (!iswhole(word)) {
        return word.find('.') != std::string_view::npos && isdecimal(word) ? decimal<double>(word) : std::nullopt;
    }
    switch (unsuffixed) {
        case TagType::Byte:
            return whole<std::int8_t>(word);
        case TagType::Long:
            return whole<std::int64_t>(word);
        default:
            return whole<std::int32_t>(word);
    }
}

void appendutf8(std::string& out, std::uint32_t c) {
    const auto tail = [&](int shift) { out += static_cast<char>(0x80 | ((c >> shift) & 0x3f)); };
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xc0 | (c >> 6));
        tail(0);
    } else if (c < 0x10000) {
        out += static_cast<char>(0xe0 | (c >> 12));
        tail(6), tail(0);
    } else {
        out += static_cast<char>(0xf0 | (c >> 18));
        tail(12), tail(6), tail(0);
    }
}

class Parser {
public:
    explicit Parser(std::string_view text) : rest_(text) {}

    CompoundTag whole() {
        skipspace();
        auto tag = compound(1);
        skipspace();
        if (!rest_.empty()) throw Malformed{};
        return tag;
    }

private:
    void skipspace() {
        while (!rest_.empty() && isspace(rest_[0])) rest_.remove_prefix(1);
    }
    [[nodiscard]] char front() const { return rest_.empty() ? '\0' : rest_[0]; }
    char next() {
        if (rest_.empty()) throw Malformed{};
        const char c = rest_[0];
        rest_.remove_prefix(1);
        return c;
    }
    bool accept(char c) {
        skipspace();
        if (front() != c || rest_.empty()) return false;
        rest_.remove_prefix(1);
        return true;
    }
    void expect(char c) {
        if (!accept(c)) throw Malformed{};
    }

    Tag value(int depth) {
        skipspace();
        switch (front()) {
            case '{':
                return compound(depth);
            case '[':
                return listorarray(depth);
            case '"':
            case '\'':
                return quoted();
            default:
                break;
        }
        const auto text = word();
        if (text == "true" || text == "false") return static_cast<std::int8_t>(text == "true");
        if (auto n = number(text)) return std::move(*n);
        return std::string(text);
    }

    template <class Each>
    void row(char close, const Each& each) {
        if (accept(close)) return;
        do each();
        while (accept(','));
        expect(close);
    }

    CompoundTag compound(int depth) {
        if (depth > maxtagdepth) throw Malformed{};
        expect('{');
        CompoundTag tag;
        {
            CompoundTag::Filler filler(tag);
            row('}', [&] {
                skipspace();
                auto key = front() == '"' || front() == '\'' ? quoted() : std::string(word());
                expect(':');
                filler.add(std::move(key), value(depth + 1));
            });
        }
        return tag;
    }

    Tag listorarray(int depth) {
        if (depth > maxtagdepth) throw Malformed{};
        expect('[');
        skipspace();
        if (rest_.size() > 1 && rest_[1] == ';') {
            switch (next()) {
                case 'B':
                    return array<std::int8_t>(TagType::Byte);
                case 'I':
                    return array<std::int32_t>(TagType::Int);
                case 'L':
                    return array<std::int64_t>(TagType::Long);
                default:
                    throw Malformed{};
            }
        }
        ListTag list;
        row(']', [&] {
            auto item = value(depth + 1);
            if (!list.empty() && item.type() != list.elementtype()) throw Malformed{};
            list.add(std::move(item));
        });
        return list;
    }

    template <class Element>
    Tag array(TagType type) {
        expect(';');
        std::vector<Element> items;
        row(']', [&] {
            skipspace();
            const auto item = number(word(), type);
            const auto* element = item ? item->template as<Element>() : nullptr;
            if (element == nullptr) throw Malformed{};
            items.push_back(*element);
        });
        return items;
    }

    std::string_view word() {
        const auto end = std::find_if_not(rest_.begin(), rest_.end(), iswordbyte);
        const auto text = rest_.substr(0, static_cast<std::size_t>(end - rest_.begin()));
        if (text.empty()) throw Malformed{};
        rest_.remove_prefix(text.size());
        return text;
    }

    std::string quoted() {
        const char quote = next();
        std::string text;
        for (char c = next(); c != quote; c = next()) {
            c == '\\' ? escaped(text) : text.push_back(c);
        }
        return text;
    }

    void escaped(std::string& text) {
        const char letter = next();
        if (letter == 'x') return text.push_back(static_cast<char>(hex(2)));
        if (letter == 'u') return appendutf8(text, codepoint());
        const auto known =
            std::find_if(std::begin(escapes), std::end(escapes), [&](Escape e) { return e.letter == letter; });
        if (known == std::end(escapes)) throw Malformed{};
        text.push_back(known->byte);
    }

    std::uint32_t hex(std::size_t digits) {
        if (rest_.size() < digits) throw Malformed{};
        std::uint32_t value = 0;
        const auto end = rest_.data() + digits;
        if (std::from_chars(rest_.data(), end, value, 16).ptr != end) throw Malformed{};
        rest_.remove_prefix(digits);
        return value;
    }

    std::uint32_t codepoint() {
        const auto first = hex(4);
        if (first < 0xd800 || first > 0xdfff) return first;
        if (first > 0xdbff || next() != '\\' || next() != 'u') throw Malformed{};
        const auto second = hex(4);
        if (second < 0xdc00 || second > 0xdfff) throw Malformed{};
        return 0x10000 + ((first - 0xd800) << 10) + (second - 0xdc00);
    }

    std::string_view rest_;
};

}  // namespace

std::optional<CompoundTag> CompoundTag::fromSNBT(std::string_view text) {
    try {
        return Parser(text).whole();
    } catch (const Malformed&) {
        return std::nullopt;
    }
}

}  // namespace platform
