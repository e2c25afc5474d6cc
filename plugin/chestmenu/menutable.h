// The chest menus as one table: to the machinery they differ in nothing else. A menu enters its row while the module
// loads.
#pragma once

#include "plugin/base/screens.h"
#include "plugin/chestmenu/listeners.h"

namespace ordomart {

using containermenuguihelper::ListenRecorder;
using containermenuguihelper::plainhandler;

// What a menu is painted over: an empty screen, or the player's own stacks.
enum class backdrop { blank, ownstacks };

struct menurow {
    plainhandler mainhandler = nullptr;
    plainhandler prehandler = nullptr;
    void (*draw)(ServerPlayer*) = nullptr;  // as at its opening: lists are made anew
    backdrop behind = backdrop::blank;
};

struct menuentry {
    menuentry(screen which, const menurow& row);
};

[[nodiscard]] const menurow& menuof(screen which);
void paint(ServerPlayer* player, screen which);

// Shows another menu in the open container: picture and handlers change, container and record stay.
void switchmenu(ServerPlayer* player, ListenRecorder* record, screen target);

// Whether the menu is what the player looks at. Work that comes late asks this, so as not to paint over the next menu
// or over his real stacks.
[[nodiscard]] bool isinfront(ServerPlayer* player, screen which);

}  // namespace ordomart
