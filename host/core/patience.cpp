#include "host/core/patience.h"

namespace host {

namespace {

using namespace std::chrono_literals;

// Together they stay below the five seconds that a stop may take.
constexpr auto forbodies = 2000ms;
constexpr auto betweenhandles = 2500ms;

}  // namespace

Patience Patience::endless() { return {false, 100'000, 5s, std::chrono::steady_clock::now()}; }
Patience Patience::ofstop(Time asked) { return {true, 1000, 20ms, asked}; }

bool Patience::waitsfor(const Underway& underway) {
    if (!hasend_) return true;
    const auto now = std::chrono::steady_clock::now();
    if (underway.handles == 0 || underway.ended != ended_) progress_ = now;
    ended_ = underway.ended;
    return (underway.bodies > 0 && now - asked_ < forbodies) ||
           (underway.handles > 0 && now - progress_ < betweenhandles);
}

}  // namespace host
