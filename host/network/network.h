// The server's end of every connection: bytes in, bytes out. Joins make the player, packets are read as if an enemy had
// written them, and each goes to its handler by one table. Everything but receive() belongs to the server thread.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/network.h"
#include "platform/player.h"

namespace host {

class Server;

struct JoinRequest {
    std::string name;
    std::string xuid;  // empty: a simulated player
    std::string language = "en_US";
    int devicetype = 7;  // 7 desktop, 2 touch
    int permission = 0;  // command permission level, 0 to 4
    bool extra = false;  // one of a crowd: what he hears is neither printed nor kept
};

using ConnectionId = std::uint64_t;                         // never reused in a run
using Sink = std::function<void(std::string packet)>;       // header and body; called on the server thread
using Gone = std::function<void(std::string_view reason)>;  // the connection is over; called on the server thread

class Network {
public:
    explicit Network(Server& server);
    ~Network();

    // Makes the player, sends his inventory, fires the join event. Throws std::runtime_error with a clear text for a
    // bad name, a bad xuid, or a player who is online already.
    ConnectionId join(const JoinRequest& request, Sink sink, Gone gone = {});
    // Fires the leave event, saves, forgets; unknown ids are ignored.
    void leave(ConnectionId connection, std::string_view reason = "the player left");
    void leaveall();
    // Any thread. The packet is handled at the start of the server's next pass, or, of a client that says more than a
    // tick's share, in a later tick.
    void receive(ConnectionId connection, std::string packet);
    // Handles what has come in, and shows and writes what has changed in the world since the last time; called by the
    // server in each pass. True when something had come in.
    bool process();
    [[nodiscard]] platform::ServerPlayer* player(ConnectionId connection);
    [[nodiscard]] ConnectionId connection(std::string_view playername) const;  // 0 when not online

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}  // namespace host
