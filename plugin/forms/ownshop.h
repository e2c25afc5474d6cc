// What the owner's form menus have in common: the shop is brought in by the worker, and the form comes up on the server
// thread. All act on the shop that the player manages, or on his own.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "plugin/forms/listform.h"
#include "plugin/shopsystem/baseshop.h"
#include "plugin/shopsystem/stackplace.h"
#include "plugin/trade/ownerface.h"

namespace ordomart {

// A page of the shop's own rows. `offer` is the dialog of the chosen one.
struct ownlist {
    const char* place;
    shoptype kind;
    const char* titlekey;
    screen closed, turned;
    void (*offer)(ServerPlayer*, const std::string& shopxuid, std::int64_t index, ownerside side);
    bool showswaiting = false;  // the pieces to be picked up in place of count and price
};
opresult openownlist(ServerPlayer* player, const ownlist& list);

// A button for each slot of the inventory.
struct slotlist {
    const char* place;
    shoptype kind;
    const char* titlekey;
    screen closed;
    void (*offer)(ServerPlayer*, const std::string& shopxuid, const stackplace& from, ownerside side);
};
opresult openslotlist(ServerPlayer* player, const slotlist& list);

// The menu of one of the two shops.
struct ownmenubutton {
    const char* textkey;
    void (*act)(ServerPlayer*, const std::string& shopxuid);
    const char* image = "";
};
struct ownmenu {
    const char* place;
    shoptype kind;
    const char* titlekey;
    std::span<const ownmenubutton> buttons;
};
opresult openownmenu(ServerPlayer* player, const ownmenu& menu, bool updatelang);

}  // namespace ordomart
