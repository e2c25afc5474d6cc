// Work for the server thread at a later game tick.
#pragma once

#include <cstdint>
#include <functional>

namespace platform {

using Task = std::function<void()>;

class Scheduler {
public:
    virtual ~Scheduler() = default;
    // Any thread may call both. A delay of 0 runs in the next pass of the server thread, in order of the calls.
    // A task that throws is logged with its text and does not stop the server.
    virtual void delay(Task task, std::uint64_t ticks) = 0;
    // Every `ticks` game ticks; `maxcount` -1 is for ever.
    virtual void repeat(Task task, std::uint64_t ticks, int maxcount) = 0;
};

namespace Schedule {
void delay(Task task, std::uint64_t ticks);
void repeat(Task task, std::uint64_t ticks, int maxcount = -1);
}  // namespace Schedule

}  // namespace platform
