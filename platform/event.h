// Things that happen on the server. Handlers run on the server thread and return true to let the event pass; one that
// throws is logged with its text.
#pragma once

#include <functional>
#include <utility>

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
};                              // he is still online, for the last time
struct ServerStoppingEvent {};  // the last event of an orderly stop, when the players have left: time to save

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
