// How long the server thread waits for its turn while a list builder is busy, next to the same work under a plain
// std::mutex in the same run; and how much longer the builder takes than alone. Then the same with a crowd of builders
// that all wait for one another.
#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>
#include <vector>

#include "host/core/turnkeeper.h"

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr auto interval = 10ms;     // from tick to tick
constexpr auto closes = 2ms;        // in front of a tick no background turn begins
constexpr auto servertime = 300us;  // what a tick takes
constexpr auto guesttime = 60us;    // what one shop takes
constexpr int ticks = 400;

void busy(Clock::duration time) {
    for (const auto end = Clock::now() + time; Clock::now() < end;) {
    }
}

struct Result {
    std::vector<double> waits;  // microseconds
    double pieces = 0;          // of all builders, per second
};

template <class Take, class Give, class Between>
Result play(Take take, Give give, Between between, int builders = 1) {
    Result result;
    std::atomic<bool> stop = false;
    std::atomic<int> pieces = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < builders; ++i)
        threads.emplace_back([&] {
            for (; !stop; ++pieces) {
                take();
                busy(guesttime);
                give();
            }
        });
    const auto start = Clock::now();
    auto due = start + interval;
    for (int i = 0; i < ticks; ++i, due += interval) {
        between(due);
        std::this_thread::sleep_until(due);
        const auto asked = Clock::now();
        take();
        result.waits.push_back(std::chrono::duration<double, std::micro>(Clock::now() - asked).count());
        busy(servertime);
        give();
    }
    stop = true;
    between(Clock::time_point::max());
    for (auto& thread : threads) thread.join();
    result.pieces = pieces / std::chrono::duration<double>(Clock::now() - start).count();
    std::ranges::sort(result.waits);
    return result;
}

void print(const char* what, const Result& result, double alone) {
    const auto at = [&](double share) {
        return result.waits[static_cast<std::size_t>(share * static_cast<double>(result.waits.size() - 1))];
    };
    fmt::print(
        "{:<20} the server waits: median {:8.1f} us  p99 {:9.1f} us  worst {:9.1f} us   builders {:.2f} of one's speed "
        "alone\n",
        what, at(0.5), at(0.99), at(1), result.pieces / alone);
}

}  // namespace

int main() {
    const double alone = 1e6 / std::chrono::duration<double, std::micro>(guesttime).count();
    std::mutex mutex;
    print("std::mutex", play([&] { mutex.lock(); }, [&] { mutex.unlock(); }, [](Clock::time_point) {}), alone);
    for (const int builders : {1, 16, 200}) {
        host::TurnKeeper turn;
        turn.bindserver();
        const auto open = [&](Clock::time_point due) {
            turn.openuntil(due == Clock::time_point::max() ? due : due - closes);
        };
        print(fmt::format("turns, {} builders", builders).c_str(),
              play([&] { turn.take(); }, [&] { turn.give(); }, open, builders), alone);
    }
}
