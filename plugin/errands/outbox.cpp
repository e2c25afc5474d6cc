#include "plugin/errands/outbox.h"

#include <system_error>
#include <utility>

#include "platform/background.h"
#include "plugin/base/globals.h"

namespace ordomart {

namespace {

void telldropped(std::size_t number) {
    if (number > 0) debuglogger.debug("{} trade reports were dropped", number);
}

}  // namespace

void outbox::put(int type, const nlohmann::json& record) {
    if (!enqueue({type, record})) return;
    try {
        Background::start([this] { work(); });
    } catch (const std::system_error&) {
        sendermissing();
    }
}

bool outbox::enqueue(trade made) {
    const std::lock_guard lock(mutex_);
    if (waiting_.size() >= mostwaiting) {
        ++dropped_;
        return false;
    }
    waiting_.push_back(std::move(made));
    if (senders_ >= mostsenders) return false;
    ++senders_;
    return true;
}

void outbox::work() {
    while (const auto next = take()) send_(next->type, next->record);
}

// A sender that is given nothing has ended.
std::optional<outbox::trade> outbox::take() {
    std::optional<trade> next;
    std::unique_lock lock(mutex_);
    if (Background::stopping()) dropwaiting();
    const auto dropped = std::exchange(dropped_, 0);
    if (waiting_.empty()) {
        --senders_;
    } else {
        next = std::move(waiting_.front());
        waiting_.pop_front();
    }
    lock.unlock();
    telldropped(dropped);
    return next;
}

// What waits is taken by another sender, if there is one.
void outbox::sendermissing() {
    std::unique_lock lock(mutex_);
    if (--senders_ > 0) return;
    dropwaiting();
    const auto dropped = std::exchange(dropped_, 0);
    lock.unlock();
    telldropped(dropped);
}

void outbox::dropwaiting() {
    dropped_ += waiting_.size();
    waiting_.clear();
}

}  // namespace ordomart
