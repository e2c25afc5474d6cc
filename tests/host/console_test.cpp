// The terminal: what a person types and how it is edited, that what the players hear and are asked is drawn once, and
// that an output which nobody reads holds up nobody.
#include "host/console/console.h"

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
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <thread>

#include "host/bustle/bustle.h"
#include "host/clients.h"
#include "host/console/colours.h"
#include "host/console/output.h"
#include "host/console/terminal.h"
#include "host/console/typedlines.h"
#include "host/demo/demo.h"
#include "tests/host/manualserver.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class ConsoleTest : public coretests::ManualServer {
protected:
    // What the line makes the console print.
    std::string typed(const std::string& line) {
        out.clear();
        EXPECT_TRUE(console.line(line));
        return out;
    }

    std::string out;
    host::Console::Show show = [this](const std::string& text) { out += host::terminaltext(text, false); };
    host::Clients clients{*server};
    host::Bustle bustle{*server, clients};
    host::Console console{*server, clients, bustle, show};
};

TEST_F(ConsoleTest, PlaysAPlayer) {
    EXPECT_THAT(typed("join Alice --lang zh_CN"), HasSubstr("Alice joined (xuid 2535"));
    EXPECT_THAT(typed("Alice: nonsense"), HasSubstr("Alice > Unknown command: nonsense"));
    EXPECT_THAT(typed("Alice: ordomart formmenu"), AllOf(HasSubstr("Alice is asked:"), HasSubstr("0: ")));
    EXPECT_THAT(typed("Alice form"), Not(HasSubstr("Unknown command"))) << "told already";
    EXPECT_EQ(typed("Alice answer close"), "");
    EXPECT_THAT(typed("give Alice diamond_sword"), HasSubstr("Alice has minecraft:diamond_sword \u00d71 in slot 0"));
    EXPECT_THAT(typed("give Alice apple 64 0"),
                HasSubstr("apple \u00d764 in slot 0, instead of minecraft:diamond_sword \u00d71"));
    EXPECT_THAT(typed("give Alice diamond_sword"), HasSubstr("in slot 1"));
    EXPECT_THAT(typed("kill Alice"), "Alice is dead");
    EXPECT_THAT(typed("kill Alice"), "Alice is dead, as before");
    EXPECT_THAT(typed("revive Alice"), "Alice lives");
    for (const char* alone : {"Alice", "Alice:", " Alice "})
        EXPECT_THAT(typed(alone), HasSubstr("Alice has no form and no menu in front; he can screen"));
    EXPECT_THAT(typed("Alice screen"), HasSubstr("minecraft:diamond_sword"));
    EXPECT_THAT(typed("money Alice 500"), HasSubstr("Alice has 500"));
    typed("leave Alice");
    typed("join Alice");
    EXPECT_THAT(typed("Alice: ordomart formmenu"), HasSubstr("Alice is asked:")) << "the first form of another session";
    EXPECT_THAT(typed("leave Alice"), "Alice left");
    EXPECT_THAT(typed("Alice"), HasSubstr("Alice is not joined: type \"join Alice\""));
    for (const char* end : {"stop", "quit", "exit"}) EXPECT_FALSE(console.line(end));
}

TEST_F(ConsoleTest, DrawsFormsOfItsOwnPlayersAloneAndTheRestInALine) {
    clients.join({.name = "Petra", .xuid = host::defaultxuid(*server, "Petra")});
    EXPECT_EQ(typed("Petra: ordomart formmenu"), "Petra is asked: \"Main menu\"; \"Petra form\" shows it\n");
    EXPECT_THAT(typed("Petra form"), HasSubstr("0: "));
    EXPECT_THAT(typed("Petra"), HasSubstr("Petra has the form \"Main menu\" and no menu in front"));
    typed("Petra answer close");

    typed("join Alice");
    typed("Alice: ordomart");
    std::istringstream help(typed("help"));
    for (std::string line; std::getline(help, line);) EXPECT_LE(line.size(), 100U) << line;
}

TEST_F(ConsoleTest, DrawsAStackInALine) {
    typed("join Alice");
    typed("Alice: ordomart myshop");
    server->ticks(10);
    EXPECT_THAT(typed("Alice screen"),
                HasSubstr(" \u00b7 Items sold:0 \u00b7 Sales volume:0 \u00b7 Your name : Alice"));
}

std::string readme() {
    std::ifstream file(SOURCE_PATH "/README.md");
    return {std::istreambuf_iterator<char>(file), {}};
}

// What a shell command prints; it has to succeed.
std::string printed(const std::string& command) {
    FILE* const pipe = ::popen(command.c_str(), "r");
    std::string text;
    for (int c; (c = std::fgetc(pipe)) != EOF;) text += static_cast<char>(c);
    EXPECT_EQ(::pclose(pipe), 0) << command;
    return text;
}

