// The tax of a transfer.
#include <gtest/gtest.h>

#include "plugin/economy/economymanager.h"

namespace {

TEST(TransferFee, TruncatesTowardsZeroAndIsNeverNothing) {
    struct {
        std::int64_t amount;
        int percent;
        std::int64_t fee;
    } const cases[] = {
        {1000, 0, 0},
        {1000, 5, 50},
        {10, 5, 1},
        {0, 5, 1},
        {99, 5, 4},
        {199, 5, 9},
        {1000, -5, -50},
        {10, -5, 1},
        {-50, 3, -1},
        {-199, 5, -9},
        {199, 127, 252},
        {-199, -128, 254},
        {9'000'000'000'000'000'000, 100, 9'000'000'000'000'000'000},
    };
    for (const auto& c : cases)
        EXPECT_EQ(ordomart::transferfee(c.amount, c.percent), c.fee) << c.percent << " % of " << c.amount;
}

}  // namespace
