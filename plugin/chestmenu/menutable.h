// The thirteen menus as one table: to the machinery they differ in nothing else. Filled while compiling, never changed.
#pragma once

#include "plugin/chestmenu/listeners.h"
#include "plugin/frame/globals.h"

namespace ordomart {

using containermenuguihelper::ListenRecorder;
using containermenuguihelper::plainhandler;

enum class fakechest {
    main,
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
    count
};

// What a menu is painted over: an empty screen, or the player's own stacks.
enum class backdrop { blank, ownstacks };

struct menurow {
    plainhandler mainhandler;
    plainhandler prehandler;
    void (*draw)(ServerPlayer*);  // as at its opening: lists are made anew
    backdrop behind = backdrop::blank;
};

[[nodiscard]] const menurow& menuof(fakechest which);
void paint(ServerPlayer* player, fakechest which);

// Shows another menu in the open container: picture and handlers change, container and record stay.
void switchmenu(ServerPlayer* player, ListenRecorder* record, fakechest target);

// Whether the menu is what the player looks at. Work that comes late asks this, so as not to paint over the next menu
// or over his real stacks.
[[nodiscard]] bool isinfront(ServerPlayer* player, fakechest which);

}  // namespace ordomart
