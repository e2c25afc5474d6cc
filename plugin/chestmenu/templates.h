// Hand-kept tag templates in the little-endian binary form, without a root header. The tails of the chests do not
// decode cleanly, an int there has lost its value, and are kept byte for byte: read them with readtoleranttag.
#pragma once

#include <string_view>

namespace ordomart::templates {

extern const std::string_view fullchest, nearchest, plainchest, pairleader, pairfollower;
// What every false stack starts from: one player's head.
extern const std::string_view basestack;

}  // namespace ordomart::templates
