// The console: what a person types, and that what the players hear and are asked is drawn once.
#include "host/console/console.h"

#include <gmock/gmock.h>

#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>

#include "host/bustle/bustle.h"
#include "host/clients.h"
#include "host/console/colours.h"
#include "host/demo/demo.h"
#include "tests/host/servertest.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class ConsoleTest : public coretests::ServerTest {
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

}  // namespace
