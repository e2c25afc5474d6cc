// One connection to the control API: what has come in, what is to go out, and until when the other side must have done
// its part. Nothing here waits. It belongs to the door's thread.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "host/api/http.h"
#include "host/core/descriptor.h"

namespace host {

class Caller {
public:
    using Clock = std::chrono::steady_clock;
    // idle: between two requests. call: with a worker. parting: all is said, and what he may still say is thrown away,
    // so that he reads the answer before he finds the connection closed.
    enum class Phase { idle, head, body, call, answer, stream, parting };

    Caller(std::uint64_t number, Descriptor socket);
    ~Caller();
    Caller(const Caller&) = delete;

    const std::uint64_t number;
    bool known = false;   // has shown the token
    bool gone = false;    // to be forgotten
    std::string address;  // of the other side, in numbers
    std::string in;       // what belongs to no request yet
    HttpRequest request;

    [[nodiscard]] Phase phase() const { return phase_; }
    [[nodiscard]] int socket() const { return socket_.number(); }
    [[nodiscard]] short events() const;  // what poll() is asked for; 0: nothing
    [[nodiscard]] Clock::time_point deadline() const { return deadline_; }

    // Starts the time of that phase.
    void enter(Phase phase);
    // Reads what there is, at most so much that `in` is as long.
    void receive(std::size_t most);
    // Nothing more will come in.
    [[nodiscard]] bool ended() const { return ended_; }
    void discard();

    // What goes before the answer.
    void sendword(std::string_view text);
    void reply(const HttpAnswer& answer, bool keepalive, std::function<void()> wake);
    // Sends what goes. True when nothing is left and the connection is ready for its next request.
    bool sendanswer();
    void sendnews();

private:
    bool send();  // true: nothing is left

    Descriptor socket_;
    Phase phase_ = Phase::idle;
    Clock::time_point deadline_;
    std::string out_;
    std::size_t sent_ = 0;
    bool keepalive_ = true, ended_ = false;
    std::shared_ptr<Outlet> outlet_;
    std::function<void()> wake_;
};

}  // namespace host
