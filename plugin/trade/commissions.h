// The operations on commissions that every face shares: publish, take in, adjust, pick up. A face gives the order of
// its tests as data and turns the named outcome into what the player reads. What belongs to the change itself is done
// here: money and its log lines, stacks that change hands, the player's inventory sent anew, the shop marked as
// changed. Sounds, toasts and what is opened next are the face's. Every test comes before the first change, and payment
// is the first change; a refused step has changed nothing. Server thread.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/player.h"
#include "plugin/shopsystem/itemidentity.h"
#include "plugin/shopsystem/recycleshop.h"
#include "plugin/trade/refusal.h"

namespace shopsystem {

// Why a step was refused, with the numbers that the text of a money refusal shows; or what it has moved.
struct commissionresult {
    refusal why = refusal::none;
    std::int64_t needed = 0, has = 0;
    std::int64_t charged = 0, received = 0;  // what left or reached the player
    std::int64_t pieces = 0;                 // stacks' counts handed over or taken in
    bool slotschanged = false;               // a chosen stack was left where it lies, being another one by now
    std::int64_t keptstacks = 0;             // stay in the record, since this server cannot make them; he was told
    bool ended = false;                      // the commission was erased
    std::string name;                        // recycleitemname of an ended one
    [[nodiscard]] bool ok() const { return why == refusal::none; }
};

// How a face differs when it publishes.
struct publishrules {
    bool banfirst = true;  // else the fee test comes before the ban test
};
inline constexpr publishrules formpublish{true}, chestslotpublish{true}, chestcreativepublish{false};

// What the next commission costs a player, beside its deposit: 0 for operators and up to the free number of records.
[[nodiscard]] std::int64_t publishfee(const Player& player, const recycleshop& shop);

// `wanted`: names, offer, leftwanna, the four toggles and itemnbt, the template with the count it had.
commissionresult publishcommission(ServerPlayer* player, const std::string& shopxuid, const recycleshopitem& wanted,
                                   const publishrules& rules);
// Takes from the chosen slots that still hold what is wanted, at most `asked[i]` of slots[i], pays the player, counts,
// logs. `working` is the record as the face read it; that the index holds and the revision is still the same is the
// face's to test.
commissionresult takeinitems(ServerPlayer* player, recycleshop& shop, int index, recycleshopitem working,
                             const std::vector<slotcount>& slots, const std::vector<int>& asked);
// `form`: name, describe, tag, offer, leftwanna, the four toggles are taken from it; a count of 0 or less ends it. One
// with stacks that cannot be handed over is not erased: it stays as it was, with nothing wanted any more.
commissionresult adjustcommission(ServerPlayer* player, const std::string& shopxuid, int index, std::uint32_t revision,
                                  const recycleshopitem& form);
commissionresult pickupcommission(ServerPlayer* player, const std::string& shopxuid, int index, std::uint32_t revision);

}  // namespace shopsystem
