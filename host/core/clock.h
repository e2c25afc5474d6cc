// The server's clock: the system's, or in manual mode one that stands still until it is moved. Any thread.
#pragma once

#include <atomic>
#include <chrono>

#include "platform/clock.h"

namespace host {

class ServerClock : public platform::Clock {
public:
    ServerClock(bool manual, std::int64_t start) : manual_(manual), now_(start) {}
    [[nodiscard]] std::int64_t unixmilliseconds() const override {
        if (manual_) return now_.load();
        using namespace std::chrono;
        return duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
    }
    void advance(std::int64_t milliseconds) { now_ += milliseconds; }  // of the manual clock

private:
    const bool manual_;
    std::atomic<std::int64_t> now_;
};

}  // namespace host
