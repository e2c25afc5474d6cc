#include "host/network/formanswers.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>

namespace host {

using nlohmann::json;

namespace {

constexpr int deepest = 64;
constexpr std::size_t longesttext = 64 * 1024;

// Looked at before anything is built of it.
bool toodeep(const std::string& text) {
    int depth = 0;
    bool quoted = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (quoted && c == '\\')
            ++i;
        else if (c == '"')
            quoted = !quoted;
        else if (!quoted && (c == '[' || c == '{') && ++depth > deepest)
            return true;
        else if (!quoted && (c == ']' || c == '}'))
            --depth;
    }
    return false;
}

bool toolong(const json& value) {
    if (value.is_string()) return value.get_ref<const std::string&>().size() > longesttext;
    return value.is_array() && std::ranges::any_of(value, toolong);
}

}  // namespace

std::uint32_t FormAnswers::add(const std::string& form, Answer answer) {
    Pending pending{platform::Form::AnswerRule(json::parse(form, nullptr, false)), std::move(answer)};
    if (pending_.size() >= mostopen) pending_.erase(pending_.begin());
    pending_.emplace(++lastid_, std::move(pending));
    return lastid_;
}

FormAnswers::Taken FormAnswers::take(std::uint32_t id, const std::string& answer) {
    const auto found = pending_.find(id);
    if (found == pending_.end()) throw BadPacket(fmt::format("there is no open form {}", id));
    if (toodeep(answer)) throw BadPacket(fmt::format("the answer to form {} is nested too deep", id));
    const auto value = found->second.rule.read(answer);
    if (!value || toolong(*value)) throw BadPacket(fmt::format("the answer does not fit form {}", id));
    Taken taken{value->dump(), std::move(found->second.answer)};
    pending_.erase(found);
    return taken;
}

}  // namespace host
