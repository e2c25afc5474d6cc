// The terminal: what a person types, and that what the players hear and are asked is drawn once.
#include "host/console/console.h"

#include <gmock/gmock.h>

#include <sstream>

#include "host/clients.h"
#include "host/demo/demo.h"
#include "tests/host/manualserver.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class ConsoleTest : public coretests::ManualServer {
protected:
    // What the line makes the console print.
    std::string typed(const std::string& line) {
        out.str("");
        EXPECT_TRUE(console.line(line));
        return out.str();
    }

    std::ostringstream out;
    host::Clients clients{*server};
    host::Console console{*server, clients, out, false};
};

TEST_F(ConsoleTest, PlaysAPlayer) {
    EXPECT_THAT(typed("join Alice --lang zh_CN"), HasSubstr("Alice joined (xuid 2535"));
    EXPECT_THAT(typed("Alice: nonsense"), HasSubstr("Alice > Unknown command: nonsense"));
    EXPECT_THAT(typed("Alice: ordomart formmenu"), AllOf(HasSubstr("Alice is asked:"), HasSubstr("0: ")));
    EXPECT_THAT(typed("Alice form"), Not(HasSubstr("Unknown command"))) << "told already";
    EXPECT_EQ(typed("Alice answer close"), "");
    EXPECT_THAT(typed("give Alice diamond_sword"), "");
    EXPECT_THAT(typed("Alice screen"), HasSubstr("minecraft:diamond_sword"));
    EXPECT_THAT(typed("money Alice 500"), HasSubstr("Alice has 500"));
    typed("leave Alice");
    typed("join Alice");
    EXPECT_THAT(typed("Alice: ordomart formmenu"), HasSubstr("Alice is asked:")) << "the first form of another session";
    EXPECT_FALSE(console.line("stop"));
}

TEST_F(ConsoleTest, AFirstPurchaseInTheDemoMarket) {
    server->stop();
    std::filesystem::remove_all(directory.path / "plugins");
    ASSERT_TRUE(host::makedemo(directory.path.string()));
    server->start();
    host::playdemo(*server);
    host::Console market(*server, clients, out, false);
    for (const char* line : {"join Alice", "Alice: ordomart formmenu", "Alice answer Selling", "Alice answer Orchard",
                             "Alice answer 3", "Alice answer Exit", "Alice screen"}) {
        out.str("");
        market.line(line);
    }
    EXPECT_THAT(out.str(), HasSubstr("Apple \u00d73"));
}

TEST_F(ConsoleTest, SaysWhatIsWrong) {
    typed("join Alice");
    const struct {
        const char *line, *told;
    } cases[] = {
        {"", ""},
        {"# a remark", ""},
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
