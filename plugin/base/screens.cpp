// The list is there before the first entry: entries are made while the module loads, in no certain order.
#include "plugin/base/screens.h"

#include <array>

namespace ordomart {

namespace {
constinit std::array<screenopener, static_cast<std::size_t>(screen::count)> openers{};
}

screenentry::screenentry(screen which, screenopener opener) { openers.at(static_cast<std::size_t>(which)) = opener; }

opresult openscreen(screen which, ServerPlayer* player, const screenorder& order) {
    const auto opener = openers.at(static_cast<std::size_t>(which));
    return opener != nullptr ? opener(player, order) : opresult::refused;
}

}  // namespace ordomart
