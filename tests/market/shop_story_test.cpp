// What players and operators see of shops that are forgotten, that cannot be saved, and that are broken.
#include <gmock/gmock.h>

#include "host/core/events.h"
#include "tests/stage/stage.h"

using namespace stage;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using testing::StrEq;

namespace {

const std::string ada = "2535400000000001", bob = "2535400000000002", cid = "2535400000000003";

// The list of all goods, and the form for the first of them.
Actor& lists(Actor& player) { return player.dismisses().types("ordomart formmenu").answers(0); }
Actor& picks(Actor& player) { return lists(player).answers(0); }
void buys(Actor& player, const char* quantity) { player.fills({{"quantity", quantity}}); }

}  // namespace

// A shop that nobody has asked for is read again, and must not look unchanged to a form from before.
TEST(ShopStory, AnOldFormFitsNoShopThatIsReadAgain) {
    struct {
        const char* name;
        std::function<void(Actor&)> between;
    } const cases[] = {
        {"sold out", [](Actor& carl) { buys(picks(carl), "10"); }},
        {"banned", [](Actor& carl) { carl.types("ordomart ban sell " + bob + " fraud"); }},
        {"untouched", [](Actor&) {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Stage stage;
        stage.writeshop(bob, {good("diamond", 1, 10)});
        Actor& alice = stage.join("Alice", ada).setmoney(100);
        Actor& carl = stage.join("Carl", cid, "en_US", 7, 1).setmoney(100);
        picks(alice);
        c.between(carl);
        stage.seconds(3010);
        buys(alice.forgets(), "10");
        EXPECT_EQ(alice.chat(), "Operation failed, shopinfo has been changed");
        EXPECT_EQ(alice.counts("minecraft:diamond"), 0);
        EXPECT_EQ(alice.money(), 100);
    }
}

TEST(ShopStory, WhatAStopCannotSaveIsToldAndKept) {
    Stage stage;
    const std::string file = "plugins/Ordomart/data/" + bob + ".json";
    stage.writeshop(bob, {good("apple", 7, 10)});
    const std::string intact = stage.file(file);
    std::vector<std::string> unsaved;
    const auto restarts = [&] {
        unsaved.clear();
        stage.onserver([&] {
            stage.server().events().listen([&](const platform::Event::ServerStoppedEvent& stopped) {
                unsaved = stopped.unsaved;
                return true;
            });
        });
        stage.restart();
    };
    const auto listed = [&] {
        const std::string text = lists(stage.join("Alice", ada)).formtext();
        stage.clients().leave("Alice");
        return text;
    };
    buys(picks(stage.join("Carl", cid).setmoney(21)), "3");
    stage.write(file, "{");
    restarts();
    EXPECT_THAT(unsaved, ElementsAre(AllOf(StartsWith(file + " (sell): " + file + ": [json.exception.parse_error"),
                                           EndsWith("the next start brings it in"))));
    EXPECT_THAT(stage.log(), HasSubstr("[info] 1 shops had changed when the last run ended"));
    EXPECT_THAT(listed(), HasSubstr(":7   §f"));
    EXPECT_EQ(stage.file(file), "{");

    // Mended under the running server with a copy that is older than the trade.
    stage.write(file, intact);
    stage.seconds(60);
    EXPECT_THAT(stage.file(file), Not(StrEq(intact)));
    restarts();
    EXPECT_THAT(unsaved, ElementsAre());
    EXPECT_THAT(listed(), HasSubstr(":7   §f"));
}
