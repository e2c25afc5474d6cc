// The worker. Its mutex guards the queue alone and is not held while a task runs.
#include "plugin/shopsystem/taskpool.h"

#include "platform/background.h"

namespace shopsystem {

ThreadPool::ThreadPool() {
    workers.emplace_back([this] { work(); });
}

ThreadPool::~ThreadPool() {
    {
        const std::lock_guard lock(queuemutex);
        stop = true;
    }
    condition.notify_all();
    for (std::thread& worker : workers) worker.join();
}

std::future<void> ThreadPool::push(std::shared_ptr<std::packaged_task<void()>> task) {
    auto handle = task->get_future();
    {
        const std::lock_guard lock(queuemutex);
        if (stop) throw std::runtime_error("taskmanager::enqueue on stopped ThreadPool");
        tasks.emplace_back([task = std::move(task), underway = Background::busy()] { (*task)(); });
    }
    condition.notify_one();
    return handle;
}

void ThreadPool::work() {
    for (;;) {
        std::function<void()> task;
        {
            std::unique_lock lock(queuemutex);
            condition.wait(lock, [this] { return stop || !tasks.empty(); });
            if (tasks.empty()) return;
            task = std::move(tasks.front());
            tasks.pop_front();
        }
        task();
    }
}

void ThreadPool::reportfailure() {
    ordomart::logger.error("error at {}", "??R<lambda_1>@?3???0ThreadPool@shopsystem@@QEAA@XZ@QEBA@XZ");
}

}  // namespace shopsystem
