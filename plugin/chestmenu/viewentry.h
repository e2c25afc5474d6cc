// How a goods view enters the market: one object of this kind in its file. Its handlers are made of its description.
#pragma once

#include "plugin/chestmenu/clickgrammar.h"
#include "plugin/chestmenu/opening.h"
#include "plugin/chestmenu/refresh.h"

namespace ordomart {

// `Closed` is what follows the end of the view, `Refresh` shows it, `Open` opens it.
template <const goodsview& View, bool (*Closed)(ServerPlayer*, const ListenRecorder&),
          void (*Refresh)(ServerPlayer*, bool reload), auto Open>
class viewentry {
public:
    viewentry() : menu_(View.menu, {&onclose, &onclick, &draw, View.behind}), screen_(View.menu, &open) {}

private:
    static bool onclose(ServerPlayer* player, ItemStackRequestAction*, ListenRecorder* record) {
        droprefresh(View, player);
        return Closed(player, *record);
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
