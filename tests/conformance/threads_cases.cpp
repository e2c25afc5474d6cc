// Scheduler, turn and background threads.
#include <atomic>
#include <chrono>
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

// A body that ends when it is told of the stop, and not before.
template <class Work>
auto untilthestop(Work work) {
    return [work]() mutable {
        while (!Background::stopping()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        work();
    };
}

TEST_P(Conformance, AStopWaitsForWhatIsUnderWay) {
    start();
    std::atomic<int> ended = 0, chain = 0;
    // Each body starts the next one, so that there is always one that only its count shows.
    std::function<void()> link = [&] {
        if (++chain < 50) return Background::start(link);
        const platform::Turn turn;
        ++ended;
    };
    std::thread queue;
    server->onserver([&] {
        EXPECT_FALSE(Background::stopping());
        Background::start(untilthestop([&] { link(); }));
        Background::start([] { throw std::runtime_error("a body that does not catch what it throws"); });
        // Work that waits in a queue of the plug-in's own.
        queue = std::thread(untilthestop([&, handle = Background::busy()]() mutable {
            for (int i = 0; i < 1000; ++i) std::this_thread::yield();
            ++ended;
            handle.reset();
        }));
    });
    server->stop();
    EXPECT_EQ(ended, 2);
    queue.join();
}

// A list of what has been done and of what each call to save has found done.
TEST_P(Conformance, AStopSavesWhatComesIntoBeingWhileItRests) {
    Words done, saved;
    bool over = false;
    start([&](platform::Host&) {
        on<platform::Event::PlayerLeftEvent>([&](const auto&) {
            EXPECT_TRUE(Background::stopping());
            done.emplace_back("leaving");
            return true;
        });
        on<platform::Event::ServerStoppingEvent>([&](const auto&) {
            if (saved == done) return true;
            saved = done;
            // A save that reports back, as often as there is something to save.
            Background::start([&] { Schedule::delay([&] { done.emplace_back("after a save"); }, 0); });
            return true;
        });
        on<platform::Event::ServerStoppedEvent>([&](const auto& event) {
            over = event.unsaved.empty() && done.size() == 6;
            return true;
        });
    });
    server->join("Tester", xuid);
    server->onserver([&] {
        Background::start(untilthestop([&] {
            Schedule::delay(
                [&] {
                    done.emplace_back("by a body");
                    Schedule::delay([&] { done.emplace_back("by a task"); }, 0);
                },
                0);
        }));
    });
    server->stop();
    EXPECT_EQ(saved, (Words{"leaving", "by a body", "by a task", "after a save", "after a save"}));
    EXPECT_TRUE(over) << "the last event comes when nothing is under way";
}

}  // namespace conformance
