// The embedded server takes part.
#include "host/network/network.h"
#include "platform/packets/codec.h"
#include "tests/conformance/conformance.h"
#include "tests/host/servertest.h"

namespace conformance {

namespace {

class EmbeddedHost : public HostUnderTest {
public:
    explicit EmbeddedHost(BeforePlugins before) : server_(coretests::manually(directory_, std::move(before))) {
        server_.start();
    }
    ~EmbeddedHost() override { server_.stop(); }
    platform::Host& services() override { return server_.services(); }
    void onserver(const std::function<void()>& work) override { server_.run(work); }
    void ticks(int n) override { server_.ticks(n); }
    void join(const std::string& name, const std::string& xuid) override {
        auto& client = clients_[xuid];
        server_.run([&] {
            client.connection =
                server_.network().join({.name = name, .xuid = xuid}, [&client](const std::string& bytes) {
                    const auto envelope = platform::openpacket(bytes);
                    client.heard.emplace_back(static_cast<platform::PacketId>(envelope.number),
                                              std::string(envelope.body));
                });
        });
    }
    void leave(const std::string& xuid) override {
        server_.run([&] { server_.network().leave(clients_.at(xuid).connection); });
    }
    void says(const std::string& xuid, std::string packet) override {
        server_.network().receive(clients_.at(xuid).connection, std::move(packet));
    }
    std::vector<platform::Packet> hears(const std::string& xuid) override {
        return std::exchange(clients_.at(xuid).heard, {});
    }
    void stop() override { server_.stop(); }

private:
    struct Client {
        host::ConnectionId connection = 0;
        std::vector<platform::Packet> heard;
    };
    coretests::Directory directory_;
    std::map<std::string, Client> clients_;
    host::Server server_;
};

std::unique_ptr<HostUnderTest> make(BeforePlugins before) { return std::make_unique<EmbeddedHost>(std::move(before)); }

}  // namespace

INSTANTIATE_TEST_SUITE_P(Embedded, Conformance, testing::Values(&make));

}  // namespace conformance
