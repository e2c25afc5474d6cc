// The turn: whose it is, and who has to wait. The stress test finds its faults under a thread sanitizer.
#include "host/core/turnkeeper.h"

#include <gmock/gmock.h>

#include <atomic>
#include <future>

#include "host/core/pacer.h"
#include "tests/host/coretools.h"

namespace {

using host::TurnKeeper;

struct Held {
    explicit Held(TurnKeeper& keeper) : turn(keeper) { turn.take(); }
    ~Held() { turn.give(); }
    TurnKeeper& turn;
};

// A thread that asks for the turn, and whether it has had it.
class Guest {
public:
    explicit Guest(TurnKeeper& turn)
        : thread_([&turn, this] {
              asked_.set_value();
              const Held held(turn);
              had_ = true;
          }) {
        asked_.get_future().wait();
    }
    ~Guest() { thread_.join(); }
    [[nodiscard]] bool had() const { return had_; }

private:
    std::promise<void> asked_;
    std::atomic<bool> had_ = false;
    std::thread thread_;
};

TEST(CoreTurn, OneHolderAtATimeWithServerPassesInBetween) {
    TurnKeeper turn;
    int model = 0;  // no lock of its own
    std::atomic<bool> over = false;
    std::vector<std::thread> guests;
    for (int i = 0; i < 3; ++i) {
        guests.emplace_back([&] {
            for (int n = 0; n < 2000; ++n) {
                const Held held(turn);
                const Held nested(turn);
                ++model;
            }
        });
    }
    int passes = 0;
    std::thread server([&] {
        turn.bindserver();
        while (!over) {
            const Held held(turn);
            const Held nested(turn);
            ++model;
            ++passes;
        }
        turn.unbindserver();
    });
    for (auto& guest : guests) guest.join();
    over = true;
    server.join();
    EXPECT_EQ(model, 6000 + passes);
}

TEST(CoreTurn, NoGuestWhileATickIsNearUntilTheServerSaysSo) {
    TurnKeeper turn;
    turn.bindserver();
    turn.openuntil(TurnKeeper::Time::min());
    {
        Guest guest(turn);
        for (int pass = 0; pass < 5; ++pass) {
            const Held held(turn);
            EXPECT_FALSE(guest.had());
        }
        EXPECT_FALSE(guest.had());
        turn.openuntil(TurnKeeper::Time::max());
    }
    turn.unbindserver();
}

TEST(CoreTurn, AServerThatIsNeverIdleLetsOneThroughNowAndThen) {
    TurnKeeper turn;
    turn.bindserver();
    turn.openuntil(TurnKeeper::Time::min());
    {
        Guest guest(turn);
        int passes = 0;
        // It has said that it will ask; the bound is for a machine that takes long to let it.
        for (; !guest.had() && passes < 100'000'000; ++passes) const Held held(turn);
        EXPECT_TRUE(guest.had());
        EXPECT_GE(passes, 20);
        turn.openuntil(TurnKeeper::Time::max());
    }
    turn.unbindserver();
}

TEST(CoreTurn, NoGuestIsPassedOverForEver) {
    TurnKeeper turn;
    std::atomic<bool> over = false;
    std::thread greedy([&] {
        while (!over) const Held held(turn);
    });
    { Guest guest(turn); }  // comes back only if it had its turn
    over = true;
    greedy.join();
}

TEST(CorePacer, RefusesSpeedsThatAreNone) {
    host::Pacer pacer;
    for (const double speed : {0.0, -1.0, 1000.5, std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_THROW(pacer.setspeed(speed), std::invalid_argument) << speed;
    }
    EXPECT_EQ(pacer.speed(), 20);
    pacer.setspeed(0.001);
    pacer.setpaused(true);
    EXPECT_FALSE(pacer.takedue());
    pacer.setpaused(false);
    EXPECT_TRUE(pacer.takedue());
    EXPECT_FALSE(pacer.takedue()) << "the next one is an interval away";
}

}  // namespace
