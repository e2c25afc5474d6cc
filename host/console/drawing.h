// A client's picture as text for a terminal: the form in front, and the inventory screen.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "client/modelclient.h"

namespace host {

// Still with § codes.
[[nodiscard]] std::string drawform(const nlohmann::json& form);
[[nodiscard]] std::string formline(const nlohmann::json& form);  // its title
[[nodiscard]] std::string drawscreen(const client::ModelClient& client);

// The answer that words typed by a person mean: a number or a part of a button's text; for a custom form one word for
// each element that takes a value, in order, the rest keeping their defaults; JSON as it stands; "close".
// Throws std::runtime_error that says what would fit.
[[nodiscard]] nlohmann::json typedanswer(const nlohmann::json& form, const std::string& typed);

}  // namespace host
