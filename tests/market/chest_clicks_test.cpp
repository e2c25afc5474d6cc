// What a click on a goods view means, by action and place.
#include <gtest/gtest.h>

#include "plugin/chestmenu/clickgrammar.h"

using namespace ordomart;

namespace {

using enum ActionType;
using C = ContainerName;

struct clickcase {
    ActionType type;
    C from;
    int fromslot;
    C to;
    int toslot;
    clickreading meant;
};

const clickcase cases[] = {
    // A taken, placed or thrown stack is a press on the place that it came from.
    {take, C::hotbar, 3, C::cursor, 0, {click::hotbar, 3}},
    {place, C::hotbar, 8, C::inventory, 9, {click::hotbar, 8}},
    {drop, C::hotbar, 0, C{}, 0, {click::hotbar, 0}},
    {take, C::inventory, 9, C::cursor, 0, {click::listed, 9}},
    {take, C::inventory, 35, C::cursor, 0, {click::listed, 35}},
    {drop, C::inventory, 12, C{}, 0, {click::listed, 12}},
    {place, C::inventory, 9, C::hotbar, 4, {click::listed, 9}},
    {take, C::armor, 2, C::cursor, 0, {click::armour, 2}},
    {take, C::offhand, 1, C::cursor, 0, {click::back, 0}},
    {take, C::offhand, 0, C::cursor, 0, {}},
    // From the cursor only the sign's own moves count, and a swap by its destination.
    {drop, C::cursor, 0, C{}, 0, {click::signthrown, 0}},
    {swap, C::cursor, 0, C::hotbar, 2, {click::hotbarswap, 2}},
    {swap, C::cursor, 0, C::inventory, 9, {}},
    {swap, C::cursor, 0, C::offhand, 1, {}},
    {take, C::cursor, 0, C::hotbar, 2, {}},
    {place, C::cursor, 0, C::hotbar, 2, {}},
    // Not clicks on a slot, and kinds that no view reads.
    {take, C::combined, 9, C::cursor, 0, {}},
    {take, C::createdoutput, 50, C::cursor, 0, {}},
    {take, C::blockentity, 1, C::cursor, 0, {}},
    {destroy, C::inventory, 9, C{}, 0, {}},
    {creativepick, C{}, 0, C{}, 0, {}},
    {craftresult, C{}, 0, C{}, 0, {}},
};

ItemStackRequestAction actionof(const clickcase& each) {
    ItemStackRequestAction action;
    action.type = static_cast<std::uint8_t>(each.type);
    action.amount = 1;
    action.source = {static_cast<std::uint8_t>(each.from), static_cast<std::uint8_t>(each.fromslot)};
    action.destination = {static_cast<std::uint8_t>(each.to), static_cast<std::uint8_t>(each.toslot)};
    return action;
}

}  // namespace

TEST(ChestClicks, AreReadByActionAndPlace) {
    for (const auto& each : cases) {
        const auto read = readclick(actionof(each));
        EXPECT_EQ(read, each.meant) << "type " << static_cast<int>(each.type) << " from " << static_cast<int>(each.from)
                                    << "/" << each.fromslot << " to " << static_cast<int>(each.to) << "/" << each.toslot
                                    << ": read as " << static_cast<int>(read.what) << "/" << read.slot;
    }
}
