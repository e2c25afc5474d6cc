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
    // Of one connection in one round, which always gives one; the rest keeps its order and waits for the next.
    static constexpr std::size_t mostinaround = 128, bytesinaround = 256 * 1024;

    struct Arrival {
        ConnectionId connection;
        std::string packet;
    };

    // Until a connection is opened, what it says is not kept.
    void open(ConnectionId connection);
    void close(ConnectionId connection);
    // Any thread. True when take() would give it in this round; else it waits, or was dropped.
    bool put(ConnectionId connection, std::string packet);
    // What is to be handled now.
    [[nodiscard]] std::deque<Arrival> take(bool newround);
    // How many packets of which connection were dropped since this was last asked.
    [[nodiscard]] std::map<ConnectionId, std::uint64_t> takedropped();

private:
    struct Sum {
        std::size_t packets = 0, bytes = 0;
        void add(const std::string& packet) { ++packets, bytes += packet.size(); }
        void remove(const std::string& packet) { --packets, bytes -= packet.size(); }
    };
    struct Share {
        Sum waiting, taken;   // taken: in this round
        bool usedup = false;  // the round's
        [[nodiscard]] bool takes(const std::string& packet);
    };
    std::mutex lock_;
    std::deque<Arrival> waiting_;
    std::map<ConnectionId, Share> shares_;
    std::map<ConnectionId, std::uint64_t> dropped_;
};

}  // namespace host
