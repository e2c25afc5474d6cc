// Things that happen on the server. Handlers run on the server thread and return true to let the event pass; one that
// throws is logged with its text.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace platform {

class ServerPlayer;
class CommandRegistry;

namespace Event {

struct RegCmdEvent {
    CommandRegistry* registry;
};  // once, after all plug-ins are in
struct PlayerJoinEvent {
    ServerPlayer* player;
};  // he is online and ready
struct PlayerLeftEvent {
    ServerPlayer* player;
};  // he is still online, for the last time
// In an orderly stop, when the players have left and everything that was under way has ended: time to save. It comes
// again, two more times at most, when what was begun by it has given the server thread something to do.
struct ServerStoppingEvent {};
// The last event of an orderly stop: nothing is under way, and what is not on the disk now will not come there any
// more. A listener adds one line for each such thing; the server tells them all and ends with a status of its own.
struct ServerStoppedEvent {
    std::vector<std::string>& unsaved;
};

template <class E>
using Handler = std::function<bool(const E&)>;

}  // namespace Event

class EventBus {
public:
    virtual ~EventBus() = default;
    virtual void listen(Event::Handler<Event::RegCmdEvent> handler) = 0;
    virtual void listen(Event::Handler<Event::PlayerJoinEvent> handler) = 0;
    virtual void listen(Event::Handler<Event::PlayerLeftEvent> handler) = 0;
    virtual void listen(Event::Handler<Event::ServerStoppingEvent> handler) = 0;
    virtual void listen(Event::Handler<Event::ServerStoppedEvent> handler) = 0;
};

namespace Event {

namespace detail {
EventBus& bus();
}

template <class E>
struct EventManager {
    static void addEventListener(Handler<E> handler) { detail::bus().listen(std::move(handler)); }
};

}  // namespace Event

}  // namespace platform
