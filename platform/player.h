// A player as the server knows him. Everything here belongs to the server thread. A pointer is good only while the
// player is online: work that outlives the call keeps the xuid, or the session id, and asks the level again.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "platform/item.h"
#include "platform/packets/packet.h"
#include "platform/position.h"

namespace platform {

// Real stacks. Slots 0 to 8 are the hotbar, 9 to 35 the rest.
class PlayerInventory {
public:
    virtual ~PlayerInventory() = default;
    [[nodiscard]] virtual int getContainerSize() const = 0;              // 36
    [[nodiscard]] virtual const ItemStack& getItem(int slot) const = 0;  // the null stack for an empty slot
    virtual void setItem(int slot, const ItemStack& stack) = 0;
    // Whether the whole stack finds room.
    [[nodiscard]] virtual bool canAdd(const ItemStack& stack) const = 0;
    virtual bool add(const ItemStack& stack) = 0;      // false, and no change, without room
    virtual void removeItem(int slot, int count) = 0;  // at most what lies there
};

enum class ArmorSlot { head = 0, chest = 1, legs = 2, feet = 3 };

class Actor {
public:
    virtual ~Actor() = default;
    [[nodiscard]] virtual Vec3 getPosition() const = 0;
    [[nodiscard]] virtual int getDimensionId() const = 0;
};

class Mob : public Actor {
public:
    [[nodiscard]] virtual bool isAlive() const = 0;
    // Sends the client its real inventory, armour, offhand and cursor.
    virtual void refreshInventory() = 0;
    [[nodiscard]] virtual const ItemStack& getArmor(ArmorSlot slot) const = 0;
    virtual void setArmor(ArmorSlot slot, const ItemStack& stack) = 0;
    [[nodiscard]] virtual const ItemStack& getOffhandSlot() const = 0;
    virtual void setOffhandSlot(const ItemStack& stack) = 0;
};

enum class CommandPermissionLevel : std::int8_t { Any = 0, GameMasters = 1, Admin = 2, Host = 3, Owner = 4 };

class Player : public Mob {
public:
    [[nodiscard]] virtual const std::string& getXuid() const = 0;  // empty for a simulated player
    [[nodiscard]] virtual const std::string& getRealName() const = 0;
    [[nodiscard]] virtual int getDeviceType() const = 0;  // 7 is the desktop client
    [[nodiscard]] virtual const std::string& getLanguageCode() const = 0;
    [[nodiscard]] virtual CommandPermissionLevel getCommandPermissionLevel() const = 0;
    [[nodiscard]] virtual int getPlayerGameType() const = 0;  // 0 survival, 1 creative
    [[nodiscard]] virtual PlayerInventory& getSupplies() = 0;
    // The slot of the hotbar that he holds in his hand. A host that does not know says the first.
    [[nodiscard]] virtual int getSelectedSlot() const { return 0; }
    virtual void drop(const ItemStack& stack) = 0;  // falls at his feet

    virtual void sendText(const std::string& text) = 0;        // chat
    virtual void sendTextPacket(const std::string& text) = 0;  // chat, as a plain text packet
    virtual void sendToastPacket(const std::string& title, const std::string& content) = 0;
    virtual void sendPlaySoundPacket(const std::string& name, Vec3 position, float volume, float pitch) = 0;
};

class ServerPlayer : public Player {
public:
    // Differs for every join of the server's run, also of the same player.
    [[nodiscard]] virtual std::uint64_t sessionid() const = 0;
    // Whether he can be served a screen now: spawned, alive, connection open.
    [[nodiscard]] virtual bool isReadyForContainer() const = 0;
    // The next container id, 1 to 99 and round again; it is the current one until the next call.
    virtual std::uint8_t _nextContainerCounter() = 0;
    [[nodiscard]] virtual std::uint8_t currentContainerCounter() const = 0;
    virtual void sendNetworkPacket(const Packet& packet) = 0;
    // Sends a form. The answer comes once, on the server thread, as JSON text; "null" when it was closed. It does not
    // come when the player leaves. The host drops an answer that does not fit the form, and logs it.
    using FormAnswer = std::function<void(ServerPlayer*, const std::string& json)>;
    virtual void sendForm(const std::string& json, FormAnswer answer) = 0;
};

}  // namespace platform
