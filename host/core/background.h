// Threads beside the server thread, and the count of work that is under way anywhere beside it. Any thread.
#pragma once

#include <condition_variable>
#include <list>
#include <mutex>
#include <thread>

#include "host/core/guarded.h"
#include "platform/background.h"

namespace host {

class BackgroundBodies : public platform::BackgroundThreads {
public:
    // `onidle` is called, by whatever thread ended it, when the last work under way has ended.
    BackgroundBodies(std::function<void()> onidle, Complain complain);
    ~BackgroundBodies() override { waitidle(); }
    void start(std::function<void()> body) override;
    [[nodiscard]] std::shared_ptr<void> busy() override;

    [[nodiscard]] int count() const;
    // Until nothing is under way and every thread has left the process.
    void waitidle();

private:
    struct Count;
    std::list<std::thread> takefinished();

    const std::shared_ptr<Count> count_;
    const Complain complain_;
    std::mutex mutex_;
    std::list<std::thread> running_, finished_;
};

}  // namespace host
