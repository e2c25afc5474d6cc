// What a gateway may say, and when. It knows no sockets and no players: whoever hears the gateway hands in its frames
// and is told what they ask for.
#pragma once

#include "host/network/gateway/frames.h"
#include "host/network/network.h"

namespace host {

struct OpenRequest {
    JoinRequest player;
    bool authenticated = false;
};

// What the gateway asks for.
class GatewayWishes {
public:
    virtual ~GatewayWishes() = default;
    // Throws BadFrame when it is not let in.
    virtual void login(const std::string& token, const std::string& gateway) = 0;
    virtual void open(std::uint64_t session, OpenRequest request) = 0;
    virtual void refuse(std::uint64_t session, const std::string& reason) = 0;
    // Of a session that was opened or refused, and may be over.
    virtual void packet(std::uint64_t session, std::string packet) = 0;
    virtual void close(std::uint64_t session, std::string reason) = 0;
};

class GatewayTalk {
public:
    explicit GatewayTalk(GatewayWishes& wishes) : wishes_(wishes) {}
    // Throws BadFrame.
    void hear(Frame frame);
    [[nodiscard]] bool loggedin() const { return loggedin_; }

private:
    void login(const Frame& frame);
    void open(const Frame& frame);
    void demandsession(const Frame& frame) const;

    GatewayWishes& wishes_;
    bool loggedin_ = false;
    std::uint64_t lastsession_ = 0;
};

}  // namespace host
