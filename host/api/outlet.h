// Between somebody who tells news for as long as anybody listens, and the connection that they leave by. What he puts
// in waits until the connection takes it; he asks first whether the last piece has left, so that a slow reader is told
// less often and not more at a time. Any thread.
#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <utility>

namespace host {

class Outlet {
public:
    // The teller's end.
    [[nodiscard]] bool open() const {
        const std::lock_guard lock(mutex_);
        return open_;
    }
    [[nodiscard]] bool empty() const {
        const std::lock_guard lock(mutex_);
        return waiting_.empty() && !leaving_;
    }
    void put(const std::string& text) {
        const std::lock_guard lock(mutex_);
        if (!open_) return;
        waiting_ += text;
        if (wake_) wake_();
    }

    // The connection's end. `wake` is called when there is something to take.
    void attach(std::function<void()> wake) {
        const std::lock_guard lock(mutex_);
        wake_ = std::move(wake);
    }
    // Everything that waits; the piece before it has left.
    [[nodiscard]] std::string take() {
        const std::lock_guard lock(mutex_);
        leaving_ = !waiting_.empty();
        return std::exchange(waiting_, {});
    }
    // Either end.
    void close() {
        const std::lock_guard lock(mutex_);
        open_ = false;
        waiting_.clear();
        const auto wake = std::exchange(wake_, {});
        if (wake) wake();
    }

private:
    mutable std::mutex mutex_;
    std::function<void()> wake_;
    std::string waiting_;
    bool open_ = true, leaving_ = false;
};

}  // namespace host
