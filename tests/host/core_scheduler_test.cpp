// Tasks of the server thread: which pass they run in, and in what order.
#include "host/core/scheduler.h"

#include <gmock/gmock.h>

#include "tests/host/coretools.h"

namespace {

using testing::ElementsAre;

class CoreScheduler : public testing::Test {
protected:
    platform::Task says(const std::string& word) {
        return [this, word] { said.push_back(word); };
    }
    std::vector<std::string> pass(std::uint64_t tick) {
        said.clear();
        scheduler.run(tick);
        return said;
    }

    int wakes = 0;
    std::vector<std::string> said;
    coretests::Complaints complaints;
    host::TickScheduler scheduler{[this] { ++wakes; }, complaints.complain};
};

TEST_F(CoreScheduler, WhatATaskSchedulesRunsInALaterPass) {
    scheduler.delay(
        [this] {
            said.push_back("first");
            scheduler.delay(says("second"), 0);
        },
        0);
    scheduler.delay([] { throw 1; }, 0);
    scheduler.delay(says("late"), 3);
    scheduler.delay(says("next"), 1);
    EXPECT_EQ(wakes, 2) << "only what the next pass can run is worth waking for";
    EXPECT_THAT(pass(0), ElementsAre("first"));
    EXPECT_THAT(complaints.lines, ElementsAre("A scheduled task failed: unknown exception"));
    EXPECT_THAT(pass(0), ElementsAre("second"));
    EXPECT_THAT(pass(3), ElementsAre("next", "late")) << "ticks that were passed over are made up for";
    EXPECT_FALSE(scheduler.run(0));
}

TEST_F(CoreScheduler, RepeatsCountTheirRuns) {
    scheduler.repeat(says("thrice"), 2, 3);
    scheduler.repeat(says("ever"), 3, -1);
    scheduler.repeat(says("never"), 1, 0);
    scheduler.repeat(says("every tick"), 0, 1);
    std::vector<std::string> all;
    for (std::uint64_t tick = 0; tick <= 9; ++tick) {
        for (const auto& word : pass(tick)) all.push_back(std::to_string(tick) + word);
    }
    EXPECT_THAT(all, ElementsAre("1every tick", "2thrice", "3ever", "4thrice", "6ever", "6thrice", "9ever"));
}

TEST_F(CoreScheduler, WhatDoesNotFitIntoAPassIsFirstInTheNext) {
    const auto brief = [&] {
        said.clear();
        scheduler.run(1, host::TickScheduler::Share::zero());
        return said;
    };
    for (const auto* word : {"a", "b", "c"}) scheduler.delay(says(word), 0);
    scheduler.delay(says("d"), 1);
    scheduler.repeat(says("ever"), 1, -1);
    wakes = 0;
    EXPECT_THAT(brief(), ElementsAre("a"));
    EXPECT_EQ(wakes, 1);
    scheduler.delay(says("new"), 0);
    EXPECT_THAT(brief(), ElementsAre("b"));
    EXPECT_THAT(pass(1), ElementsAre("c", "d", "ever", "new"));
    EXPECT_THAT(pass(2), ElementsAre("ever"));
}

TEST_F(CoreScheduler, ClosingDropsTheTasksAndThoseThatStillCome) {
    auto held = std::make_shared<int>();
    scheduler.delay([held] {}, 5);
    scheduler.delay(
        [this, held] {
            scheduler.close();
            scheduler.delay([held] {}, 0);
        },
        0);
    scheduler.repeat([held] {}, 1, -1);
    scheduler.run(0);
    EXPECT_EQ(held.use_count(), 1) << "a task that is kept would keep code of the plug-in";
    EXPECT_FALSE(scheduler.run(100));
}

}  // namespace
