// Item stacks as the server knows them, and the table of items behind them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/nbt/tags.h"

namespace platform {

// One row of the server's item table; lives as long as the server.
struct ItemInfo {
    std::string name;            // "minecraft:apple"
    std::string descriptionid;   // key of its name in I18n, "item.apple.name"
    std::int32_t networkid = 0;  // never 0
    int maxstack = 64;
    int maxdamage = 0;                // durability; 0 for what does not wear
    std::int32_t blockruntimeid = 0;  // of its default state; 0 for what is no block
    // By aux value, where the name goes by it ("White Wool"); empty or too short means descriptionid.
    std::vector<std::string> auxdescriptionids;
    // By aux value, where that stands for another state of the block; empty or too short means blockruntimeid.
    std::vector<std::int32_t> auxblockruntimeids;
};

// A stack of up to 255 pieces of one item, or the null stack. A plain value; any thread, if the item table is loaded.
class ItemStackBase {
public:
    // Fills the stack from an item compound (Name, Count, Damage, WasPickedUp, tag; other keys are kept as they are).
    // A name that the item table does not hold leaves a stack that is null and has the id 0.
    void load(const CompoundTag& tag);
    [[nodiscard]] CompoundTag save() const;

    [[nodiscard]] bool isNull() const { return info_ == nullptr || count_ == 0; }
    [[nodiscard]] int getId() const { return info_ != nullptr ? info_->networkid : 0; }
    [[nodiscard]] const ItemInfo* info() const { return info_; }
    [[nodiscard]] const std::string& getTypeName() const { return name_; }  // full name, empty for the null stack
    [[nodiscard]] std::string getDescriptionId() const;
    [[nodiscard]] int getCount() const { return count_; }
    void set(int count);  // 0 to 255; 0 leaves the null stack
    void setNull();
    [[nodiscard]] int getMaxStackSize() const { return info_ != nullptr ? info_->maxstack : 64; }
    [[nodiscard]] std::int32_t getBlockRuntimeId() const;  // 0 for what is no block
    [[nodiscard]] int getAuxValue() const { return aux_; }
    // Wear of a tool or armour piece, otherwise the aux value.
    [[nodiscard]] int getDamageValue() const;
    [[nodiscard]] int getMaxDamage() const { return info_ != nullptr ? info_->maxdamage : 0; }
    [[nodiscard]] std::string getCustomName() const;
    [[nodiscard]] std::vector<std::string> getCustomLore() const;
    [[nodiscard]] const CompoundTag* getUserData() const { return userdata_ ? &*userdata_ : nullptr; }
    void setUserData(std::optional<CompoundTag> data);  // an empty compound counts as none
    // The keys of the item compound that mean nothing to the stack, such as CanPlaceOn.
    [[nodiscard]] const CompoundTag& others() const { return others_; }
    // Same item, aux value and user data, so that the two may lie in one slot.
    [[nodiscard]] bool isStackable(const ItemStackBase& other) const;

protected:
    const ItemInfo* info_ = nullptr;
    std::string name_;
    int count_ = 0;
    std::int16_t aux_ = 0;
    bool pickedup_ = false;
    std::optional<CompoundTag> userdata_;
    CompoundTag others_;
};

class ItemStack : public ItemStackBase {
public:
    ItemStack() = default;
    // By full or short name ("diamond"); the null stack when the table does not hold it.
    [[nodiscard]] static ItemStack create(std::string_view name, int count = 1, std::int16_t aux = 0);
    [[nodiscard]] static ItemStack fromTag(const CompoundTag& tag);
};

class ItemRegistry {
public:
    virtual ~ItemRegistry() = default;
    // By full or short name; null when unknown. The row lives as long as the registry.
    [[nodiscard]] virtual const ItemInfo* find(std::string_view name) const = 0;
    [[nodiscard]] virtual const ItemInfo* byid(std::int32_t networkid) const = 0;
    // The text that a client shows when it points at the stack, in the language the server holds at this moment:
    // name (or custom name), enchantments, durability. Custom lore is not in it. Server thread.
    [[nodiscard]] virtual std::string hovertext(const ItemStack& stack) const = 0;
    // The server's creative list; entry ids are its places, from 1.
    [[nodiscard]] virtual const std::vector<ItemStack>& creativelist() const = 0;
};

}  // namespace platform
