// What the stories about chest menus have in common: opening one, and reading its picture.
#pragma once

#include <fmt/format.h>

#include "platform/packets/containers.h"
#include "tests/stage/stage.h"

namespace chest {

using namespace stage;
using client::armorid, client::inventoryid, client::offhandid, client::uiid;
using platform::ActionType, platform::PacketId;

inline const std::string ada = "2535400000000001", bob = "2535400000000002", root = "2535400000000009";
inline constexpr int desktop = 7, touch = 1;

// Long enough for the paint of an opening; and for the cool-down before the next one.
inline void opens(Stage& stage, Actor& player, const std::string& command) {
    player.types(command);
    stage.ticks(6);
}
inline void rests(Stage& stage) { stage.advance(2000); }

inline std::string named(const Actor& player, std::uint32_t container, int slot) {
    std::string name;
    player.look([&](client::ModelClient& c) { name = c.displayname(c.slot(container, slot)); });
    return name;
}

// The lines under an item, joined by newlines.
inline std::string lore(const Actor& player, std::uint32_t container, int slot) {
    std::string all;
    player.look([&](client::ModelClient& c) {
        for (const auto& line : c.lore(c.slot(container, slot))) all += (all.empty() ? "" : "\n") + line;
    });
    return all;
}

// Item, aux value and shine: "minecraft:book:3 shining", "" for an empty slot.
inline std::string looks(const Actor& player, std::uint32_t container, int slot) {
    std::string text;
    player.look([&](client::ModelClient& c) {
        const auto& item = c.slot(container, slot);
        if (item.networkid != 0)
            text = fmt::format("{}:{}{}", c.itemname(item), item.aux, c.shines(item) ? " shining" : "");
    });
    return text;
}

inline platform::ItemStackRequestAction action(ActionType type, ContainerName from, int fromslot,
                                               ContainerName to = ContainerName::cursor, int toslot = 0) {
    platform::ItemStackRequestAction made;
    made.type = static_cast<std::uint8_t>(type);
    made.amount = 1;
    made.source = {static_cast<std::uint8_t>(from), static_cast<std::uint8_t>(fromslot)};
    made.destination = {static_cast<std::uint8_t>(to), static_cast<std::uint8_t>(toslot)};
    return made;
}

// The raw road, also for what a client of ours would not do. One request for each list of actions.
inline void sends(Stage& stage, Actor& player, std::vector<std::vector<platform::ItemStackRequestAction>> batch) {
    player.look([&](client::ModelClient& c) {
        std::vector<platform::ItemStackRequest> requests;
        for (auto& actions : batch) requests.push_back({0, std::move(actions)});
        c.request(std::move(requests));
    });
    stage.server().settle();
}

// The results of all responses heard so far, "1 1", with one response packet to a line.
inline std::string responses(const Actor& player) {
    std::string all;
    player.look([&](client::ModelClient& c) {
        for (const auto& packet : c.packets) {
            if (packet.id != PacketId::ItemStackResponse) continue;
            if (!all.empty()) all += "\n";
            std::string line;
            for (const auto& each : platform::readpacket<platform::ItemStackResponsePacket>(packet.body).responses)
                line += fmt::format("{}{}", line.empty() ? "" : " ", each.result);
            all += line;
        }
    });
    return all;
}

// A close of whatever id, which the client's screen knows nothing of.
inline void closesraw(Stage& stage, Actor& player, int id, int times = 1) {
    player.look([&](client::ModelClient& c) {
        const platform::ContainerClosePacket packet{static_cast<std::uint8_t>(id), false};
        for (int i = 0; i < times; ++i) c.sendraw(platform::sealpacket(platform::topacket(packet)));
    });
    stage.server().settle();
}

inline void records(const Actor& player) {
    player.look([](client::ModelClient& c) { c.recordpackets = true; });
}

// "close open content*4 slot": what was sent, runs of the same packet counted, the rest left out.
inline std::string order(const Actor& player) {
    std::vector<std::pair<std::string, int>> runs;
    player.look([&](client::ModelClient& c) {
        for (const auto& packet : c.packets) {
            const char* name = packet.id == PacketId::ContainerClose      ? "close"
                               : packet.id == PacketId::ContainerOpen     ? "open"
                               : packet.id == PacketId::InventoryContent  ? "content"
                               : packet.id == PacketId::InventorySlot     ? "slot"
                               : packet.id == PacketId::UpdateBlock       ? "block"
                               : packet.id == PacketId::BlockActorData    ? "data"
                               : packet.id == PacketId::SetPlayerGameType ? "gametype"
                               : packet.id == PacketId::Text              ? "text"
                               : packet.id == PacketId::ModalFormRequest  ? "form"
                                                                          : "";
            if (*name == '\0') continue;
            if (runs.empty() || runs.back().first != name) runs.emplace_back(name, 0);
            ++runs.back().second;
        }
        c.packets.clear();
    });
    std::string all;
    for (const auto& [name, count] : runs)
        all += (all.empty() ? "" : " ") + name + (count > 1 ? "*" + std::to_string(count) : "");
    return all;
}

// What lies in a player's slots, and what his client shows of them: alike while no menu stands.
inline std::string belongings(const Actor& actor) {
    std::string all;
    for (int slot = 0; slot <= 40; ++slot) all += actor.has(slot) + ",";
    return all;
}
inline std::string screen(const Actor& actor) {
    std::string all;
    for (int slot = 0; slot < 36; ++slot) all += actor.shown(inventoryid, slot) + ",";
    for (int slot = 0; slot < 4; ++slot) all += actor.shown(armorid, slot) + ",";
    return all + actor.shown(offhandid, 0) + "," + actor.shown(uiid, 0);
}
// Both shops of somebody.
inline void bans(Actor& admin, const std::string& whom, bool whether = true) {
    for (const char* kind : {"sell", "recycle"})
        admin.types(fmt::format("ordomart {} {} {}", whether ? "ban" : "unban", kind, whom));
}
inline int gametype(const Actor& actor) {
    int type = -1;
    actor.look([&](client::ModelClient& c) { type = c.gametype(); });
    return type;
}

inline json goods(int n) {
    json all = json::array();
    for (int i = 0; i < n; ++i) all.push_back(good("apple", i + 1, 10, fmt::format("good {:02}", i)));
    return all;
}

}  // namespace chest
