// What the tests of values share: bytes as one writes them down, and an item table of three rows.
#pragma once

#include <cctype>
#include <string>
#include <string_view>
#include <vector>

#include "platform/host.h"
#include "platform/item.h"
#include "platform/nbt/tags.h"

namespace values {

// "0a ff 'text'" as bytes.
inline std::string bytes(std::string_view text) {
    std::string out;
    for (std::size_t i = 0; i < text.size();) {
        if (text[i] == '\'') {
            const auto end = text.find('\'', i + 1);
            out += text.substr(i + 1, end - i - 1);
            i = end + 1;
        } else if (text[i] == ' ') {
            ++i;
        } else {
            out += static_cast<char>(std::stoi(std::string(text.substr(i, 2)), nullptr, 16));
            i += 2;
        }
    }
    return out;
}

inline std::string repeated(std::string_view piece, std::size_t times) {
    std::string out;
    while (times-- > 0) out += piece;
    return out;
}

inline platform::CompoundTag snbt(std::string_view text) { return platform::CompoundTag::fromSNBT(text).value(); }

class Items : public platform::ItemRegistry {
public:
    [[nodiscard]] const platform::ItemInfo* find(std::string_view name) const override {
        for (const auto& row : rows_) {
            if (row.name == name || row.name.substr(10) == name) return &row;
        }
        return nullptr;
    }
    [[nodiscard]] const platform::ItemInfo* byid(std::int32_t networkid) const override {
        for (const auto& row : rows_) {
            if (row.networkid == networkid) return &row;
        }
        return nullptr;
    }
    [[nodiscard]] std::string hovertext(const platform::ItemStack&) const override { return {}; }
    [[nodiscard]] const std::vector<platform::ItemStack>& creativelist() const override { return none_; }

private:
    std::vector<platform::ItemInfo> rows_ = {{"minecraft:apple", "item.apple.name", 300, 64, 0, 0},
                                             {"minecraft:diamond_sword", "item.sword.name", 301, 1, 1561, 0},
                                             {"minecraft:chest", "tile.chest.name", -54, 64, 0, 77},
                                             {"minecraft:shield", "item.shield.name", 355, 1, 336, 0}};
    std::vector<platform::ItemStack> none_;
};

// Installs the table for the length of a test.
struct ItemTable {
    ItemTable() {
        host.items = &items;
        platform::installhost(&host);
    }
    ~ItemTable() { platform::installhost(nullptr); }
    Items items;
    platform::Host host;
};

}  // namespace values
