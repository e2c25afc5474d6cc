// Whether what happens can be kept. The server writes its own stores (inventories, scores) as they change. When that
// fails, because a file is locked or the disk is full, everything stays in memory and is tried again, with growing
// pauses; a server that is killed meanwhile loses it. Who begins something of value asks first. Server thread.
#pragma once

#include <functional>
#include <string>

namespace platform {

class StoreState {
public:
    virtual ~StoreState() = default;
    // Empty as long as everything is written. Otherwise one line for an operator that names the store, since when it is
    // so and why: "server.sqlite cannot be written since 2026-01-31 12:00:00: database is locked". It becomes empty
    // again when everything that was waiting is written.
    [[nodiscard]] virtual std::string unwritable() const = 0;
    // In a turn: calls the work once everything that has changed so far is on the disk; on the server thread, in the
    // order in which it was asked for. For what must not be ahead of the stores, such as a log line. A host that cannot
    // tell calls it at once.
    virtual void whenwritten(std::function<void()> work) { work(); }
};

namespace Stores {
// True, and nothing, when the host has no such service or no world yet.
[[nodiscard]] bool writable();
[[nodiscard]] std::string unwritable();
// At once, when the host has no such service or no world yet.
void whenwritten(std::function<void()> work);
}  // namespace Stores

}  // namespace platform
