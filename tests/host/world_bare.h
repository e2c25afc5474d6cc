// A world without a server: item table, a clock that stands, a log that remembers, a file in a directory of its own,
// and players whose client is a list of packets.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/network/network.h"
#include "host/server.h"
#include "host/world/items.h"
#include "host/world/worldparts.h"
#include "platform/clock.h"
#include "platform/host.h"
#include "platform/logger.h"
#include "tests/host/coretools.h"

namespace bare {

class Memory : public platform::LogSink {
public:
    void write(std::string_view, platform::LogLevel, std::string_view message, int, const std::string&) override {
        lines.emplace_back(message);
    }
    void setDefaultFile(const std::string&, bool) override {}
    bool openFile(const std::string&, bool) override { return true; }
    std::vector<std::string> lines;
};

class Link : public host::ClientLink {
public:
    [[nodiscard]] bool isopen() const override { return open; }
    void send(const platform::Packet& packet) override { packets.push_back(packet); }
    void sendform(const std::string&, platform::ServerPlayer::FormAnswer) override {}
    bool open = true;
    std::vector<platform::Packet> packets;
};

class BareWorld : public testing::Test {
protected:
    using World = host::World;
    using ItemStack = platform::ItemStack;

    BareWorld() {
        services_.items = &host::itemtable();
        services_.log = &log;
        services_.clock = &clock_;
        platform::installhost(&services_);
    }
    ~BareWorld() override {
        world.reset();
        platform::installhost(nullptr);
    }

    [[nodiscard]] std::string path() const { return (directory_.path / "server.sqlite").string(); }
    void open() { world = std::make_unique<World>(path()); }
    void reopen() {
        world.reset();
        open();
    }
    void passes(std::int64_t milliseconds) { clock_.now += milliseconds; }
    host::ServerPlayerImpl& join(const std::string& name, const std::string& xuid = {}, int permission = 0) {
        return world->parts().enter({.name = name, .xuid = xuid, .permission = permission}, link);
    }

    static ItemStack stack(const std::string& name, int count = 1) { return ItemStack::create(name, count); }
    static ItemStack fromsnbt(const std::string& text) {
        return ItemStack::fromTag(platform::CompoundTag::fromSNBT(text).value());
    }
    static std::string told(const ItemStack& stack) {
        return stack.isNull() ? "" : stack.getTypeName().substr(10) + "*" + std::to_string(stack.getCount());
    }

    Memory log;
    Link link;
    std::unique_ptr<World> world;

private:
    struct StoppedClock : platform::Clock {
        std::int64_t now = 0;
        [[nodiscard]] std::int64_t unixmilliseconds() const override { return now; }
    };
    StoppedClock clock_;
    platform::Host services_;
    coretests::Directory directory_;
};

}  // namespace bare
