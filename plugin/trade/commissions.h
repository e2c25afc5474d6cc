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
#include "plugin/trade/ownerstep.h"

namespace shopsystem {

// How a face differs when it publishes.
struct publishrules {
    bool banfirst = true;  // else the fee test comes before the ban test
};
inline constexpr publishrules formpublish{true}, chestslotpublish{true}, chestcreativepublish{false};

// `wanted`: names, offer, leftwanna, the four toggles and itemnbt, the template with the count it had.
ownerresult publishcommission(ServerPlayer* player, const std::string& shopxuid, const recycleshopitem& wanted,
                              const publishrules& rules);
// Takes from the chosen slots that still hold what is wanted, at most `asked[i]` of slots[i], pays the player, counts,
// logs. `working` is the record as the face read it; that the index holds and the revision is still the same is the
// face's to test.
ownerresult takeinitems(ServerPlayer* player, recycleshop& shop, int index, recycleshopitem working,
                        const std::vector<slotcount>& slots, const std::vector<int>& asked);
// `form`: name, describe, tag, offer, leftwanna, the four toggles are taken from it; a count of 0 or less ends it. One
// with stacks that cannot be handed over is not erased: it stays as it was, with nothing wanted any more.
ownerresult adjustcommission(ServerPlayer* player, const std::string& shopxuid, int index, std::uint32_t revision,
                             const recycleshopitem& form);
ownerresult pickupcommission(ServerPlayer* player, const std::string& shopxuid, int index, std::uint32_t revision);

}  // namespace shopsystem
