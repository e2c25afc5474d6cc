// The connections of the control API. One thread reads the requests and writes the answers of all of them, so that a
// slow caller holds nothing but his own connection; calls that are complete, from callers who have shown the token, go
// to a few workers. Answers without an end (host/api/outlet.h) are written by that one thread as well.
//
// Time and number of connections are limited, narrowly for strangers: a new one is always let in, the oldest goes.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "host/api/caller.h"
#include "host/api/workers.h"
#include "host/core/waker.h"

namespace host {

// What is said at the door.
struct DoorRules {
    // Looks at a head: an answer is sent at once, without one the caller is known and his call is taken in.
    std::function<std::optional<HttpAnswer>(const HttpRequest&)> look;
    // Does a call; on a worker's thread. Throws nothing.
    std::function<HttpAnswer(const HttpRequest&)> call;
    // A refusal of the door's own.
    std::function<HttpAnswer(int status, const std::string& text)> refusal;
    // Whoever is let in has shown who he is, and is given more time; else all stay strangers.
    bool trusting = true;
    std::size_t workers = 8;
    std::ptrdiff_t moststrangers = 64;
};

class Door {
public:
    explicit Door(DoorRules rules);
    ~Door();

    // The port that it listens on, which is any free one for 0; 0 when it cannot.
    [[nodiscard]] int listen(const std::string& host, int port);
    void start();
    // Calls under way come to their end, and their answers out, if they are taken; then every connection is closed.
    void stop();

private:
    using Time = Caller::Clock::time_point;

    void run();
    void pass(Time until);
    void admit();
    void makeroom();
    void forget();
    void takeanswers();
    // Takes a connection as far as it goes without waiting.
    void attend(Caller& caller, short events);
    bool step(Caller& caller);
    bool takehead(Caller& caller);
    bool takebody(Caller& caller);
    void reply(Caller& caller, const HttpAnswer& answer, bool keepalive);
    void refuse(Caller& caller, int status, const std::string& text);

    const DoorRules rules_;
    Descriptor listener_;
    Waker waker_;
    std::map<std::uint64_t, Caller> callers_;  // by number, so by age
    std::uint64_t lastcaller_ = 0;
    Time deaf_;  // until then nobody is let in
    std::mutex mutex_;
    std::vector<std::pair<std::uint64_t, HttpAnswer>> answers_;  // of the workers, not yet looked at
    std::atomic<bool> stopping_ = false;
    std::optional<Workers> workers_;
    std::thread thread_;
};

}  // namespace host
