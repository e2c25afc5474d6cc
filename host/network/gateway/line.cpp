#include "host/network/gateway/line.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "host/clients.h"
#include "host/core/commands.h"
#include "host/core/guarded.h"
#include "host/network/gateway/announcement.h"
#include "host/server.h"
#include "host/world/playerimpl.h"
#include "platform/logger.h"

namespace host {

using nlohmann::json;

namespace {

std::string describe(const platform::ServerPlayer& player) {
    const platform::Vec3 position = player.getPosition();
    return json{{"position", {position.x, position.y, position.z}},
                {"dimension", player.getDimensionId()},
                {"gametype", player.getPlayerGameType()},
                {"permission", static_cast<int>(player.getCommandPermissionLevel())},
                {"entity", player.sessionid()},
                {"xuid", player.getXuid()}}
        .dump();
}

}  // namespace

std::string shownline(std::string text) {
    constexpr std::size_t longest = 200;
    text.resize(std::min(text.size(), longest));
    for (char& c : text)
        if (c < ' ' || c > '~') c = '?';
    return text;
}

Line::Line(Server& server, bool offline, Outbound::Limits limits, std::function<void()> wake)
    : out(limits), server_(server), offline_(offline), wake_(std::move(wake)) {}

void Line::post(std::function<void(Line&)> work) {
    ++posted_;
    try {
        server_.post([line = shared_from_this(), work = std::move(work)] {
            struct Done {
                Line& line;
                ~Done() {
                    if (line.posted_-- == mostposted) line.wake_();
                }
            } const done{*line};
            work(*line);
        });
    } catch (const std::logic_error&) {
        --posted_;  // the server has stopped, and with it all of this has come to its end
    }
}

void Line::greet(const std::string& motd) {
    out.put(ToGateway::hello, announcement(motd, offline_));
    for (const std::string& packet : startpackets()) out.put(ToGateway::start, packet);
    // Before anybody joins, who would hear of them in a later pass.
    post([](Line& line) { line.endpass(); });
}

void Line::open(std::uint64_t session, OpenRequest request) {
    post([session, request = std::move(request)](Line& line) { line.join(session, request); });
}

void Line::packet(std::uint64_t session, std::string packet) {
    if (const ConnectionId id = connection(session); id != 0) server_.network().receive(id, std::move(packet));
}

void Line::close(std::uint64_t session, std::string reason) {
    post([session, reason = shownline(std::move(reason))](Line& line) {
        const auto* player = line.server_.network().player(line.connection(session));
        if (player == nullptr) return;
        if (!reason.empty()) platform::Logger("Server").info("{}: {}", player->getRealName(), reason);
        line.leave(session, reason);
    });
}

void Line::hangup() {
    post([](Line& line) { line.leaveall("the gateway is gone"); });
}

void Line::join(std::uint64_t session, const OpenRequest& request) {
    JoinRequest player = request.player;
    std::vector<std::string> early;  // what he is sent before it is known where he stands
    bool opened = false;
    const auto failure = failureof([&] {
        if (!request.authenticated && !offline_)
            throw std::runtime_error("this server lets in only players who have signed in");
        if (request.authenticated && player.xuid.empty())
            throw std::runtime_error(fmt::format("\"{}\" has signed in without an xuid", player.name));
        if (!request.authenticated) player.xuid = defaultxuid(server_, player.name);
        const std::shared_ptr<Line> self = shared_from_this();
        const auto connecting = std::make_shared<std::vector<std::string>*>(&early);
        const auto send = [self, session, connecting](std::string packet) {
            if (*connecting != nullptr)
                (*connecting)->push_back(std::move(packet));
            else if (!self->out.packet(session, packet))
                self->post([session](Line& line) { line.leave(session, "too slow"); });
        };
        const auto gone = [self, session](std::string_view reason) {
            self->out.close(session, reason);
            const std::lock_guard lock(self->mutex_);
            self->connections_.erase(session);
        };
        const ConnectionId id = server_.network().join(player, send, gone);
        *connecting = nullptr;
        const auto* joined = server_.network().player(id);
        if (joined == nullptr) throw std::runtime_error("the player was sent away at once");
        opened = true;
        {
            const std::lock_guard lock(mutex_);
            connections_[session] = id;
        }
        out.open(session, describe(*joined));
        for (std::string& packet : early) send(std::move(packet));
    });
    if (failure && !opened) out.refuse(session, *failure);
}

ConnectionId Line::connection(std::uint64_t session) const {
    const std::lock_guard lock(mutex_);
    const auto found = connections_.find(session);
    return found == connections_.end() ? 0 : found->second;
}

void Line::leave(std::uint64_t session, std::string_view reason) {
    const ConnectionId id = connection(session);
    if (id == 0) return;
    out.forget(session);
    server_.network().leave(id, reason);
}

void Line::leaveall(std::string_view reason) {
    std::map<std::uint64_t, ConnectionId> all;
    {
        const std::lock_guard lock(mutex_);
        all = connections_;
    }
    for (const auto& [session, id] : all) server_.network().leave(id, reason);
}

void Line::endpass() {
    if (server_.commands().revision() != std::exchange(toldcommands_, server_.commands().revision()))
        out.put(ToGateway::commands, announcement(server_.commands()));
    if (out.pulse()) wake_();
}

}  // namespace host
