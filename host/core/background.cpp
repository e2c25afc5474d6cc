// A body's thread is joined behind the scenes once it has ended: a plug-in may be unloaded only when no thread is left
// that could still run its code, and the end of a body is not yet the end of its thread.
#include "host/core/background.h"

#include <utility>

namespace host {

// Shared with the handles, which may be dropped late.
struct BackgroundBodies::Count {
    std::mutex mutex;
    std::condition_variable idle;
    Underway now;
    std::function<void()> onidle;
};

BackgroundBodies::BackgroundBodies(std::function<void()> onidle, Complain complain)
    : count_(std::make_shared<Count>()), complain_(std::move(complain)) {
    count_->onidle = std::move(onidle);
}

std::shared_ptr<void> BackgroundBodies::busy() { return counted(&Underway::handles); }

std::shared_ptr<void> BackgroundBodies::counted(int Underway::*kind) {
    {
        const std::lock_guard lock(count_->mutex);
        ++(count_->now.*kind);
    }
    return {count_.get(), [count = count_, kind](void*) {
                {
                    const std::lock_guard lock(count->mutex);
                    if (kind == &Underway::handles) ++count->now.ended;
                    --(count->now.*kind);
                    if (count->now.all() > 0) return;
                    count->idle.notify_all();
                }
                count->onidle();
            }};
}

void BackgroundBodies::start(std::function<void()> body) {
    for (auto& thread : takefinished()) thread.join();
    auto handle = counted(&Underway::bodies);
    const std::lock_guard lock(mutex_);
    const auto self = running_.emplace(running_.end());
    try {
        *self = std::thread([this, self, body = std::move(body), handle = std::move(handle)]() mutable {
            guarded(complain_, "A background thread failed", body);
            body = nullptr;
            {
                const std::lock_guard done(mutex_);
                finished_.splice(finished_.end(), running_, self);
            }
            handle.reset();
        });
    } catch (...) {
        running_.erase(self);
        throw;
    }
}

std::list<std::thread> BackgroundBodies::takefinished() {
    const std::lock_guard lock(mutex_);
    return std::exchange(finished_, {});
}

std::chrono::steady_clock::time_point BackgroundBodies::announcestop() {
    const std::lock_guard lock(mutex_);
    if (!stopping_.exchange(true)) announced_ = std::chrono::steady_clock::now();
    return announced_;
}

Underway BackgroundBodies::underway() const {
    const std::lock_guard lock(count_->mutex);
    return count_->now;
}

void BackgroundBodies::waitidle() {
    {
        std::unique_lock lock(count_->mutex);
        count_->idle.wait(lock, [&] { return count_->now.all() == 0; });
    }
    for (auto& thread : takefinished()) thread.join();
}

}  // namespace host
