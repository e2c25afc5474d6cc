// Threads beside the server thread.
#pragma once

#include <functional>
#include <memory>

namespace platform {

class BackgroundThreads {
public:
    virtual ~BackgroundThreads() = default;
    // Runs the body once on a detached thread of its own. Throws std::system_error when no thread can be started.
    // The body catches what it throws; the server waits for running bodies before it unloads the plug-in.
    virtual void start(std::function<void()> body) = 0;
    // Work under way that the server should know of (a queued task); released when the last copy is dropped.
    [[nodiscard]] virtual std::shared_ptr<void> busy() = 0;
};

namespace Background {
void start(std::function<void()> body);
[[nodiscard]] std::shared_ptr<void> busy();
}  // namespace Background

}  // namespace platform
