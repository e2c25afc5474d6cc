// One client's connection as the server holds it: the way out, the open forms, and what there is to complain of.
#pragma once

#include <string>
#include <utility>

#include "host/network/complaints.h"
#include "host/network/formanswers.h"
#include "host/network/network.h"
#include "host/world/clientlink.h"

namespace host {

class ServerPlayerImpl;

class Connection : public ClientLink {
public:
    Connection(ConnectionId number, std::string playername, Sink sink)
        : id(number), complaints(std::move(playername)), sink_(std::move(sink)) {}

    [[nodiscard]] bool isopen() const override { return static_cast<bool>(sink_); }
    void send(const platform::Packet& packet) override;
    void sendform(const std::string& json, platform::ServerPlayer::FormAnswer answer) override;
    void close() { sink_ = nullptr; }
    // Whether the server has asked the client to close the container, so that its close is only the answer. Asked once.
    [[nodiscard]] bool takeclosing(std::uint8_t containerid);

    const ConnectionId id;
    ServerPlayerImpl* player = nullptr;  // while he is online
    Complaints complaints;
    FormAnswers forms;

private:
    Sink sink_;
    int closing_ = -1;  // the container that the client was last asked to close
};

}  // namespace host
