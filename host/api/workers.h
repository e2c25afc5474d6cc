// A fixed number of threads that do jobs in the order in which these came.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace host {

class Workers {
public:
    explicit Workers(std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) threads_.emplace_back([this] { work(); });
    }
    ~Workers() { stop(); }
    void put(std::function<void()> job) {
        const std::lock_guard lock(mutex_);
        jobs_.push_back(std::move(job));
        waiting_.notify_one();
    }
    // What is under way comes to its end, what was not begun is forgotten.
    void stop() {
        {
            const std::lock_guard lock(mutex_);
            stopped_ = true;
            jobs_.clear();
            waiting_.notify_all();
        }
        for (std::thread& thread : threads_) thread.join();
        threads_.clear();
    }

private:
    void work() {
        std::unique_lock lock(mutex_);
        for (;;) {
            waiting_.wait(lock, [this] { return stopped_ || !jobs_.empty(); });
            if (stopped_) return;
            {
                const auto job = std::move(jobs_.front());
                jobs_.pop_front();
                lock.unlock();
                job();
            }
            lock.lock();
        }
    }

    std::mutex mutex_;
    std::condition_variable waiting_;
    std::deque<std::function<void()>> jobs_;
    bool stopped_ = false;
    std::vector<std::thread> threads_;  // last, since they use the rest
};

}  // namespace host
