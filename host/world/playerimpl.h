// A player who is online: his record, his slots and his connection put together.
#pragma once

#include <memory>
#include <string>

#include "host/world/clientlink.h"
#include "host/world/playerrecords.h"

namespace host {

class DroppedItems;

class ServerPlayerImpl : public platform::ServerPlayer {
public:
    ServerPlayerImpl(PlayerRecord& record, std::uint64_t sessionid, DroppedItems& ground, ClientLink& link)
        : record_(record), sessionid_(sessionid), ground_(ground), link_(link) {}

    [[nodiscard]] platform::Vec3 getPosition() const override { return record_.position; }
    [[nodiscard]] int getDimensionId() const override { return record_.dimension; }
    [[nodiscard]] bool isAlive() const override { return record_.alive; }
    void refreshInventory() override;
    [[nodiscard]] const platform::ItemStack& getArmor(platform::ArmorSlot slot) const override;
    void setArmor(platform::ArmorSlot slot, const platform::ItemStack& stack) override;
    [[nodiscard]] const platform::ItemStack& getOffhandSlot() const override;
    void setOffhandSlot(const platform::ItemStack& stack) override;

    [[nodiscard]] const std::string& getXuid() const override { return record_.xuid; }
    [[nodiscard]] const std::string& getRealName() const override { return record_.name; }
    [[nodiscard]] int getDeviceType() const override { return record_.devicetype; }
    [[nodiscard]] const std::string& getLanguageCode() const override { return record_.language; }
    [[nodiscard]] platform::CommandPermissionLevel getCommandPermissionLevel() const override {
        return static_cast<platform::CommandPermissionLevel>(record_.permission);
    }
    [[nodiscard]] int getPlayerGameType() const override { return record_.gametype; }
    [[nodiscard]] platform::PlayerInventory& getSupplies() override { return *record_.inventory; }
    [[nodiscard]] int getSelectedSlot() const override { return selected_; }
    void drop(const platform::ItemStack& stack) override;

    void sendText(const std::string& text) override { sendTextPacket(text); }
    void sendTextPacket(const std::string& text) override;
    void sendToastPacket(const std::string& title, const std::string& content) override;
    void sendPlaySoundPacket(const std::string& name, platform::Vec3 position, float volume, float pitch) override;

    [[nodiscard]] std::uint64_t sessionid() const override { return sessionid_; }
    [[nodiscard]] bool isReadyForContainer() const override { return record_.alive && link_.isopen(); }
    std::uint8_t _nextContainerCounter() override;
    [[nodiscard]] std::uint8_t currentContainerCounter() const override { return containercounter_; }
    void sendNetworkPacket(const platform::Packet& packet) override { link_.send(packet); }
    void sendForm(const std::string& json, FormAnswer answer) override { link_.sendform(json, std::move(answer)); }

    [[nodiscard]] PlayerRecord& record() { return record_; }
    [[nodiscard]] Inventory& inventory() { return *record_.inventory; }
    [[nodiscard]] bool iscreative() const { return record_.gametype == 1; }
    // Tells the client his game type, and when it is creative what he may pick.
    void sendgametype();
    void selects(int slot) { selected_ = slot; }  // of the hotbar
    // A stack on the cursor goes to the inventory, or falls at his feet.
    void putcursorback();
    // Tells the client of the slots that changed otherwise than by what he asked for.
    void sendchanges();

private:
    [[nodiscard]] platform::NetworkItem networkitem(int slot) const;
    void sendcontent(std::uint32_t container, int first, int count);
    void sendslot(int slot);

    PlayerRecord& record_;
    const std::uint64_t sessionid_;
    DroppedItems& ground_;
    ClientLink& link_;
    std::uint8_t containercounter_ = 0;
    int selected_ = 0;  // a client begins with the first
};

}  // namespace host
