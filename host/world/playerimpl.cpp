#include "host/world/playerimpl.h"

#include "host/world/droppeditems.h"
#include "platform/host.h"
#include "platform/packets/containers.h"
#include "platform/packets/messages.h"

namespace host {

using platform::ItemStack;

namespace {

// Container ids of the packets that paint a client's own screen.
struct ScreenPart {
    std::uint32_t container;
    int first, count;
};
constexpr ScreenPart screen[] = {
    {0, 0, inventorysize}, {120, armorfirst, armorsize}, {119, offhandslot, 1}, {124, cursorslot, 1}};
constexpr std::uint32_t interfaceslots = 124;  // many more than the cursor, so that it is sent alone

int armorindex(platform::ArmorSlot slot) { return armorfirst + static_cast<int>(slot); }

}  // namespace

const ItemStack& ServerPlayerImpl::getArmor(platform::ArmorSlot slot) const {
    return record_.inventory->slot(armorindex(slot)).stack;
}
void ServerPlayerImpl::setArmor(platform::ArmorSlot slot, const ItemStack& stack) {
    inventory().put(armorindex(slot), stack);
}
const ItemStack& ServerPlayerImpl::getOffhandSlot() const { return record_.inventory->slot(offhandslot).stack; }
void ServerPlayerImpl::setOffhandSlot(const ItemStack& stack) { inventory().put(offhandslot, stack); }

void ServerPlayerImpl::drop(const ItemStack& stack) {
    if (!stack.isNull()) ground_.add(stack, record_.position, record_.dimension);
}

platform::NetworkItem ServerPlayerImpl::networkitem(int slot) const {
    const Inventory::Slot& held = record_.inventory->slot(slot);
    platform::NetworkItem item = platform::tonetwork(held.stack);
    if (item.networkid != 0) item.stackid = held.stackid;
    return item;
}

void ServerPlayerImpl::refreshInventory() {
    for (const ScreenPart& part : screen) {
        if (part.container == interfaceslots) {
            sendNetworkPacket(
                platform::topacket(platform::InventorySlotPacket{part.container, 0, networkitem(part.first)}));
            continue;
        }
        platform::InventoryContentPacket packet{part.container, {}};
        for (int i = 0; i < part.count; ++i) packet.items.push_back(networkitem(part.first + i));
        sendNetworkPacket(platform::topacket(packet));
    }
    inventory().unsent.reset();
}

void ServerPlayerImpl::sendchanges() {
    if (inventory().unsent.none()) return;
    for (const ScreenPart& part : screen)
        for (int i = 0; i < part.count; ++i)
            if (inventory().unsent.test(static_cast<std::size_t>(part.first + i)))
                sendNetworkPacket(platform::topacket(platform::InventorySlotPacket{
                    part.container, static_cast<std::uint32_t>(i), networkitem(part.first + i)}));
    inventory().unsent.reset();
}

void ServerPlayerImpl::putcursorback() {
    const ItemStack held = inventory().slot(cursorslot).stack;
    if (held.isNull()) return;
    inventory().put(cursorslot, ItemStack());
    if (!inventory().add(held)) drop(held);
}

void ServerPlayerImpl::sendgametype() {
    sendNetworkPacket(platform::topacket(platform::SetPlayerGameTypePacket{record_.gametype}));
    if (!iscreative()) return;
    platform::CreativeContentPacket content;
    for (const ItemStack& stack : platform::host().items->creativelist())
        content.entries.push_back({static_cast<std::uint32_t>(content.entries.size() + 1), platform::tonetwork(stack)});
    sendNetworkPacket(platform::topacket(content));
}

void ServerPlayerImpl::sendTextPacket(const std::string& text) {
    platform::TextPacket packet;
    packet.message = text;
    sendNetworkPacket(platform::topacket(packet));
}
void ServerPlayerImpl::sendToastPacket(const std::string& title, const std::string& content) {
    sendNetworkPacket(platform::topacket(platform::ToastRequestPacket{title, content}));
}
void ServerPlayerImpl::sendPlaySoundPacket(const std::string& name, platform::Vec3 position, float volume,
                                           float pitch) {
    sendNetworkPacket(platform::topacket(platform::PlaySoundPacket{name, position, volume, pitch}));
}

std::uint8_t ServerPlayerImpl::_nextContainerCounter() {
    constexpr std::uint8_t highest = 99;
    containercounter_ = containercounter_ >= highest ? 1 : static_cast<std::uint8_t>(containercounter_ + 1);
    return containercounter_;
}

}  // namespace host
