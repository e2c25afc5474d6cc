// The connection of a call that another thread watches over. It is held by a number of its own: the caller's may be
// closed, and given to somebody else's file, between two looks.
#pragma once

#include <mutex>

#include "host/core/descriptor.h"

namespace host {

class WebLine {
public:
    // The connection that the call uses from now on; a line that was cut cuts it, too.
    void hold(int socket);
    void letgo();
    // Whoever reads, writes or connects comes back at once and finds it broken. A connection that is just being made
    // may come through all the same: cut again until the caller has given up.
    void cut();
    [[nodiscard]] bool wascut() const;

private:
    mutable std::mutex mutex_;
    Descriptor socket_;
    bool cut_ = false;
};

}  // namespace host
