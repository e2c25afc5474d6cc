// The terminal below the console: how a line is typed and edited, and that an output which nobody reads holds up
// nobody.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <pty.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <termios.h>
#include <utmp.h>

#include <atomic>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <regex>
#include <sstream>
#include <thread>

#include "host/bustle/bustle.h"
#include "host/clients.h"
#include "host/console/colours.h"
#include "host/console/console.h"
#include "host/console/output.h"
#include "host/console/terminal.h"
#include "host/console/typedlines.h"
#include "tests/host/servertest.h"

namespace {

using testing::HasSubstr;

// Where Output writes to, and what has been read of it.
struct Reader {
    int end;
    std::string text;
    void readsuntil(const std::string& wanted) {
        char buffer[4096];
        for (ssize_t got = 1; text.find(wanted) == std::string::npos && got > 0;) {
            got = ::read(end, buffer, sizeof buffer);
            if (got > 0) text.append(buffer, static_cast<std::size_t>(got));
        }
    }
};

TEST(Output, DropsAndCountsWhatNobodyReads) {
    int pipe[2];
    ASSERT_EQ(::pipe2(pipe, O_CLOEXEC), 0);
    Reader reader{pipe[0], {}};
    host::Output output(pipe[1]);
    output.print("first");
    reader.readsuntil("first\n");
    constexpr int printed = 5000;
    for (int i = 0; i < printed; ++i) output.print(fmt::format("{} {}", i, std::string(996, 'x')));
    reader.text.clear();
    reader.readsuntil("nobody read them)\n");
    output.print("last");
    reader.readsuntil("last\n");

    std::istringstream lines(reader.text);
    int next = 0, dropped = 0;
    for (std::string line; std::getline(lines, line) && line != "last"; ++next)
        if (std::sscanf(line.c_str(), "(%d lines were dropped", &dropped) == 1)
            next += dropped - 1;
        else
            EXPECT_EQ(line.substr(0, line.find(' ')), std::to_string(next));
    EXPECT_EQ(next, printed);
    EXPECT_GT(dropped, 0);
    EXPECT_GT(printed - dropped, 1000) << "a megabyte is kept";
    for (const int end : pipe) ::close(end);
}

TEST(Output, StopsWithTheReaderAwayAndWritesWhatIsReadInTime) {
    int pipe[2];
    ASSERT_EQ(::pipe2(pipe, O_CLOEXEC), 0);
    {
        host::Output output(pipe[1]);
        output.print(std::string(1 << 19, 'x'));
    }
    Reader reader{pipe[0], {}};
    std::thread reading([&] { reader.readsuntil("the end\n"); });
    {
        host::Output output(pipe[1]);
        output.print("the end");
    }
    reading.join();
    ::close(pipe[0]);
    ::signal(SIGPIPE, SIG_IGN);
    host::Output output(pipe[1]);
    for (int i = 0; i < 3; ++i) output.print("to nobody");
    output.stop();
    ::close(pipe[1]);
}

TEST(Output, ATerminalThatIsHeldGoesOnWhereItStood) {
    int near = -1, far = -1;
    ASSERT_EQ(::openpty(&far, &near, nullptr, nullptr, nullptr), 0);
    Reader reader{far, {}};
    ASSERT_EQ(::tcflow(near, TCOOFF), 0);
    {
        host::Output output(near);
        for (int i = 0; i < 3000; ++i) output.print(fmt::format("{} {}", i, std::string(996, 'x')));
        ASSERT_EQ(::tcflow(near, TCOON), 0);
        reader.readsuntil("nobody read them)");
        EXPECT_THAT(reader.text, testing::StartsWith("0 xxx"));
        ASSERT_EQ(::tcflow(near, TCOOFF), 0);
        output.print("held");
    }
    ::close(near);
    ::close(far);
}

// A person at a terminal of his own.
class TypingTest : public coretests::ServerTest {
protected:
    TypingTest() {
        ::setenv("TERM", "xterm", 1);
        EXPECT_EQ(::openpty(&reader.end, &near, nullptr, nullptr, nullptr), 0);
        output.emplace(near);
        sitdown();
    }
    ~TypingTest() override {
        terminal.reset();
        output.reset();
        ::close(near);
        ::close(reader.end);
    }
    void sitdown() {
        terminal.emplace(console, *output, near, directory.path, [this] { stopped = true; });
        reader.readsuntil("> ");
    }
    // What the terminal shows from here on, up to a text.
    std::string typing(const std::string& keys, const std::string& wanted) {
        reader.text.clear();
        EXPECT_EQ(::write(reader.end, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
        reader.readsuntil(wanted);
        return reader.text;
    }
    [[nodiscard]] tcflag_t modes() const {
        termios now{};
        EXPECT_EQ(::tcgetattr(near, &now), 0);
        return now.c_lflag;
    }

    int near = -1;
    Reader reader{-1, {}};
    std::optional<host::Output> output;
    host::Clients clients{*server};
    host::Bustle bustle{*server, clients};
    host::Console console{*server, clients, bustle,
                          [this](const std::string& text) { output->print(host::terminaltext(text, false)); }};
    std::atomic<bool> stopped = false;
    std::optional<host::Terminal> terminal;
};

constexpr const char *up = "\x1b[A", *clearline = "\x15", *whole = "\x0c";  // drawn anew

TEST_F(TypingTest, LinesPrintedMeanwhileStandAboveTheTypedOneWhichStaysWhole) {
    typing("joi", "joi");
    reader.text.clear();
    output->print("a log line");
    reader.readsuntil("> joi");
    EXPECT_EQ(reader.text, "\r\x1b[Ja log line\r\n> joi");
    EXPECT_THAT(typing("n 小清\r", "\r\n> "), HasSubstr("小清 joined"));

    const std::string longer(200, 'x');  // three rows of 80
    typing(longer + "END", "END");
    reader.text.clear();
    output->print("another");
    reader.readsuntil("another\r\n> x");
    EXPECT_THAT(reader.text, HasSubstr("\r\x1b[2A\x1b[Janother"));
}

TEST_F(TypingTest, TabOffersWhatFits) {
    for (const char* name : {"Alice", "Mary Ann"})
        clients.join({.name = name, .xuid = host::defaultxuid(*server, name)});
    const struct {
        const char *typed, *shown;
    } cases[] = {
        {"pl\t", "> players "},
        {"give Al\tdia\t\t", "diamond_axe"},
        {"give Alice minecraft:diamond_sw\t", "> give Alice minecraft:diamond_sword "},
        {"kill Mary A\t", "> kill Mary Ann "},
        {"join Bob --t\t", "> join Bob --touch "},
        {"Mar\tscr\t", "> Mary Ann screen "},
        {"Alice click inv\t", "> Alice click inventory "},
        {"Alice: ord\tmyr\t", "> Alice: ordomart myreshop "},
        {"Alice: ordomart search \t", "recycle"},
        {"Bob: ord\t", "> Bob: ord"},
    };
    for (const auto& c : cases)
        EXPECT_THAT(typing(clearline + std::string(c.typed) + whole, c.shown), HasSubstr(c.shown)) << c.typed;
}

TEST_F(TypingTest, TypedLinesAreKeptForTheirOwnerAndBounded) {
    const auto file = directory.path / "console.history";
    typing("help\r", "stops the server");
    terminal.reset();
    EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms(0600));
    std::ofstream(file, std::ios::app) << "broken \xff\n";
    for (int i = 0; i < 600; ++i) std::ofstream(file, std::ios::app) << "# " << i << '\n';
    sitdown();
    typing(std::string(up) + up + whole, "> # 598");
    typing(std::string(clearline) + "stop\r", "\n");
    terminal.reset();
    EXPECT_TRUE(stopped);
    EXPECT_NE(modes() & ICANON, 0U);
    std::ifstream in(file);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    ASSERT_EQ(lines.size(), host::TypedLines::mostlines);
    EXPECT_EQ(lines.front(), "# 101");
    EXPECT_EQ(lines.back(), "stop");

    std::filesystem::remove(file);
    std::filesystem::create_directory(file);
    sitdown();
    EXPECT_THAT(typing("help\r", "console.history"), HasSubstr("it cannot be read, and what is typed is not kept"));
}

TEST_F(TypingTest, TheEndOfTheInputAndAHeldTerminalEndTheTypingAlone) {
    EXPECT_EQ(modes() & ICANON, 0U);
    typing("\x04", "\n");
    output->print("it goes on");
    reader.readsuntil("it goes on");
    EXPECT_NE(modes() & ICANON, 0U);
    EXPECT_FALSE(stopped);
    sitdown();
    ASSERT_EQ(::tcflow(near, TCOOFF), 0);
    output->print("held");
    terminal.reset();
    EXPECT_NE(modes() & ICANON, 0U);
    ASSERT_EQ(::tcflow(near, TCOON), 0);
}

TEST(Typing, TheTerminalIsPutBackWhateverEndsTheProgram) {
    ::setenv("TERM", "xterm", 1);
    for (const int signal : {0, SIGTERM, SIGHUP, SIGQUIT, SIGABRT}) {
        const coretests::Directory directory;
        const std::string path = directory.path.string();
        Reader reader{-1, {}};
        int near = -1;
        ASSERT_EQ(::openpty(&reader.end, &near, nullptr, nullptr, nullptr), 0);
        termios before{}, during{}, after{};
        ASSERT_EQ(::tcgetattr(near, &before), 0);
        const pid_t server = ::fork();
        if (server == 0) {
            ::prctl(PR_SET_PDEATHSIG, SIGKILL);
            const rlimit nocore{0, 0};
            ::setrlimit(RLIMIT_CORE, &nocore);
            ::login_tty(near);
            ::execl(SERVER_PATH, SERVER_PATH, path.c_str(), "--api-port", "0", nullptr);
            ::_exit(127);
        }
        reader.readsuntil("\n> ");
        ASSERT_EQ(::tcgetattr(near, &during), 0);
        EXPECT_EQ(during.c_lflag & (ICANON | ECHO), 0U);
        // Ctrl-C is the terminal's own signal, in the middle of a line.
        ASSERT_EQ(::write(reader.end, "half\x03", signal == 0 ? 5 : 4), signal == 0 ? 5 : 4);
        if (signal != 0) ::kill(server, signal);
        int status = 0;
        ASSERT_EQ(::waitpid(server, &status, 0), server);
        if (signal == 0 || signal == SIGTERM)
            EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << signal;
        else
            EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal) << signal;
        ASSERT_EQ(::tcgetattr(near, &after), 0);
        EXPECT_EQ(after.c_lflag, before.c_lflag) << signal;
        EXPECT_EQ(after.c_iflag, before.c_iflag) << signal;
        EXPECT_EQ(after.c_oflag, before.c_oflag) << signal;
        EXPECT_EQ(std::memcmp(after.c_cc, before.c_cc, sizeof after.c_cc), 0) << signal;
        ::close(near);
        ::close(reader.end);
    }
}

}  // namespace
