// The control API and the page: JSON over HTTP on loopback, so that any tool can play a player. Every call needs the
// token that the server prints at start; a foreign Host or Origin header is refused. docs/control-api.md lists the
// calls.
#pragma once

#include <memory>
#include <string>

namespace host {

class Server;
class Clients;
class Bustle;

struct ApiOptions {
    std::string host = "127.0.0.1";
    int port = 8480;           // 0: any free one
    std::string token;         // empty: that of the server directory, a new random one at first
    bool openmetrics = false;  // without the token
};

class ControlApi {
public:
    ControlApi(Server& server, Clients& clients, Bustle& bustle, ApiOptions options);
    ~ControlApi();

    // Listens, or throws StartError that names address and port.
    void start();
    void stop();
    [[nodiscard]] int port() const;
    [[nodiscard]] const std::string& token() const;
    // The page's address, the token in its fragment: "http://127.0.0.1:8480/#token=..."
    [[nodiscard]] std::string address() const;

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}  // namespace host
