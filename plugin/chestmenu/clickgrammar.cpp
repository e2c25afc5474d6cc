// Reading a click, and the presses that mean the same in every view.
#include "plugin/chestmenu/clickgrammar.h"

#include <algorithm>

#include "plugin/base/effects.h"
#include "plugin/chestmenu/refresh.h"

namespace ordomart {

clickreading readclick(const ItemStackRequestAction& action) {
    const auto from = static_cast<ContainerName>(action.source.container);
    const auto to = static_cast<ContainerName>(action.destination.container);
    if (action.type > static_cast<std::uint8_t>(ActionType::drop)) return {};
    if (from == ContainerName::cursor) {
        if (action.is(ActionType::drop)) return {click::signthrown};
        if (action.is(ActionType::swap) && to == ContainerName::hotbar)
            return {click::hotbarswap, action.destination.slot};
        return {};
    }
    switch (from) {
        case ContainerName::hotbar:
            return {click::hotbar, action.source.slot};
        case ContainerName::armor:
            return {click::armour, action.source.slot};
        case ContainerName::inventory:
            return {click::listed, action.source.slot};
        case ContainerName::offhand:
            return action.source.slot == layout::offhandclick ? clickreading{click::back} : clickreading{};
        default:
            return {};
    }
}

namespace {

constexpr int previousslot = 0, nextslot = 8;

bool turnpage(const press& at, int step) {
    playsound(at.player, "item.book.page_turn");
    auto& page = getplayershopstate(at.player->getXuid()).*at.view.page;
    // Forwards there is no limit but the number's own: the button hides behind the end, a press on its place still
    // counts.
    if (step > 0 ? page < INT32_MAX : page > 0) page += step;
    clearplayerviewcontainers(at.player, {layout::inventory});
    refresh(at.view, at.player, false);
    return false;
}

bool pressbutton(const press& at, int slot, bool byswap) {
    if (slot == previousslot) return turnpage(at, -1);
    if (slot == nextslot) return turnpage(at, 1);
    const auto button = std::find_if(at.view.buttons.begin(), at.view.buttons.end(),
                                     [&](const auto& each) { return each.slot == slot && (each.byswap || !byswap); });
    if (button == at.view.buttons.end()) return false;
    if (button->heard.name != nullptr) playsound(at.player, button->heard.name, button->heard.pitch);
    if (button->act != nullptr) return button->act(at);
    switchmenu(at.player, at.record, button->leadsto);
    return false;
}

bool goback(const press& at) {
    playsound(at.player, "random.click");
    if (at.view.backblankstwice) clearplayerview(at.player);
    switchmenu(at.player, at.record, at.view.back);
    return false;
}

bool throwsign(ServerPlayer* player) {
    playsound(player, "random.click");
    setcursorsign(player, false);
    return false;
}

}  // namespace

bool handleclick(const goodsview& view, ServerPlayer* player, ItemStackRequestAction* action, ListenRecorder* record) {
    const press at{view, player, *action, record};
    const auto [what, slot] = readclick(*action);
    switch (what) {
        case click::signthrown:
            return throwsign(player);
        case click::hotbar:
            return pressbutton(at, slot, false);
        case click::hotbarswap:
            return pressbutton(at, slot, true);
        case click::back:
            return goback(at);
        case click::armour:
            return view.armour != nullptr && view.armour(at);
        case click::listed:
            return view.choice == nullptr || view.choice(at);
        case click::none:
            break;
    }
    return false;
}

}  // namespace ordomart
