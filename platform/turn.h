// Who may touch the plug-in's model at this moment. Shops, cache and player records have no lock: every thread reaches
// them only in a turn. The server thread holds the turn while it is inside the plug-in; a background body takes one
// for a short piece of work (one shop) and lets go. The server thread goes first.
#pragma once

namespace platform {

class TurnKeeper {
public:
    virtual ~TurnKeeper() = default;
    // Background threads: blocks until the server leaves room. On the server thread, and when this thread holds the
    // turn already, both only count.
    virtual void take() = 0;
    virtual void give() = 0;
};

// Holds the turn for a scope; may be nested.
class Turn {
public:
    Turn();
    ~Turn();
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;
};

}  // namespace platform
