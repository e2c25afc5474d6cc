// One player's money on the scoreboard: his score while he is online, and while he is away the account that stands for
// him. A score has 32 bits; a change that would leave them is refused and changes nothing. Server thread.
#pragma once

#include <cstdint>
#include <string>

#include "platform/player.h"
#include "plugin/economy/moneyrefusal.h"

namespace ordomart {

// Whether 32 bits can say it.
[[nodiscard]] bool isscore(std::int64_t value);

class scoreaccount {
public:
    // An absent player's account is made when it is missing. Throws std::runtime_error where there is no objective.
    explicit scoreaccount(const std::string& xuid);
    explicit scoreaccount(platform::ServerPlayer* online) : player_(online) {}

    [[nodiscard]] bool isofabsent() const { return player_ == nullptr; }
    [[nodiscard]] std::int64_t score() const;
    [[nodiscard]] moneyrefusal take(std::int64_t amount) const;
    [[nodiscard]] moneyrefusal give(std::int64_t amount) const;
    // Takes a change back, by the operation of the scoreboard that has just worked.
    [[nodiscard]] moneyrefusal untake(std::int64_t amount) const { return take(-amount); }
    [[nodiscard]] moneyrefusal ungive(std::int64_t amount) const { return give(-amount); }

private:
    struct way;
    [[nodiscard]] moneyrefusal change(const way& how, std::int64_t amount) const;
    platform::ServerPlayer* player_ = nullptr;
    std::string absent_;  // the name of the account that stands for him
};

}  // namespace ordomart
