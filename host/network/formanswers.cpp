#include "host/network/formanswers.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>

namespace host {

using nlohmann::json;

namespace {

constexpr std::size_t longesttext = 64 * 1024;

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
    const auto value = found->second.rule.read(answer);
    if (!value || toolong(*value)) throw BadPacket(fmt::format("the answer does not fit form {}", id));
    Taken taken{value->dump(), std::move(found->second.answer)};
    pending_.erase(found);
    return taken;
}

}  // namespace host
