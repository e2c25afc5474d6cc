// A body's thread is joined behind the scenes once it has ended: a plug-in may be unloaded only when no thread is left
// that could still run its code, and the end of a body is not yet the end of its thread.
#include "host/core/background.h"

#include <utility>

namespace host {

// Shared with the handles, which may be dropped late.
struct BackgroundBodies::Count {
    std::mutex mutex;
    std::condition_variable idle;
    int number = 0;
    std::function<void()> onidle;
};

BackgroundBodies::BackgroundBodies(std::function<void()> onidle, Complain complain)
    : count_(std::make_shared<Count>()), complain_(std::move(complain)) {
    count_->onidle = std::move(onidle);
}

std::shared_ptr<void> BackgroundBodies::busy() {
    {
        const std::lock_guard lock(count_->mutex);
        ++count_->number;
    }
    return {count_.get(), [count = count_](void*) {
                {
                    const std::lock_guard lock(count->mutex);
                    if (--count->number > 0) return;
                    count->idle.notify_all();
                }
                count->onidle();
            }};
}

void BackgroundBodies::start(std::function<void()> body) {
    for (auto& thread : takefinished()) thread.join();
    auto handle = busy();
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

int BackgroundBodies::count() const {
    const std::lock_guard lock(count_->mutex);
    return count_->number;
}

void BackgroundBodies::waitidle() {
    {
        std::unique_lock lock(count_->mutex);
        count_->idle.wait(lock, [&] { return count_->number == 0; });
    }
    for (auto& thread : takefinished()) thread.join();
}

}  // namespace host
