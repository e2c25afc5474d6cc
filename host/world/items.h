// The game's items: names, network ids, stack sizes, durability, names in English and Chinese. Built into the program.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/item.h"

namespace host {

// What an item is with one aux value, where that changes its name: "wool" with 14 is "Red Wool".
struct ItemVariant {
    int aux = 0;
    std::string descriptionid;
    std::string english, chinese;
    std::string color;
};

struct ItemRow {
    platform::ItemInfo info;
    std::string english, chinese;
    // What a picture of it looks like: "sword", "ingot", "block", "food", ... Whoever draws needs a way out for a kind
    // it does not know.
    std::string kind;
    std::string color;                  // main colour for a picture, "#rrggbb"
    std::vector<ItemVariant> variants;  // by aux value, rising; empty where aux means nothing

    [[nodiscard]] const ItemVariant* variant(int aux) const;  // null when there is none
};

class ItemTable : public platform::ItemRegistry {
public:
    ItemTable();
    ~ItemTable() override;
    [[nodiscard]] const platform::ItemInfo* find(std::string_view name) const override;
    [[nodiscard]] const platform::ItemInfo* byid(std::int32_t networkid) const override;
    [[nodiscard]] std::string hovertext(const platform::ItemStack& stack) const override;
    // The game's own list, in its order.
    [[nodiscard]] const std::vector<platform::ItemStack>& creativelist() const override;

    [[nodiscard]] const std::vector<ItemRow>& rows() const;  // stable addresses
    [[nodiscard]] const ItemRow* row(std::string_view name) const;
    // The item's or enchantment's name by its description id ("item.apple.name"); empty when unknown.
    [[nodiscard]] std::string gametext(const std::string& key, const std::string& locale) const;

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

// The one table; made at first use. Any thread.
[[nodiscard]] ItemTable& itemtable();

}  // namespace host
