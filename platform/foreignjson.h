// JSON that somebody else wrote. A document is copied, compared and written by functions that call themselves for each
// level, so that a deep one ends the process by its stack; what is read here is never deeper than they can go.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <stdexcept>
#include <string_view>

namespace platform {

inline constexpr int maxjsondepth = 64;

// Its text continues "the body ...", "the answer ...".
class ForeignJsonError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Throws ForeignJsonError: no JSON, a number that nothing holds, more than maxjsondepth levels.
[[nodiscard]] nlohmann::json readforeignjson(std::string_view text);

}  // namespace platform
