// Whole numbers that somebody typed or wrote into a text, read as by atoi: leading blanks and a sign, digits until the
// first other character, 0 without digits. A number beyond the type's range is its limit. Any thread.
#pragma once

#include <cstdint>
#include <string>

namespace ordomart {

[[nodiscard]] std::int32_t typednumber(const std::string& text);
[[nodiscard]] std::int64_t typednumber64(const std::string& text);

}  // namespace ordomart
