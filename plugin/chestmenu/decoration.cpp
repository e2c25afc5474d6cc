// Tag tree, stacks and screen, in this order.
#include "plugin/chestmenu/decoration.h"

#include "platform/host.h"
#include "platform/packets/containers.h"
#include "platform/packets/messages.h"
#include "plugin/base/language.h"
#include "plugin/chestmenu/fitting.h"
#include "plugin/chestmenu/templates.h"

namespace ordomart {

// ---- tag tree

namespace {

constexpr const char* tagkey = "tag";
constexpr const char* enchkey = "ench";

CompoundTag& displayof(CompoundTag& item) { return item.compound(tagkey).compound("display"); }

// A stored item may hold a list of anything under the name.
ListTag& loreof(CompoundTag& item) {
    auto& lore = displayof(item).list("Lore");
    if (lore.elementtype() != TagType::String) lore.clear();
    return lore;
}

}  // namespace

void setitemlock(CompoundTag& item) { item.compound(tagkey).putByte("minecraft:item_lock", 1); }
void setitemname(CompoundTag& item, const std::string& name) { item.putString("Name", name); }
void setdisplayname(CompoundTag& item, const std::string& text) { displayof(item).putString("Name", text); }
void addloreline(CompoundTag& item, const std::string& line) { loreof(item).add(line); }

void addlorelines(CompoundTag& item, std::string_view text) {
    for (;;) {
        const auto end = text.find('\n');
        addloreline(item, std::string(text.substr(0, end)));
        if (end == std::string_view::npos) return;
        text.remove_prefix(end + 1);
    }
}

void clearlore(CompoundTag& item) { loreof(item).clear(); }
void setshine(CompoundTag& item) { item.compound(tagkey).list(enchkey).clear(); }

void clearshine(CompoundTag& item) {
    if (auto* tag = item.getCompound(tagkey)) tag->erase(enchkey);
}

// ---- stacks

CompoundTag basestack() {
    static const CompoundTag base = readtoleranttag(templates::basestack);
    return base;
}

std::shared_ptr<ItemStack> makeitemstack(const char* name, int count) {
    auto stack = std::make_shared<ItemStack>(ItemStack::create(name, 1));
    stack->set(count);
    return stack;
}

void falsestack::startgood(const std::string& itemnbt) {
    tag = CompoundTag::fromSNBT(itemnbt).value_or(CompoundTag());
    load();
}

void falsestack::finishgood() {
    tag.putByte("Count", 1);
    stack->setNull();
    load();
}

void falsestack::sendto(ServerPlayer* player, std::uint32_t containerid, std::uint32_t slot) const {
    sendcontainerslot(player, containerid, slot, *stack);
}

// ---- one client's screen

void sendcontainercontent(ServerPlayer* player, std::uint32_t containerid, const std::vector<ItemStack>& stacks) {
    InventoryContentPacket content{containerid, {}};
    for (const auto& stack : stacks) content.items.push_back(fitted(stack));
    player->sendNetworkPacket(topacket(content));
}

void sendcontainerslot(ServerPlayer* player, std::uint32_t containerid, std::uint32_t slot, const ItemStack& stack) {
    player->sendNetworkPacket(topacket(InventorySlotPacket{containerid, slot, fitted(stack)}));
}

void sendcontainerclose(ServerPlayer* player, std::uint8_t containerid) {
    player->sendNetworkPacket(topacket(ContainerClosePacket{containerid, true}));
}

void sendplayergametype(ServerPlayer* player, int gametype) {
    player->sendNetworkPacket(topacket(SetPlayerGameTypePacket{gametype}));
}

void clearplayerview(ServerPlayer* player) {
    clearplayerviewcontainers(player, {layout::offhand, layout::armour, layout::inventory, layout::selected});
}

// More slots than some of them have, so that no client keeps one.
void clearplayerviewcontainers(ServerPlayer* player, std::initializer_list<std::uint32_t> containerids) {
    const std::vector<ItemStack> nothing(layout::slots);
    for (const auto containerid : containerids) sendcontainercontent(player, containerid, nothing);
}

namespace {

falsestack helpsign(const ServerPlayer* player, const char* namekey, std::span<const char* const> lorekeys) {
    falsestack sign;
    setdisplayname(sign.tag, tr(player, namekey));
    sign.tag.putByte("Slot", 0);
    setitemname(sign.tag, "minecraft:oak_sign");
    sign.tag.putShort("Damage", 3);
    setshine(sign.tag);
    clearlore(sign.tag);
    for (const auto* key : lorekeys)
        if (key != nullptr) addloreline(sign.tag, tr(player, key));
    sign.load();
    return sign;
}

}  // namespace

void sendhelpsign(ServerPlayer* player, const char* namekey, std::span<const char* const> lorekeys) {
    sendcontainercontent(player, layout::offhand, {*helpsign(player, namekey, lorekeys).stack});
}

void setcursorsign(ServerPlayer* player, bool show) {
    const auto sign = helpsign(player, "myshop.helper1", backlore);
    if (!show) sign.stack->setNull();
    sign.sendto(player, layout::ui, layout::cursorslot);
}

}  // namespace ordomart
