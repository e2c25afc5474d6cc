#include "host/network/packetroutes.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>

#include "host/core/commands.h"
#include "host/server.h"
#include "host/world/playerimpl.h"
#include "host/world/world.h"
#include "platform/packets/codec.h"
#include "platform/packets/containers.h"
#include "platform/packets/forms.h"
#include "platform/packets/messages.h"

namespace host {

using platform::Envelope;
using platform::PacketId;

namespace {

constexpr std::size_t longestline = 2048, longestchat = 512;
constexpr int ownslots = 0, hotbarslots = 9;

void demandtext(const std::string& text, std::size_t longest) {
    if (text.size() > longest) throw BadPacket(fmt::format("a text of {} bytes", text.size()));
    // Neither a line end, with which one could speak in another's name, nor anything that a console would obey.
    if (std::ranges::any_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; }))
        throw BadPacket("a text with control characters");
}

void handlecommand(const PacketContext& context, const Envelope& envelope) {
    const auto request = platform::readpacket<platform::CommandRequestPacket>(envelope.body);
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

void demandslots(const platform::ItemStackRequestPacket& packet) {
    for (const platform::ItemStackRequest& request : packet.requests)
        for (const platform::ItemStackRequestAction& action : request.actions)
            for (const auto& named : {action.source, action.destination})
                if (!platform::isslot(named.container, named.slot))
                    throw BadPacket(fmt::format("slot {} of container {}, which is none", named.slot, named.container));
}

void handlerequest(const PacketContext& context, const Envelope& envelope) {
    const auto packet = platform::readpacket<platform::ItemStackRequestPacket>(envelope.body, envelope.sender);
    try {
        demandslots(packet);
    } catch (const BadPacket&) {
        platform::ItemStackResponsePacket refusal;
        for (const platform::ItemStackRequest& request : packet.requests)
            refusal.responses.push_back({platform::ItemStackResponse::refused, request.id, {}});
        context.from.send(platform::topacket(refusal));
        throw;
    }
    context.handlers.handle(context.from.id, packet);
}

void handleclose(const PacketContext& context, const Envelope& envelope) {
    auto packet = platform::readpacket<platform::ContainerClosePacket>(envelope.body);
    // Settled before anything is done about it: a plug-in may ask for the next close on the way.
    const auto kind = context.from.closes(packet.containerid, context.server.tickcount());
    if (kind == Connection::Close::asked) packet.serverside = true;
    if (kind == Connection::Close::toooften) {
        // An answer shows the whole inventory anew, so that a few bytes must not call for it at will.
        context.from.player->putcursorback();
        throw BadPacket(
            fmt::format("container {} is not open, and not the first such close of the tick", packet.containerid));
    }
    context.handlers.handle(context.from.id, packet);
}

// The item in it is what the client believes; what counts is what lies there.
void handleselection(const PacketContext& context, const Envelope& envelope) {
    const auto packet = platform::readpacket<platform::MobEquipmentPacket>(envelope.body);
    if (packet.containerid != ownslots) return;  // the offhand
    if (packet.selected >= hotbarslots) throw BadPacket(fmt::format("slot {} of the hotbar", packet.selected));
    context.from.player->selects(packet.selected);
}

void handleformanswer(const PacketContext& context, const Envelope& envelope) {
    const auto packet = platform::readpacket<platform::ModalFormResponsePacket>(envelope.body);
    const auto [json, answer] = context.from.forms.take(packet.formid, packet.json.value_or("null"));
    answer(context.from.player, json);
}

void handlechat(const PacketContext& context, const Envelope& envelope) {
    const auto packet = platform::readpacket<platform::TextPacket>(envelope.body);
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
    void (*handle)(const PacketContext&, const Envelope&);
};

constexpr int numberof(PacketId id) { return static_cast<int>(id); }

constexpr Route routes[] = {
    {numberof(PacketId::Text), "Text", 4096, &handlechat},
    {numberof(PacketId::ContainerClose), "ContainerClose", 16, &handleclose},
    {numberof(PacketId::MobEquipment), "MobEquipment", 64 * 1024, &handleselection},
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

void dispatch(const PacketContext& context, const Envelope& envelope) {
    const auto* route = std::ranges::find(routes, envelope.number, &Route::number);
    const bool handled = route != std::end(routes);
    if (!handled && std::ranges::find(ignored, envelope.number) == std::end(ignored)) throw BadPacket("unknown");
    if (context.handlers.connection(context.from.id, envelope.sender) == nullptr)
        throw BadPacket(fmt::format("from sub-client {}, which has no player", envelope.sender));
    if (envelope.target != 0) throw BadPacket(fmt::format("to sub-client {} of the server", envelope.target));
    if (!handled) return;
    if (envelope.body.size() > route->longest) throw BadPacket(fmt::format("{} bytes long", envelope.body.size()));
    route->handle(context, envelope);
}

}  // namespace

void routepacket(const PacketContext& context, std::string_view packet) {
    std::string name = "packet";
    try {
        const Envelope envelope = platform::openpacket(packet);
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
