// Tasks are taken out of the table before they run, so that no lock is held while they do.
#include "host/core/scheduler.h"

#include <algorithm>
#include <iterator>

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

bool TickScheduler::run(std::uint64_t tick, Share share) {
    const auto began = std::chrono::steady_clock::now();
    Entries due;
    {
        const std::lock_guard lock(mutex_);
        now_ = tick;
        for (const auto end = entries_.upper_bound(tick); entries_.begin() != end;) {
            due.insert(due.end(), entries_.extract(entries_.begin()));
        }
    }
    if (due.empty()) return false;
    do {
        auto done = due.extract(due.begin());
        auto& entry = done.mapped();
        guarded(complain_, "A scheduled task failed", entry.task);
        if (entry.left > 0) --entry.left;
        if (entry.period == 0 || entry.left == 0) continue;
        const std::lock_guard lock(mutex_);
        if (!closed_) entries_.emplace(done.key() + entry.period, std::move(entry));
    } while (!due.empty() && std::chrono::steady_clock::now() - began < share);
    if (!due.empty()) putback(std::move(due));
    return true;
}

// In front of what has come in meanwhile.
void TickScheduler::putback(Entries left) {
    {
        const std::lock_guard lock(mutex_);
        if (closed_) return;
        while (!left.empty()) {
            auto last = left.extract(std::prev(left.end()));
            entries_.insert(entries_.lower_bound(last.key()), std::move(last));
        }
    }
    wake_();
}

void TickScheduler::close() {
    Entries dropped;
    const std::lock_guard lock(mutex_);
    closed_ = true;
    dropped.swap(entries_);
}

}  // namespace host
