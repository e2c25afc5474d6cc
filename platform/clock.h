// The wall clock, and the clock that measures work. Both may be set by the host in manual mode.
#pragma once

#include <cstdint>

namespace platform {

class Clock {
public:
    virtual ~Clock() = default;
    [[nodiscard]] virtual std::int64_t unixmilliseconds() const = 0;  // any thread
};

[[nodiscard]] std::int64_t unixseconds();  // whole seconds, truncated towards zero

}  // namespace platform
