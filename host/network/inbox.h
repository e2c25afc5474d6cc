// What has come in and waits for the server thread, in the order of its coming. Nobody can fill it without end: what is
// too long, or more than a connection's share, is dropped and counted.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <string>

#include "host/network/network.h"

namespace host {

class Inbox {
public:
    static constexpr std::size_t longestpacket = 256 * 1024;
    static constexpr std::size_t mostpackets = 512, mostbytes = 2 * 1024 * 1024;  // waiting, of one connection
    // Of one connection in one take(), which always gives one; the rest keeps its order.
    static constexpr std::size_t mostatonce = 128, bytesatonce = 256 * 1024;

    struct Arrival {
        ConnectionId connection;
        std::string packet;
    };

    // Until a connection is opened, what it says is not kept.
    void open(ConnectionId connection);
    void close(ConnectionId connection);
    // Any thread. False when it was dropped.
    bool put(ConnectionId connection, std::string packet);
    // What is to be handled now.
    [[nodiscard]] std::deque<Arrival> take();
    // How many packets of which connection were dropped since this was last asked.
    [[nodiscard]] std::map<ConnectionId, std::uint64_t> takedropped();

private:
    struct Share {
        std::size_t packets = 0, bytes = 0;
    };
    std::mutex lock_;
    std::deque<Arrival> waiting_;
    std::map<ConnectionId, Share> shares_;
    std::map<ConnectionId, std::uint64_t> dropped_;
};

}  // namespace host
