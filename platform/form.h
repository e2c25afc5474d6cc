// Server forms: three kinds, built as values, sent as JSON, answered once on the server thread. An answer that does not
// fit its form counts as closing it.
#pragma once

#include <functional>
#include <map>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <utility>
#include <vector>

#include "platform/player.h"

namespace platform::Form {

// A column of buttons. The answer is the button's number from 0, or -1 when the form was closed.
class SimpleForm {
public:
    using Callback = std::function<void(ServerPlayer*, int)>;
    SimpleForm(std::string title, std::string content) : title_(std::move(title)), content_(std::move(content)) {}
    // `image` is a texture path, a web address (http...), or empty.
    SimpleForm& addButton(std::string text, std::string image = {});
    [[nodiscard]] nlohmann::json describe() const;
    [[nodiscard]] std::string tojson() const;
    [[nodiscard]] int readanswer(const std::string& json) const;
    void sendTo(ServerPlayer* player, Callback callback) const;

private:
    std::string title_, content_;
    std::vector<std::pair<std::string, std::string>> buttons_;
};

// Two buttons. 1 for the first, 0 for the second, -1 when it was closed.
class ModalForm {
public:
    using Callback = std::function<void(ServerPlayer*, int)>;
    ModalForm(std::string title, std::string content, std::string button1, std::string button2);
    [[nodiscard]] nlohmann::json describe() const;
    [[nodiscard]] std::string tojson() const;
    [[nodiscard]] int readanswer(const std::string& json) const;
    void sendTo(ServerPlayer* player, Callback callback) const;

private:
    std::string title_, content_, button1_, button2_;
};

class CustomFormElement {
public:
    enum class Kind { Label, Input, Toggle, Slider, Dropdown };
    CustomFormElement(Kind kind, std::string name, std::string title)
        : kind_(kind), name_(std::move(name)), title_(std::move(title)) {}

    [[nodiscard]] Kind kind() const { return kind_; }
    [[nodiscard]] const std::string& name() const { return name_; }
    // The answer; before it comes, the default.
    [[nodiscard]] const std::string& getString() const { return text_; }  // Input
    [[nodiscard]] int getInt() const { return number_; }                  // Slider, Dropdown
    [[nodiscard]] bool getBool() const { return number_ != 0; }           // Toggle

private:
    friend class CustomForm;
    [[nodiscard]] nlohmann::json describe() const;
    void take(const nlohmann::json& answer);
    Kind kind_;
    std::string name_, title_, placeholder_, text_;
    std::vector<std::string> options_;
    int least_ = 0, most_ = 0, step_ = 1, number_ = 0;
};

// Answer by element name; empty when the form was closed.
using Elements = std::map<std::string, CustomFormElement>;

class CustomForm {
public:
    using Callback = std::function<void(ServerPlayer*, const Elements&)>;
    explicit CustomForm(std::string title) : title_(std::move(title)) {}
    CustomForm& addLabel(std::string name, std::string text);
    CustomForm& addInput(std::string name, std::string title, std::string placeholder = {}, std::string standard = {});
    CustomForm& addToggle(std::string name, std::string title, bool standard = false);
    CustomForm& addSlider(std::string name, std::string title, int least, int most, int step = 1, int standard = 0);
    CustomForm& addDropdown(std::string name, std::string title, std::vector<std::string> options, int standard = 0);
    [[nodiscard]] nlohmann::json describe() const;
    [[nodiscard]] std::string tojson() const;
    [[nodiscard]] Elements readanswer(const std::string& json) const;
    void sendTo(ServerPlayer* player, Callback callback) const;
    // The answer as it came, an array; "null" when the form was closed.
    void sendToForRawJson(ServerPlayer* player, std::function<void(ServerPlayer*, const std::string&)> callback) const;

private:
    CustomFormElement& add(CustomFormElement::Kind kind, std::string name, std::string title);
    std::string title_;
    std::vector<CustomFormElement> elements_;
};

}  // namespace platform::Form
