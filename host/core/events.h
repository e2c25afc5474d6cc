// The listeners of the server's events. Server thread.
#pragma once

#include <list>
#include <tuple>

#include "host/core/guarded.h"
#include "platform/event.h"

namespace host {

class Events : public platform::EventBus {
    template <class E>
    using Listeners = std::list<platform::Event::Handler<E>>;

public:
    explicit Events(Complain complain) : complain_(std::move(complain)) {}
    void listen(platform::Event::Handler<platform::Event::RegCmdEvent> handler) override { add(std::move(handler)); }
    void listen(platform::Event::Handler<platform::Event::PlayerJoinEvent> handler) override {
        add(std::move(handler));
    }
    void listen(platform::Event::Handler<platform::Event::PlayerLeftEvent> handler) override {
        add(std::move(handler));
    }
    void listen(platform::Event::Handler<platform::Event::ServerStoppingEvent> handler) override {
        add(std::move(handler));
    }
    void listen(platform::Event::Handler<platform::Event::ServerStoppedEvent> handler) override {
        add(std::move(handler));
    }

    // Calls the listeners in the order in which they came, until one does not let the event pass. A listener that
    // throws is logged, and the next one is called.
    template <class E>
    void fire(const E& event) {
        for (const auto& handler : std::get<Listeners<E>>(listeners_)) {
            bool pass = true;
            guarded(complain_, "An event handler failed", [&] { pass = handler(event); });
            if (!pass) return;
        }
    }
    void clear() { listeners_ = {}; }

private:
    template <class E>
    void add(platform::Event::Handler<E> handler) {
        std::get<Listeners<E>>(listeners_).push_back(std::move(handler));
    }
    Complain complain_;
    std::tuple<Listeners<platform::Event::RegCmdEvent>, Listeners<platform::Event::PlayerJoinEvent>,
               Listeners<platform::Event::PlayerLeftEvent>, Listeners<platform::Event::ServerStoppingEvent>,
               Listeners<platform::Event::ServerStoppedEvent>>
        listeners_;
};

}  // namespace host
