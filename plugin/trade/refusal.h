// Why a step of trade was refused, by either trade or by one of the owner's operations. A refused step has changed
// nothing: not the money, not the stacks, not the shop.
#pragma once

#include <string>

namespace shopsystem {

enum class refusal {
    none,
    marketclosed,    // what would change now could not be saved
    badquantity,     // not to be had in this quantity, or for so long
    toomany,         // more pieces than can be handed over at once
    badnumbers,      // an offer or a count out of range
    banned,          // the shop is
    feeshort,        // not enough money for the fee of a further record
    moneyshort,      // not enough money
    shopchanged,     // since the player saw it
    recordgone,      // the place in the shop is empty
    itembroken,      // what is stored there is no item of this server
    slotsempty,      // nothing lies in the chosen slot
    slotschanged,    // none of the chosen slots holds what it held
    denied,          // the shop is not his, or it takes an operator
    paymentrefused,  // by whoever keeps the money
};

// What the player reads.
[[nodiscard]] std::string refusaltext(refusal why, const std::string& language);

}  // namespace shopsystem
