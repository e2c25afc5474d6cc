// The table by its three keys (name, network id, description id) and the text that a client shows when it points at a
// stack. Everything is built once and never changes, so that any thread may read it.
#include "host/world/items.h"

#include <fmt/format.h>

#include <algorithm>
#include <mutex>
#include <unordered_map>

#include "host/world/enchantments.h"
#include "host/world/gamedata.h"
#include "host/world/itemrows.h"
#include "platform/binarystream.h"
#include "platform/text.h"

namespace host {

namespace {

constexpr std::string_view prefix = "minecraft:";
constexpr std::string_view chineselocale = "zh_CN";

struct Text {
    std::string english, chinese;
    [[nodiscard]] const std::string& in(std::string_view locale) const {
        return locale == chineselocale ? chinese : english;
    }
};

const Text durabilityline{"Durability: {} / {}", "耐久度：{} / {}"};

std::string enchantmentlines(const platform::CompoundTag& userdata, std::string_view locale) {
    const auto* list = userdata.getList("ench");
    std::string lines;
    if (list == nullptr) return lines;
    for (const auto& entry : list->items()) {
        const auto* one = entry.as<platform::CompoundTag>();
        if (one == nullptr) continue;
        const auto id = static_cast<std::size_t>(one->getShort("id", -1));
        if (id >= enchantments().size()) continue;
        const auto& known = enchantments()[id];
        lines += fmt::format("\n§7{} {}", locale == chineselocale ? known.chinese : known.english,
                             romannumeral(one->getShort("lvl")));
    }
    return lines;
}

}  // namespace

const ItemVariant* ItemRow::variant(int aux) const {
    const auto found = std::ranges::find(variants, aux, &ItemVariant::aux);
    return found == variants.end() ? nullptr : &*found;
}

struct ItemTable::Parts {
    std::vector<ItemRow> rows = makeitemrows();
    std::unordered_map<std::string_view, const ItemRow*> byname;  // without "minecraft:"
    std::unordered_map<std::int32_t, const ItemRow*> byid;
    std::unordered_map<std::string_view, Text> texts;  // by description id
    std::once_flag creativemade;
    std::vector<platform::ItemStack> creative;
};

ItemTable::ItemTable() : parts_(std::make_unique<Parts>()) {
    for (const auto& row : parts_->rows) {
        parts_->byname.emplace(std::string_view(row.info.name).substr(prefix.size()), &row);
        parts_->byid.emplace(row.info.networkid, &row);
        parts_->texts.emplace(row.info.descriptionid, Text{row.english, row.chinese});
        for (const auto& variant : row.variants)
            parts_->texts.emplace(variant.descriptionid, Text{variant.english, variant.chinese});
    }
    for (const auto& one : enchantments()) parts_->texts.emplace(one.descriptionid, Text{one.english, one.chinese});
}

ItemTable::~ItemTable() = default;

const ItemRow* ItemTable::row(std::string_view name) const {
    if (name.starts_with(prefix)) name.remove_prefix(prefix.size());
    const auto found = parts_->byname.find(name);
    return found == parts_->byname.end() ? nullptr : found->second;
}

const platform::ItemInfo* ItemTable::find(std::string_view name) const {
    const auto* found = row(name);
    return found != nullptr ? &found->info : nullptr;
}

const platform::ItemInfo* ItemTable::byid(std::int32_t networkid) const {
    const auto found = parts_->byid.find(networkid);
    return found == parts_->byid.end() ? nullptr : &found->second->info;
}

std::string ItemTable::hovertext(const platform::ItemStack& stack) const {
    const auto locale = platform::I18n::currentlanguage();
    std::string text = stack.getCustomName();
    if (const auto* known = row(stack.getTypeName()); text.empty() && known != nullptr) {
        const auto* variant = known->variant(stack.getAuxValue());
        text = gametext(variant != nullptr ? variant->descriptionid : known->info.descriptionid, locale);
    }
    if (const auto* userdata = stack.getUserData()) text += enchantmentlines(*userdata, locale);
    if (const int most = stack.getMaxDamage(), worn = stack.getDamageValue(); most > 0 && worn > 0)
        text += "\n§7" + fmt::format(fmt::runtime(durabilityline.in(locale)), std::max(most - worn, 0), most);
    return text;
}

const std::vector<platform::ItemStack>& ItemTable::creativelist() const {
    // Not with the table itself: a stack asks the installed host for its item, and the table is made before that.
    std::call_once(parts_->creativemade, [this] {
        for (const CreativeItem& item : creativeitems()) {
            auto& stack = parts_->creative.emplace_back(platform::ItemStack::create(item.name, 1, item.aux));
            if (!item.userdata.empty()) stack.setUserData(platform::BinaryStream(item.userdata).getFixedTag());
        }
    });
    return parts_->creative;
}

const std::vector<ItemRow>& ItemTable::rows() const { return parts_->rows; }

std::string ItemTable::gametext(const std::string& key, const std::string& locale) const {
    const auto found = parts_->texts.find(key);
    return found == parts_->texts.end() ? std::string() : found->second.in(locale);
}

ItemTable& itemtable() {
    static ItemTable table;
    return table;
}

}  // namespace host
