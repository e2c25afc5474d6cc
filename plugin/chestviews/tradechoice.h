// What follows when a goods view has closed with a good chosen: the row behind the click becomes a try form. The views
// differ in what they say when the row is not there any more, in when the villager is heard, and in the way back.
#pragma once

#include <fmt/format.h>

#include <string>

#include "plugin/base/screens.h"
#include "plugin/chestmenu/listeners.h"
#include "plugin/trade/trade.h"

namespace ordomart {

using containermenuguihelper::ListenRecorder;

struct tradechoice {
    tradeface face;
    const char* lostrow = nullptr;  // log line for a click that no row stands behind
    bool tellchanged = false;       // "myshop.error.itemchanged"
    bool tellretry = false;         // "wrong data ,Retry"
    bool soundforrows = false;      // the villager is heard for a row alone, not for whatever was chosen
    bool searches = false;          // there is a search button
};

// What names a row in a picture.
template <class Row>
std::string entryname(const Row& row) {
    return fmt::format("{} {} {}", row.xuid, row.index, row.revision);
}

// What a view does at its end. `menu` is the view itself. Rows: sellrows or recyclerows.
template <class Rows>
bool followchoice(ServerPlayer* player, const ListenRecorder& record, screen menu, const tradechoice& view);

}  // namespace ordomart
