// The scoreboard wraps, so that the sum is made in 64 bits before it is asked.
#include "plugin/economy/scoreaccount.h"

#include <fmt/format.h>

#include <limits>

#include "platform/host.h"
#include "platform/level.h"
#include "plugin/economy/objectives.h"
#include "plugin/economy/offlinemoney.h"

namespace ordomart {

bool isscore(std::int64_t value) {
    using limits = std::numeric_limits<std::int32_t>;
    return value >= limits::min() && value <= limits::max();
}

scoreaccount::scoreaccount(const std::string& xuid)
    : player_(host().level != nullptr ? host().level->getPlayerByXuid(xuid) : nullptr) {
    if (player_ != nullptr) return;
    absent_ = offlineaccount(xuid);
    ensureofflineaccount(absent_);
}

std::int64_t scoreaccount::score() const {
    return player_ != nullptr ? scoreboard().getScore(*player_, scoremoneyname)
                              : scoreboard().getScore(offlineobjective, absent_);
}

struct scoreaccount::way {
    int sign;
    bool (Scoreboard::*online)(Player&, const std::string&, int);
    bool (Scoreboard::*absent)(const std::string&, const std::string&, int);
};

moneyrefusal scoreaccount::change(const way& how, std::int64_t amount) const {
    const std::int64_t before = score();
    if (!isscore(amount) || !isscore(before + how.sign * amount))
        return fmt::format("{} {} {} leaves the 32 bits of a score", before, how.sign < 0 ? '-' : '+', amount);
    const int value = static_cast<int>(amount);
    const bool done = player_ != nullptr ? (scoreboard().*how.online)(*player_, scoremoneyname, value)
                                         : (scoreboard().*how.absent)(offlineobjective, absent_, value);
    if (done) return {};
    return "the scoreboard refuses to change " + (player_ != nullptr ? scoremoneyname : absent_);
}

moneyrefusal scoreaccount::take(std::int64_t amount) const {
    return change({-1, &Scoreboard::reduceScore, &Scoreboard::reduceScore}, amount);
}
moneyrefusal scoreaccount::give(std::int64_t amount) const {
    return change({1, &Scoreboard::addScore, &Scoreboard::addScore}, amount);
}

}  // namespace ordomart
