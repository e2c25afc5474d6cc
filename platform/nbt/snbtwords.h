// What the reader and the writer of the text form share: bytes of words, escapes, and numbers that have no digits.
#pragma once

#include <limits>
#include <string_view>

namespace platform::snbt {

inline bool isdigit(char c) { return c >= '0' && c <= '9'; }
inline bool iswordbyte(char c) {
    return isdigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '-' || c == '.' ||
           c == '+';
}
inline bool isspace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

struct Escape {
    char letter, byte;
};
inline constexpr Escape escapes[] = {{'"', '"'},  {'\\', '\\'}, {'n', '\n'},  {'r', '\r'}, {'t', '\t'},
                                     {'b', '\b'}, {'f', '\f'},  {'\'', '\''}, {'s', ' '},  {'/', '/'}};
inline constexpr std::size_t writtenescapes = 7;  // the others are only read

struct Nonfinite {
    std::string_view word;
    double value;
};
inline constexpr Nonfinite nonfinites[] = {{"NaN", std::numeric_limits<double>::quiet_NaN()},
                                           {"Infinity", std::numeric_limits<double>::infinity()},
                                           {"-Infinity", -std::numeric_limits<double>::infinity()}};

}  // namespace platform::snbt
