// How the words of a line fill the parameters of an overload. A parameter takes the next word when it fits. An optional
// one whose word does not fit is left out, and the word is the next parameter's; when the words have come to an end,
// only optional ones may follow.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/core/commandline.h"
#include "platform/command.h"

namespace host {

using EnumMembers = std::vector<std::pair<std::string, int>>;
using Enums = std::map<std::string, EnumMembers>;
using Parameters = std::vector<platform::CommandParameter>;

struct Filling {
    std::vector<std::pair<std::size_t, platform::CommandValue>> values;  // by parameter
    std::size_t nextparameter = 0;
    std::size_t nextword = 0;  // the first one that was not taken
};

// Fills with the words from the second to before `end`, as far as it goes.
[[nodiscard]] Filling fill(const Parameters& parameters, const Enums& enums, const std::vector<CommandWord>& words,
                           std::size_t end);
// Whether every word was taken and nothing mandatory is left over.
[[nodiscard]] bool isfilled(const Filling& filling, const Parameters& parameters, std::size_t end);

// "<Operation: searchtype>", "[playerxuid|playername: string]"
[[nodiscard]] std::string hint(const platform::CommandParameter& parameter);
// What may be typed for the parameter once `begun` stands there; free values give one empty text.
[[nodiscard]] std::vector<std::string> continuations(const platform::CommandParameter& parameter, const Enums& enums,
                                                     const std::string& begun);

}  // namespace host
