#include "host/network/network.h"

#include <fmt/format.h>

#include <atomic>
#include <stdexcept>
#include <vector>

#include "host/core/events.h"
#include "host/network/inbox.h"
#include "host/network/joinrules.h"
#include "host/network/packetroutes.h"
#include "host/server.h"
#include "host/world/worldparts.h"
#include "platform/logger.h"
#include "platform/turn.h"

namespace host {

struct Network::Parts {
    explicit Parts(Server& owner) : server(owner) {}

    Server& server;
    Inbox inbox;
    Connections connections;
    NetworkHandlerImpl handlers{connections};
    ConnectionId last = 0;
    bool handling = false;  // a packet's handler is running: its player must stay until it is done
    std::vector<std::pair<ConnectionId, std::string>> leaving;  // asked for meanwhile, and why
    std::uint64_t round = 0;                                    // the tick of the packets that were handled last

    // A client may say so much in a tick. Where ticks come by call only, every pass is as good as one.
    [[nodiscard]] bool newround() {
        const std::uint64_t tick = server.tickcount();
        return std::exchange(round, tick) != tick || server.options().manual;
    }
    void handle(const Inbox::Arrival& arrival);
};

Network::Network(Server& server) : parts_(std::make_unique<Parts>(server)) { registerhandlers(server.hooks()); }

Network::~Network() { leaveall(); }

ConnectionId Network::join(const JoinRequest& request, Sink sink, Gone gone) {
    checkjoin(request);
    World::Parts& world = parts_->server.world().parts();
    if (world.level.online() >= mostplayers)
        throw std::runtime_error(fmt::format("the server is full: {} players", mostplayers));
    auto connection = std::make_unique<Connection>(parts_->last + 1, request.name, std::move(sink), std::move(gone));
    connection->player = &world.enter(request, *connection);
    Connection& joined = *connection;
    parts_->connections.emplace(++parts_->last, std::move(connection));
    parts_->inbox.open(joined.id);

    platform::Turn turn;
    joined.player->sendgametype();
    joined.player->refreshInventory();
    platform::Logger("Server").info("{} joined", request.name);
    parts_->server.events().fire(platform::Event::PlayerJoinEvent{joined.player});
    return joined.id;
}

void Network::leave(ConnectionId id, std::string_view reason) {
    const auto found = parts_->connections.find(id);
    if (found == parts_->connections.end()) return;
    if (parts_->handling) {
        parts_->leaving.emplace_back(id, reason);
        return;
    }
    Connection& connection = *found->second;
    parts_->inbox.close(id);
    connection.close(reason);
    const std::string name = connection.player->getRealName();
    World& world = parts_->server.world();
    {
        platform::Turn turn;
        parts_->server.events().fire(platform::Event::PlayerLeftEvent{connection.player});
        world.parts().leave(*connection.player);
    }
    connection.complaints.end();
    parts_->connections.erase(found);
    world.flush();
    platform::Logger("Server").info("{} left", name);
}

void Network::leaveall() {
    while (!parts_->connections.empty()) leave(parts_->connections.begin()->first, "the server stops");
}

void Network::receive(ConnectionId connection, std::string packet) {
    if (parts_->inbox.put(connection, std::move(packet))) parts_->server.wake();
}

void Network::Parts::handle(const Inbox::Arrival& arrival) {
    const auto found = connections.find(arrival.connection);
    if (found == connections.end()) return;
    platform::Turn turn;
    handling = true;
    routepacket({server, handlers, *found->second}, arrival.packet);
    handling = false;
}

bool Network::process() {
    const auto arrived = parts_->inbox.take(parts_->newround());
    for (const Inbox::Arrival& arrival : arrived) {
        parts_->handle(arrival);
        for (const auto& [id, reason] : std::exchange(parts_->leaving, {})) leave(id, reason);
    }
    for (const auto& [id, count] : parts_->inbox.takedropped())
        if (const auto found = parts_->connections.find(id); found != parts_->connections.end())
            found->second->complaints.add("packet", fmt::format("{} dropped: too long or too many", count));
    return !arrived.empty();
}

platform::ServerPlayer* Network::player(ConnectionId connection) {
    return parts_->handlers._getServerPlayer({connection}, 0);
}

ConnectionId Network::connection(std::string_view playername) const {
    const std::string folded = foldedname(playername);
    for (const auto& [id, connection] : parts_->connections)
        if (foldedname(connection->player->getRealName()) == folded) return id;
    return 0;
}

}  // namespace host
