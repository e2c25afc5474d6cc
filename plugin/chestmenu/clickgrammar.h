// How a click on a goods view is read, the same for all of them.
#pragma once

#include "plugin/chestmenu/pageview.h"

namespace ordomart {

enum class click {
    none,        // means nothing
    signthrown,  // the help sign was thrown from the cursor
    hotbar,      // a press on a button
    hotbarswap,  // the same by a client that holds the sign; only some buttons answer to it
    back,
    armour,
    listed,
};

struct clickreading {
    click what = click::none;
    int slot = 0;
    bool operator==(const clickreading&) const = default;
};

[[nodiscard]] clickreading readclick(const ItemStackRequestAction& action);

// A view's two handlers are these with its description.
bool handleclick(const goodsview& view, ServerPlayer* player, ItemStackRequestAction* action, ListenRecorder* record);
bool handleclosed(const goodsview& view, ServerPlayer* player, const ListenRecorder& record);

}  // namespace ordomart
