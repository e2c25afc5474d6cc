// A server with a door, and the gateway's end of it, framed by the tests' own hand.
#pragma once

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <chrono>
#include <cstring>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "host/core/descriptor.h"
#include "host/core/log.h"
#include "host/network/gateway/door.h"
#include "host/world/world.h"
#include "platform/level.h"
#include "platform/packets/messages.h"
#include "tests/host/servertest.h"

namespace coretests {

inline std::string framed(std::uint32_t length, std::uint8_t operation, std::uint64_t session,
                          const std::string& payload) {
    std::string bytes;
    for (int i = 0; i < 4; ++i) bytes += static_cast<char>(length >> 8 * i & 0xff);
    bytes += static_cast<char>(operation);
    for (int i = 0; i < 8; ++i) bytes += static_cast<char>(session >> 8 * i & 0xff);
    return bytes + payload;
}
inline std::string framed(std::uint8_t operation, std::uint64_t session, const std::string& payload) {
    return framed(static_cast<std::uint32_t>(9 + payload.size()), operation, session, payload);
}

class GatewayClient {
public:
    struct Heard {
        int operation = 0;  // 0: the connection has ended
        std::uint64_t session = 0;
        std::string payload;
        [[nodiscard]] nlohmann::json json() const { return nlohmann::json::parse(payload); }
        [[nodiscard]] std::string reason() const { return operation == 0 ? "ended" : json().at("reason"); }
    };

    explicit GatewayClient(const std::string& file) {
        sockaddr_un place{};
        place.sun_family = AF_UNIX;
        std::strcpy(place.sun_path, file.c_str());
        socket_ = host::Descriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
        connected = ::connect(socket_.number(), reinterpret_cast<const sockaddr*>(&place), sizeof place) == 0;
    }
    bool connected = false;

    // As much of it as is taken, with no pause longer than this.
    std::size_t offer(const std::string& bytes, int patience = 500) {
        std::size_t at = 0;
        pollfd waiting{socket_.number(), POLLOUT, 0};
        while (at < bytes.size() && ::poll(&waiting, 1, patience) > 0) {
            const auto n = ::send(socket_.number(), bytes.data() + at, bytes.size() - at, MSG_NOSIGNAL | MSG_DONTWAIT);
            if (n < 0 && errno != EAGAIN) break;
            if (n > 0) at += static_cast<std::size_t>(n);
        }
        return at;
    }
    // False when the other side does not listen any more, or only a broken server would be so slow.
    bool send(const std::string& bytes) { return offer(bytes, 20'000) == bytes.size(); }
    bool say(std::uint8_t operation, std::uint64_t session, const std::string& payload) {
        return send(framed(operation, session, payload));
    }
    bool say(std::uint8_t operation, std::uint64_t session, const nlohmann::json& payload) {
        return say(operation, session, payload.dump());
    }

    // The next frame, within a time that only a broken server needs.
    Heard hear() {
        constexpr int patience = 20'000;
        for (;;) {
            if (bytes_.size() >= 4) {
                std::uint32_t length = 0;
                for (int i = 3; i >= 0; --i) length = length << 8 | static_cast<unsigned char>(bytes_[i]);
                if (length < 9 || length > 9 + 256 * 1024) throw std::runtime_error("a frame that cannot be");
                if (bytes_.size() >= 4 + length) {
                    Heard heard{static_cast<unsigned char>(bytes_[4]), 0, bytes_.substr(13, length - 9)};
                    for (std::size_t i = 12; i > 4; --i)
                        heard.session = heard.session << 8 | static_cast<unsigned char>(bytes_[i]);
                    bytes_.erase(0, 4 + length);
                    return heard;
                }
            }
            pollfd waiting{socket_.number(), POLLIN, 0};
            if (::poll(&waiting, 1, patience) <= 0) throw std::runtime_error("nothing is heard");
            char piece[65536];
            const auto n = ::recv(socket_.number(), piece, sizeof piece, 0);
            if (n <= 0) return {};
            bytes_.append(piece, static_cast<std::size_t>(n));
        }
    }
    // Skips what is of another kind; the end of the connection comes back as itself.
    Heard await(int operation, std::optional<std::uint64_t> session = {}) {
        for (;;) {
            Heard heard = hear();
            if (heard.operation == 0 ||
                (heard.operation == operation && session.value_or(heard.session) == heard.session))
                return heard;
        }
    }
    void hangup() { socket_.close(); }

private:
    host::Descriptor socket_;
    std::string bytes_;
};

inline nlohmann::json player(const std::string& name, const nlohmann::json& others = {}) {
    nlohmann::json told = {{"name", name}, {"xuid", "77"}, {"authenticated", true}};
    if (others.is_object()) told.update(others);
    return told;
}

inline std::string command(const std::string& line) {
    return platform::sealpacket(platform::topacket(platform::CommandRequestPacket{line}));
}

class Gateway : public testing::Test {
protected:
    enum : std::uint8_t { login = 1, open, packet, close };
    enum : int { hello = 0x81, opened, packetback, closed, refused, pulse, commands, start };

    // Free: a server thread of its own time, as the program's.
    void begin(host::GatewayOptions options = {}) {
        host::ServerOptions settings = manually(directory);
        settings.manual = false;
        server = std::make_unique<host::Server>(settings);
        server->start();
        door = std::make_unique<host::GatewayDoor>(*server, options);
        door->start();
    }
    void end() {
        door.reset();
        if (server) server->stop();
        server.reset();
    }
    ~Gateway() override { end(); }

    [[nodiscard]] std::string token() const {
        std::string text = directory.get("gateway.token");
        text.pop_back();
        return text;
    }
    [[nodiscard]] GatewayClient stranger() const { return GatewayClient(door->address()); }
    // Logged in, and all that is said at the beginning heard.
    [[nodiscard]] GatewayClient gateway() const {
        GatewayClient client = stranger();
        client.say(login, 0, nlohmann::json{{"token", token()}, {"gateway", "test 1"}});
        client.await(commands);
        return client;
    }
    [[nodiscard]] std::vector<std::string> online() const {
        std::vector<std::string> names;
        server->run([&] {
            for (const auto* one : server->world().level().getAllPlayers()) names.push_back(one->getRealName());
        });
        return names;
    }
    template <class Condition>
    static bool comes(Condition condition) {
        for (int i = 0; i < 2000 && !condition(); ++i) std::this_thread::sleep_for(std::chrono::milliseconds(5));
        return condition();
    }
    void awaitonline(const std::vector<std::string>& names) const {
        comes([&] { return online() == names; });
        EXPECT_EQ(online(), names);
    }
    void awaitlog(const std::string& text) const {
        EXPECT_TRUE(comes([&] {
            return std::ranges::any_of(server->log().lines(),
                                       [&](const auto& line) { return line.message.find(text) != std::string::npos; });
        })) << text;
    }

    Directory directory;
    std::unique_ptr<host::Server> server;
    std::unique_ptr<host::GatewayDoor> door;
};

}  // namespace coretests
