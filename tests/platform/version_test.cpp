// Release numbers as an update check meets them.
#include "platform/version.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

using platform::LL::Version;

TEST(Versions, AreReadAndShown) {
    const std::pair<const char*, const char*> readings[] = {
        {"1.2.3", "1.2.3"},
        {"v1.2.3", "1.2.3"},
        {"V1.2", "1.2.0"},
        {"7", "7.0.0"},
        {"1.2.3-beta", "1.2.3 Beta"},
        {"1.2.3 Dev", "1.2.3 Dev"},
        {"1.2-BETA", "1.2.0 Beta"},
        {"1.2.3-release", "1.2.3"},
    };
    for (const auto& [text, shown] : readings) EXPECT_EQ(Version::parse(text).toString(true), shown);
    EXPECT_EQ(Version::parse("1.2.3-beta").toString(), "1.2.3");
    for (const auto* text : {"", "v", "beta", "1.", "1..2", "1.2.3.4", "1.2.3-rc1", "1.2.3beta", "-1.2.3", "1.2.-3",
                             "99999999999", "1.2.3 "}) {
        EXPECT_THROW((void)Version::parse(text), std::invalid_argument) << text;
    }
}

TEST(Versions, AreOrdered) {
    const std::vector<Version> ascending = {
        {0, 9, 9}, {1, 1, 9}, {1, 2, 0, Version::Dev}, {1, 2, 0, Version::Beta}, {1, 2, 0}, {1, 2, 1, Version::Dev},
        {1, 10, 0}};
    for (std::size_t i = 1; i < ascending.size(); ++i) EXPECT_LT(ascending[i - 1], ascending[i]) << i;
}
