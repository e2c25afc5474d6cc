// Every menu that can be opened, in one list. Whoever leads to a menu names it here and does not know it; a menu enters
// itself while the module loads. Server thread.
#pragma once

#include <string>

#include "platform/player.h"
#include "plugin/base/guards.h"

namespace ordomart {

enum class screen {
    // chest menus
    ordomenu,
    sellshops,
    recycleshops,
    sellshoplist,
    recycleshoplist,
    singlesellshop,
    singlerecycleshop,
    myshop,
    myshopreload,
    myshoponshop,
    myrecycleshop,
    myrecycleshoponreshop,
    myrecycleshoppickup,
    chestmenus,  // how many
    // forms
    mainmenuform = chestmenus,
    shortmainmenuform,
    lastmainmenuform,  // the one that the player came from, if any
    sellform,
    recycleform,
    myshopform,
    myrecycleshopform,
    systemshopform,
    systemsellform,
    systemrecycleform,
    goodslist,
    uploadlist,
    replenishlist,
    commissionlist,
    issuelist,
    pickuplist,
    searchform,
    count,
    none = count
};

// What else a menu may want to know.
struct screenorder {
    std::string shop = {};       // whose, for a single shop
    bool refresh = true;         // a list is made anew, an owner's language noted
    int type = 0;                // sell or recycle, where the search form begins
    bool indescription = false;  // and whether it looks into descriptions
};

using screenopener = opresult (*)(ServerPlayer*, const screenorder&);

struct screenentry {
    screenentry(screen which, screenopener opener);
};

// Refused, when nobody has entered the menu.
opresult openscreen(screen which, ServerPlayer* player, const screenorder& order = {});

}  // namespace ordomart
