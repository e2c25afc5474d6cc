// What follows when a goods view has closed with a good chosen: the row behind the click becomes a try form. The views
// differ in what they say when the row is not there any more.
#pragma once

#include <fmt/format.h>

#include <string>

#include "plugin/chestmenu/menutable.h"
#include "plugin/trade/trade.h"

namespace ordomart {

struct tradechoice {
    tradeface face;
    screen menu;                    // opened again when the shop has changed
    const char* lostrow = nullptr;  // log line for a click that no row stands behind
    bool tellchanged = false;       // "myshop.error.itemchanged"
    bool tellretry = false;         // "wrong data ,Retry"
    bool villager = false;          // he is heard here, and not for whatever was chosen
};

// What names a row in a picture.
template <class Row>
std::string entryname(const Row& row) {
    return fmt::format("{} {} {}", row.xuid, row.index, row.revision);
}

// Rows: sellrows or recyclerows.
template <class Rows>
void followchoice(ServerPlayer* player, const pageentry& entry, const tradechoice& view);

}  // namespace ordomart
