#include "host/console/typed.h"

#include <fmt/format.h>

#include <map>
#include <sstream>
#include <stdexcept>

namespace host {

std::vector<std::string> split(const std::string& text) {
    std::istringstream in(text);
    std::vector<std::string> words;
    for (std::string word; in >> word;) words.push_back(word);
    return words;
}

std::string behind(const std::string& text, std::size_t n) {
    std::size_t at = 0;
    for (; n > 0 && at != std::string::npos; --n) {
        at = text.find_first_not_of(' ', at);
        if (at != std::string::npos) at = text.find(' ', at);
    }
    at = at == std::string::npos ? at : text.find_first_not_of(' ', at);
    return at == std::string::npos ? "" : text.substr(at);
}

int number(const std::string& word) {
    std::size_t used = 0;
    int value = 0;
    try {
        value = std::stoi(word, &used);
    } catch (const std::exception&) {
        used = 0;
    }
    if (used != word.size() || word.empty()) throw std::runtime_error(fmt::format("\"{}\" is no number", word));
    return value;
}

std::string trimmed(const std::string& text) {
    const auto end = text.find_last_not_of(' ');
    return end == std::string::npos ? "" : text.substr(0, end + 1);
}

namespace {

const std::map<std::string, platform::ContainerName>& containers() {
    using enum platform::ContainerName;
    static const std::map<std::string, platform::ContainerName> names{{"armor", armor},     {"armour", armor},
                                                                      {"hotbar", hotbar},   {"inventory", inventory},
                                                                      {"offhand", offhand}, {"cursor", cursor}};
    return names;
}

}  // namespace

std::vector<std::string> containerwords() {
    std::vector<std::string> words;
    for (const auto& [word, name] : containers()) words.push_back(word);
    return words;
}

platform::ContainerName containername(const std::string& word) {
    const auto found = containers().find(word);
    if (found == containers().end())
        throw std::runtime_error(fmt::format("\"{}\" is none of armour, hotbar, inventory, offhand, cursor", word));
    return found->second;
}

}  // namespace host
