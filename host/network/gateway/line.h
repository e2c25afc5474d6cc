// A gateway that is logged in, between the door's thread, which hears it, and the server thread, on which its players
// live. Neither waits for the other: what the gateway asks for is posted, what the server sends is kept.
#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "host/network/gateway/outbound.h"
#include "host/network/gateway/talk.h"

namespace host {

class Server;

// What a gateway says, for one line of the log.
[[nodiscard]] std::string shownline(std::string text);

class Line : public std::enable_shared_from_this<Line> {
public:
    // `wake`: the door has something to do. Any thread; it outlives the line's stay at the server.
    Line(Server& server, bool offline, Outbound::Limits limits, std::function<void()> wake);

    // The door's thread.
    void open(std::uint64_t session, OpenRequest request);
    void packet(std::uint64_t session, std::string packet);
    void close(std::uint64_t session, std::string reason);
    // All its players leave.
    void hangup();
    // The server's first words, and the commands.
    void greet(const std::string& motd);
    // So much is posted that the gateway should not be heard for now.
    [[nodiscard]] bool isfull() const { return posted_ >= mostposted; }
    Outbound out;

    // The server thread.
    void endpass();
    void leaveall(std::string_view reason);

private:
    static constexpr int mostposted = 64;

    void post(std::function<void(Line&)> work);
    void join(std::uint64_t session, const OpenRequest& request);
    [[nodiscard]] ConnectionId connection(std::uint64_t session) const;  // 0 when it has none
    void leave(std::uint64_t session, std::string_view reason);

    Server& server_;
    const bool offline_;
    const std::function<void()> wake_;
    std::atomic<int> posted_ = 0;
    mutable std::mutex mutex_;
    std::map<std::uint64_t, ConnectionId> connections_;
    std::uint64_t toldcommands_ = 0;  // their revision
};

}  // namespace host
