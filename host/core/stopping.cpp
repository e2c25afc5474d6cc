// The server thread's part of an orderly stop. What comes into being while it comes to rest is saved, too: the plug-in
// is asked to save when nothing else is left to do, and again when that has made new work.
#include "host/core/parts.h"
#include "host/core/patience.h"
#include "platform/turn.h"

namespace host {

namespace {

constexpr int mostcallstosave = 3;

}  // namespace

void Server::Parts::farewell() {
    const auto asked = background.announcestop();
    http.stop();
    turn.openuntil(TurnKeeper::Time::max());
    views.close();
    {
        const platform::Turn held;
        guarded(complain, "Players could not leave", [&] { network->leaveall(); });
    }
    auto patience = Patience::ofstop(asked);
    rest(patience);
    for (int call = 0; call < mostcallstosave; ++call) {
        patience.forgetpasses();
        fire(platform::Event::ServerStoppingEvent{});
        rest(patience);
        if (patience.passes() == 0) break;
    }
    if (patience.toomanypasses()) complain("Tasks that make tasks without an end were dropped");
    fire(platform::Event::ServerStoppedEvent{unsaved});
    mailbox.close();
    {
        const platform::Turn held;
        dowork();
    }
    doorders();
    if (const int left = background.underway().all(); left > 0) leavebehind(left);
}

// What does not end cannot be unloaded either. All that can be kept is on the disk by now.
void Server::Parts::leavebehind(int left) {
    unsaved.push_back(std::to_string(left) + " pieces of background work did not end");
    if (!options.abandon) return;
    closeworld();
    tellunsaved();
    options.abandon(unsaved);
}

void Server::Parts::tellunsaved() {
    for (const auto& line : unsaved) complain("Not saved: " + line);
}

void Server::Parts::closeworld() {
    guarded(complain, "The world could not be saved", [&] {
        if (const auto lost = world->lastflush(); !lost.empty()) unsaved.push_back(lost);
    });
}

}  // namespace host
