// Memory that was freed goes back to the system when the server has a moment. The C library keeps it otherwise: after
// two hundred lists that were built at once and thrown away, half a gigabyte for which nobody has a use.
#pragma once

#include <chrono>

#include "host/core/background.h"

namespace host {

class FreedMemory {
public:
    explicit FreedMemory(BackgroundBodies& background) : background_(background) {}
    // The server thread, behind each pass; `did` when the pass had something to do.
    void behindpass(bool did);

private:
    BackgroundBodies& background_;
    bool used_ = false;  // something has happened since
    std::chrono::steady_clock::time_point last_;
};

}  // namespace host
