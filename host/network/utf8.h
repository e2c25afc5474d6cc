// Texts from outside that go on to other clients, to JSON and to the log.
#pragma once

#include <string_view>

namespace host {

// Well-formed UTF-8: no overlong forms, no surrogates, nothing above U+10FFFF.
[[nodiscard]] bool isutf8(std::string_view text);

}  // namespace host
