// The model clients that are joined to this server, by name: what console, control API, page and tests act through.
// Every client is locked for the time of a call. join and leave wait for the server thread.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "client/modelclient.h"
#include "host/core/watchers.h"
#include "host/network/network.h"

namespace host {

class Server;

// The xuid that a name is known by, or one made from the name, always the same, for a player who is new here.
[[nodiscard]] std::string defaultxuid(Server& server, const std::string& name);

class Clients {
public:
    explicit Clients(Server& server);
    ~Clients();

    // Joins and waits until the player stands on the server. Throws std::runtime_error with the reason.
    void join(const JoinRequest& request);
    void leave(const std::string& name);
    void leaveall();
    [[nodiscard]] std::vector<JoinRequest> joined() const;  // in order of joining
    [[nodiscard]] bool has(const std::string& name) const;
    [[nodiscard]] bool isextra(const std::string& name) const;
    // False, and nothing is done, when nobody of that name is joined here.
    bool look(const std::string& name, const std::function<void(client::ModelClient&)>& work);
    // The same, where that is an error: throws std::runtime_error.
    void with(const std::string& name, const std::function<void(client::ModelClient&)>& work);
    // Called, on the server thread and outside of the client's lock, when a client's picture may have changed, and when
    // he has left, so that nobody of the name is joined any more; until the handle is dropped.
    [[nodiscard]] std::shared_ptr<void> watch(std::function<void(const std::string& name)> watcher);

private:
    struct Seat {
        JoinRequest who;
        ConnectionId connection = 0;
        std::mutex lock;
        std::unique_ptr<client::ModelClient> client;
    };
    [[nodiscard]] std::shared_ptr<Seat> seat(const std::string& name) const;  // null when he is not joined
    void deliver(Seat& seat, const std::string& packet);

    Server& server_;
    mutable std::mutex lock_;
    std::vector<std::shared_ptr<Seat>> seats_;
    Watchers<std::string> watchers_;
};

}  // namespace host
