// Reading a click, and the presses that mean the same in every view.
#include "plugin/chestmenu/clickgrammar.h"

#include <algorithm>

#include "plugin/base/effects.h"
#include "plugin/base/guards.h"
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

void hear(ServerPlayer* player, const sound& heard) {
    if (heard.name != nullptr) playsound(player, heard.name, heard.pitch);
}

const viewbutton* buttonat(const goodsview& view, buttonrow row, int slot) {
    const auto button =
        std::ranges::find_if(view.buttons, [&](const auto& each) { return each.row == row && each.slot == slot; });
    return button != view.buttons.end() ? &*button : nullptr;
}

bool pressbutton(const press& at, const viewbutton* button) {
    if (button == nullptr) return false;
    if (button->unlessbanned && at.view.isbanned(at.player)) {
        playsound(at.player, "mob.villager.no");
        return false;
    }
    hear(at.player, button->heard);
    if (button->after != nullptr) return true;
    if (button->act != nullptr) return button->act(at);
    if (button->leadsto != screen::none) switchmenu(at.player, at.record, button->leadsto);
    return false;
}

bool presshotbar(const press& at, int slot, bool byswap) {
    if (slot == previousslot) return turnpage(at, -1);
    if (slot == nextslot) return turnpage(at, 1);
    const auto* button = buttonat(at.view, buttonrow::hotbar, slot);
    return button != nullptr && (button->byswap || !byswap) && pressbutton(at, button);
}

bool choose(const press& at, int slot) {
    at.record->chosen = entryat(*at.record, slot);
    hear(at.player, at.view.heardchoice);
    return at.view.choice == nullptr || at.view.choice(at);
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
            return presshotbar(at, slot, false);
        case click::hotbarswap:
            return presshotbar(at, slot, true);
        case click::back:
            return goback(at);
        case click::armour:
            return pressbutton(at, buttonat(view, buttonrow::armour, slot));
        case click::listed:
            return choose(at, slot);
        case click::none:
            break;
    }
    return false;
}

bool handleclosed(const goodsview& view, ServerPlayer* player, const ListenRecorder& record) {
    if (containermenuguihelper::nothingselected(player, record)) return false;
    hear(player, view.heardclose);
    const auto& chosen = record.selection;
    envelope([&] {
        if (chosen.isfrom(ContainerName::inventory)) return view.chosen(player, record.chosen);
        const auto row = chosen.isfrom(ContainerName::armor) ? buttonrow::armour : buttonrow::hotbar;
        if (const auto* button = buttonat(view, row, chosen.fromslot); button != nullptr && button->after != nullptr)
            button->after(player);
    });
    return true;
}

}  // namespace ordomart
