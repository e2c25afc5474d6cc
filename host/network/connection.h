// One client's connection as the server holds it: the way out, the open forms, and what there is to complain of.
#pragma once

#include <optional>
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
    Connection(ConnectionId number, std::string playername, Sink sink, Gone gone)
        : id(number), complaints(std::move(playername)), sink_(std::move(sink)), gone_(std::move(gone)) {}

    [[nodiscard]] bool isopen() const override { return static_cast<bool>(sink_); }
    void send(const platform::Packet& packet) override;
    void sendform(const std::string& json, platform::ServerPlayer::FormAnswer answer) override;
    void close(std::string_view reason) {
        sink_ = nullptr;
        if (gone_) gone_(reason);
    }

    enum class Close {
        asked,    // the server wanted it, so that it is only the answer
        own,      // of what the server has opened
        stray,    // of the client's own inventory screen, which opens without a word, or of what is not open any more
        toooften  // stray, and not the first of the tick
    };
    // What a client's close is, which is asked once for each.
    [[nodiscard]] Close closes(std::uint8_t containerid, std::uint64_t tick);

    const ConnectionId id;
    ServerPlayerImpl* player = nullptr;  // while he is online
    Complaints complaints;
    FormAnswers forms;

private:
    void note(const platform::Packet& packet);  // what the client is told of containers
    Sink sink_;
    Gone gone_;
    int open_ = -1, closing_ = -1;            // the containers that the client was last asked to open and to close
    std::optional<std::uint64_t> straytick_;  // when it last closed what was not open
};

}  // namespace host
