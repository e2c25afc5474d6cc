// How long the server thread goes on waiting until everything has come to rest: for ever when somebody drives it by
// hand, within bounds at a stop. There, bodies are given a moment in all, since each of them can ask whether it should
// end; handles stand for saves and are waited for as long as they go on ending.
#pragma once

#include <chrono>

#include "host/core/background.h"

namespace host {

class Patience {
public:
    using Time = std::chrono::steady_clock::time_point;

    // Without an end; passes that find something to do are counted all the same.
    [[nodiscard]] static Patience endless();
    // Of a stop that was asked for at that time.
    [[nodiscard]] static Patience ofstop(Time asked);

    // A pass had something to do. False when that has no end.
    bool countpass() { return ++passes_ < mostpasses_; }
    [[nodiscard]] int passes() const { return passes_; }
    [[nodiscard]] bool toomanypasses() const { return passes_ >= mostpasses_; }
    void forgetpasses() { passes_ = 0; }
    // Whether to wait on for this.
    [[nodiscard]] bool waitsfor(const Underway& underway);
    // The longest wait without looking again.
    [[nodiscard]] std::chrono::milliseconds step() const { return step_; }
    [[nodiscard]] bool hasend() const { return hasend_; }

private:
    Patience(bool hasend, int mostpasses, std::chrono::milliseconds step, Time now)
        : hasend_(hasend), mostpasses_(mostpasses), step_(step), asked_(now), progress_(now) {}

    const bool hasend_;
    const int mostpasses_;
    const std::chrono::milliseconds step_;
    const Time asked_;
    Time progress_;  // when a handle was last seen to have ended, or none was there
    std::uint64_t ended_ = 0;
    int passes_ = 0;
};

}  // namespace host
