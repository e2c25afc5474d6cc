#include "host/network/gateway/announcement.h"

#include <nlohmann/json.hpp>

#include "host/core/commands.h"
#include "host/network/gateway/frames.h"
#include "host/network/inbox.h"
#include "host/network/joinrules.h"
#include "host/world/blocks.h"
#include "host/world/gamedata.h"
#include "host/world/items.h"
#include "platform/packets/containers.h"

namespace host {

using nlohmann::json;

namespace {

constexpr int protocol = 560;
constexpr const char* gameversion = "1.19.50";

std::string text(const json& told) { return told.dump(-1, ' ', false, json::error_handler_t::replace); }

const char* kindof(const platform::CommandParameter& parameter) {
    using Kind = platform::CommandParameter::Kind;
    constexpr std::pair<Kind, const char*> kinds[] = {
        {Kind::Enum, "enum"}, {Kind::String, "string"}, {Kind::Int, "int"}, {Kind::Bool, "bool"}};
    return std::ranges::find(kinds, parameter.kind, &std::pair<Kind, const char*>::first)->second;
}

json describe(const Parameters& overload) {
    json told = json::array();
    for (const platform::CommandParameter& parameter : overload) {
        json& one = told.emplace_back(
            json{{"name", parameter.name}, {"kind", kindof(parameter)}, {"optional", parameter.optional}});
        if (parameter.kind == platform::CommandParameter::Kind::Enum) one["enum"] = parameter.enumname;
    }
    return told;
}

std::string creativecontent() {
    platform::CreativeContentPacket content;
    for (const platform::ItemStack& stack : itemtable().creativelist())
        content.entries.push_back({static_cast<std::uint32_t>(content.entries.size() + 1), platform::tonetwork(stack)});
    return platform::sealpacket(platform::topacket(content));
}

}  // namespace

const std::vector<std::string>& startpackets() {
    using platform::Packet;
    using platform::PacketId;
    static const std::vector<std::string> packets{
        platform::sealpacket(Packet(PacketId::BiomeDefinitionList, std::string(gamefile("biome_definitions.nbt")))),
        platform::sealpacket(
            Packet(PacketId::AvailableEntityIdentifiers, std::string(gamefile("entity_identifiers.nbt")))),
        creativecontent()};
    return packets;
}

std::string announcement(const std::string& motd, bool offline) {
    json items = json::array();
    for (const GameItem& item : gameitems()) items.push_back({item.name, item.id, item.componentbased});
    return text(
        {{"protocol", protocol},
         {"version", gameversion},
         {"motd", motd},
         {"players", mostplayers},
         {"offline", offline},
         {"start", startpackets().size()},
         {"air", blockruntimeid("minecraft:air")},
         {"limits", {{"packet", longestpayload}, {"waiting", Inbox::mostpackets}, {"perTick", Inbox::mostinaround}}},
         {"items", std::move(items)}});
}

std::string announcement(const Commands& commands) {
    json told = {{"commands", json::array()}, {"enums", json::array()}};
    for (const CommandDescription& command : commands.described()) {
        json overloads = json::array();
        for (const Parameters* overload : command.overloads) overloads.push_back(describe(*overload));
        told["commands"].push_back({{"name", command.name},
                                    {"description", command.description},
                                    {"permission", static_cast<int>(command.level)},
                                    {"overloads", std::move(overloads)}});
    }
    for (const auto& [name, members] : commands.enums()) {
        json values = json::array();
        for (const auto& [word, value] : members) values.push_back(word);
        told["enums"].push_back({{"name", name}, {"values", std::move(values)}});
    }
    return text(told);
}

}  // namespace host
