// What the two global views share: how they draw a row, and their row of buttons.
#pragma once

#include "plugin/chestmenu/pageview.h"
#include "plugin/chestviews/goodslore.h"
#include "plugin/chestviews/tradechoice.h"
#include "plugin/shopsystem/rowkinds.h"

namespace ordomart {

template <class Rows>
std::size_t countgoods(ServerPlayer* player) {
    return (getplayershopstate(player->getXuid()).*Rows::list).size();
}

// The prepare step lets no private row in; one that comes all the same is told in the log and shown bare.
template <class Rows, const char* const& privateline>
std::string drawpublicgood(ServerPlayer* player, falsestack& good, std::size_t i) {
    const auto row = (getplayershopstate(player->getXuid()).*Rows::list).row(i);
    good.startgood(row.itemnbt);
    if (row.allowbesearched) {
        addgoodlore(player, good, row);
        good.finishgood();
    } else {
        logger.put(LogLevel::error, privateline);
    }
    return entryname(row);
}

// Names what the next press turns to, and so runs one step ahead of the order in force.
[[nodiscard]] const char* sortkey(const playershopstate& state);
bool turnsort(const press& at);

// Skull, sort, double-click mode, search. The spyglass and the compass keep the aux value of the name tag.
template <class Rows>
[[nodiscard]] constexpr std::array<viewbutton, 4> globalbuttons(const char* shopskey, screen shops) {
    return {
        {{2, {"minecraft:skull", 3, shopskey}, nullptr, clicksound, true, nullptr, shops},
         {3, {"minecraft:name_tag", 1, nullptr}, &sortkey, {"random.click", 0.6F}, true, &turnsort},
         spyglassbutton,
         {.slot = 6, .look = {"minecraft:recovery_compass", {}, "searchform.title"}, .after = [](ServerPlayer* player) {
              openscreen(screen::searchform, player, {.type = Rows::type, .indescription = true});
          }}}};
}

}  // namespace ordomart
