// Live updates for pages, as server-sent events. A subscriber names the players that it shows and gets, for each, a
// JSON Patch against the picture that it was sent before; what players hear, and log lines, come as they are.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <nlohmann/json.hpp>
#include <set>
#include <string>

#include "host/clients.h"

namespace host {

class Server;

// Something that a player heard, numbered over the server's run.
struct Heard {
    std::uint64_t number = 0;
    std::string player;
    nlohmann::json what;  // {"kind": "chat" | "toast" | "sound" | "reply", ...}
};

class EventStreams {
public:
    EventStreams(Server& server, Clients& clients);

    // One subscriber's place in the stream.
    struct Place {
        std::set<std::string> players;
        bool log = false;
        std::uint64_t heard = 0, logline = 0;  // the last that it was sent, or that it says it has
        std::uint64_t seen = 0;                // change counter of the last batch
        std::map<std::string, nlohmann::json> shown;
        nlohmann::json server;
    };
    // Waits until there is something for the subscriber (or `milliseconds` have gone) and returns it as event-stream
    // text; a comment line when there is nothing. Empty after stop().
    [[nodiscard]] std::string next(Place& place, int milliseconds);
    void stop();
    [[nodiscard]] std::vector<Heard> heardafter(std::uint64_t number) const;
    // Whoever changes what no packet tells of calls these: a player has come or gone; speed or pause is another.
    void changed(const std::string& player);
    void changed();

private:
    void listen(const std::string& player);
    [[nodiscard]] nlohmann::json serverstate();

    Server& server_;
    Clients& clients_;
    mutable std::mutex lock_;
    std::condition_variable wake_;
    std::uint64_t changes_ = 0;
    std::map<std::string, std::uint64_t> changedat_;
    struct Ears {
        std::uint64_t chat = 0, toasts = 0, sounds = 0, replies = 0;
    };
    std::map<std::string, Ears> ears_;
    std::mutex listening_;  // held while a player is listened to, so that two threads do not tell the same twice
    std::deque<Heard> heard_;
    std::uint64_t lastheard_ = 0;
    bool stopped_ = false;
    std::shared_ptr<void> clientwatch_, logwatch_;  // last, since they go first
};

}  // namespace host
