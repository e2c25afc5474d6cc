// Placing and reading of stacks, and what requests do to them.
#include "client/screen.h"

#include <algorithm>

namespace client {

using platform::ActionType;
using platform::ContainerName;
using platform::ItemStackRequestAction;
using platform::NetworkItem;

namespace {

struct ContainerRule {
    ContainerName name;
    Place place;  // where its first slot lies
};
constexpr ContainerRule containerrules[] = {
    {ContainerName::hotbar, {inventoryid, 0}},   {ContainerName::inventory, {inventoryid, 9}},
    {ContainerName::combined, {inventoryid, 0}}, {ContainerName::armor, {armorid, 0}},
    {ContainerName::offhand, {offhandid, 0}},    {ContainerName::cursor, {uiid, 0}},
    {ContainerName::createdoutput, {uiid, 50}},
};
constexpr Place createdplace{uiid, 50};

const NetworkItem nothing;

}  // namespace

std::optional<Place> placeof(std::uint8_t containername, int slot) {
    const auto* own = platform::slotsof(containername);
    if (own == nullptr || !own->holds(slot)) return std::nullopt;
    const auto* rule = std::ranges::find(containerrules, own->name, &ContainerRule::name);
    return Place{rule->place.container, rule->place.index + slot - own->first};
}

bool stackable(const NetworkItem& a, const NetworkItem& b) {
    return a.networkid == b.networkid && a.aux == b.aux && a.userdata == b.userdata;
}

const NetworkItem& Screen::at(Place place) const {
    const auto found = slots_.find(place.container);
    if (found == slots_.end() || place.index < 0 || place.index >= static_cast<int>(found->second.size())) {
        return nothing;
    }
    return found->second[static_cast<std::size_t>(place.index)];
}

NetworkItem& Screen::slot(Place place) {
    auto& items = slots_[place.container];
    const auto index = static_cast<std::size_t>(place.index);
    if (items.size() <= index) items.resize(index + 1);
    return items[index];
}

void Screen::paint(Place place, NetworkItem item) {
    constexpr int lastslot = 255;
    if (place.index < 0 || place.index > lastslot) return;
    for (auto& request : pending_) std::erase_if(request.undos, [&](const Undo& u) { return u.place == place; });
    slot(place) = std::move(item);
}

void Screen::paint(std::uint32_t container, std::vector<NetworkItem> items) {
    for (std::size_t i = 0; i < items.size(); ++i) paint({container, static_cast<int>(i)}, std::move(items[i]));
}

NetworkItem& Screen::base(Place place, std::size_t settled) {
    for (auto request = pending_.begin() + static_cast<std::ptrdiff_t>(settled); request != pending_.end(); ++request) {
        for (auto& undo : request->undos) {
            if (undo.place == place) return undo.before;
        }
    }
    return slot(place);
}

// One request, action by action.
struct Screen::Prediction {
    Screen& screen;
    Pending& pending;
    NetworkItem created = {};

    // Until the answer comes, a stack that a request has changed goes by the number of the request.
    void change(Place place, NetworkItem item) {
        auto& shown = screen.slot(place);
        pending.undos.push_back({place, shown});
        if (item.count == 0) item = {};
        if (item.networkid != 0) item.stackid = pending.id;
        shown = std::move(item);
    }

    void reduce(Place place, int amount) {
        auto rest = screen.at(place);
        rest.count = static_cast<std::uint16_t>(rest.count - amount);
        change(place, std::move(rest));
    }

    void transfer(const ItemStackRequestAction& action) {
        const auto from = placeof(action.source.container, action.source.slot);
        const auto to = placeof(action.destination.container, action.destination.slot);
        if (!from || !to || *from == *to || action.amount <= 0) return;
        const bool picked = *from == createdplace;
        auto moved = picked ? created : screen.at(*from);
        const auto& there = screen.at(*to);
        if (moved.networkid == 0 || (!picked && moved.count < action.amount)) return;
        if (there.networkid != 0 && !stackable(there, moved)) return;
        moved.count = static_cast<std::uint16_t>(there.count + action.amount);
        change(*to, std::move(moved));
        if (!picked) reduce(*from, action.amount);
    }

    void swap(const ItemStackRequestAction& action) {
        const auto one = placeof(action.source.container, action.source.slot);
        const auto two = placeof(action.destination.container, action.destination.slot);
        if (!one || !two || *one == *two) return;
        const auto first = screen.at(*one), second = screen.at(*two);
        change(*one, second);
        change(*two, first);
    }

    void lose(const ItemStackRequestAction& action) {
        const auto from = placeof(action.source.container, action.source.slot);
        if (from && action.amount > 0 && screen.at(*from).count >= action.amount) reduce(*from, action.amount);
    }

    void result(const ItemStackRequestAction& action) {
        if (action.results.size() == 1) created = action.results[0];
    }
};

void Screen::predict(const platform::ItemStackRequest& request) {
    struct Rule {
        ActionType type;
        void (Prediction::*foresee)(const ItemStackRequestAction&);
    };
    static constexpr Rule rules[] = {
        {ActionType::take, &Prediction::transfer},      {ActionType::place, &Prediction::transfer},
        {ActionType::swap, &Prediction::swap},          {ActionType::drop, &Prediction::lose},
        {ActionType::destroy, &Prediction::lose},       {ActionType::consume, &Prediction::lose},
        {ActionType::craftresult, &Prediction::result},
    };
    Prediction prediction{*this, pending_.emplace_back()};
    prediction.pending.id = request.id;
    for (const auto& action : request.actions) {
        const auto rule =
            std::find_if(std::begin(rules), std::end(rules), [&](const Rule& r) { return action.is(r.type); });
        if (rule != std::end(rules)) (prediction.*rule->foresee)(action);
    }
}

void Screen::take(const platform::ItemStackResponse& response) {
    const auto found =
        std::find_if(pending_.begin(), pending_.end(), [&](const Pending& p) { return p.id == response.requestid; });
    if (found == pending_.end()) return;
    const auto place = static_cast<std::size_t>(found - pending_.begin());
    if (response.result != platform::ItemStackResponse::accepted) {
        for (auto undo = found->undos.rbegin(); undo != found->undos.rend(); ++undo) {
            base(undo->place, place + 1) = std::move(undo->before);
        }
    }
    for (const auto& container : response.containers) {
        for (const auto& told : container.slots) {
            const auto where = placeof(container.container, told.slot);
            if (!where) continue;
            auto& item = base(*where, place + 1);
            if (item.networkid == 0) continue;
            item.count = told.count;
            item.stackid = told.stackid;
            if (told.count == 0) item = {};
        }
    }
    pending_.erase(found);
}

}  // namespace client
