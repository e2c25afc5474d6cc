// One mutex guards the book-keeping only and is never held during a turn.
#include "host/core/turnkeeper.h"

namespace host {

void TurnKeeper::take() {
    const auto me = std::this_thread::get_id();
    if (holder_.load(std::memory_order_relaxed) == me) {
        ++depth_;
        return;
    }
    std::unique_lock lock(mutex_);
    if (me == server_) {
        takeasserver(lock);
    } else {
        takeasguest(lock);
    }
    holder_.store(me, std::memory_order_relaxed);
    depth_ = 1;
}

void TurnKeeper::give() {
    if (--depth_ > 0) return;
    const std::lock_guard lock(mutex_);
    holder_.store({}, std::memory_order_relaxed);
    if (serverwants_ && !letoneguestin_) {
        serverturn_.notify_one();
    } else {
        guestturn_.notify_all();
    }
}

void TurnKeeper::takeasserver(std::unique_lock<std::mutex>& lock) {
    const bool guestswait = nextticket_ != serving_;
    if (guestswait && ++passeswithoutguest_ > mostpasseswithoutguest) {
        letoneguestin_ = true;
        guestturn_.notify_all();
    }
    serverwants_ = true;
    serverturn_.wait(lock, [&] { return isfree() && !letoneguestin_; });
    serverwants_ = false;
}

void TurnKeeper::takeasguest(std::unique_lock<std::mutex>& lock) {
    const bool queued = nextticket_ != serving_;
    if (isopen() && (!queued || turnsinarow_ < mostturnsinarow)) {
        turnsinarow_ = queued ? turnsinarow_ + 1 : 0;
    } else {
        const auto ticket = nextticket_++;
        guestturn_.wait(lock, [&] { return ticket == serving_ && isopen(); });
        ++serving_;
        turnsinarow_ = 0;
    }
    letoneguestin_ = false;
    passeswithoutguest_ = 0;
}

bool TurnKeeper::isopen() const {
    if (!isfree()) return false;
    return letoneguestin_ || (!serverwants_ && std::chrono::steady_clock::now() < openuntil_);
}

void TurnKeeper::bindserver() {
    const std::lock_guard lock(mutex_);
    server_ = std::this_thread::get_id();
}

void TurnKeeper::unbindserver() {
    const std::lock_guard lock(mutex_);
    server_ = {};
    openuntil_ = Time::max();
    guestturn_.notify_all();
}

void TurnKeeper::openuntil(Time time) {
    const std::lock_guard lock(mutex_);
    openuntil_ = time;
    guestturn_.notify_all();
}

}  // namespace host
