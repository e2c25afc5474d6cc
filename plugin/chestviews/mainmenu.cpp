// The main menu of the chest side: six items in armour slots and on the hotbar. It selects nothing; it is left by
// closing it, or by one of the five choices, which show another menu in its place.
#include <algorithm>
#include <iterator>

#include "plugin/base/effects.h"
#include "plugin/chestmenu/decoration.h"
#include "plugin/chestmenu/opening.h"
#include "plugin/chestmenu/pageview.h"
#include "plugin/chestviews/openers.h"

namespace ordomart {

namespace {

struct menuitem {
    ContainerName from;  // as a click tells it
    int slot;
    icon look;
    screen leadsto = screen::none;  // none, a text only
    bool systemshop = false;

    [[nodiscard]] std::uint32_t containerid() const {
        return from == ContainerName::armor ? layout::armour : layout::inventory;
    }
};

// In the order of drawing. All keep the base stack's aux value.
constexpr menuitem items[] = {
    {ContainerName::armor,
     0,
     {"minecraft:emerald", {}, "mainmenu.buy", {"mainmenu.buyinfo"}, false},
     screen::sellshops},
    {ContainerName::armor,
     1,
     {"minecraft:chest", {}, "mainmenu.recycle", {"mainmenu.recycleinfo"}, false},
     screen::recycleshops},
    {ContainerName::armor, 2, {"minecraft:chest", {}, "mainmenu.myshop", {"mainmenu.myshopinfo"}}, screen::myshop},
    {ContainerName::hotbar, 0, {"minecraft:ender_chest", {}, "systemsellshop"}, screen::singlesellshop, true},
    {ContainerName::hotbar, 1, {"minecraft:ender_chest", {}, "systemrecycleshop"}, screen::singlerecycleshop, true},
    {ContainerName::hotbar, 8, {"minecraft:oak_sign", {}, "mainmenu.helper1", {"mainmenu.helper1"}}},
};

void draw(ServerPlayer* player) {
    falsestack builder;
    for (const auto& item : items) {
        dress(builder, player, item.look, item.slot);
        builder.sendto(player, item.containerid(), static_cast<std::uint32_t>(item.slot));
    }
}

bool onclick(ServerPlayer* player, ItemStackRequestAction* action, ListenRecorder* record) {
    const auto from = static_cast<ContainerName>(action->source.container);
    if (action->type > static_cast<std::uint8_t>(ActionType::drop)) return false;
    if (from != ContainerName::armor && from != ContainerName::hotbar) return false;
    playsound(player, "random.click");
    const auto item = std::find_if(std::begin(items), std::end(items), [&](const menuitem& each) {
        return each.from == from && each.slot == action->source.slot;
    });
    if (item == std::end(items) || item->leadsto == screen::none) return false;
    if (item->systemshop) getplayershopstate(player->getXuid()).viewedshopid = systemshopid;
    switchmenu(player, record, item->leadsto);
    return false;
}

const menuentry menu{screen::ordomenu, {&containermenuguihelper::welcomehandler, &onclick, &draw}};
const screenentry mainmenuentered{screen::ordomenu,
                                  [](ServerPlayer* player, const screenorder&) { return openOrdomenu(player); }};

}  // namespace

opresult openOrdomenu(ServerPlayer* player) { return openchestmenu(player, screen::ordomenu); }

}  // namespace ordomart
