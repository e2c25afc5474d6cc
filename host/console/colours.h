// The game's § codes as terminal colours, and the characters of its own font as others that a terminal has.
#pragma once

#include <string>
#include <string_view>

namespace host {

// With `colour` false the codes are taken out. The text ends in the terminal's normal state.
[[nodiscard]] std::string terminaltext(std::string_view text, bool colour);

}  // namespace host
