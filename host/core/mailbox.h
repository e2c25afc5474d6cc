// What other threads want of the server thread, and how it sleeps until there is something. Work is done in a pass,
// orders between passes.
#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>

namespace host {

class Mailbox {
public:
    using Work = std::function<void()>;
    using Items = std::deque<Work>;
    using Time = std::chrono::steady_clock::time_point;

    // Any thread. Both throw std::logic_error when the mailbox is closed.
    void post(Work work) { put(work_, std::move(work)); }
    void order(Work order) { put(orders_, std::move(order)); }
    void wake();

    [[nodiscard]] std::size_t waiting() {
        const std::lock_guard lock(mutex_);
        return work_.size() + orders_.size();
    }

    // The server thread. Waits until somebody has called wake() since the last wait, or (false) for the given time.
    bool wait(std::optional<Time> until = std::nullopt);
    [[nodiscard]] Items takework() { return take(work_); }
    [[nodiscard]] Items takeorders() { return take(orders_); }
    // From now on nothing more is taken in.
    void close();

private:
    void put(Items& items, Work item);
    Items take(Items& items);

    std::mutex mutex_;
    std::condition_variable waiting_;
    Items work_, orders_;
    bool woken_ = false;
    bool closed_ = false;
};

}  // namespace host
