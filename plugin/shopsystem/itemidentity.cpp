// The text form of items, and the comparison of a stack with a commission's template.
#include "plugin/shopsystem/itemidentity.h"

#include <algorithm>

namespace shopsystem {

namespace {

constexpr int inventoryslots = 36;

bool holdsall(const enchlist& have, const enchlist& wanted) {
    return std::all_of(wanted.begin(), wanted.end(),
                       [&](const auto& one) { return std::find(have.begin(), have.end(), one) != have.end(); });
}

// Count and the picked-up flag are no part of an item's identity.
void levelout(CompoundTag& templatetag, CompoundTag& itemtag) {
    templatetag.putByte("Count", 1);
    itemtag.putByte("Count", 1);
    if (const Tag* picked = templatetag.get("WasPickedUp"))
        itemtag.put("WasPickedUp", *picked);
    else
        itemtag.erase("WasPickedUp");
}

// A byte holds counts above 127 in its sign; a text written by hand may hold a wider number, or none, which is one.
std::int64_t piecesin(const CompoundTag& itemtag) {
    const Tag* const count = itemtag.get("Count");
    if (count == nullptr) return 1;
    if (const auto* byte = count->as<std::int8_t>()) return static_cast<std::uint8_t>(*byte);
    const std::int64_t wide =
        std::max<std::int64_t>({itemtag.getShort("Count"), itemtag.getInt("Count"), itemtag.getInt64("Count"), 0});
    return std::min<std::int64_t>(wide, INT32_MAX);
}

}  // namespace

std::string itemtosnbt(const ItemStack& stack) {
    ItemStack one = stack;
    one.set(1);
    return itemtosnbtasis(one);
}

std::string itemtosnbtasis(const ItemStack& stack) { return stack.save().toSNBT(); }

ItemStack itemfromsnbt(const std::string& text) {
    const auto tag = CompoundTag::fromSNBT(text);
    return tag ? ItemStack::fromTag(*tag) : ItemStack();
}

bool checkrawitemvalid(const ItemStack& stack) { return !stack.isNull() && stack.getId() != 0; }

storedstack readstored(const std::string& text) {
    auto tag = CompoundTag::fromSNBT(text);
    if (!tag) return {};
    const std::int64_t pieces = piecesin(*tag);
    tag->putByte("Count", 1);
    return {ItemStack::fromTag(*tag), pieces};
}

enchlist getenchlist(const CompoundTag& itemtag) {
    enchlist enchantments;
    const CompoundTag* data = itemtag.getCompound("tag");
    const ListTag* list = data != nullptr ? data->getList("ench") : nullptr;
    if (list == nullptr) return enchantments;
    for (const Tag& element : list->items())
        if (const auto* ench = element.as<CompoundTag>())
            enchantments.emplace_back(ench->getShort("id"), ench->getShort("lvl"));
    return enchantments;
}

std::int32_t gettagdamage(const CompoundTag& itemtag) {
    const CompoundTag* data = itemtag.getCompound("tag");
    return data != nullptr ? data->getInt("Damage", nodamage) : nodamage;
}

void settagdamage(CompoundTag& itemtag, std::int32_t value) { itemtag.compound("tag").putInt("Damage", value); }

bool matchrecycleitem(const recycleshopitem& wanted, CompoundTag& templatetag, const ItemStack& stack,
                      std::int32_t& count) {
    CompoundTag itemtag = stack.save();
    count = stack.getCount();
    levelout(templatetag, itemtag);
    const bool samename = itemtag.getString("Name") == templatetag.getString("Name");
    if (samename && gettagdamage(itemtag) != nodamage && gettagdamage(templatetag) == nodamage)
        settagdamage(templatetag, gettagdamage(itemtag));
    if (wanted.filteritemnbt) return itemtag.toSNBT() == templatetag.toSNBT();
    if (wanted.filterauxordamage && (itemtag.getShort("Damage") != templatetag.getShort("Damage") ||
                                     gettagdamage(itemtag) != gettagdamage(templatetag)))
        return false;
    if (wanted.filterench && !holdsall(getenchlist(itemtag), getenchlist(templatetag))) return false;
    return samename;
}

std::vector<slotcount> findrecycleitems(Player& player, const recycleshopitem& wanted) {
    std::vector<slotcount> found;
    auto templatetag = CompoundTag::fromSNBT(wanted.itemnbt);
    if (!templatetag) return found;
    const PlayerInventory& inventory = player.getSupplies();
    for (slotcount place; place.slot < inventoryslots; ++place.slot)
        if (matchrecycleitem(wanted, *templatetag, inventory.getItem(place.slot), place.count)) found.push_back(place);
    return found;
}

void givetoplayer(ServerPlayer* player, const ItemStack& stack) {
    if (stack.isNull()) return;
    PlayerInventory& inventory = player->getSupplies();
    if (!inventory.canAdd(stack) || !inventory.add(stack)) player->drop(stack);
}

namespace {
constexpr std::int64_t moststacks = 2000;
std::int64_t fullstack(const ItemStack& stack) { return std::max(1, stack.getMaxStackSize()); }
}  // namespace

bool canhandover(const ItemStack& stack, std::int64_t pieces) { return pieces <= moststacks * fullstack(stack); }

void givepieces(ServerPlayer* player, ItemStack stack, std::int64_t pieces) {
    if (stack.isNull()) return;
    const std::int64_t most = fullstack(stack);
    for (; pieces > 0; pieces -= most) {
        stack.set(static_cast<int>(std::min(pieces, most)));
        givetoplayer(player, stack);
    }
}

}  // namespace shopsystem
