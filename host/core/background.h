// Threads beside the server thread, and the count of work that is under way anywhere beside it. Any thread.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <list>
#include <mutex>
#include <thread>

#include "host/core/guarded.h"
#include "platform/background.h"

namespace host {

// What is under way at a moment.
struct Underway {
    int bodies = 0, handles = 0;
    std::uint64_t ended = 0;  // handles that were dropped since the server's start
    [[nodiscard]] int all() const { return bodies + handles; }
};

class BackgroundBodies : public platform::BackgroundThreads {
public:
    // `onidle` is called, by whatever thread ended it, when the last work under way has ended.
    BackgroundBodies(std::function<void()> onidle, Complain complain);
    ~BackgroundBodies() override { waitidle(); }
    void start(std::function<void()> body) override;
    [[nodiscard]] std::shared_ptr<void> busy() override;
    [[nodiscard]] bool stopping() const override { return stopping_; }

    // When that was first called.
    std::chrono::steady_clock::time_point announcestop();
    [[nodiscard]] Underway underway() const;
    // Until nothing is under way and every thread has left the process.
    void waitidle();

private:
    struct Count;
    [[nodiscard]] std::shared_ptr<void> counted(int Underway::*kind);
    std::list<std::thread> takefinished();

    const std::shared_ptr<Count> count_;
    const Complain complain_;
    std::atomic<bool> stopping_ = false;
    std::mutex mutex_;
    std::chrono::steady_clock::time_point announced_;
    std::list<std::thread> running_, finished_;
};

}  // namespace host
