// On a thread of its own, since half a gigabyte takes a third of a second. A call that finds nothing new is almost
// free.
#include "host/core/memory.h"

#if defined(__GLIBC__)
#include <malloc.h>
#endif

#include <system_error>

namespace host {

namespace {

constexpr auto interval = std::chrono::seconds(5);

void giveback() {
#if defined(__GLIBC__)
    ::malloc_trim(0);
#endif
}

}  // namespace

void FreedMemory::behindpass(bool did) {
    used_ |= did;
    const auto now = std::chrono::steady_clock::now();
    if (!used_ || now - last_ < interval || background_.underway().all() > 0) return;
    used_ = false;
    last_ = now;
    try {
        background_.start(&giveback);
    } catch (const std::system_error&) {  // no thread to be had: another time
    }
}

}  // namespace host
