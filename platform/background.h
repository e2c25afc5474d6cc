// Threads beside the server thread.
#pragma once

#include <functional>
#include <memory>

namespace platform {

class BackgroundThreads {
public:
    virtual ~BackgroundThreads() = default;
    // Runs the body once on a detached thread of its own. Throws std::system_error when no thread can be started.
    // The body catches what it throws. An orderly stop waits for running bodies, but for no more than a few seconds in
    // all: a body that may take longer asks stopping() between two pieces of its work.
    virtual void start(std::function<void()> body) = 0;
    // Work under way that the server should know of (a queued save); released when the last copy is dropped. An orderly
    // stop waits for it as long as such handles go on being dropped.
    [[nodiscard]] virtual std::shared_ptr<void> busy() = 0;
    // Whether an orderly stop has begun; once true, it stays true. Any thread. It is true before the first player is
    // made to leave. A host that cannot tell says no.
    [[nodiscard]] virtual bool stopping() const { return false; }
};

namespace Background {
void start(std::function<void()> body);
[[nodiscard]] std::shared_ptr<void> busy();
[[nodiscard]] bool stopping();
}  // namespace Background

}  // namespace platform
