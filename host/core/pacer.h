// When the next tick is due in real time. A server that has fallen behind catches up half a second of ticks and
// forgets the rest. Any thread may set speed and pause.
#pragma once

#include <chrono>
#include <mutex>

namespace host {

class Pacer {
public:
    using Clock = std::chrono::steady_clock;

    // Ticks per second, above 0 and at most 1000; std::invalid_argument otherwise.
    void setspeed(double tickspersecond);
    void setpaused(bool paused);
    [[nodiscard]] double speed() const;
    [[nodiscard]] bool paused() const;

    // Far in the future while paused.
    [[nodiscard]] Clock::time_point due() const;
    // From here on until the tick there is no time for others any more.
    [[nodiscard]] Clock::time_point closing() const;
    // True when a tick is due; the next one is then an interval later.
    bool takedue();

private:
    mutable std::mutex mutex_;
    double speed_ = 20;
    bool paused_ = false;
    Clock::duration interval_ = std::chrono::milliseconds(50);
    Clock::time_point due_ = Clock::now();
};

}  // namespace host
