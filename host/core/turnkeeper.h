// The turn: who may touch the plug-in's model. The server thread goes first. Background threads get their turns while
// the server does not want it and its next tick is not near, in the order in which they asked, except that one that is
// running may go on for a few turns before it queues: a switch of threads costs more than most turns.
//
// A server that is never idle would starve them; after some passes it lets one of them through all the same.
//
// Each of those who wait has a condition variable of its own, and only the one whose turn it is gets woken: with one
// for all, 200 of them spent most of their time waking each other.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

#include "host/core/passtimes.h"
#include "platform/turn.h"

namespace host {

class TurnKeeper : public platform::TurnKeeper {
public:
    using Time = std::chrono::steady_clock::time_point;

    void take() override;
    void give() override;

    // From now on the calling thread is the server thread; until then all threads are equal.
    void bindserver();
    void unbindserver();
    // Background turns may start until then. At first there is no limit.
    void openuntil(Time time);
    // How long threads waited for a turn; those that had one already did not ask. Any thread.
    [[nodiscard]] const PassTimes& serverwaits() const { return serverwaits_; }
    [[nodiscard]] const PassTimes& guestwaits() const { return guestwaits_; }

private:
    void takeasserver(std::unique_lock<std::mutex>& lock);
    void takeasguest(std::unique_lock<std::mutex>& lock);
    void wakefirst();
    [[nodiscard]] bool isfree() const { return holder_.load(std::memory_order_relaxed) == std::thread::id(); }
    [[nodiscard]] bool isopen() const;

    static constexpr int mostturnsinarow = 8;
    static constexpr int mostpasseswithoutguest = 20;

    PassTimes serverwaits_, guestwaits_;
    std::mutex mutex_;
    std::condition_variable serverturn_;
    std::deque<std::condition_variable*> queue_;  // of background threads; each stands on its owner's stack
    std::atomic<std::thread::id> holder_;         // read without the lock only to ask "is it me"
    int depth_ = 0;                               // belongs to the holder
    std::thread::id server_;
    bool serverwants_ = false;
    Time openuntil_ = Time::max();
    int turnsinarow_ = 0;  // taken past the queue
    int passeswithoutguest_ = 0;
    bool letoneguestin_ = false;
};

}  // namespace host
