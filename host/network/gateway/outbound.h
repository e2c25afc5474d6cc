// What waits to be sent to the gateway. Whoever puts something in never waits; who does not take is cut off: a session
// whose share is full is over, and when all that waits is too much, so is the connection. Any thread.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <string>
#include <string_view>

#include "host/network/gateway/frames.h"

namespace host {

class Outbound {
public:
    struct Limits {
        std::size_t ofsession = 4 << 20, ofall = 32 << 20;  // bytes
    };
    explicit Outbound(Limits limits) : limits_(limits) {}

    // Of the door itself, in its place among the others.
    void put(ToGateway operation, std::string_view payload);
    // The first frame of a session, and the last; a session that is over is not told again.
    void open(std::uint64_t session, std::string_view payload);
    void close(std::uint64_t session, std::string_view reason);
    void forget(std::uint64_t session);  // the gateway has closed it, and is told nothing more
    void refuse(std::uint64_t session, std::string_view reason);
    // False when the session ended by it.
    [[nodiscard]] bool packet(std::uint64_t session, std::string_view packet);
    // Marks the end of a pass. False when nothing was put in since the last one.
    [[nodiscard]] bool pulse();

    // Whole frames, of about so many bytes if there are as many.
    [[nodiscard]] std::string take(std::size_t bytes);
    // Too much waited, and the connection has no use any more.
    [[nodiscard]] bool overflown() const;

private:
    struct Waiting {
        ToGateway operation;
        std::uint64_t session;
        std::string bytes;
    };
    void add(ToGateway operation, std::uint64_t session, std::string_view payload);
    void end(std::uint64_t session, std::string_view reason);
    void drop(std::uint64_t session);

    const Limits limits_;
    mutable std::mutex mutex_;
    std::deque<Waiting> waiting_;
    std::map<std::uint64_t, std::size_t> sessions_;  // those that are open, and what waits of each
    std::size_t all_ = 0;
    bool overflown_ = false;  // and from then on nothing is kept
    bool sincepulse_ = false;
};

}  // namespace host
