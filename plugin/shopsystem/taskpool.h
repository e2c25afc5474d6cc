// The one background worker of the shop model: a queue, run in order. Two saves never overlap, nor does a save overlap
// a load that is run as a task.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "plugin/base/globals.h"

namespace shopsystem {

class ThreadPool {
public:
    ThreadPool();
    ~ThreadPool();  // runs what is still queued, then joins

    // Throws std::runtime_error after the stop. A task's own exception is logged and does not stop the worker.
    template <class F, class... A>
    std::future<void> enqueue(F&& f, A&&... args) {
        return push(std::make_shared<std::packaged_task<void()>>(
            [f = std::forward<F>(f), ... args = std::forward<A>(args)]() mutable {
                try {
                    std::invoke(f, args...);
                } catch (...) {
                    // Here, since the handle that takes the exception from here on is read by nobody.
                    reportfailure();
                    throw;
                }
            }));
    }

private:
    static void reportfailure();
    std::future<void> push(std::shared_ptr<std::packaged_task<void()>> task);
    void work();

    std::vector<std::thread> workers;
    std::deque<std::function<void()>> tasks;
    std::mutex queuemutex;
    std::condition_variable condition;
    bool stop = false;
};

extern ThreadPool taskpool;

}  // namespace shopsystem
