// A player's 42 slots: 36 of inventory, 4 of armour, offhand and cursor. Every stack that lies in a slot has a number,
// unique in the server's run, that a client names in its requests: it goes with the stack when the whole of it moves,
// stays when only the count changes, and is new when another stack comes to lie there.
#pragma once

#include <array>
#include <bitset>
#include <cstdint>

#include "platform/player.h"

namespace host {

inline constexpr int inventorysize = 36, armorfirst = 36, armorsize = 4, offhandslot = 40, cursorslot = 41,
                     slotcount = 42;

class Inventory : public platform::PlayerInventory {
public:
    struct Slot {
        platform::ItemStack stack;
        std::int32_t stackid = 0;    // 0 for an empty slot
        std::int32_t requestid = 0;  // the client's request that left the slot like this; 0: something else did
    };

    [[nodiscard]] int getContainerSize() const override { return inventorysize; }
    [[nodiscard]] const platform::ItemStack& getItem(int slot) const override;
    void setItem(int slot, const platform::ItemStack& stack) override;
    [[nodiscard]] bool canAdd(const platform::ItemStack& stack) const override;
    bool add(const platform::ItemStack& stack) override;
    void removeItem(int slot, int count) override;

    // All 42 slots. Each throws std::out_of_range for a slot that is none.
    [[nodiscard]] const Slot& slot(int index) const;
    void put(int index, const platform::ItemStack& stack, std::int32_t requestid = 0);
    void replace(int index, Slot content);
    void exchange(int first, int second, std::int32_t requestid);
    // At most what lies there; moves the stack itself when all of it goes to an empty slot. The caller has made sure
    // that it fits.
    void transfer(int from, int to, int count, std::int32_t requestid);
    void shrink(int index, int count, std::int32_t requestid = 0);

    using Slots = std::bitset<slotcount>;
    Slots unsent;     // what the client has not been told yet
    Slots unwritten;  // what is not in the file yet

private:
    std::array<Slot, slotcount> slots_;
};

}  // namespace host
