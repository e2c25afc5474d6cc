// Tasks are taken out of the table before they run, so that no lock is held while they do.
#include "host/core/scheduler.h"

#include <algorithm>

namespace host {

void TickScheduler::delay(platform::Task task, std::uint64_t ticks) { add(ticks, {std::move(task)}); }

void TickScheduler::repeat(platform::Task task, std::uint64_t ticks, int maxcount) {
    const auto period = std::max<std::uint64_t>(ticks, 1);
    if (maxcount != 0) add(period, {std::move(task), period, maxcount});
}

void TickScheduler::add(std::uint64_t ticks, Entry entry) {
    {
        const std::lock_guard lock(mutex_);
        if (closed_) return;
        entries_.emplace(now_ + ticks, std::move(entry));
    }
    if (ticks == 0) wake_();
}

bool TickScheduler::run(std::uint64_t tick) {
    Entries due;
    {
        const std::lock_guard lock(mutex_);
        now_ = tick;
        for (const auto end = entries_.upper_bound(tick); entries_.begin() != end;) {
            due.insert(due.end(), entries_.extract(entries_.begin()));
        }
    }
    for (auto& [when, entry] : due) {
        guarded(complain_, "A scheduled task failed", entry.task);
        if (entry.left > 0) --entry.left;
        if (entry.period == 0 || entry.left == 0) continue;
        const std::lock_guard lock(mutex_);
        if (!closed_) entries_.emplace(when + entry.period, std::move(entry));
    }
    return !due.empty();
}

void TickScheduler::close() {
    Entries dropped;
    const std::lock_guard lock(mutex_);
    closed_ = true;
    dropped.swap(entries_);
}

}  // namespace host
