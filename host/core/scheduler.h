// Tasks of the server thread, by game tick. Tasks of one pass run in the order of their ticks and, within a tick, of
// the calls that made them; what a task schedules runs in a later pass at the earliest. Any thread may schedule.
#pragma once

#include <chrono>
#include <map>
#include <mutex>

#include "host/core/guarded.h"
#include "platform/schedule.h"

namespace host {

class TickScheduler : public platform::Scheduler {
public:
    // `wake` is called when a task has come in that the next pass can run.
    TickScheduler(std::function<void()> wake, Complain complain)
        : wake_(std::move(wake)), complain_(std::move(complain)) {}
    void delay(platform::Task task, std::uint64_t ticks) override;
    // A period of 0 counts as 1.
    void repeat(platform::Task task, std::uint64_t ticks, int maxcount) override;

    // The tasks of a pass at this tick, one at least. Those that are left when its share of time is over are the first
    // of the next pass, which is asked for at once. Server thread. True when there was one.
    using Share = std::chrono::steady_clock::duration;
    static constexpr Share endless = Share::max();
    bool run(std::uint64_t tick, Share share = endless);
    // Tasks that wait, the repeated ones among them. Any thread.
    [[nodiscard]] std::size_t waiting() {
        const std::lock_guard lock(mutex_);
        return entries_.size();
    }
    // Drops all tasks, and from now on those that still come: their code is about to leave the process.
    void close();

private:
    struct Entry {
        platform::Task task;
        std::uint64_t period = 0;  // 0: once
        int left = 1;              // runs to come, -1 for ever
    };
    using Entries = std::multimap<std::uint64_t, Entry>;  // by tick; equal ticks keep their order
    void add(std::uint64_t ticks, Entry entry);
    void putback(Entries left);

    const std::function<void()> wake_;
    const Complain complain_;
    std::mutex mutex_;
    Entries entries_;
    std::uint64_t now_ = 0;
    bool closed_ = false;
};

}  // namespace host
