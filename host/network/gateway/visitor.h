// One connection at the door: a stranger until its login, then the gateway, and at the end one that is told why.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "host/core/descriptor.h"
#include "host/network/gateway/line.h"

namespace host {

struct GatewayOptions;

class Visitor {
public:
    using Clock = std::chrono::steady_clock;
    // Lets the gateway in, or throws BadFrame.
    using Login = std::function<std::shared_ptr<Line>(const std::string& token, const std::string& gateway)>;

    Visitor(Descriptor socket, const GatewayOptions& options, Login login);
    ~Visitor();
    Visitor(const Visitor&) = delete;
    Visitor& operator=(const Visitor&) = delete;

    [[nodiscard]] int socket() const { return socket_.number(); }
    [[nodiscard]] short events();  // what it waits for; fetches what there is to write
    // Goes as far as it can without waiting.
    void attend(short events);
    // Its time is over, if it is.
    void checktime(Clock::time_point now);
    [[nodiscard]] Clock::time_point deadline() const;
    // Last words; from now on nothing that it says is heard.
    void part(const std::string& reason);
    [[nodiscard]] bool gone() const { return gone_; }
    [[nodiscard]] const std::shared_ptr<Line>& line() const { return line_; }
    [[nodiscard]] std::string takecomplaint() { return std::exchange(complaint_, {}); }  // why it had to part

private:
    class Wishes;
    void receive();
    void hear();
    void send();
    void hangup();

    Descriptor socket_;
    const GatewayOptions& options_;
    const std::unique_ptr<Wishes> wishes_;
    GatewayTalk talk_;
    FrameReader reader_;
    std::shared_ptr<Line> line_;  // while it is the gateway
    std::string out_;
    bool parting_ = false, gone_ = false;
    Clock::time_point since_ = Clock::now();  // its coming, its last taking, its parting
    std::string complaint_;
};

}  // namespace host
