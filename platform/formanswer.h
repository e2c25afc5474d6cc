// Whether an answer fits its form, read off the form as the client was sent it. Nothing of an answer is believed
// before it has passed here.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

namespace platform::Form {

// The answer as a document, null when the form was closed; nothing when it does not fit: no JSON, a button that is not
// there, another number of elements, a value of another kind, a number out of its element's range.
[[nodiscard]] std::optional<nlohmann::json> readanswer(const nlohmann::json& form, const std::string& answer);
// The same question for a form at hand as text.
[[nodiscard]] bool answerfits(const std::string& form, const std::string& answer);
// A number without fraction that an int holds; sliders answer 5 as well as 5.0.
[[nodiscard]] std::optional<int> wholenumber(const nlohmann::json& value);

}  // namespace platform::Form
