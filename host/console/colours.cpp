#include "host/console/colours.h"

#include <algorithm>
#include <array>

namespace host {

namespace {

constexpr std::string_view sign = "\u00a7";

struct Code {
    char letter;
    std::string_view terminal;
};

constexpr std::array codes{
    Code{'0', "\x1b[30m"},       Code{'1', "\x1b[34m"}, Code{'2', "\x1b[32m"}, Code{'3', "\x1b[36m"},
    Code{'4', "\x1b[31m"},       Code{'5', "\x1b[35m"}, Code{'6', "\x1b[33m"}, Code{'7', "\x1b[37m"},
    Code{'8', "\x1b[90m"},       Code{'9', "\x1b[94m"}, Code{'a', "\x1b[92m"}, Code{'b', "\x1b[96m"},
    Code{'c', "\x1b[91m"},       Code{'d', "\x1b[95m"}, Code{'e', "\x1b[93m"}, Code{'f', "\x1b[97m"},
    Code{'g', "\x1b[38;5;220m"}, Code{'l', "\x1b[1m"},  Code{'o', "\x1b[3m"},  Code{'k', "\x1b[5m"},
    Code{'r', "\x1b[0m"},
};

// Characters that only the game's own font has.
struct Glyph {
    std::string_view own, terminal;
};

constexpr std::array glyphs{Glyph{"\ue04d", "\u2190 "}, Glyph{"\ue04f", " \u2192"}, Glyph{"\ue102", " coins"},
                            Glyph{"\ue0a0", "\u2713"}, Glyph{"\ue0a1", "\u2717"}};

std::string_view terminalcode(char letter) {
    for (const Code& code : codes)
        if (code.letter == letter) return code.terminal;
    return {};
}

}  // namespace

std::string terminaltext(std::string_view text, bool colour) {
    std::string out;
    bool coloured = false;
    while (!text.empty()) {
        if (text.starts_with(sign) && text.size() > sign.size()) {
            const std::string_view code = terminalcode(text[sign.size()]);
            if (colour && !code.empty()) {
                out += code;
                coloured = true;
            }
            text.remove_prefix(sign.size() + 1);
            continue;
        }
        const auto* const glyph =
            std::ranges::find_if(glyphs, [&](const Glyph& known) { return text.starts_with(known.own); });
        if (glyph != glyphs.end()) {
            out += glyph->terminal;
            text.remove_prefix(glyph->own.size());
            continue;
        }
        out += text.front();
        text.remove_prefix(1);
    }
    if (coloured) out += "\x1b[0m";
    return out;
}

}  // namespace host
