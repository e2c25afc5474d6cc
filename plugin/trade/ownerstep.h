// The tests that the owner's operations on goods and commissions have in common. Server thread.
#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <string>

#include "platform/player.h"
#include "plugin/base/globals.h"
#include "plugin/trade/refusal.h"

namespace shopsystem {

// Why a step was refused, with the numbers that the text of a money refusal shows; or what it has moved.
struct ownerresult {
    refusal why = refusal::none;
    std::int64_t needed = 0, has = 0;
    std::int64_t charged = 0, received = 0;  // what left or reached the player; a kept fee also before a refusal
    bool ischarged = false;                  // also with a charge of nothing
    std::int64_t pieces = 0;                 // stacks' counts handed over or taken in
    bool slotschanged = false;               // a chosen stack was left where it lies, being another one by now
    std::int64_t keptstacks = 0;             // stay in the record, since this server cannot make them; he was told
    bool ended = false;                      // the record was erased
    std::string name;                        // the title of an ended one
    [[nodiscard]] bool ok() const { return why == refusal::none; }
};

[[nodiscard]] ownerresult refused(refusal why);
// The shop is his, or he may manage it.
[[nodiscard]] bool mayrun(const Player& player, const std::string& shopxuid);
// The first tests of every step: the market is open, and he may run the shop.
[[nodiscard]] refusal mayact(const Player& player, const std::string& shopxuid);
// Nothing, or the refusal with both numbers.
[[nodiscard]] ownerresult mustown(const std::string& xuid, std::int64_t needed, refusal why);
// Whether one more record costs a player something: not operators, and not up to the free number. What it costs.
[[nodiscard]] bool paysfee(const Player& player, const nlohmann::json& records);
[[nodiscard]] std::int64_t recordfee(const Player& player, const nlohmann::json& records);

}  // namespace shopsystem
