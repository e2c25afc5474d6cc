// How a goods view enters the market: one object of this kind in its file. Its handlers are made of its description.
#pragma once

#include "plugin/chestmenu/clickgrammar.h"
#include "plugin/chestmenu/opening.h"
#include "plugin/chestmenu/refresh.h"

namespace ordomart {

// `Refresh` shows the view, `Open` opens it.
template <const goodsview& View, void (*Refresh)(ServerPlayer*, bool reload), auto Open>
class viewentry {
public:
    viewentry()
        : menu_(View.menu, {View.closed != nullptr ? View.closed : &onclose, &onclick, &draw, View.behind}),
          screen_(View.menu, &open) {}

private:
    static bool onclose(ServerPlayer* player, ItemStackRequestAction*, ListenRecorder* record) {
        droprefresh(View, player);
        return handleclosed(View, player, *record);
    }
    static bool onclick(ServerPlayer* player, ItemStackRequestAction* action, ListenRecorder* record) {
        return handleclick(View, player, action, record);
    }
    static void draw(ServerPlayer* player) { Refresh(player, true); }
    static opresult open(ServerPlayer* player, const screenorder& order) {
        if constexpr (requires { Open(player, order.shop); })
            return Open(player, order.shop);
        else
            return Open(player);
    }

    menuentry menu_;
    screenentry screen_;
};

}  // namespace ordomart
