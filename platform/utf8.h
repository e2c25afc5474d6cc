// Which bytes are text.
#pragma once

#include <cstddef>
#include <string_view>

namespace platform {

// Length of the well-formed UTF-8 sequence at the front of a text that is not empty, and 0 where there is none:
// overlong forms, surrogates and what lies above U+10FFFF are none.
[[nodiscard]] std::size_t utf8length(std::string_view text);
// Whether the whole of it is well-formed; the empty text is.
[[nodiscard]] bool isutf8(std::string_view text);

}  // namespace platform
