// How long something took each time, as the passes of the server thread, in ranges that double: what a histogram of it
// is made of. One thread at a time adds, any thread reads.
#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>

namespace host {

class PassTimes {
public:
    // Range i ends at 2^i microseconds, the last has no end.
    static constexpr std::size_t ranges = 22;
    struct Seen {
        std::array<std::uint64_t, ranges> counts{};
        double seconds = 0;
        double longest = 0;
    };

    void add(std::chrono::steady_clock::duration took);
    [[nodiscard]] Seen seen() const;
    void forgetlongest() { longest_ = 0; }

private:
    std::array<std::atomic<std::uint64_t>, ranges> counts_{};
    std::atomic<std::uint64_t> nanoseconds_ = 0, longest_ = 0;
};

}  // namespace host
