#include "host/network/utf8.h"

#include <algorithm>
#include <cstdint>

namespace host {

namespace {

// Lead bytes, and what the byte behind each may be; further ones are 0x80 to 0xbf.
struct Sequence {
    std::uint8_t firstlead, lastlead;
    int following;
    std::uint8_t least, most;
};
constexpr Sequence sequences[] = {
    {0x00, 0x7f, 0, 0, 0},       {0xc2, 0xdf, 1, 0x80, 0xbf}, {0xe0, 0xe0, 2, 0xa0, 0xbf},
    {0xe1, 0xec, 2, 0x80, 0xbf}, {0xed, 0xed, 2, 0x80, 0x9f}, {0xee, 0xef, 2, 0x80, 0xbf},
    {0xf0, 0xf0, 3, 0x90, 0xbf}, {0xf1, 0xf3, 3, 0x80, 0xbf}, {0xf4, 0xf4, 3, 0x80, 0x8f},
};

}  // namespace

bool isutf8(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
    for (std::size_t i = 0; i < text.size();) {
        const auto* rule = std::ranges::find_if(
            sequences, [&](const Sequence& s) { return byte(i) >= s.firstlead && byte(i) <= s.lastlead; });
        if (rule == std::end(sequences)) return false;
        const auto following = static_cast<std::size_t>(rule->following);
        if (text.size() - i - 1 < following) return false;
        for (std::size_t n = 1; n <= following; ++n) {
            const std::uint8_t least = n == 1 ? rule->least : 0x80, most = n == 1 ? rule->most : 0xbf;
            if (byte(i + n) < least || byte(i + n) > most) return false;
        }
        i += following + 1;
    }
    return true;
}

}  // namespace host
