// The rules by which answers fit, one per kind of form and one per kind of element.
#include "platform/formanswer.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <string_view>

namespace platform::Form {

using nlohmann::json;

std::optional<int> wholenumber(const json& value) {
    if (!value.is_number()) return std::nullopt;
    const auto number = value.get<double>();
    const bool fits = number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max();
    if (!fits || number != std::floor(number)) return std::nullopt;
    return static_cast<int>(number);
}

namespace {

bool within(const json& value, int least, int most) {
    const auto number = wholenumber(value);
    return number && *number >= least && *number <= most;
}

// A list without options is still answered with 0.
bool isplaceof(const json& value, const json& list) {
    return within(value, 0, std::max(static_cast<int>(list.size()) - 1, 0));
}

struct ElementRule {
    std::string_view type;
    bool (*fits)(const json& element, const json& value);
};
const ElementRule elementrules[] = {
    {"label", [](const json&, const json& value) { return value.is_null(); }},
    {"input", [](const json&, const json& value) { return value.is_string(); }},
    {"toggle", [](const json&, const json& value) { return value.is_boolean(); }},
    {"slider",
     [](const json& element, const json& value) {
         return within(value, element.at("min").get<int>(), element.at("max").get<int>());
     }},
    {"dropdown", [](const json& element, const json& value) { return isplaceof(value, element.at("options")); }},
};

bool elementfits(const json& element, const json& value) {
    const auto& type = element.at("type").get_ref<const std::string&>();
    const auto rule = std::find_if(std::begin(elementrules), std::end(elementrules),
                                   [&](const ElementRule& r) { return r.type == type; });
    return rule != std::end(elementrules) && rule->fits(element, value);
}

struct FormRule {
    std::string_view type;
    bool (*fits)(const json& form, const json& value);
};
const FormRule formrules[] = {
    {"form",
     [](const json& form, const json& value) {
         const auto number = wholenumber(value);
         return number && *number >= 0 && static_cast<std::size_t>(*number) < form.at("buttons").size();
     }},
    {"modal", [](const json&, const json& value) { return value.is_boolean(); }},
    {"custom_form",
     [](const json& form, const json& value) {
         const auto& content = form.at("content");
         return value.is_array() && std::equal(content.begin(), content.end(), value.begin(), value.end(), elementfits);
     }},
};

}  // namespace

std::optional<json> readanswer(const json& form, const std::string& answer) {
    auto value = json::parse(answer, nullptr, false);
    if (value.is_discarded()) return std::nullopt;
    if (value.is_null()) return value;
    const auto& type = form.at("type").get_ref<const std::string&>();
    const auto rule =
        std::find_if(std::begin(formrules), std::end(formrules), [&](const FormRule& r) { return r.type == type; });
    if (rule == std::end(formrules) || !rule->fits(form, value)) return std::nullopt;
    return value;
}

bool answerfits(const std::string& form, const std::string& answer) {
    return readanswer(json::parse(form), answer).has_value();
}

}  // namespace platform::Form
