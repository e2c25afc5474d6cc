// The game's enchantments: their names, and how their levels are written.
#pragma once

#include <span>
#include <string>

namespace host {

struct Enchantment {
    const char* descriptionid;  // "enchantment.damage.all"
    const char* english;
    const char* chinese;
};

// The place is the id.
[[nodiscard]] std::span<const Enchantment> enchantments();

// "III". A number that Roman numerals do not reach stays in digits.
[[nodiscard]] std::string romannumeral(int number);

}  // namespace host
