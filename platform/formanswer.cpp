// The rules by which answers fit, one per kind of element; the two forms of buttons are one element each.
#include "platform/formanswer.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string_view>

#include "platform/foreignjson.h"

namespace platform::Form {

using nlohmann::json;

std::optional<int> wholenumber(const json& value) {
    if (!value.is_number()) return std::nullopt;
    const auto number = value.get<double>();
    const bool fits = number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max();
    if (!fits || number != std::floor(number)) return std::nullopt;
    return static_cast<int>(number);
}

bool AnswerRule::Element::fits(const json& value) const {
    if (kind == Kind::nothing) return value.is_null();
    if (kind == Kind::text) return value.is_string();
    if (kind == Kind::choice) return value.is_boolean();
    const auto number = wholenumber(value);
    if (!number || *number < least || *number > most) return false;
    // A slider's end can be reached, whether a step leads there or not.
    return *number == most || (std::int64_t{*number} - least) % step == 0;
}

AnswerRule::Element AnswerRule::elementof(const json& element) {
    struct ElementRule {
        std::string_view type;
        Element (*rule)(const json& element);
    };
    // A list without options is still answered with 0.
    static constexpr auto placein = [](const json& list) {
        return Element{Kind::number, 0, std::max(static_cast<int>(list.size()) - 1, 0)};
    };
    static const ElementRule rules[] = {
        {"label", [](const json&) { return Element{Kind::nothing}; }},
        {"input", [](const json&) { return Element{Kind::text}; }},
        {"toggle", [](const json&) { return Element{Kind::choice}; }},
        {"slider",
         [](const json& slider) {
             return Element{Kind::number, slider.at("min").get<int>(), slider.at("max").get<int>(),
                            std::max(slider.value("step", 1), 1)};
         }},
        {"dropdown", [](const json& dropdown) { return placein(dropdown.at("options")); }},
        {"step_slider", [](const json& slider) { return placein(slider.at("steps")); }},
    };
    const auto& type = element.at("type").get_ref<const std::string&>();
    const auto* rule = std::ranges::find(rules, type, &ElementRule::type);
    if (rule == std::end(rules)) throw std::invalid_argument("a form with an element of unknown type: " + type);
    return rule->rule(element);
}

AnswerRule::AnswerRule(const json& form) try {
    const auto& type = form.at("type").get_ref<const std::string&>();
    if (type == "form") {
        elements_.push_back({Kind::number, 0, static_cast<int>(form.at("buttons").size()) - 1});
    } else if (type == "modal") {
        elements_.push_back({Kind::choice});
    } else if (type == "custom_form") {
        islist_ = true;
        for (const json& element : form.at("content")) elements_.push_back(elementof(element));
    } else {
        throw std::invalid_argument("a form of unknown type: " + type);
    }
} catch (const json::exception& e) {
    throw std::invalid_argument(std::string("a form that no client could show: ") + e.what());
}

std::optional<json> AnswerRule::read(const std::string& answer) const {
    json value;
    try {
        value = readforeignjson(answer);
    } catch (const ForeignJsonError&) {
        return std::nullopt;
    }
    if (value.is_null()) return value;
    const auto fits = [](const Element& element, const json& one) { return element.fits(one); };
    const bool good =
        islist_ ? value.is_array() && std::equal(elements_.begin(), elements_.end(), value.begin(), value.end(), fits)
                : elements_.front().fits(value);
    return good ? std::optional(std::move(value)) : std::nullopt;
}

std::optional<json> readanswer(const json& form, const std::string& answer) { return AnswerRule(form).read(answer); }

bool answerfits(const std::string& form, const std::string& answer) {
    return readanswer(json::parse(form), answer).has_value();
}

}  // namespace platform::Form
