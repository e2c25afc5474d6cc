#include "host/console/drawing.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>

#include "host/console/colours.h"
#include "platform/foreignjson.h"

namespace host {

using nlohmann::json;

namespace {

std::string indented(const std::string& text, const std::string& indent) {
    std::istringstream lines(text);
    std::string out, line;
    while (std::getline(lines, line)) out += indent + line + "\n";
    return out;
}

std::string elementtext(const json& element) {
    const std::string kind = element.at("type");
    const std::string text = element.at("text");
    if (kind == "label") return text;
    if (kind == "input")
        return fmt::format("{}  <{}> [{}]", text, element.value("placeholder", ""), element.value("default", ""));
    if (kind == "toggle") return fmt::format("{}  <true|false> [{}]", text, element.value("default", false));
    if (kind == "slider")
        return fmt::format("{}  <{} to {}> [{}]", text, element.at("min").dump(), element.at("max").dump(),
                           element.value("default", json(0)).dump());
    std::string options;
    int number = 0;
    for (const json& option : element.at("options"))
        options += fmt::format("{}{}: {}", number == 0 ? "" : ", ", number, option.get<std::string>()), ++number;
    return fmt::format("{}  <{}> [{}]", text, options, element.value("default", 0));
}

json typedvalue(const json& element, const std::string& word) {
    const std::string kind = element.at("type");
    if (kind == "input") return word;
    if (kind == "toggle") {
        if (word == "true" || word == "false") return word == "true";
        throw std::runtime_error(fmt::format("\"{}\" is neither true nor false", word));
    }
    try {
        return std::stoi(word);
    } catch (const std::exception&) {
        throw std::runtime_error(fmt::format("\"{}\" is no number", word));
    }
}

std::vector<std::string> words(const std::string& text) {
    std::vector<std::string> all;
    std::string word;
    bool quoted = false, any = false;
    for (const char c : text) {
        if (c == '"') {
            quoted = !quoted;
            any = true;
        } else if (c == ' ' && !quoted) {
            if (any) all.push_back(word);
            word.clear();
            any = false;
        } else {
            word += c;
            any = true;
        }
    }
    if (any) all.push_back(word);
    return all;
}

struct Area {
    const char* title;
    std::uint32_t container;
    int first, count;
};

constexpr Area areas[] = {{"armour", client::armorid, 0, 4},
                          {"offhand", client::offhandid, 0, 1},
                          {"inventory", client::inventoryid, 9, 27},
                          {"hotbar", client::inventoryid, 0, 9},
                          {"cursor", client::uiid, 0, 1}};

json typedjson(const std::string& typed) {
    try {
        return platform::readforeignjson(typed);
    } catch (const platform::ForeignJsonError& e) {
        throw std::runtime_error(fmt::format("the answer {}", e.what()));
    }
}

}  // namespace

std::string drawform(const json& form) {
    const std::string kind = form.at("type");
    std::string out = fmt::format("\u250c\u2500 {}\n", form.value("title", ""));
    if (form.contains("content") && form["content"].is_string())
        out += indented(form["content"].get<std::string>(), "\u2502 ");
    if (kind == "form") {
        int number = 0;
        for (const json& button : form.at("buttons")) {
            std::string text = button.at("text");
            for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos;) text.replace(at, 1, " \u00b7 ");
            out += fmt::format("\u2502 {:>3}: {}\u00a7r\n", number++, text);
        }
    } else if (kind == "modal") {
        out += fmt::format("\u2502   1: {}\n\u2502   0: {}\n", form.value("button1", ""), form.value("button2", ""));
    } else {
        for (const json& element : form.at("content")) out += indented(elementtext(element), "\u2502 ");
    }
    return out + "\u2514\u2500";
}

std::string formline(const json& form) {
    const std::string title = form.value("title", "");
    return fmt::format("\"{}\u00a7r\"", title.substr(0, title.find('\n')));
}

std::string drawscreen(const client::ModelClient& c) {
    std::string out;
    if (!c.forms().empty())
        out += fmt::format("in front: the form {}\n", formline(json::parse(c.forms().front().json)));
    if (c.container())
        out += fmt::format("open: container {} of type {}\n", c.container()->id, c.container()->type);
    else
        out += "no menu is open\n";
    for (const Area& area : areas) {
        std::string rows;
        for (int slot = area.first; slot < area.first + area.count; ++slot) {
            const platform::NetworkItem& item = c.slot(area.container, slot);
            if (item.networkid == 0) continue;
            // One line each, so that a page of goods stays in sight; rules between texts are left out.
            rows += fmt::format("  {:>2}  {} \u00d7{}{}{}\u00a7r", slot, c.displayname(item), item.count,
                                client::ModelClient::shines(item) ? " \u2726" : "",
                                client::ModelClient::locked(item) ? " [locked]" : "");
            for (const std::string& texts : client::ModelClient::lore(item)) {
                std::istringstream lines(texts);
                for (std::string line; std::getline(lines, line);)
                    if (terminaltext(line, false).find_first_not_of("= ") != std::string::npos)
                        rows += fmt::format(" \u00b7 {}\u00a7r", line);
            }
            rows += fmt::format("  \u00a78{}\u00a7r\n", c.itemname(item));
        }
        if (!rows.empty()) out += fmt::format("{}\n{}", area.title, rows);
    }
    return out;
}

json typedanswer(const json& form, const std::string& typed) {
    if (typed == "close") return nullptr;
    const std::string kind = form.at("type");
    if (kind == "custom_form") {
        if (typed.starts_with('[')) return typedjson(typed);
        const std::vector<std::string> given = words(typed);
        json answer = json::array();
        std::size_t next = 0;
        for (const json& element : form.at("content")) {
            if (element.at("type") == "label")
                answer.push_back(nullptr);
            else if (next < given.size())
                answer.push_back(typedvalue(element, given[next++]));
            else
                answer.push_back(element.value("default", json("")));
        }
        if (next < given.size())
            throw std::runtime_error(
                fmt::format("the form takes {} values, \"{}\" is one too many", next, given[next]));
        return answer;
    }
    if (kind == "modal") {
        if (typed == "1" || typed == "true" || typed == "yes") return true;
        if (typed == "0" || typed == "false" || typed == "no") return false;
        for (const bool first : {true, false})
            if (!typed.empty() &&
                form.at(first ? "button1" : "button2").get<std::string>().find(typed) != std::string::npos)
                return first;
        throw std::runtime_error(fmt::format("there is no button \"{}\"; answer 1, 0 or close", typed));
    }
    const json& buttons = form.at("buttons");
    if (!typed.empty() && typed.find_first_not_of("0123456789") == std::string::npos && typed.size() < 6) {
        const int number = std::stoi(typed);
        if (number < static_cast<int>(buttons.size())) return number;
    }
    for (std::size_t i = 0; i < buttons.size() && !typed.empty(); ++i)
        if (buttons[i].at("text").get<std::string>().find(typed) != std::string::npos) return static_cast<int>(i);
    throw std::runtime_error(fmt::format("there is no button \"{}\"; answer 0 to {}, or close", typed,
                                         static_cast<int>(buttons.size()) - 1));
}

}  // namespace host
