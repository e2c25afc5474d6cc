// A bustling market: players who come, trade and go by a seed, each a model client like those of page and console. Only
// for a demo's directory. They act in beats, one for each game tick, so that they rest while the server is paused; in
// real time on a thread of their own, in manual mode within the tick. Every call is any thread's but the server's own.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace host {

class Server;
class Clients;

class Bustle {
public:
    static constexpr std::uint64_t usualseed = 1;

    Bustle(Server& server, Clients& clients);
    ~Bustle();

    // So many players are around from now on. One that is under way only gets more or fewer. Throws std::runtime_error
    // when there can be none here, and for a number out of 1 to mostaround.
    void start(int players, std::uint64_t seed = usualseed);
    // Everybody of it leaves; nothing when there is none.
    void stop();

    struct State {
        int players = 0;  // that shall be around; 0: there is no bustle
        int here = 0;
        std::uint64_t trades = 0;  // that they have made since it began
        std::string refusal;       // why there can be none here; empty when there can
    };
    [[nodiscard]] State state() const;

private:
    struct Parts;
    const std::shared_ptr<Parts> parts_;
};

}  // namespace host
