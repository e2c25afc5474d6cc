// The lines by which a shop presents itself to whoever looks at it, in menus, cards and lists. In a turn.
#pragma once

#include <string>

#include "platform/player.h"
#include "plugin/formparts/formtools.h"
#include "plugin/shopsystem/recycleshop.h"
#include "plugin/shopsystem/sellshop.h"

namespace ordomart {

inline const std::string whiteline = "§f§r§l§f=====================§f§r";
inline const std::string greyline = "§f§r§l§8=====================§f§r";

// A counter's label and number: "{}:§g{}".
struct shopcounters {
    std::string first, second;
};
[[nodiscard]] shopcounters countersof(const sellshop& shop, const std::string& language);
[[nodiscard]] shopcounters countersof(const recycleshop& shop, const std::string& language);

// Name, white line, and the owner where he is to be named; then the two counters.
template <class Shop>
[[nodiscard]] std::string shophead(const Shop& shop, const std::string& language, bool withowner);
// The discounts that run, each behind a newline; a recycle shop has none.
[[nodiscard]] inline std::string discountlines(sellshop& shop) { return shop.getdiscountsummary(); }
[[nodiscard]] inline std::string discountlines(recycleshop&) { return {}; }
// Two lines, the first behind a newline: that the shop is banned, and why. Nothing for a shop that is not.
[[nodiscard]] std::string banlines(baseshop& shop, const std::string& language);

// Who looks, and what he owns. Server thread.
[[nodiscard]] std::string yourname(const Player& player);
[[nodiscard]] std::string yourmoney(const Player& player);

// What an owner's look at his own shop notes in it, without counting as a change: his name, a title for a shop that has
// none, and the language of its history.
struct firstlook {
    std::string xuid, realname, language;
    const char* titlesuffix;  // behind the owner's name
    bool updatelang;
};
void notelook(baseshop& shop, const firstlook& look);

}  // namespace ordomart
