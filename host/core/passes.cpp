// How the server thread spends its time: it sleeps until something has come in or a tick is due, and holds the turn
// while it deals with that.
#include "host/core/parts.h"
#include "platform/turn.h"

namespace host {

namespace {

constexpr std::int64_t millisecondsatick = 50;
constexpr int mostpassestosettle = 100'000;
constexpr auto untilareminder = std::chrono::seconds(5);

}  // namespace

void Server::Parts::runfree() {
    while (!stopping) {
        mailbox.wait(pacer.due());
        doorders();
        if (!stopping) pass(pacer.takedue());
        turn.openuntil(pacer.closing());
    }
}

void Server::Parts::runmanually() {
    while (!stopping) {
        mailbox.wait();
        {
            const platform::Turn held;
            dowork();
        }
        doorders();
    }
}

bool Server::Parts::pass(bool tick) {
    const platform::Turn held;
    bool did = dowork();
    guarded(complain, "Packets could not be handled", [&] { did |= network->process(); });
    if (tick) ++tickcount;
    did |= scheduler.run(tickcount);
    guarded(complain, "The world could not be saved", [&] { world->flush(); });
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

bool Server::Parts::rest(int mostpasses) {
    for (int passes = 0; passes < mostpasses;) {
        // Asked before the pass: what a body has left to the server by its end, that pass sees.
        const int busy = background.count();
        if (pass(false)) {
            ++passes;
        } else if (busy == 0) {
            return true;
        } else if (!mailbox.wait(std::chrono::steady_clock::now() + untilareminder)) {
            say(platform::LogLevel::info, "Waiting for " + std::to_string(busy) + " pieces of background work");
        }
    }
    return false;
}

void Server::Parts::settle() {
    if (!rest(mostpassestosettle)) throw std::runtime_error("the server does not come to rest: tasks make tasks");
}

void Server::Parts::tick() {
    clock.advance(millisecondsatick);
    pass(true);
    settle();
}

}  // namespace host
