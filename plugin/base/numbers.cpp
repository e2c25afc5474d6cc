// The numbers are read without the C library, whose atoi says nothing of what happens beyond the range.
#include "plugin/base/numbers.h"

#include <charconv>
#include <limits>

namespace ordomart {

namespace {

template <class Number>
Number typed(const std::string& text) {
    const auto start = text.find_first_not_of(" \t\n\v\f\r");
    if (start == std::string::npos) return 0;
    const char* first = text.data() + start;
    const char* const last = text.data() + text.size();
    const bool negative = *first == '-';
    // A plus sign is no part of a number for from_chars.
    if (*first == '+' && first + 1 != last && *(first + 1) != '-') ++first;
    Number value = 0;
    if (std::from_chars(first, last, value).ec == std::errc::result_out_of_range)
        return negative ? std::numeric_limits<Number>::min() : std::numeric_limits<Number>::max();
    return value;
}

}  // namespace

std::int32_t typednumber(const std::string& text) { return typed<std::int32_t>(text); }
std::int64_t typednumber64(const std::string& text) { return typed<std::int64_t>(text); }

}  // namespace ordomart
