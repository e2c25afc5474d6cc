// Live updates for pages, as server-sent events. A subscriber names the players that it shows and gets, for each, a
// JSON Patch against the picture that it was sent before; what players hear, and log lines, come as they are. One
// thread tells all subscribers; who reads slowly is told of more at a time, less often.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "host/api/heardlines.h"
#include "host/api/outlet.h"
#include "host/clients.h"

namespace host {

class Server;

class EventStreams {
public:
    static constexpr std::size_t most = 32;

    EventStreams(Server& server, Clients& clients);
    ~EventStreams();

    // What a subscriber asks for: the players that it shows, the log or not, and the last of what was heard and of the
    // log lines that it has already. It may name the run that these numbers are of: those of another are not heeded.
    struct Wish {
        std::set<std::string> players;
        bool log = false;
        std::uint64_t heard = 0, logline = 0;
        std::string run;
    };
    // Until the outlet is closed. Null when there are too many.
    [[nodiscard]] std::shared_ptr<Outlet> subscribe(Wish wish);
    void start();
    void stop();

    [[nodiscard]] const HeardLines& heard() const { return heard_; }
    // Another for each start of the server: numbers begin anew and nobody is joined, which a page cannot see otherwise.
    [[nodiscard]] const std::string& serverrun() const { return serverrun_; }
    // Whoever changes what no packet tells of calls these: a player has come or gone; speed or pause is another.
    void changed(const std::string& player);
    void changed();

private:
    struct Subscriber;
    void run();
    void tell(std::uint64_t changes, const std::map<std::string, std::uint64_t>& changedat);
    [[nodiscard]] std::string news(Subscriber& subscriber, const std::map<std::string, std::uint64_t>& changedat);
    [[nodiscard]] nlohmann::json serverstate();
    void listen(const std::string& player);

    Server& server_;
    Clients& clients_;
    HeardLines heard_;
    const std::string serverrun_;
    mutable std::mutex lock_;
    std::condition_variable wake_;
    std::uint64_t changes_ = 1;
    std::map<std::string, std::uint64_t> changedat_;
    std::vector<std::shared_ptr<Outlet>> outlets_;       // of all subscribers
    std::vector<std::unique_ptr<Subscriber>> arriving_;  // not yet seen by the thread
    bool stopped_ = false;
    std::vector<std::unique_ptr<Subscriber>> subscribers_;  // the thread's
    struct Ears {
        std::uint64_t chat = 0, toasts = 0, sounds = 0, replies = 0;
    };
    std::map<std::string, Ears> ears_;
    std::mutex listening_;  // held while a player is listened to, so that two threads do not tell the same twice
    std::thread thread_;
    std::shared_ptr<void> clientwatch_, logwatch_;  // last, since they go first
};

}  // namespace host
