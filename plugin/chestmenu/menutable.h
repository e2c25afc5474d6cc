// The chest menus as one table: to the machinery they differ in nothing else. A menu enters its row while the module
// loads.
//
// A picture belongs to one painting of one menu in one opening. Work that paints it later keeps its number and asks
// whether it is still awaited: by then the player may look at another menu, at the same one painted anew, or at his
// real stacks.
#pragma once

#include <cstdint>

#include "plugin/base/screens.h"
#include "plugin/chestmenu/listeners.h"

namespace ordomart {

using containermenuguihelper::ListenRecorder;
using containermenuguihelper::menupicture;
using containermenuguihelper::pageentry;
using containermenuguihelper::plainhandler;

// What a menu is painted over: an empty screen, or the player's own stacks.
enum class backdrop { blank, ownstacks };

struct menurow {
    plainhandler mainhandler = nullptr;
    plainhandler prehandler = nullptr;
    // As at its opening: lists are made anew. Paints at once, or begins a page that is painted later.
    void (*draw)(ServerPlayer*) = nullptr;
    backdrop behind = backdrop::blank;
    // What the client was told beside the picture is taken back, when another opening takes the menu's place.
    void (*leave)(ServerPlayer*) = nullptr;
};

struct menuentry {
    menuentry(screen which, const menurow& row);
};

[[nodiscard]] const menurow& menuof(screen which);

// Shows a menu in the open container of the record: picture and handlers change, container and record stay. What cannot
// be drawn is logged and closed again.
void showmenu(ServerPlayer* player, ListenRecorder& record, screen which);
// The same for a press; one that leads to a menu which is not there is answered by a sound.
void switchmenu(ServerPlayer* player, ListenRecorder* record, screen target);

// ---- pictures that come later
// From here on the page of the menu in front is another one. Its number; 0, which is never awaited, without a menu.
[[nodiscard]] std::uint64_t beginpage(ServerPlayer* player);
[[nodiscard]] bool isawaited(const ServerPlayer* player, std::uint64_t picture);
// The page has been painted, with these entries in the listed slots.
void completepage(const ServerPlayer* player, std::vector<pageentry> entries);

}  // namespace ordomart
