#include "host/core/passtimes.h"

#include <algorithm>
#include <bit>

namespace host {

void PassTimes::add(std::chrono::steady_clock::duration took) {
    const auto nanoseconds = static_cast<std::uint64_t>(
        std::max<std::int64_t>(0, std::chrono::duration_cast<std::chrono::nanoseconds>(took).count()));
    const auto microseconds = (nanoseconds + 999) / 1000;
    const auto range = microseconds <= 1 ? 0 : static_cast<std::size_t>(std::bit_width(microseconds - 1));
    counts_[std::min(range, ranges - 1)].fetch_add(1, std::memory_order_relaxed);
    nanoseconds_.fetch_add(nanoseconds, std::memory_order_relaxed);
    if (nanoseconds > longest_.load(std::memory_order_relaxed)) longest_.store(nanoseconds, std::memory_order_relaxed);
}

PassTimes::Seen PassTimes::seen() const {
    Seen all;
    for (std::size_t i = 0; i < ranges; ++i) all.counts[i] = counts_[i].load(std::memory_order_relaxed);
    all.seconds = static_cast<double>(nanoseconds_.load(std::memory_order_relaxed)) / 1e9;
    all.longest = static_cast<double>(longest_.load(std::memory_order_relaxed)) / 1e9;
    return all;
}

}  // namespace host
