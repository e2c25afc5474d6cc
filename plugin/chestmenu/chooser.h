// A screen on which the player chooses one of his own stacks, bare but for the sign in the offhand. One that is
// creative shows his client the creative list as well, so that he can name an item that he does not have; the client
// alone is told so, and told the truth again however the screen is left.
#pragma once

#include <array>
#include <cstdint>

#include "plugin/base/screens.h"
#include "plugin/chestmenu/menutable.h"
#include "plugin/shopsystem/stackplace.h"

namespace ordomart {

struct chooserview {
    screen menu;
    const char* helpkey;
    std::array<const char*, 4> lorekeys;
    screen back;
    const char* heardchoice;  // at a choice that counts
    void (*chosen)(ServerPlayer*, const stackplace&);
    void (*created)(ServerPlayer*, const ItemStack&) = nullptr;  // makes the screen creative
};

void drawchooser(ServerPlayer* player, const chooserview& view);
bool handlechooserclick(const chooserview& view, ServerPlayer* player, ItemStackRequestAction* action,
                        ListenRecorder* record);
void leavecreative(ServerPlayer* player);
bool handlechooserclosed(const chooserview& view, ServerPlayer* player, const ListenRecorder& record);

// How a chooser enters the market: one object of this kind in its file.
template <const chooserview& View, opresult (*Open)(ServerPlayer*)>
class chooserentry {
public:
    chooserentry()
        : menu_(View.menu,
                {&onclose, &onclick, &draw, backdrop::ownstacks, View.created != nullptr ? &leavecreative : nullptr}),
          screen_(View.menu, &open) {}

private:
    static bool onclose(ServerPlayer* player, ItemStackRequestAction*, ListenRecorder* record) {
        return handlechooserclosed(View, player, *record);
    }
    static bool onclick(ServerPlayer* player, ItemStackRequestAction* action, ListenRecorder* record) {
        return handlechooserclick(View, player, action, record);
    }
    static void draw(ServerPlayer* player) { drawchooser(player, View); }
    static opresult open(ServerPlayer* player, const screenorder&) { return Open(player); }

    menuentry menu_;
    screenentry screen_;
};

}  // namespace ordomart
