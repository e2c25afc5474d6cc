// Texts with places for parameters, as chat and command replies have them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace client {

// "%s" takes the next parameter, "%2" and "%2$s" the second; "%%" is a per cent sign. Whatever else follows a per cent
// sign, and a place without a parameter, stays as it is.
[[nodiscard]] std::string filled(std::string_view text, const std::vector<std::string>& parameters);

}  // namespace client
