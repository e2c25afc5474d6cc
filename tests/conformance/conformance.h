// What a host owes to the plug-ins that run in it, as cases that run against any host. A host takes part with a
// HostUnderTest of its own and one INSTANTIATE_TEST_SUITE_P(Name, Conformance, testing::Values(&make)), as
// embedded_host.cpp does; docs/adapter.md tells what stands behind each case.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/event.h"
#include "platform/host.h"
#include "platform/level.h"
#include "platform/packets/packet.h"

namespace conformance {

// A running server with an empty world in a directory of its own.
class HostUnderTest {
public:
    virtual ~HostUnderTest() = default;  // stops it, if nobody has
    [[nodiscard]] virtual platform::Host& services() = 0;
    // Runs the work on the server thread, in a turn, and waits for it.
    virtual void onserver(const std::function<void()>& work) = 0;
    // Comes back when at least n game ticks have passed and everything that was due by then has happened, with the
    // background bodies that were running. For 0 that is what needs no tick: packets and tasks without a delay.
    virtual void ticks(int n) = 0;
    virtual void join(const std::string& name, const std::string& xuid) = 0;
    virtual void leave(const std::string& xuid) = 0;
    // The player's client sends a packet, header and body; handled in the next ticks().
    virtual void says(const std::string& xuid, std::string packet) = 0;
    // What his client was sent since this was last asked.
    [[nodiscard]] virtual std::vector<platform::Packet> hears(const std::string& xuid) = 0;
    virtual void stop() = 0;  // in good order; comes back when it has stopped
};

// Called on the server thread with the finished set of services, before any plug-in is loaded.
using BeforePlugins = std::function<void(platform::Host&)>;
using MakeHost = std::unique_ptr<HostUnderTest> (*)(BeforePlugins before);

template <class E, class Handler>
void on(Handler handler) {
    platform::Event::EventManager<E>::addEventListener(std::move(handler));
}

class Conformance : public testing::TestWithParam<MakeHost> {
protected:
    static constexpr const char* xuid = "2535400000000007";

    void start(BeforePlugins before = [](platform::Host&) {}) { server = GetParam()(std::move(before)); }
    // Runs the work with a player who is online.
    void withplayer(const std::function<void(platform::ServerPlayer&)>& work) {
        server->onserver([&] {
            platform::ServerPlayer* const player = server->services().level->getPlayerByXuid(xuid);
            ASSERT_NE(player, nullptr);
            work(*player);
        });
    }
    void startwithplayer(BeforePlugins before = [](platform::Host&) {}) {
        start(std::move(before));
        server->join("Tester", xuid);
    }

    std::unique_ptr<HostUnderTest> server;
};

}  // namespace conformance
