// Arithmetic of tick times.
#include "host/core/pacer.h"

#include <algorithm>
#include <stdexcept>
#include <string>

namespace host {

namespace {

constexpr auto longestlag = std::chrono::milliseconds(500);
constexpr auto margin = std::chrono::milliseconds(2);
// Some way off, so that arithmetic on it does not overflow.
constexpr auto never = std::chrono::hours(24);

}  // namespace

void Pacer::setspeed(double tickspersecond) {
    if (!(tickspersecond > 0 && tickspersecond <= 1000)) {
        throw std::invalid_argument("speed must be above 0 and at most 1000 ticks a second, not " +
                                    std::to_string(tickspersecond));
    }
    const std::lock_guard lock(mutex_);
    speed_ = tickspersecond;
    interval_ = std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(1 / tickspersecond));
    due_ = std::min(due_, Clock::now() + interval_);
}

void Pacer::setpaused(bool paused) {
    const std::lock_guard lock(mutex_);
    paused_ = paused;
    due_ = Clock::now();
}

double Pacer::speed() const {
    const std::lock_guard lock(mutex_);
    return speed_;
}

bool Pacer::paused() const {
    const std::lock_guard lock(mutex_);
    return paused_;
}

Pacer::Clock::time_point Pacer::due() const {
    const std::lock_guard lock(mutex_);
    return paused_ ? Clock::now() + never : due_;
}

Pacer::Clock::time_point Pacer::closing() const {
    const std::lock_guard lock(mutex_);
    if (paused_) return Clock::now() + never;
    return due_ - std::min<Clock::duration>(margin, interval_ / 4);
}

bool Pacer::takedue() {
    const auto now = Clock::now();
    const std::lock_guard lock(mutex_);
    if (paused_ || now < due_) return false;
    due_ = std::max(due_ + interval_, now - longestlag);
    return true;
}

}  // namespace host
