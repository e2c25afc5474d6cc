// Forms as the JSON that clients read, and their answers.
#include "platform/form.h"

#include <nlohmann/json.hpp>

#include "platform/formanswer.h"

namespace platform::Form {

using nlohmann::json;

namespace {

// Texts come from files and players; a broken byte in one must not cost the whole form.
std::string astext(const json& form) { return form.dump(-1, ' ', false, json::error_handler_t::replace); }

template <class Form>
void sendreadable(const Form& form, ServerPlayer* player, typename Form::Callback callback) {
    player->sendForm(form.tojson(),
                     [form, callback = std::move(callback)](ServerPlayer* who, const std::string& answer) {
                         callback(who, form.readanswer(answer));
                     });
}

}  // namespace

// ---- a column of buttons

SimpleForm& SimpleForm::addButton(std::string text, std::string image) {
    buttons_.emplace_back(std::move(text), std::move(image));
    return *this;
}

json SimpleForm::describe() const {
    auto buttons = json::array();
    for (const auto& [text, image] : buttons_) {
        json button = {{"text", text}};
        if (!image.empty()) button["image"] = {{"type", image.starts_with("http") ? "url" : "path"}, {"data", image}};
        buttons.push_back(std::move(button));
    }
    return {{"type", "form"}, {"title", title_}, {"content", content_}, {"buttons", std::move(buttons)}};
}

std::string SimpleForm::tojson() const { return astext(describe()); }

int SimpleForm::readanswer(const std::string& answer) const {
    const auto value = Form::readanswer(describe(), answer);
    return value ? wholenumber(*value).value_or(-1) : -1;
}

void SimpleForm::sendTo(ServerPlayer* player, Callback callback) const {
    sendreadable(*this, player, std::move(callback));
}

// ---- two buttons

ModalForm::ModalForm(std::string title, std::string content, std::string button1, std::string button2)
    : title_(std::move(title)),
      content_(std::move(content)),
      button1_(std::move(button1)),
      button2_(std::move(button2)) {}

json ModalForm::describe() const {
    return {{"type", "modal"}, {"title", title_}, {"content", content_}, {"button1", button1_}, {"button2", button2_}};
}

std::string ModalForm::tojson() const { return astext(describe()); }

int ModalForm::readanswer(const std::string& answer) const {
    const auto value = Form::readanswer(describe(), answer);
    return value && value->is_boolean() ? static_cast<int>(value->get<bool>()) : -1;
}

void ModalForm::sendTo(ServerPlayer* player, Callback callback) const {
    sendreadable(*this, player, std::move(callback));
}

// ---- elements by name

json CustomFormElement::describe() const {
    switch (kind_) {
        case Kind::Label:
            return {{"type", "label"}, {"text", title_}};
        case Kind::Input:
            return {{"type", "input"}, {"text", title_}, {"placeholder", placeholder_}, {"default", text_}};
        case Kind::Toggle:
            return {{"type", "toggle"}, {"text", title_}, {"default", getBool()}};
        case Kind::Slider:
            return {{"type", "slider"}, {"text", title_}, {"min", least_},
                    {"max", most_},     {"step", step_},  {"default", number_}};
        case Kind::Dropdown:
            return {{"type", "dropdown"}, {"text", title_}, {"options", options_}, {"default", number_}};
    }
    return nullptr;
}

void CustomFormElement::take(const json& answer) {
    if (answer.is_string()) text_ = answer.get<std::string>();
    if (answer.is_boolean()) number_ = answer.get<bool>() ? 1 : 0;
    if (const auto number = wholenumber(answer)) number_ = *number;
}

CustomFormElement& CustomForm::add(CustomFormElement::Kind kind, std::string name, std::string title) {
    return elements_.emplace_back(kind, std::move(name), std::move(title));
}

CustomForm& CustomForm::addLabel(std::string name, std::string text) {
    add(CustomFormElement::Kind::Label, std::move(name), std::move(text));
    return *this;
}

CustomForm& CustomForm::addInput(std::string name, std::string title, std::string placeholder, std::string standard) {
    auto& element = add(CustomFormElement::Kind::Input, std::move(name), std::move(title));
    element.placeholder_ = std::move(placeholder);
    element.text_ = std::move(standard);
    return *this;
}

CustomForm& CustomForm::addToggle(std::string name, std::string title, bool standard) {
    add(CustomFormElement::Kind::Toggle, std::move(name), std::move(title)).number_ = standard ? 1 : 0;
    return *this;
}

CustomForm& CustomForm::addSlider(std::string name, std::string title, int least, int most, int step, int standard) {
    auto& element = add(CustomFormElement::Kind::Slider, std::move(name), std::move(title));
    element.least_ = least;
    element.most_ = most;
    element.step_ = step;
    element.number_ = standard;
    return *this;
}

CustomForm& CustomForm::addDropdown(std::string name, std::string title, std::vector<std::string> options,
                                    int standard) {
    auto& element = add(CustomFormElement::Kind::Dropdown, std::move(name), std::move(title));
    element.options_ = std::move(options);
    element.number_ = standard;
    return *this;
}

json CustomForm::describe() const {
    auto content = json::array();
    for (const auto& element : elements_) content.push_back(element.describe());
    return {{"type", "custom_form"}, {"title", title_}, {"content", std::move(content)}};
}

std::string CustomForm::tojson() const { return astext(describe()); }

Elements CustomForm::readanswer(const std::string& answer) const {
    Elements answered;
    const auto values = Form::readanswer(describe(), answer);
    if (!values || values->is_null()) return answered;
    for (std::size_t i = 0; i < elements_.size(); ++i) {
        auto element = elements_[i];
        element.take((*values)[i]);
        answered.insert_or_assign(element.name(), std::move(element));
    }
    return answered;
}

void CustomForm::sendTo(ServerPlayer* player, Callback callback) const {
    sendreadable(*this, player, std::move(callback));
}

void CustomForm::sendToForRawJson(ServerPlayer* player,
                                  std::function<void(ServerPlayer*, const std::string&)> callback) const {
    player->sendForm(tojson(),
                     [form = describe(), callback = std::move(callback)](ServerPlayer* who, const std::string& answer) {
                         callback(who, Form::readanswer(form, answer) ? answer : "null");
                     });
}

}  // namespace platform::Form
