// Each kind of parameter knows what it takes and what it offers.
#include "host/core/overload.h"

#include <algorithm>
#include <charconv>

namespace host {

namespace {

using platform::CommandParameter;
using platform::CommandValue;
using Kind = CommandParameter::Kind;

const EnumMembers truths = {{"true", 1}, {"false", 0}};
const EnumMembers nothing;

const EnumMembers& members(const CommandParameter& parameter, const Enums& enums) {
    if (parameter.kind == Kind::Bool) return truths;
    const auto found = enums.find(parameter.enumname);
    return found == enums.end() ? nothing : found->second;
}

// No sign but "-" and "+", no other letters, 32 bits.
std::optional<int> number(std::string_view text) {
    if (text.size() > 1 && text.front() == '+' && text[1] != '-') text.remove_prefix(1);
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

std::optional<CommandValue> fits(const CommandParameter& parameter, const Enums& enums, const CommandWord& word) {
    if (!word.closed) return std::nullopt;
    if (parameter.kind == Kind::String) return word.text;
    if (word.quoted) return std::nullopt;
    if (parameter.kind == Kind::Int) {
        const auto value = number(word.text);
        return value ? std::optional<CommandValue>(*value) : std::nullopt;
    }
    for (const auto& [name, value] : members(parameter, enums)) {
        if (name != word.text) continue;
        return parameter.kind == Kind::Bool ? CommandValue(value != 0) : CommandValue(value);
    }
    return std::nullopt;
}

}  // namespace

Filling fill(const Parameters& parameters, const Enums& enums, const std::vector<CommandWord>& words, std::size_t end) {
    Filling filling{{}, 0, 1};
    while (filling.nextparameter < parameters.size() && filling.nextword < end) {
        const auto& parameter = parameters[filling.nextparameter];
        auto value = fits(parameter, enums, words[filling.nextword]);
        if (!value && !parameter.optional) break;
        if (value) {
            filling.values.emplace_back(filling.nextparameter, std::move(*value));
            ++filling.nextword;
        }
        ++filling.nextparameter;
    }
    return filling;
}

bool isfilled(const Filling& filling, const Parameters& parameters, std::size_t end) {
    return filling.nextword == end &&
           std::all_of(parameters.begin() + static_cast<std::ptrdiff_t>(filling.nextparameter), parameters.end(),
                       [](const auto& parameter) { return parameter.optional; });
}

std::string hint(const CommandParameter& parameter) {
    const auto type = [&]() -> std::string {
        switch (parameter.kind) {
            case Kind::Enum:
                return parameter.enumname;
            case Kind::Int:
                return "int";
            case Kind::Bool:
                return "bool";
            default:
                return "string";
        }
    }();
    const auto text = parameter.name + ": " + type;
    return parameter.optional ? "[" + text + "]" : "<" + text + ">";
}

std::vector<std::string> continuations(const CommandParameter& parameter, const Enums& enums,
                                       const std::string& begun) {
    if (parameter.kind == Kind::String) return {""};
    std::vector<std::string> found;
    if (parameter.kind == Kind::Int) {
        if (begun.empty() || begun == "-" || number(begun)) found.emplace_back();
        return found;
    }
    for (const auto& [name, value] : members(parameter, enums)) {
        if (name.rfind(begun, 0) == 0) found.push_back(name);
    }
    return found;
}

}  // namespace host
