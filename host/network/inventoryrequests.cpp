#include "host/network/inventoryrequests.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/host.h"

namespace host {

using platform::ActionType;
using platform::ContainerName;
using platform::ItemStack;
using Action = platform::ItemStackRequestAction;
using SlotInfo = platform::ItemStackRequestSlotInfo;

namespace {

// Where the slots of a container name begin among ours.
struct ContainerRule {
    ContainerName name;
    int index;
};
constexpr ContainerRule containers[] = {
    {ContainerName::hotbar, 0},         {ContainerName::inventory, 9},         {ContainerName::combined, 0},
    {ContainerName::armor, armorfirst}, {ContainerName::offhand, offhandslot}, {ContainerName::cursor, cursorslot},
};
// Where a creative pick waits for the action that takes it; no slot of the player's.
constexpr int createdindex = -1;

struct ArmorRule {
    std::string_view ending;
    int slot;
};
constexpr ArmorRule armor[] = {{"_helmet", 0},     {"_skull", 0}, {":skull", 0},    {"_head", 0}, {"carved_pumpkin", 0},
                               {"_chestplate", 1}, {"elytra", 1}, {"_leggings", 2}, {"_boots", 3}};

bool isworn(const ItemStack& stack, int armorslot) {
    return std::ranges::any_of(armor, [&](const ArmorRule& rule) {
        return rule.slot == armorslot && stack.getTypeName().ends_with(rule.ending);
    });
}

bool isarmor(int index) { return index >= armorfirst && index < armorfirst + armorsize; }

// Whether so many pieces of the item may lie in the slot.
bool holds(int index, const ItemStack& stack, int count) {
    if (isarmor(index)) return count <= 1 && isworn(stack, index - armorfirst);
    return count <= stack.getMaxStackSize();
}

// 1: stays in its slot; 2: stays with the player.
int lockof(const ItemStack& stack) {
    const platform::CompoundTag* data = stack.getUserData();
    return data != nullptr ? data->getByte("minecraft:item_lock") : 0;
}

ItemStack counted(const ItemStack& stack, int count) {
    ItemStack copy = stack;
    copy.set(count);
    return copy;
}

class RequestRun {
public:
    RequestRun(ServerPlayerImpl& player, const platform::ItemStackRequest& request)
        : player_(player), inventory_(player.inventory()), request_(request) {}

    platform::ItemStackResponse run() {
        const auto unsent = inventory_.unsent, unwritten = inventory_.unwritten;
        const bool done = player_.isAlive() && !request_.actions.empty() &&
                          std::ranges::all_of(request_.actions, [&](const Action& action) { return act(action); });
        if (!done) {
            for (auto slot = before_.rbegin(); slot != before_.rend(); ++slot)
                inventory_.replace(slot->first, std::move(slot->second));
            inventory_.unwritten = unwritten;
        }
        // Of his own doing the client learns by the answer.
        inventory_.unsent = unsent;
        if (!done) return {platform::ItemStackResponse::refused, request_.id, {}};
        for (const ItemStack& stack : falling_) player_.drop(stack);
        return answer();
    }

private:
    struct Place {
        int index = createdindex;
        std::uint8_t container = 0, slot = 0;
    };
    struct ActionRule {
        ActionType type;
        bool (RequestRun::*step)(const Action&);
    };
    bool act(const Action& action);

    // The slot that is meant, if it holds what the client believes it to hold.
    [[nodiscard]] std::optional<Place> place(const SlotInfo& info) const {
        const auto* own = platform::slotsof(info.container);
        if (own == nullptr || !own->holds(info.slot)) return std::nullopt;
        if (own->name == ContainerName::createdoutput)
            return !created_.isNull() ? std::optional(Place()) : std::nullopt;
        const int index =
            std::ranges::find(containers, own->name, &ContainerRule::name)->index + info.slot - own->first;
        const Inventory::Slot& slot = inventory_.slot(index);
        const bool known = info.stackid == slot.stackid || (info.stackid < 0 && info.stackid == slot.requestid);
        if (!known) return std::nullopt;
        return Place{index, info.container, info.slot};
    }
    // The same for a source, with the stack to take at least so much from. Locked ones stay.
    [[nodiscard]] std::optional<Place> source(const Action& action, int strongestlock) const {
        const auto from = place(action.source);
        if (!from || action.amount <= 0 || stackat(*from).getCount() < action.amount) return std::nullopt;
        const int lock = lockof(stackat(*from));
        return lock != 0 && lock <= strongestlock ? std::nullopt : from;
    }
    [[nodiscard]] const ItemStack& stackat(const Place& place) const {
        return place.index == createdindex ? created_ : inventory_.slot(place.index).stack;
    }

