// One mutex guards the book-keeping only and is never held during a turn.
#include "host/core/turnkeeper.h"

namespace host {

void TurnKeeper::take() {
    const auto me = std::this_thread::get_id();
    if (holder_.load(std::memory_order_relaxed) == me) {
        ++depth_;
        return;
    }
    const auto asked = std::chrono::steady_clock::now();
    std::unique_lock lock(mutex_);
    const bool isserver = me == server_;
    if (isserver) {
        takeasserver(lock);
    } else {
        takeasguest(lock);
    }
    (isserver ? serverwaits_ : guestwaits_).add(std::chrono::steady_clock::now() - asked);
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
        wakefirst();
    }
}

// With the lock held, so that the one who is woken cannot be gone meanwhile.
void TurnKeeper::wakefirst() {
    if (!queue_.empty() && isopen()) queue_.front()->notify_one();
}

void TurnKeeper::takeasserver(std::unique_lock<std::mutex>& lock) {
    if (!queue_.empty() && ++passeswithoutguest_ > mostpasseswithoutguest) {
        letoneguestin_ = true;
        wakefirst();
    }
    serverwants_ = true;
    serverturn_.wait(lock, [&] { return isfree() && !letoneguestin_; });
    serverwants_ = false;
}

void TurnKeeper::takeasguest(std::unique_lock<std::mutex>& lock) {
    const bool queued = !queue_.empty();
    if (isopen() && (!queued || turnsinarow_ < mostturnsinarow)) {
        turnsinarow_ = queued ? turnsinarow_ + 1 : 0;
    } else {
        std::condition_variable called;
        queue_.push_back(&called);
        called.wait(lock, [&] { return queue_.front() == &called && isopen(); });
        queue_.pop_front();
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
    wakefirst();
}

void TurnKeeper::openuntil(Time time) {
    const std::lock_guard lock(mutex_);
    openuntil_ = time;
    wakefirst();
}

}  // namespace host
