// Scheduler, turn and background threads.
#include <atomic>
#include <future>
#include <thread>

#include "platform/background.h"
#include "platform/event.h"
#include "platform/schedule.h"
#include "platform/turn.h"
#include "tests/conformance/conformance.h"

namespace conformance {

namespace Schedule = platform::Schedule;
namespace Background = platform::Background;
using Words = std::vector<std::string>;

TEST_P(Conformance, TasksRunOnTheServerThreadByTickAndThenByCall) {
    start();
    Words said;
    std::thread::id server_thread;
    server->onserver([&] { server_thread = std::this_thread::get_id(); });
    const auto says = [&](const char* word) {
        return [&said, &server_thread, word] {
            EXPECT_EQ(std::this_thread::get_id(), server_thread);
            said.emplace_back(word);
        };
    };
    // From another thread than the server's, and in one pass of it.
    server->onserver([&] {
        std::thread([&] {
            Schedule::delay(says("third tick"), 3);
            Schedule::delay(says("at once"), 0);
            Schedule::delay([] { throw std::runtime_error("one task of many"); }, 0);
            Schedule::delay(says("second tick"), 2);
            Schedule::delay(says("at once, too"), 0);
        }).join();
        EXPECT_TRUE(said.empty());
    });
    server->ticks(0);
    EXPECT_EQ(said, (Words{"at once", "at once, too"}));
    server->ticks(4);
    EXPECT_EQ(said, (Words{"at once", "at once, too", "second tick", "third tick"}));
}

TEST_P(Conformance, ARepeatedTaskCountsItsRuns) {
    start();
    int thrice = 0, always = 0;
    server->onserver([&] {
        Schedule::repeat([&] { ++thrice; }, 2, 3);
        Schedule::repeat(
            [&] {
                ++always;
                throw std::runtime_error("and again");
            },
            2);
    });
    server->ticks(12);
    server->stop();
    EXPECT_EQ(thrice, 3);
    EXPECT_GE(always, 6);
}

TEST_P(Conformance, OneThreadAtATimeHasTheTurn) {
    start();
    constexpr int rounds = 500;
    int model = 0;  // no lock of its own
    const auto work = [&model] {
        for (int i = 0; i < rounds; ++i) {
            const platform::Turn turn;
            const platform::Turn nested;
            const int before = model;
            if (i % 50 == 0) std::this_thread::yield();
            model = before + 1;
        }
    };
    for (int i = 0; i < 2; ++i) Background::start(work);
    for (int i = 0; i < 5; ++i) server->onserver(work);
    server->ticks(1);
    EXPECT_EQ(model, 7 * rounds);
}

TEST_P(Conformance, AStopWaitsForWhatIsUnderWay) {
    std::promise<void> stopping;
    const auto gate = stopping.get_future().share();
    start([&](platform::Host&) {
        on<platform::Event::ServerStoppingEvent>([&](const auto&) {
            stopping.set_value();
            return true;
        });
    });
    std::atomic<int> ended = 0, chain = 0;
    // Each body starts the next one, so that there is always one that only its count shows.
    std::function<void()> link = [&] {
        if (++chain < 50) return Background::start(link);
        const platform::Turn turn;
        ++ended;
    };
    std::thread queue;
    server->onserver([&] {
        Background::start([&, gate] {
            gate.wait();
            link();
        });
        Background::start([] { throw std::runtime_error("a body that does not catch what it throws"); });
        // Work that waits in a queue of the plug-in's own.
        queue = std::thread([&, gate, handle = Background::busy()]() mutable {
            gate.wait();
            for (int i = 0; i < 1000; ++i) std::this_thread::yield();
            ++ended;
            handle.reset();
        });
    });
    server->stop();
    EXPECT_EQ(ended, 2);
    queue.join();
}

}  // namespace conformance
