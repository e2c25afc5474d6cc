// What a thread that waits in poll() is woken by.
#pragma once

#include <sys/eventfd.h>

#include <cstdint>

#include "host/core/descriptor.h"

namespace host {

class Waker {
public:
    [[nodiscard]] int number() const { return event_.number(); }
    // Any thread; never waits.
    void wake() const {
        const std::uint64_t one = 1;
        [[maybe_unused]] const auto written = ::write(event_.number(), &one, sizeof one);
    }
    void settle() const {
        std::uint64_t count = 0;
        [[maybe_unused]] const auto got = ::read(event_.number(), &count, sizeof count);
    }

private:
    const Descriptor event_{::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
};

}  // namespace host