// In a folder of nothing but itself and its texts, it can neither install nor build first.
TEST(Run, HelpNeedsNoBuildAndIsTheServersOwn) {
    const coretests::Directory alone;
    const std::string folder = alone.path.string();
    printed("cp " SOURCE_PATH "/run " + folder + " && mkdir " + folder +
            "/scripts && cp " SOURCE_PATH "/scripts/help*.txt " + folder + "/scripts/");
    std::string own = printed(SERVER_PATH " --help");
    for (std::size_t at; (at = own.find("ordomart-server")) != std::string::npos;) own.replace(at, 15, "./run");
    EXPECT_THAT(printed(folder + "/run DIRECTORY --help"), AllOf(StartsWith(own), HasSubstr("--network")))
        << "scripts/help.txt is behind";
    EXPECT_THAT(readme(), HasSubstr("Version " PROJECT_VERSION));
}

// What the README has people type: the lines of its block that begins with "join", and what is quoted of a player.
std::vector<std::string> readmelines() {
    const std::string text = readme();
    static const std::regex quoted(R"(`([A-Z][a-z]+:? [^`\n]+)`)"), block("```\n(join [^`]*)```");
    std::vector<std::string> lines;
    std::smatch found;
    if (!std::regex_search(text, found, block)) return lines;
    std::istringstream typed(found[1]);
    for (std::string line; std::getline(typed, line);) lines.push_back(line);
    const std::string player = lines.front().substr(5), rest = found.suffix();
    for (std::sregex_iterator at(rest.begin(), rest.end(), quoted), end; at != end; ++at)
        if ((*at)[1].str().starts_with(player)) lines.push_back((*at)[1]);
    return lines;
}

TEST_F(ConsoleTest, TheReadmeIsTrueLineByLineInTheDemoMarket) {
    server->stop();
    std::filesystem::remove_all(directory.path / "plugins");
    ASSERT_TRUE(host::makedemo(directory.path.string()));
    server->start();
    host::playdemo(*server);
    std::string coded;
    host::Console market(*server, clients, bustle, [&](const std::string& text) {
        coded += text;
        out += host::terminaltext(text, false);
    });
    const std::map<std::string, std::string> told{{"Alice answer 3", "purchase successfully!"},
                                                  {"Alice screen", "Apple \u00d7"},
                                                  {"Alice click inventory 9", "Purchase goods"},
                                                  {"Alice answer 2", "purchase successfully!"},
                                                  {"Alice: ordomart myshop", ""}};
    std::set<std::string> met;
    for (const std::string& line : readmelines()) {
        out.clear();
        coded.clear();
        ASSERT_TRUE(market.line(line));
        server->ticks(10);
        EXPECT_THAT(coded, Not(HasSubstr("\u00a7c"))) << line;
        EXPECT_THAT(coded, Not(HasSubstr("waits behind"))) << line;
        if (const auto expected = told.find(line); expected != told.end()) {
            EXPECT_THAT(out, HasSubstr(expected->second)) << line;
            met.insert(line);
        }
    }
    EXPECT_EQ(met.size(), told.size());

    market.line("Alice: ordomart formmenu");
    out.clear();
    market.line("Alice: ordomart formmenu");
    EXPECT_THAT(out, HasSubstr("a form waits behind \"Main menu\": \"Main menu\"; answer the first, or close it"));
    out.clear();
    market.line("Alice answer close");
    EXPECT_THAT(out, HasSubstr("Alice is asked:")) << "it is in front now";
}

TEST_F(ConsoleTest, SaysWhatIsWrong) {
    typed("join Alice");
    const struct {
        const char *line, *told;
    } cases[] = {
        {"", ""},
        {"# a remark", ""},
        {"give Alice apple 999", "a stack of minecraft:apple has a count of 1 to 64, not 999; nothing was given"},
        {"give Alice apple 0", "a count of 1 to 64, not 0; nothing was given"},
        {"give Alice apple 1 -1", "\"-1\" is no slot"},
        {"kill", "usage: kill NAME"},
        {"kill Bob", "nobody named \"Bob\" was ever here"},
        {"Bob", "try help, or \"join Bob\""},
        {"Bob: ordomart", "\"Bob:\" is neither a line of the console nor a joined player"},
        {"join", "usage: join NAME"},
        {"join Bob --lang", "--lang needs a value"},
        {"join Bob --fast", "join does not know \"--fast\""},
        {"join Alice", "Alice is joined here already"},
        {"leave Bob", "no player \"Bob\" is joined here"},
        {"give Alice nothing", "there is no item \"nothing\""},
        {"give Alice apple some", "\"some\" is no number"},
        {"money Bob", "nobody here knows a player \"Bob\""},
        {"Alice click", "usage: NAME click CONTAINER SLOT"},
        {"Alice click chest 0", "\"chest\" is none of armour"},
        {"Alice answer 0", "Alice has no form to answer"},
        {"Alice dances", "Alice can screen, form, answer"},
    };
    for (const auto& c : cases) EXPECT_THAT(typed(c.line), HasSubstr(c.told)) << c.line;
}

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
class TypingTest : public coretests::ManualServer {
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
