#include "host/world/inventory.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace host {

using platform::ItemStack;

namespace {

const ItemStack nostack;

std::int32_t newstackid() {
    static std::int32_t last = 0;
    last = last == std::numeric_limits<std::int32_t>::max() ? 1 : last + 1;
    return last;
}

ItemStack counted(const ItemStack& stack, int count) {
    ItemStack copy = stack;
    copy.set(count);
    return copy;
}

}  // namespace

const Inventory::Slot& Inventory::slot(int index) const { return slots_.at(static_cast<std::size_t>(index)); }

void Inventory::replace(int index, Slot content) {
    slots_.at(static_cast<std::size_t>(index)) = std::move(content);
    unsent.set(static_cast<std::size_t>(index));
    unwritten.set(static_cast<std::size_t>(index));
}

void Inventory::put(int index, const ItemStack& stack, std::int32_t requestid) {
    const Slot& before = slot(index);
    if (stack.isNull()) {
        replace(index, {ItemStack(), 0, requestid});
        return;
    }
    const bool same = !before.stack.isNull() && before.stack.isStackable(stack);
    replace(index, {stack, same ? before.stackid : newstackid(), requestid});
}

void Inventory::exchange(int first, int second, std::int32_t requestid) {
    Slot one = slot(first), two = slot(second);
    one.requestid = two.requestid = requestid;
    replace(first, std::move(two));
    replace(second, std::move(one));
}

void Inventory::shrink(int index, int count, std::int32_t requestid) {
    const ItemStack& stack = slot(index).stack;
    put(index, counted(stack, stack.getCount() - std::clamp(count, 0, stack.getCount())), requestid);
}

void Inventory::transfer(int from, int to, int count, std::int32_t requestid) {
    const ItemStack moving = counted(slot(from).stack, std::min(count, slot(from).stack.getCount()));
    const ItemStack& there = slot(to).stack;
    if (there.isNull() && moving.getCount() == slot(from).stack.getCount()) {
        exchange(from, to, requestid);
        return;
    }
    put(to, there.isNull() ? moving : counted(there, there.getCount() + moving.getCount()), requestid);
    shrink(from, moving.getCount(), requestid);
}

const ItemStack& Inventory::getItem(int slot) const {
    return slot >= 0 && slot < inventorysize ? slots_[static_cast<std::size_t>(slot)].stack : nostack;
}

void Inventory::setItem(int slot, const ItemStack& stack) {
    if (slot < 0 || slot >= inventorysize) throw std::out_of_range("no such inventory slot");
    put(slot, stack);
}

bool Inventory::canAdd(const ItemStack& stack) const {
    int left = stack.isNull() ? 0 : stack.getCount();
    for (int i = 0; i < inventorysize && left > 0; ++i) {
        const ItemStack& there = getItem(i);
        if (there.isNull())
            left -= stack.getMaxStackSize();
        else if (there.isStackable(stack))
            left -= std::max(0, stack.getMaxStackSize() - there.getCount());
    }
    return left <= 0;
}

bool Inventory::add(const ItemStack& stack) {
    if (!canAdd(stack)) return false;
    int left = stack.isNull() ? 0 : stack.getCount();
    for (const bool merging : {true, false}) {
        for (int i = 0; i < inventorysize && left > 0; ++i) {
            const ItemStack& there = getItem(i);
            if (there.isNull() == merging || (merging && !there.isStackable(stack))) continue;
            const int before = merging ? there.getCount() : 0;
            const int taken = std::min(left, stack.getMaxStackSize() - before);
            if (taken <= 0) continue;
            put(i, counted(stack, before + taken));
            left -= taken;
        }
    }
    return true;
}

void Inventory::removeItem(int slot, int count) {
    if (!getItem(slot).isNull()) shrink(slot, count);
}

}  // namespace host
