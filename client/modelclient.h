// A model of a game client. It knows the wire and nothing of the server's objects: what it shows is what it decoded
// from the packets it was sent, and all it does leaves it as packet bytes. It draws its inventory screen, rolls back
// what the server refuses, closes a container when the server asks for it and says so, and holds the forms it was sent.
// Not locked: its owner calls it from one thread at a time.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "client/heard.h"
#include "client/screen.h"
#include "platform/packets/itemstackrequest.h"

namespace client {

struct Sound {
    std::string name;
    float volume = 0, pitch = 0;
};
struct Toast {
    std::string title, content;
};
struct CommandReply {
    bool success = true;
    std::string text;
};
struct PendingForm {
    std::uint32_t id = 0;
    std::string json;
};

// What an item's number means, as the server announced it.
struct ItemName {
    std::string name;
    int maxstack = 64;
    int maxdamage = 0;
    std::string displayname;
    std::map<std::uint32_t, std::string> byaux;  // where the name goes by the aux value
};
using ItemNames = std::map<std::int32_t, ItemName>;

class ModelClient {
public:
    using Send = std::function<void(std::string packet)>;
    // `touch`: no pointer; a tap and a double tap instead of clicks.
    ModelClient(ItemNames names, bool touch, Send send);

    // One packet from the server, header and body. A packet that does not decode, or makes no sense to a client of one
    // player, throws platform::ReadError and changes nothing.
    void receive(std::string_view packet);

    // ---- what is on the screen
    // Slots as the screen shows them: container inventoryid 0-35, armorid 0-3, offhandid 0, uiid 0 (the cursor).
    [[nodiscard]] const platform::NetworkItem& slot(std::uint32_t container, int index) const {
        return screen_.at({container, index});
    }
    [[nodiscard]] const platform::NetworkItem& cursor() const { return slot(uiid, 0); }
    [[nodiscard]] std::string itemname(const platform::NetworkItem& item) const;     // "minecraft:apple"
    [[nodiscard]] std::string displayname(const platform::NetworkItem& item) const;  // custom name, else the item's
    [[nodiscard]] static std::vector<std::string> lore(const platform::NetworkItem& item);
    [[nodiscard]] static bool shines(const platform::NetworkItem& item);
    [[nodiscard]] static bool locked(const platform::NetworkItem& item);
    // The container that is open, and its type (-1 the inventory screen); nothing when none is.
    struct OpenContainer {
        std::uint8_t id = 0;
        std::int8_t type = -1;
        std::int32_t x = 0, y = 0, z = 0;
    };
    [[nodiscard]] const std::optional<OpenContainer>& container() const { return container_; }
    [[nodiscard]] const std::deque<PendingForm>& forms() const { return forms_; }  // the first is in front
    [[nodiscard]] int gametype() const { return gametype_; }

    // ---- what it heard; the owner may clear them
    Heard<std::string> chat;
    Heard<Toast> toasts;
    Heard<Sound> sounds;
    Heard<CommandReply> replies;
    // The creative list by entry id, if it was sent.
    [[nodiscard]] const std::map<std::uint32_t, platform::NetworkItem>& creative() const { return creative_; }
    struct Received {
        platform::PacketId id;
        std::string body;
    };
    std::vector<Received> packets;  // every packet, for tests; kept only with recordpackets
    bool recordpackets = false;

    // ---- what it does
    // What no client could send, a slot that is none or a text that is not UTF-8, throws std::invalid_argument.
    void command(const std::string& line);
    // A click on a slot, as this kind of client sends it. Desktop: takes the stack to the cursor, or with a stack on
    // the cursor places, or swaps. Touch: a double tap; with a stack on the cursor the pair headed by a swap from it.
    // An empty slot and an empty cursor send nothing.
    void click(platform::ContainerName container, int slot);
    void rightclick(platform::ContainerName container, int slot);  // takes half, places one
    void drop(platform::ContainerName container, int slot);        // throws it out
    void swapwithcursor(platform::ContainerName container, int slot);
    void move(platform::ContainerName from, int fromslot, platform::ContainerName to, int toslot, int count);
    // A full stack to the cursor, by entry id. Throws std::invalid_argument for an entry that was not announced.
    void pickcreative(std::uint32_t entry);
    // The raw road: requests as given. Ids of 0 are numbered by the client. Returns the ids sent.
    std::vector<std::int32_t> request(std::vector<platform::ItemStackRequest> requests);
    void holds(int slot);  // of the hotbar: takes it in his hand
    void close();          // closes the open container
    void openinventory();  // nothing on the wire; the own screen, no menu
    // Answers the form in front, or the one with the id. `json` "null" closes it. Throws std::invalid_argument when
    // there is no such form.
    void answer(const std::string& json);
    void answer(std::uint32_t formid, const std::string& json);
    // Sends raw bytes as they are, for the tests of the server's reader.
    void sendraw(std::string packet) { send_(std::move(packet)); }

private:
    struct Incoming;  // what each packet of the server does

    [[nodiscard]] std::int32_t newrequestid();
    [[nodiscard]] int maxstack(const platform::NetworkItem& item) const;
    [[nodiscard]] const platform::NetworkItem& shown(platform::ContainerName container, int slot) const;
    [[nodiscard]] platform::ItemStackRequestSlotInfo slotinfo(platform::ContainerName container, int slot) const;
    [[nodiscard]] platform::ItemStackRequestAction transfer(platform::ContainerName from, int fromslot,
                                                            platform::ContainerName to, int toslot, int count) const;
    [[nodiscard]] platform::ItemStackRequestAction swap(platform::ContainerName container, int slot) const;
    void putdown(platform::ContainerName container, int slot, int most);
    // Seals what a server could read; throws std::invalid_argument for all else.
    template <class P>
    [[nodiscard]] static std::string sealed(const P& packet);

    ItemNames names_;
    bool touch_;
    Send send_;
    std::optional<OpenContainer> container_;
    std::deque<PendingForm> forms_;
    int gametype_ = 0;
    Screen screen_;
    std::map<std::uint32_t, platform::NetworkItem> creative_;
    std::int32_t nextrequest_ = -1;  // clients count down by 2
};

}  // namespace client
