// A stack's way to its item compound and back, and what can be read off it.
#include "platform/item.h"

#include <algorithm>
#include <array>

#include "platform/host.h"

namespace platform {

namespace {

namespace key {
constexpr std::string_view name = "Name", count = "Count", damage = "Damage", pickedup = "WasPickedUp", tag = "tag";
}
constexpr std::array ownkeys = {key::name, key::count, key::damage, key::pickedup, key::tag};

const CompoundTag* display(const std::optional<CompoundTag>& userdata) {
    return userdata ? userdata->getCompound("display") : nullptr;
}

}  // namespace

void ItemStackBase::load(const CompoundTag& tag) {
    setNull();
    const auto name = tag.getString(key::name);
    const auto* info = name.empty() ? nullptr : host().items->find(name);
    if (info == nullptr) return;
    info_ = info;
    name_ = info->name;
    aux_ = tag.getShort(key::damage);
    pickedup_ = tag.getBoolean(key::pickedup);
    if (const auto* data = tag.getCompound(key::tag)) setUserData(*data);
    for (const auto& entry : tag.entries()) {
        if (std::find(ownkeys.begin(), ownkeys.end(), entry.key) == ownkeys.end()) others_.put(entry.key, entry.value);
    }
    // Counts above 127 lie in the byte's sign; a compound written by hand may leave the count out.
    set(static_cast<std::uint8_t>(tag.getByte(key::count, 1)));
}

CompoundTag ItemStackBase::save() const {
    CompoundTag tag = others_;
    tag.putString(key::name, name_);
    tag.putByte(key::count, static_cast<std::int8_t>(count_));
    tag.putShort(key::damage, aux_);
    tag.putBoolean(key::pickedup, pickedup_);
    if (userdata_) tag.put(key::tag, *userdata_);
    return tag;
}

void ItemStackBase::set(int count) {
    if (count <= 0 || info_ == nullptr) return setNull();
    count_ = std::min(count, 255);
}

void ItemStackBase::setNull() { *this = ItemStackBase(); }

void ItemStackBase::setUserData(std::optional<CompoundTag> data) {
    userdata_ = std::move(data);
    if (userdata_ && userdata_->empty()) userdata_.reset();
}

std::string ItemStackBase::getDescriptionId() const {
    if (info_ == nullptr) return {};
    const auto& byaux = info_->auxdescriptionids;
    const bool named = aux_ >= 0 && static_cast<std::size_t>(aux_) < byaux.size() && !byaux[aux_].empty();
    return named ? byaux[aux_] : info_->descriptionid;
}

std::int32_t ItemStackBase::getBlockRuntimeId() const {
    if (info_ == nullptr) return 0;
    const auto& byaux = info_->auxblockruntimeids;
    return aux_ >= 0 && static_cast<std::size_t>(aux_) < byaux.size() ? byaux[aux_] : info_->blockruntimeid;
}

int ItemStackBase::getDamageValue() const {
    if (getMaxDamage() == 0) return aux_;
    return userdata_ ? userdata_->getInt("Damage") : 0;
}

std::string ItemStackBase::getCustomName() const {
    const auto* shown = display(userdata_);
    return shown != nullptr ? shown->getString("Name") : std::string();
}

std::vector<std::string> ItemStackBase::getCustomLore() const {
    std::vector<std::string> lines;
    const auto* shown = display(userdata_);
    const auto* lore = shown != nullptr ? shown->getList("Lore") : nullptr;
    if (lore == nullptr) return lines;
    for (const auto& line : lore->items()) {
        if (const auto* text = line.as<std::string>()) lines.push_back(*text);
    }
    return lines;
}

bool ItemStackBase::isStackable(const ItemStackBase& other) const {
    return !isNull() && !other.isNull() && info_ == other.info_ && aux_ == other.aux_ && userdata_ == other.userdata_;
}

ItemStack ItemStack::create(std::string_view name, int count, std::int16_t aux) {
    ItemStack stack;
    stack.info_ = host().items->find(name);
    if (stack.info_ == nullptr) return stack;
    stack.name_ = stack.info_->name;
    stack.aux_ = aux;
    stack.set(count);
    return stack;
}

ItemStack ItemStack::fromTag(const CompoundTag& tag) {
    ItemStack stack;
    stack.load(tag);
    return stack;
}

}  // namespace platform
