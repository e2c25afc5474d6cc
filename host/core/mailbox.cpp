// Items are moved out before they are done, so that no lock is held meanwhile.
#include "host/core/mailbox.h"

#include <stdexcept>
#include <utility>

namespace host {

void Mailbox::put(Items& items, Work item) {
    {
        const std::lock_guard lock(mutex_);
        if (closed_) throw std::logic_error("the server does not run");
        items.push_back(std::move(item));
    }
    wake();
}

Mailbox::Items Mailbox::take(Items& items) {
    const std::lock_guard lock(mutex_);
    return std::exchange(items, {});
}

void Mailbox::wake() {
    const std::lock_guard lock(mutex_);
    woken_ = true;
    waiting_.notify_one();
}

bool Mailbox::wait(std::optional<Time> until) {
    std::unique_lock lock(mutex_);
    const auto woken = [&] { return woken_; };
    if (until) {
        waiting_.wait_until(lock, *until, woken);
    } else {
        waiting_.wait(lock, woken);
    }
    return std::exchange(woken_, false);
}

void Mailbox::close() {
    const std::lock_guard lock(mutex_);
    closed_ = true;
}

}  // namespace host
