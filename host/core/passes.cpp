// How the server thread spends its time: it sleeps until something has come in or a tick is due, and holds the turn
// while it deals with that.
#include "host/core/parts.h"
#include "platform/turn.h"

namespace host {

namespace {

constexpr std::int64_t millisecondsatick = 50;

// Of one pass, for tasks: many pages that are ready at once are drawn in many passes, and packets come in between.
constexpr auto shareoftasks = std::chrono::microseconds(400);

}  // namespace

void Server::Parts::runfree() {
    while (!stopping) {
        mailbox.wait(pacer.due());
        doorders();
        if (!stopping) freedmemory.behindpass(pass(pacer.takedue()));
        turn.openuntil(pacer.closing());
    }
}

void Server::Parts::runmanually() {
    while (!stopping) {
        mailbox.wait();
        {
            const platform::Turn held;
            dowork();
            passwatchers.tell();
        }
        doorders();
    }
}

bool Server::Parts::pass(bool tick) {
    const platform::Turn held;
    const auto began = std::chrono::steady_clock::now();
    bool did = dowork();
    // A paused server takes everything in and answers when it goes on.
    if (options.manual || !pacer.paused())
        guarded(complain, "Packets could not be handled", [&] { did |= network->process(); });
    if (tick) {
        ++tickcount;
        playersonline = world->level().getAllPlayers().size();
    }
    did |= scheduler.run(tickcount, options.manual ? TickScheduler::endless : shareoftasks);
    guarded(complain, "The world could not be saved", [&] { world->flush(); });
    passtimes.add(std::chrono::steady_clock::now() - began);
    passwatchers.tell();
    return did;
}

bool Server::Parts::dowork() {
    const auto items = mailbox.takework();
    for (const auto& work : items) guarded(complain, "Posted work failed", work);
    return !items.empty();
}

void Server::Parts::doorders() {
    for (const auto& order : mailbox.takeorders()) order();
}

bool Server::Parts::rest(Patience& patience) {
    for (;;) {
        // Asked before the pass: what a body has left to the server by its end, that pass sees.
        const Underway underway = background.underway();
        const bool did = pass(false);
        if (did && patience.countpass()) continue;
        if (underway.all() == 0) return !did;
        if (!patience.waitsfor(underway)) return false;
        if (!mailbox.wait(std::chrono::steady_clock::now() + patience.step()) && !patience.hasend()) {
            say(platform::LogLevel::info,
                "Waiting for " + std::to_string(underway.all()) + " pieces of background work");
        }
    }
}

void Server::Parts::settle() {
    auto patience = Patience::endless();
    if (!rest(patience)) throw std::runtime_error("the server does not come to rest: tasks make tasks");
}

void Server::Parts::tick() {
    clock.advance(millisecondsatick);
    pass(true);
    settle();
}

}  // namespace host
