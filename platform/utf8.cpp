// Sequences by their lead byte.
#include "platform/utf8.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace platform {

namespace {

// Lead bytes, the length they announce, and what the second byte may be; further ones are 0x80 to 0xbf.
struct Sequence {
    std::uint8_t firstlead, lastlead, length, least, most;
};
constexpr Sequence sequences[] = {
    {0x00, 0x7f, 1, 0, 0},       {0xc2, 0xdf, 2, 0x80, 0xbf}, {0xe0, 0xe0, 3, 0xa0, 0xbf},
    {0xe1, 0xec, 3, 0x80, 0xbf}, {0xed, 0xed, 3, 0x80, 0x9f}, {0xee, 0xef, 3, 0x80, 0xbf},
    {0xf0, 0xf0, 4, 0x90, 0xbf}, {0xf1, 0xf3, 4, 0x80, 0xbf}, {0xf4, 0xf4, 4, 0x80, 0x8f},
};

}  // namespace

std::size_t utf8length(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
    const auto* rule = std::find_if(std::begin(sequences), std::end(sequences),
                                    [&](const Sequence& s) { return byte(0) >= s.firstlead && byte(0) <= s.lastlead; });
    if (rule == std::end(sequences) || rule->length > text.size()) return 0;
    if (rule->length > 1 && (byte(1) < rule->least || byte(1) > rule->most)) return 0;
    const auto tail = text.substr(1, rule->length - 1u);
    const bool follows = std::all_of(tail.begin(), tail.end(), [](char c) { return (c & 0xc0) == 0x80; });
    return follows ? rule->length : 0;
}

bool isutf8(std::string_view text) {
    while (!text.empty()) {
        const auto isascii = [](char c) { return (c & 0x80) == 0; };
        text.remove_prefix(
            static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), isascii) - text.begin()));
        if (text.empty()) break;
        const std::size_t length = utf8length(text);
        if (length == 0) return false;
        text.remove_prefix(length);
    }
    return true;
}

}  // namespace platform
