#include "host/network/packetroutes.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>

#include "host/core/commands.h"
#include "host/server.h"
#include "host/world/playerimpl.h"
#include "host/world/world.h"
#include "platform/packets/codec.h"
#include "platform/packets/forms.h"
#include "platform/packets/messages.h"
#include "platform/utf8.h"

namespace host {

using platform::PacketId;

namespace {

constexpr std::size_t mostrequests = 64, mostactions = 256;
constexpr std::size_t longestline = 2048, longestchat = 512;

bool isutf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = platform::utf8length(text);
        if (length == 0) return false;
        text.remove_prefix(length);
    }
    return true;
}

void demandtext(const std::string& text, std::size_t longest) {
    if (text.size() > longest) throw BadPacket(fmt::format("a text of {} bytes", text.size()));
    if (!isutf8(text)) throw BadPacket("a text that is not UTF-8");
    // Neither a line end, with which one could speak in another's name, nor anything that a console would obey.
    if (std::ranges::any_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; }))
        throw BadPacket("a text with control characters");
}

void handlecommand(const PacketContext& context, std::string_view body) {
    const auto request = platform::readpacket<platform::CommandRequestPacket>(body);
    demandtext(request.line, longestline);
    ServerPlayerImpl& player = *context.from.player;
    const CommandResult result =
        context.server.commands().execute(request.line, &player, player.getCommandPermissionLevel());
    platform::CommandOutputPacket output;
    output.origin = request.origin;
    output.successcount = static_cast<std::uint32_t>(result.successcount);
    for (const CommandMessage& message : result.messages)
        output.messages.push_back({message.success, message.text, {}});
    context.from.send(platform::topacket(output));
}

void handlerequest(const PacketContext& context, std::string_view body) {
    const auto packet = platform::readpacket<platform::ItemStackRequestPacket>(body);
    std::size_t actions = 0;
    for (const platform::ItemStackRequest& request : packet.requests) actions += request.actions.size();
    if (packet.requests.size() > mostrequests || actions > mostactions)
        throw BadPacket(fmt::format("{} requests with {} actions", packet.requests.size(), actions));
    context.handlers.handle(context.from.id, packet);
}

void handleclose(const PacketContext& context, std::string_view body) {
    auto packet = platform::readpacket<platform::ContainerClosePacket>(body);
    // Settled before anything is done about it: a plug-in may ask for the next close on the way.
    if (context.from.takeclosing(packet.containerid)) packet.serverside = true;
    context.handlers.handle(context.from.id, packet);
}

void handleformanswer(const PacketContext& context, std::string_view body) {
    const auto packet = platform::readpacket<platform::ModalFormResponsePacket>(body);
    const auto [json, answer] = context.from.forms.take(packet.formid, packet.json.value_or("null"));
    answer(context.from.player, json);
}

void handlechat(const PacketContext& context, std::string_view body) {
    const auto packet = platform::readpacket<platform::TextPacket>(body);
    if (packet.type != platform::TextType::chat) throw BadPacket("a client's text that is no chat");
    demandtext(packet.message, longestchat);
    if (packet.message.empty()) return;
    // Who speaks is known; what the packet says of that does not count.
    const std::string line = fmt::format("<{}> {}", context.from.player->getRealName(), packet.message);
    for (platform::ServerPlayer* listener : context.server.world().level().getAllPlayers()) listener->sendText(line);
}

struct Route {
    int number;
    const char* name;
    std::size_t longest;  // bytes of the body
    void (*handle)(const PacketContext&, std::string_view body);
};

constexpr int numberof(PacketId id) { return static_cast<int>(id); }

constexpr Route routes[] = {
    {numberof(PacketId::Text), "Text", 4096, &handlechat},
    {numberof(PacketId::ContainerClose), "ContainerClose", 16, &handleclose},
    {numberof(PacketId::CommandRequest), "CommandRequest", 4096, &handlecommand},
    {numberof(PacketId::ModalFormResponse), "ModalFormResponse", 256 * 1024, &handleformanswer},
    {numberof(PacketId::ItemStackRequest), "ItemStackRequest", 32 * 1024, &handlerequest},
};

// What clients say in the course of the game and nothing here depends on.
constexpr int ignored[] = {
    19,   // MovePlayer
    23,   // TickSync
    27,   // ActorEvent
    30,   // InventoryTransaction
    31,   // MobEquipment
    33,   // Interact
    36,   // PlayerAction
    44,   // Animate
    45,   // Respawn
    69,   // RequestChunkRadius
    93,   // PlayerSkin
    113,  // SetLocalPlayerAsInitialized
    115,  // NetworkStackLatency
    123,  // LevelSoundEvent
    129,  // ClientCacheStatus
    138,  // Emote
    144,  // PlayerAuthInput
    152,  // EmoteList
    156,  // PacketViolationWarning
};

std::string nameof(int number) {
    const auto* route = std::ranges::find(routes, number, &Route::number);
    return route == std::end(routes) ? fmt::format("packet {}", number) : route->name;
}

void dispatch(const PacketContext& context, const platform::Envelope& envelope) {
    const auto* route = std::ranges::find(routes, envelope.number, &Route::number);
    if (route == std::end(routes)) {
        if (std::ranges::find(ignored, envelope.number) == std::end(ignored)) throw BadPacket("unknown");
        return;
    }
    if (envelope.sender != 0) throw BadPacket(fmt::format("from sub-client {}, which has no player", envelope.sender));
    if (envelope.body.size() > route->longest) throw BadPacket(fmt::format("{} bytes long", envelope.body.size()));
    route->handle(context, envelope.body);
}

}  // namespace

void routepacket(const PacketContext& context, std::string_view packet) {
    std::string name = "packet";
    try {
        const platform::Envelope envelope = platform::openpacket(packet);
        name = nameof(envelope.number);
        dispatch(context, envelope);
    } catch (const BadPacket& e) {
        context.from.complaints.add(name, fmt::format("dropped: {}", e.what()));
    } catch (const platform::ReadError& e) {
        context.from.complaints.add(name, fmt::format("dropped: {}", e.what()));
    } catch (const std::exception& e) {
        context.from.complaints.add(name, fmt::format("handling it failed: {}", e.what()));
    } catch (...) {
        context.from.complaints.add(name, "handling it failed");
    }
}

}  // namespace host
