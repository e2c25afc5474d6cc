// The door for a gateway (docs/network.md): a local socket at which one process that has the token stands for all
// clients of the network. One thread reads and writes its connections; players live on the server thread, which never
// waits for it.
#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "host/network/gateway/outbound.h"

namespace host {

class Server;

struct GatewayOptions {
    int port = -1;         // of 127.0.0.1, 0: any free one; below: the unix socket of the server directory
    bool offline = false;  // lets in players in whom no service has authenticated
    std::string motd = "Ordomart";
    Outbound::Limits limits;
    // For a login, for a gateway that takes nothing while something waits, and for the last words.
    std::chrono::milliseconds login{5000}, stalled{10000}, farewell{1000};
};

class GatewayDoor {
public:
    static constexpr std::string_view tokenname = "gateway.token",
                                      socketname = "gateway.sock";  // in the server directory

    GatewayDoor(Server& server, GatewayOptions options);
    ~GatewayDoor();  // stops

    // Listens, or throws StartError that names the place.
    void start();
    // Its players leave, the gateway is told. Before the server stops.
    void stop();
    // "/srv/market/gateway.sock", "127.0.0.1:19140"
    [[nodiscard]] const std::string& address() const;

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}  // namespace host