    void touch(const Place& place) {
        if (place.index == createdindex) return;
        if (std::ranges::none_of(before_, [&](const auto& slot) { return slot.first == place.index; }))
            before_.emplace_back(place.index, inventory_.slot(place.index));
        if (std::ranges::none_of(
                touched_, [&](const Place& t) { return t.container == place.container && t.slot == place.slot; }))
            touched_.push_back(place);
    }

    void reduce(const Place& from, int count) {
        touch(from);
        if (from.index == createdindex)
            created_.set(created_.getCount() - count);
        else
            inventory_.shrink(from.index, count, request_.id);
    }

    bool move(const Action& action) {
        const auto from = source(action, 1);
        const auto to = place(action.destination);
        if (!from || !to || to->index == createdindex || from->index == to->index) return false;
        const ItemStack &moving = stackat(*from), &there = stackat(*to);
        if (!there.isNull() && (!there.isStackable(moving) || lockof(there) == 1)) return false;
        const int after = there.getCount() + action.amount;
        if (!holds(to->index, moving, after)) return false;
        touch(*to);
        if (from->index == createdindex) {
            inventory_.put(to->index, counted(moving, after), request_.id);
            reduce(*from, action.amount);
        } else {
            touch(*from);
            inventory_.transfer(from->index, to->index, action.amount, request_.id);
        }
        return true;
    }

    bool swap(const Action& action) {
        const auto one = place(action.source), two = place(action.destination);
        if (!one || !two || one->index == two->index) return false;
        if (one->index == createdindex || two->index == createdindex) return false;
        const ItemStack &first = stackat(*one), &second = stackat(*two);
        if (first.isNull() && second.isNull()) return false;
        const auto maygo = [](const ItemStack& stack, int index) {
            return stack.isNull() || (lockof(stack) != 1 && holds(index, stack, stack.getCount()));
        };
        if (!maygo(first, two->index) || !maygo(second, one->index)) return false;
        touch(*one);
        touch(*two);
        inventory_.exchange(one->index, two->index, request_.id);
        return true;
    }

    bool drop(const Action& action) {
        const auto from = source(action, 2);
        if (!from) return false;
        falling_.push_back(counted(stackat(*from), action.amount));
        reduce(*from, action.amount);
        return true;
    }

    bool destroy(const Action& action) {
        const auto from = source(action, 2);
        if (!from || !player_.iscreative()) return false;
        reduce(*from, action.amount);
        return true;
    }

    bool pick(const Action& action) {
        const auto& list = platform::host().items->creativelist();
        if (!player_.iscreative() || !created_.isNull() || action.number < 1 || action.number > list.size())
            return false;
        created_ = list[action.number - 1];
        created_.set(created_.getMaxStackSize());
        return true;
    }

    // The client's own idea of what it has picked; the pick alone says what is made.
    bool result(const Action&) { return !created_.isNull(); }

    [[nodiscard]] platform::ItemStackResponse answer() const {
        platform::ItemStackResponse response{platform::ItemStackResponse::accepted, request_.id, {}};
        for (const Place& place : touched_) {
            auto container = std::ranges::find(response.containers, place.container,
                                               &platform::ItemStackResponseContainer::container);
            if (container == response.containers.end())
                container = response.containers.insert(container, {place.container, {}});
            const Inventory::Slot& slot = inventory_.slot(place.index);
            const bool wears = slot.stack.getMaxDamage() > 0;
            container->slots.push_back({place.slot, place.slot, static_cast<std::uint8_t>(slot.stack.getCount()),
                                        slot.stackid, slot.stack.getCustomName(),
                                        wears ? slot.stack.getDamageValue() : 0});
        }
        return response;
    }

    ServerPlayerImpl& player_;
    Inventory& inventory_;
    const platform::ItemStackRequest& request_;
    ItemStack created_;
    std::vector<ItemStack> falling_;                       // drops, once all of it is done
    std::vector<std::pair<int, Inventory::Slot>> before_;  // as the slots were
    std::vector<Place> touched_;                           // as the client named them
};

bool RequestRun::act(const Action& action) {
    static constexpr ActionRule rules[] = {
        {ActionType::take, &RequestRun::move},          {ActionType::place, &RequestRun::move},
        {ActionType::swap, &RequestRun::swap},          {ActionType::drop, &RequestRun::drop},
        {ActionType::destroy, &RequestRun::destroy},    {ActionType::creativepick, &RequestRun::pick},
        {ActionType::craftresult, &RequestRun::result},
    };
    const auto* rule = std::ranges::find_if(rules, [&](const ActionRule& r) { return action.is(r.type); });
    return rule != std::end(rules) && (this->*rule->step)(action);
}

}  // namespace

platform::ItemStackResponse answerrequest(ServerPlayerImpl& player, const platform::ItemStackRequest& request) {
    return RequestRun(player, request).run();
}

}  // namespace host
