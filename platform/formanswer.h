// Whether an answer fits its form, read off the form as the client was sent it. Nothing of an answer is believed
// before it has passed here.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

namespace platform::Form {

// What answers to one form must be. Small beside the form, and made once, so that no number of bad answers costs more
// than their own bytes.
class AnswerRule {
public:
    // Throws std::invalid_argument for what is no form that a client could show.
    explicit AnswerRule(const nlohmann::json& form);
    // The answer as a document, null when the form was closed; nothing when it does not fit: no JSON or too deep a
    // one, a button that is not there, another number of elements, a value of another kind, a number out of its
    // element's range.
    [[nodiscard]] std::optional<nlohmann::json> read(const std::string& answer) const;

private:
    enum class Kind { nothing, text, choice, number };
    struct Element {
        Kind kind = Kind::nothing;
        int least = 0, most = 0, step = 1;  // of a number
        [[nodiscard]] bool fits(const nlohmann::json& value) const;
    };
    [[nodiscard]] static Element elementof(const nlohmann::json& element);

    bool islist_ = false;  // one value for each element, else the value of the only one
    std::vector<Element> elements_;
};

// For a form that is answered once.
[[nodiscard]] std::optional<nlohmann::json> readanswer(const nlohmann::json& form, const std::string& answer);
// The same question for a form at hand as text.
[[nodiscard]] bool answerfits(const std::string& form, const std::string& answer);
// A number without fraction that an int holds; sliders answer 5 as well as 5.0.
[[nodiscard]] std::optional<int> wholenumber(const nlohmann::json& value);

}  // namespace platform::Form
