// Run-time memory of one player, shared by all his menus; never stored. Reached only in a turn.
#pragma once

#include <cstdint>
#include <string>

#include "platform/player.h"
#include "plugin/base/globals.h"
#include "plugin/shopsystem/readlist.h"
#include "plugin/shopsystem/shopfilter.h"
#include "plugin/shopsystem/shopitems.h"

namespace shopsystem {

struct playershopstate {
    std::int32_t myshoppage = 0, myrecycleshoppage = 0, sellpage = 0, recyclepage = 0, shoplistpage = 0;
    std::int64_t menuopentime = 0;     // Unix seconds of the last chest opening
    std::string viewedshopid;          // the single shop in view
    std::string managedid = "114514";  // whose shop the owner views act on; "114514": his own
    readlist<globalsellshopitem> sellreadlist;
    readlist<globalrecycleshopitem> recyclereadlist;
    shopfilter filter, searchfilter;  // standing, and of one search
    bool searchmode = false;          // searchfilter applies to the next prepare step, which clears this
    bool detailmode = false;          // desktop client: long lore
    bool doubleclickmode = false;     // touch help mode
    bool showhelper = true;
    std::uint8_t menumode = 0;    // 2 after the small form main menu, 3 after the large one
    std::uint8_t filterstep = 0;  // sort order of the global lists

    void resetatleave();
    void setatjoin(int devicetype);
    // Manages the shop of the xuid from now on (or nobody, with "114514"): both owner pages go to 0.
    void manage(const std::string& xuid);
};

// A missing record is made.
[[nodiscard]] playershopstate& getplayershopstate(const std::string& xuid);
// Asked at each step and at each answer, since rights may go while a form is open.
[[nodiscard]] bool isoperator(const Player& player);
// The shop that the player's owner views act on. Who manages somebody else's without being an operator any more stops
// managing it.
[[nodiscard]] std::string effectiveshop(const Player* player);

}  // namespace shopsystem
