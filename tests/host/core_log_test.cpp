// The log: what reaches which file, what reaches the console, and what is kept for readers.
#include "host/core/log.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <ctime>

#include "tests/host/coretools.h"

namespace {

using platform::LogLevel;
using testing::ElementsAre;

class CoreLog : public testing::Test {
protected:
    void SetUp() override {
        ::setenv("TZ", "UTC", 1);
        ::tzset();
        log.setconsole([this](const std::string& line) { console.push_back(line); });
    }
    void info(const std::string& message, const std::string& file = {}, const std::string& title = "Ordomart") {
        log.write(title, LogLevel::info, message, 5, file);
    }

    coretests::Directory directory;
    std::int64_t now = 1769860800000;
    std::vector<std::string> console;
    host::Log log{directory.path.string(), false, [this] { return now; }};
};

TEST_F(CoreLog, EachLineGoesToItsFileAtOnce) {
    info("too early for any file");
    directory.put("all.log", "before\r\n");
    log.setDefaultFile("all.log", true);
    info("one");
    EXPECT_TRUE(log.openFile("own.log", true));
    info("two", "own.log");
    info("three");
    info("the server's own", {}, "Server");
    EXPECT_EQ(directory.get("all.log"),
              "before\r\n2026-01-31 12:00:00 [Ordomart][Info] one\r\n2026-01-31 12:00:00 [Ordomart][Info] three\r\n");
    EXPECT_EQ(directory.get("own.log"), "2026-01-31 12:00:00 [Ordomart][Info] two\r\n");
    EXPECT_EQ(directory.get("server.log"), "2026-01-31 12:00:00 [Server][Info] the server's own\r\n");
}

TEST_F(CoreLog, AFileThatWasMovedAwayIsBegunAnew) {
    info("one", "own.log");
    std::filesystem::rename(directory.path / "own.log", directory.path / "yesterday.log");
    info("two", "own.log");
    EXPECT_THAT(directory.get("own.log"), testing::HasSubstr("two"));
}

TEST_F(CoreLog, MoreFilesThanAreKeptOpenLoseNothing) {
    for (const char* text : {"first", "second"}) {
        for (int shop = 0; shop < 100; ++shop) info(text, std::to_string(shop) + ".log");
    }
    for (int shop = 0; shop < 100; ++shop) {
        EXPECT_THAT(directory.get(std::to_string(shop) + ".log"),
                    testing::AllOf(testing::HasSubstr("first"), testing::HasSubstr("second")));
    }
    const auto open = std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    EXPECT_LT(open, 80);
}

TEST_F(CoreLog, ConsoleLevelsCountDownFromEverything) {
    constexpr LogLevel levels[] = {LogLevel::debug, LogLevel::info, LogLevel::warn, LogLevel::error, LogLevel::fatal};
    for (int consolelevel = 0; consolelevel <= 5; ++consolelevel) {
        console.clear();
        for (const auto level : levels) log.write("T", level, "x", consolelevel, "levels.log");
        EXPECT_EQ(console.size(), static_cast<std::size_t>(consolelevel));
    }
    EXPECT_EQ(console.front(), "2026-01-31 12:00:00 [T][Debug] x");
    EXPECT_EQ(console.back(), "2026-01-31 12:00:00 [T][Fatal] x");
    const auto content = directory.get("levels.log");
    EXPECT_EQ(std::count(content.begin(), content.end(), '\n'), 30) << "the file gets them all";
}

TEST_F(CoreLog, ReadersGetTheLastLinesByNumber) {
    std::vector<std::uint64_t> watched;
    const auto watch = log.watch([&](const host::LogLine& line) {
        if (line.message == "{braces}") info("a watcher may log");  // and must not lock itself out
        watched.push_back(line.number);
    });
    info("{braces}");
    EXPECT_THAT(watched, ElementsAre(2u, 1u));
    for (int i = 3; i <= 6000; ++i) log.write("T", LogLevel::info, std::to_string(i), 0, {});
    const auto all = log.lines();
    ASSERT_EQ(all.size(), 5000u);
    EXPECT_EQ(all.front().number, 1001u);
    EXPECT_EQ(all.back().message, "6000");
    EXPECT_FALSE(all.back().onconsole);
    EXPECT_EQ(log.lines(5998).size(), 2u);
    EXPECT_TRUE(log.lines(6000).empty());
    EXPECT_TRUE(log.lines(7000).empty());
}

TEST_F(CoreLog, AfterClosingLinesReachNoFileAnyMore) {
    info("one", "own.log");
    log.close();
    log.setDefaultFile("late.log", true);
    info("two", "own.log");
    info("three");
    EXPECT_THAT(directory.get("own.log"), testing::Not(testing::HasSubstr("two")));
    EXPECT_FALSE(std::filesystem::exists(directory.path / "late.log"));
    EXPECT_EQ(log.lines().size(), 3u);
}

}  // namespace
