// What a client asks of its inventory, and the server's answer.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/packets/networkitem.h"
#include "platform/packets/packet.h"

namespace platform {

// Container names as requests spell them.
enum class ContainerName : std::uint8_t {
    armor = 6,
    blockentity = 7,
    combined = 12,       // hotbar and inventory together, not a click on a slot
    hotbar = 28,         // slots 0 to 8
    inventory = 29,      // slots 9 to 35
    offhand = 34,        // slot 1
    cursor = 59,         // slot 0
    createdoutput = 60,  // slot 50; no name is above it
};

// The slots of the player's own, by container name; how many other screens have, no request tells.
struct ContainerSlots {
    ContainerName name;
    std::uint8_t first, last;
    [[nodiscard]] constexpr bool holds(int slot) const { return slot >= first && slot <= last; }
};
inline constexpr ContainerSlots ownslots[] = {
    {ContainerName::armor, 0, 3},           {ContainerName::combined, 0, 35}, {ContainerName::hotbar, 0, 8},
    {ContainerName::inventory, 9, 35},      {ContainerName::offhand, 1, 1},   {ContainerName::cursor, 0, 0},
    {ContainerName::createdoutput, 50, 50},
};
// Null for a name that is not the player's own.
[[nodiscard]] const ContainerSlots* slotsof(std::uint8_t container);
// Whether there is such a slot on any screen. A reader takes whatever a request names: a request for what is not there
// is to be refused by an answer, or the client would wait for one.
[[nodiscard]] bool isslot(std::uint8_t container, int slot);

enum class ActionType : std::uint8_t {
    take = 0,
    place = 1,
    swap = 2,
    drop = 3,
    destroy = 4,
    consume = 5,
    create = 6,
    placeincontainer = 7,
    takefromcontainer = 8,
    labtable = 9,
    beaconpayment = 10,
    mineblock = 11,
    craftrecipe = 12,
    craftrecipeauto = 13,
    creativepick = 14,
    craftoptional = 15,
    grindstone = 16,
    loom = 17,
    craftnonimplemented = 18,
    craftresult = 19,
};

struct ItemStackRequestSlotInfo {
    std::uint8_t container = 0;  // a ContainerName, or any other number that a client sends
    std::uint8_t slot = 0;
    std::int32_t stackid = 0;
    bool operator==(const ItemStackRequestSlotInfo&) const = default;
};

// What an automatic recipe is fed with.
struct ItemStackRequestIngredient {
    std::uint8_t kind = 0;  // 0 none, 1 item, 2 expression, 3 item tag, 4 name and aux
    std::uint16_t networkid = 0, aux = 0;
    std::string text;
    std::uint8_t version = 0;  // of an expression
    std::int32_t count = 0;
};

// One action. Fields that its type does not use keep their defaults.
struct ItemStackRequestAction {
    std::uint8_t type = 0;  // an ActionType; no other number is read
    std::int8_t amount = 0;
    ItemStackRequestSlotInfo source, destination;
    std::uint8_t flag = 0;             // of a drop: "randomly"; of a create: the place of the result
    std::uint32_t number = 0;          // creative entry id, recipe id, ...
    std::vector<NetworkItem> results;  // of a craft result
    std::uint8_t times = 0;            // of a craft result or an automatic recipe
    std::string text;                  // of a loom
    std::vector<ItemStackRequestIngredient> ingredients;
    std::int32_t extra[3] = {0, 0, 0};  // the further numbers of the kinds that nobody here reads
    [[nodiscard]] bool is(ActionType t) const { return type == static_cast<std::uint8_t>(t); }
};

struct ItemStackRequest {
    std::int32_t id = 0;
    std::vector<ItemStackRequestAction> actions;
    std::vector<std::string> filterstrings;
    std::int32_t cause = 0;
};

// No client asks for more at once, and each request bears a number of its own.
struct ItemStackRequestPacket {
    static constexpr PacketId number = PacketId::ItemStackRequest;
    static constexpr std::size_t mostrequests = 64, mostactions = 256;
    std::uint8_t subclient = 0;  // from the packet header
    std::vector<ItemStackRequest> requests;
    template <class IO>
    void fields(IO& io);
};

struct ItemStackResponseSlot {
    std::uint8_t slot = 0, hotbarslot = 0, count = 0;
    std::int32_t stackid = 0;
    std::string customname;
    std::int32_t durability = 0;
};

struct ItemStackResponseContainer {
    std::uint8_t container = 0;
    std::vector<ItemStackResponseSlot> slots;
};

struct ItemStackResponse {
    static constexpr std::uint8_t accepted = 0, refused = 1;  // as the game's own schema names them
    std::uint8_t result = refused;
    std::int32_t requestid = 0;
    std::vector<ItemStackResponseContainer> containers;  // on the wire for an accepted request only
};

struct ItemStackResponsePacket {
    static constexpr PacketId number = PacketId::ItemStackResponse;
    std::vector<ItemStackResponse> responses;
    template <class IO>
    void fields(IO& io);
};

struct ContainerClosePacket {
    static constexpr PacketId number = PacketId::ContainerClose;
    std::uint8_t containerid = 0;
    bool serverside = false;
    template <class IO>
    void fields(IO& io);
};

}  // namespace platform
