#include "host/network/joinrules.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <stdexcept>

#include "platform/utf8.h"

namespace host {

namespace {

bool isdigit(char c) { return c >= '0' && c <= '9'; }
bool isletter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

struct Range {
    std::uint32_t first, last;
};
// Above ASCII: what is not seen, turns the direction of writing, is drawn as something else, or is no character at all.
// With any of these a name could look like another player's.
constexpr Range unseen[] = {
    {0x80, 0xa0},         // controls, the blank that does not break
    {0xa7, 0xa7},         // the sign of the game's colour codes
    {0xad, 0xad},         // the hyphen that is seen at the end of a line only
    {0x300, 0x36f},       // marks on the letter before: an accent that is a letter's own looks the same
    {0x61c, 0x61c},       // direction
    {0x115f, 0x1160},     // fillers
    {0x1680, 0x1680},     // a blank
    {0x17b4, 0x17b5},     // vowels that are not drawn
    {0x180b, 0x180f},     // variants
    {0x2000, 0x200f},     // blanks, of no width too; joiners; directions
    {0x2028, 0x202f},     // ends of lines, directions
    {0x205f, 0x206f},     // blanks, directions, operators that are not drawn
    {0x2800, 0x2800},     // the pattern without dots
    {0x3000, 0x3000},     // a wide blank
    {0x3164, 0x3164},     // a filler
    {0xe000, 0xf8ff},     // the game's own pictures
    {0xfdd0, 0xfdef},     // none
    {0xfe00, 0xfe0f},     // variants
    {0xfeff, 0xfeff},     // a blank of no width
    {0xffa0, 0xffa0},     // a filler
    {0xfff0, 0xffff},     // marks of annotations, replacements, none
    {0x1bca0, 0x1bca3},   // steering of shorthand
    {0x1d173, 0x1d17a},   // and of music
    {0xe0000, 0x10ffff},  // tags, variants, private use, none
};

// The first sequence of a text that is not empty, 0 where it is none.
std::uint32_t character(std::string_view text, std::size_t length) {
    const auto byte = [&](std::size_t i) { return static_cast<std::uint32_t>(static_cast<unsigned char>(text[i])); };
    if (length <= 1) return length == 0 ? 0 : byte(0);
    std::uint32_t c = byte(0) & (0x7fU >> length);
    for (std::size_t i = 1; i < length; ++i) c = c << 6 | (byte(i) & 0x3f);
    return c;
}

template <class... A>
void demand(bool holds, fmt::format_string<A...> complaint, A&&... arguments) {
    if (!holds) throw std::runtime_error(fmt::format(complaint, std::forward<A>(arguments)...));
}

// ASCII letters, digits, blank, underscore, and of what stands above ASCII all that can be seen.
void checkname(std::string_view name) {
    std::size_t characters = 0;
    for (std::string_view rest = name; !rest.empty(); ++characters) {
        const std::size_t length = platform::utf8length(rest);
        const std::uint32_t c = character(rest, length);
        const char first = rest.front();
        demand(length > 1 || (length == 1 && (isletter(first) || isdigit(first) || first == ' ' || first == '_')),
               "the name must consist of letters, digits, blanks and underscores");
        demand(std::ranges::none_of(unseen, [c](const Range& r) { return c >= r.first && c <= r.last; }),
               "the name holds the character U+{:04X}, which cannot be seen as what it is", c);
        rest.remove_prefix(length);
    }
    demand(characters >= 1 && characters <= 16, "the name \"{}\" must have 1 to 16 characters", name);
    demand(name.front() != ' ' && name.back() != ' ', "the name \"{}\" must not begin or end with a blank", name);
    demand(name.find("  ") == std::string_view::npos, "the name \"{}\" must not hold two blanks side by side", name);
}

}  // namespace

void checkjoin(const JoinRequest& request) {
    const std::string& name = request.name;
    checkname(name);
    // "0" is nobody's; with zeros in front one number would be two players.
    demand(request.xuid.size() <= 20 && std::ranges::all_of(request.xuid, isdigit) && !request.xuid.starts_with('0'),
           "the xuid of \"{}\" must be empty, or at most 20 digits that do not begin with 0", name);
    const std::string& language = request.language;
    demand(language.size() >= 2 && language.size() <= 16 &&
               std::ranges::all_of(language, [](char c) { return isletter(c) || isdigit(c) || c == '_' || c == '-'; }),
           "the language of \"{}\" must be a code such as en_US", name);
    demand(request.devicetype >= 0 && request.devicetype <= 100, "the device type of \"{}\" must be 0 to 100", name);
    demand(request.permission >= 0 && request.permission <= 4, "the permission of \"{}\" must be 0 to 4", name);
}

}  // namespace host
