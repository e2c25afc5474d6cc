// Where a packet from a client goes: one table for what is handled and what is known and ignored. Nothing of a packet
// is believed before it is read whole.
#pragma once

#include <string_view>

#include "host/network/networkhandler.h"

namespace host {

class Server;

// What a handler may use.
struct PacketContext {
    Server& server;
    NetworkHandlerImpl& handlers;
    Connection& from;
};

// One packet, header and body. What is wrong with it, or with what it set off, goes to the log; nothing is thrown.
void routepacket(const PacketContext& context, std::string_view packet);

}  // namespace host
