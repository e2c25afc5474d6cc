// What a player on the stage does and sees, through his model client.
#include <fmt/format.h>

#include <stdexcept>

#include "platform/host.h"
#include "platform/item.h"
#include "platform/packets/forms.h"
#include "tests/stage/stage.h"

namespace stage {

using client::ModelClient;

namespace {

template <class List, class F>
std::string joined(const List& list, F text) {
    std::string all;
    for (const auto& entry : list) all += text(entry) + "\n";
    if (!all.empty()) all.pop_back();
    return all;
}

std::string told(const platform::ItemStack& stack) {
    return stack.isNull() ? "" : fmt::format("{}*{}", stack.getTypeName(), stack.getCount());
}

// Everything a person can read in a form.
void collect(const json& value, std::string& out) {
    if (value.is_string()) out += value.get<std::string>() + "\n";
    if (value.is_structured())
        for (const auto& inner : value) collect(inner, out);
}

}  // namespace

Actor& Actor::types(const std::string& line) {
    look([&](ModelClient& c) { c.command(line); });
    stage_.server().settle();
    return *this;
}

Actor& Actor::clicks(ContainerName container, int slot) {
    look([&](ModelClient& c) { c.click(container, slot); });
    stage_.server().settle();
    return *this;
}

Actor& Actor::holds(int slot) {
    look([&](ModelClient& c) { c.holds(slot); });
    stage_.server().settle();
    return *this;
}

Actor& Actor::drops(ContainerName container, int slot) {
    look([&](ModelClient& c) { c.drop(container, slot); });
    stage_.server().settle();
    return *this;
}

Actor& Actor::closes() {
    look([&](ModelClient& c) { c.close(); });
    stage_.server().settle();
    return *this;
}

Actor& Actor::answers(const json& answer) {
    if (form().is_null()) throw std::runtime_error(who_.name + " has no form to answer");
    look([&](ModelClient& c) { c.answer(answer.dump()); });
    stage_.server().settle();
    return *this;
}

Actor& Actor::presses(const std::string& buttontext) {
    const json shown = form();
    if (shown.is_null()) throw std::runtime_error(who_.name + " has no form to press \"" + buttontext + "\" in");
    if (shown["type"] == "modal") {
        for (const bool first : {true, false})
            if (shown[first ? "button1" : "button2"].get<std::string>().find(buttontext) != std::string::npos)
                return answers(first);
    } else {
        int number = 0;
        for (const json& button : shown["buttons"]) {
            if (button["text"].get<std::string>().find(buttontext) != std::string::npos) return answers(number);
            ++number;
        }
    }
    throw std::runtime_error("no button \"" + buttontext + "\" in " + shown.dump());
}

Actor& Actor::fills(const Answers& values) {
    const json shown = form();
    if (shown.is_null() || shown["type"] != "custom_form") throw std::runtime_error(who_.name + " has no form to fill");
    json answer = json::array();
    std::size_t used = 0;
    for (const json& element : shown["content"]) {
        json value = element.contains("default") ? element["default"] : json(nullptr);
        for (const auto& [title, given] : values)
            if (element["type"] != "label" && element["text"].get<std::string>().find(title) != std::string::npos) {
                value = given;
                ++used;
            }
        answer.push_back(value);
    }
    if (used < values.size()) throw std::runtime_error("not every element was found in " + shown.dump());
    return answers(answer);
}

Actor& Actor::answersraw(std::uint32_t formid, const std::string& text) {
    look([&](ModelClient& c) {
        c.sendraw(platform::sealpacket(platform::topacket(platform::ModalFormResponsePacket{formid, text, {}})));
    });
    stage_.server().settle();
    return *this;
}

Actor& Actor::dismisses() {
    for (int i = 0; i < 10 && !form().is_null(); ++i) answers(nullptr);
    return *this;
}

Actor& Actor::leaves() {
    stage_.clients().leave(who_.name);
    stage_.server().settle();
    return *this;
}

Actor& Actor::forgets() {
    look([](ModelClient& c) {
        c.chat.clear();
        c.toasts.clear();
        c.sounds.clear();
        c.replies.clear();
        c.packets.clear();
    });
    return *this;
}

void Actor::look(const std::function<void(ModelClient&)>& at) const { stage_.clients().with(who_.name, at); }

std::string Actor::chat() const {
    std::string all;
    look([&](ModelClient& c) { all = joined(c.chat, [](const auto& line) { return line; }); });
    return all;
}

std::string Actor::toasts() const {
    std::string all;
    look([&](ModelClient& c) { all = joined(c.toasts, [](const auto& t) { return t.title + ": " + t.content; }); });
    return all;
}

std::string Actor::replies() const {
    std::string all;
    look([&](ModelClient& c) { all = joined(c.replies, [](const auto& r) { return r.text; }); });
    return all;
}

std::vector<std::string> Actor::sounds() const {
    std::vector<std::string> all;
    look([&](ModelClient& c) {
        for (const auto& sound : c.sounds) {
            const bool usual = sound.volume == 1 && sound.pitch == 1;
            all.push_back(sound.name + (usual ? "" : fmt::format(" {}/{}", sound.volume, sound.pitch)));
        }
    });
    return all;
}

json Actor::form() const {
    json front;
    look([&](ModelClient& c) {
        if (!c.forms().empty()) front = json::parse(c.forms().front().json);
    });
    return front;
}

std::uint32_t Actor::formid() const {
    std::uint32_t id = 0;
    look([&](ModelClient& c) { id = c.forms().front().id; });
    return id;
}

std::string Actor::formtext() const {
    std::string all;
    collect(form(), all);
    return all;
}

bool Actor::menuopen() const {
    bool open = false;
    look([&](ModelClient& c) { open = c.container().has_value(); });
    return open;
}

std::string Actor::shown(std::uint32_t container, int slot) const {
    std::string text;
    look([&](ModelClient& c) {
        const auto& item = c.slot(container, slot);
        if (item.networkid != 0) text = fmt::format("{}*{}", c.itemname(item), item.count);
    });
    return text;
}

std::int64_t Actor::money() const {
    return stage_.llmoney() ? stage_.money(who_.xuid) : stage_.score(who_.name, "money");
}

Actor& Actor::setmoney(std::int64_t amount) {
    stage_.onserver([&] {
        if (stage_.llmoney())
            host::Money(*stage_.server().services().libraries).set(who_.xuid, amount);
        else
            stage_.server().world().setscore(who_.name, "money", static_cast<int>(amount));
    });
    return *this;
}

Actor& Actor::gives(int slot, const std::string& name, int count, const std::string& text) {
    stage_.onserver([&] {
        platform::ItemStack stack = platform::ItemStack::create(name, count);
        if (!text.empty()) {
            const auto tag = platform::CompoundTag::fromSNBT(text);
            if (!tag) throw std::runtime_error("no SNBT: " + text);
            stack = platform::ItemStack::fromTag(*tag);
        }
        if (stack.isNull()) throw std::runtime_error("no item: " + name);
        stage_.server().world().setitem(who_.name, slot, stack);
    });
    return *this;
}

Actor& Actor::loses(int slot) {
    stage_.onserver([&] { stage_.server().world().setitem(who_.name, slot, {}); });
    return *this;
}

std::string Actor::has(int slot) const {
    std::string text;
    stage_.onserver([&] { text = told(stage_.server().world().item(who_.name, slot)); });
    return text;
}

int Actor::counts(const std::string& name) const {
    int pieces = 0;
    stage_.onserver([&] {
        for (int slot = 0; slot <= 40; ++slot) {
            const auto stack = stage_.server().world().item(who_.name, slot);
            if (!stack.isNull() && stack.getTypeName() == name) pieces += stack.getCount();
        }
    });
    return pieces;
}

Actor& Actor::dies() {
    stage_.onserver([&] { stage_.server().world().setalive(who_.name, false); });
    return *this;
}

Actor& Actor::revives() {
    stage_.onserver([&] { stage_.server().world().setalive(who_.name, true); });
    return *this;
}

Actor& Actor::may(int permission) {
    stage_.onserver([&] { stage_.server().world().setpermission(who_.name, permission); });
    return *this;
}

}  // namespace stage
