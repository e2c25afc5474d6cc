#include "host/network/joinrules.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>

#include "platform/utf8.h"

namespace host {

namespace {

bool isdigit(char c) { return c >= '0' && c <= '9'; }
bool isletter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

// Characters of a name: ASCII letters, digits, blank, underscore, and whatever stands above ASCII. 0: another one.
std::size_t namelength(std::string_view name) {
    std::size_t characters = 0;
    for (; !name.empty(); ++characters) {
        const std::size_t length = platform::utf8length(name);
        const char c = name.front();
        if (length == 0 || (length == 1 && !isletter(c) && !isdigit(c) && c != ' ' && c != '_')) return 0;
        name.remove_prefix(length);
    }
    return characters;
}

template <class... A>
void demand(bool holds, fmt::format_string<A...> complaint, A&&... arguments) {
    if (!holds) throw std::runtime_error(fmt::format(complaint, std::forward<A>(arguments)...));
}

}  // namespace

void checkjoin(const JoinRequest& request) {
    const std::string& name = request.name;
    const std::size_t characters = namelength(name);
    demand(name.empty() || characters > 0, "the name must consist of letters, digits, blanks and underscores");
    demand(characters >= 1 && characters <= 16, "the name \"{}\" must have 1 to 16 characters", name);
    demand(name.front() != ' ' && name.back() != ' ', "the name \"{}\" must not begin or end with a blank", name);
    demand(request.xuid.size() <= 20 && std::ranges::all_of(request.xuid, isdigit),
           "the xuid of \"{}\" must be empty or at most 20 digits", name);
    const std::string& language = request.language;
    demand(language.size() >= 2 && language.size() <= 16 &&
               std::ranges::all_of(language, [](char c) { return isletter(c) || isdigit(c) || c == '_' || c == '-'; }),
           "the language of \"{}\" must be a code such as en_US", name);
    demand(request.devicetype >= 0 && request.devicetype <= 100, "the device type of \"{}\" must be 0 to 100", name);
    demand(request.permission >= 0 && request.permission <= 4, "the permission of \"{}\" must be 0 to 4", name);
}

}  // namespace host
