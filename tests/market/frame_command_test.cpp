// The command: its grammar, who may use what, and the text of every failure; and what of a visit outlives it.
#include <gmock/gmock.h>

#include "host/core/commands.h"
#include "tests/market/chest_stage.h"

using namespace chest;
using testing::ElementsAre;

namespace {

constexpr const char* toosoon = " Execution times are too frequent ";

Actor& joinoperator(Stage& stage) { return stage.join("Olga", "2535400000000009", "en_US", desktop, 1); }

// Whether the operator manages the system shop, seen at the switch, which ends or begins it.
std::string switchshop(Actor& player) {
    player.dismisses().forgets().types("ordomart").presses("Switch");
    const std::string toast = player.toasts();
    player.dismisses();
    return toast.find("restored") != std::string::npos ? "had the system shop" : "had his own";
}

}  // namespace

TEST(Command, Grammar) {
    Stage stage;
    EXPECT_THAT(stage.server().commands().usage(),
                ElementsAre("/ordomart [Operation: baseoperation]",
                            "/ordomart <Operation: baseoperation1> [playerxuid|playername: string]",
                            "/ordomart <Operation: baseoperation2> [Operation: searchtype] <filtetxt: string> "
                            "[searchinitemtag: bool] [searchinitemdesc: bool]",
                            "/ordomart <bans: baseoperation3> <tp: searchtype> <xuid|name: string> "
                            "[banreason: string] [bannedtime(seconds): int]",
                            "/ordomart <manages: manageoption> [playerxuid|playername: string]",
                            "/ordomart <prices: pricesoperation> [item: string]",
                            "/ordomart <undo: undooperation> <number: int>",
                            "/ordomart <audit: auditoperation> [then: auditoption]",
                            "/ordomart <reload: reloadoperation>", "/ordomart <export: exportoperation> [name: string]",
                            "/ordomart <import: importoperation> <name: string>",
                            "/ordomart <trades: tradesoperation> [playerxuid|playername: string]"));
    std::vector<std::string> words;
    for (const auto& completion :
         stage.server().commands().complete("ordomart ", platform::CommandPermissionLevel::Any))
        words.push_back(completion.text);
    EXPECT_THAT(words, ElementsAre("recycle", "buy", "myshop", "myreshop", "filter", "mainmenu", "ordomenu", "formmenu",
                                   "getoffscores", "buybyshop", "rebyshop", "search", "ban", "unban", "manage",
                                   "resetmanage", "prices", "undo", "audit", "reload", "export", "import", "trades"));
}

TEST(Command, WhoMayUseWhat) {
    Stage stage;
    stage.writeshop(bob, {good("apple", 7, 10)});
    Actor& alice = stage.join("Alice", ada);
    stage.join("Bob", bob).leaves();
    for (const char* line : {"", " buy", " getoffscores", " search sell x", " ban sell Bob", " manage", " resetmanage"})
        stage.onserver([&] {
            const auto result = stage.server().commands().execute(std::string("ordomart") + line, nullptr,
                                                                  platform::CommandPermissionLevel::Owner);
            ASSERT_EQ(result.messages.size(), 1U) << line;
            EXPECT_FALSE(result.messages[0].success);
            EXPECT_EQ(result.messages[0].text, "you must execute as a player") << line;
        });
    for (const char* line :
         {"ban sell Bob", "unban sell Bob", "ban sell Nobody", "manage", "manage Bob", "resetmanage"})
        EXPECT_EQ(alice.forgets().types(std::string("ordomart ") + line).replies(), "permission denied") << line;
    EXPECT_TRUE(alice.form().is_null());
    EXPECT_EQ(stage.shopfile(bob)["sell"]["shopstate"], 0);
}

TEST(Command, EveryFailureHasItsText) {
    Stage stage;
    for (const auto& owner : {bob, std::string("systemshop")}) stage.writeshop(owner, {good("apple", 7, 10)});
    stage.join("Bob", bob).leaves();
    Actor& olga = joinoperator(stage);
    stage.writeshop(olga.xuid(), nullptr);
    stage.join("Carl", "2535400000000003").leaves();  // known, but without a shop file
    const std::string self = "you can not search yourself!!!";
    const std::string managing = "set manageid successfully! Remeber reset your manageid after done!";
    struct {
        const char* line;
        std::string reply;
    } const cases[] = {
        {"recycle", "recyclemenu failed"},
        {"buy", "sellmenu failed"},
        {"myshop", "myshop failed"},
        {"myreshop", "myreshop failed"},
        {"ordomenu", "ordomenu failed"},
        {"buybyshop", "failed to filter"},
        {"rebyshop", "failed to filter"},
        {"search sell apple", "failed to filter"},
        {"buybyshop Bob", ""},  // a menu that does not open is not looked at
        {"rebyshop 2535400000000002", ""},
        {"buybyshop Olga", self},
        {"rebyshop 2535400000000009", self},
        {"buybyshop Carl", "failed to find Carl"},
        {"rebyshop \"\"", "failed to find "},
        {"getoffscores", "failed.your moneymode is 1(for LLmoney)"},
        {"ban sell Carl", "failed to find playerinfo:Carl"},
        {"unban recycle 77", "failed to find playerinfo:77"},
        {"manage Carl", "failed to find Carl"},
        {"manage Olga", self},
        {"manage Bob", managing + "\nmymanageshop failed"},
        {"manage systemshop", managing + "\nmymanageshop failed"},
        {"resetmanage", "reset manageid successfully"},
    };
    olga.dies();  // not in a state to be shown a menu
    for (const auto& c : cases) {
        EXPECT_EQ(olga.forgets().types(std::string("ordomart ") + c.line).replies(), c.reply) << c.line;
        EXPECT_EQ(olga.chat(), "") << c.line;
    }
}

TEST(Command, TheBareWordIsTheLargeMenu) {
    Stage stage;
    Actor& alice = stage.join("Alice", ada);
    const auto shown = [&](const char* line) {
        alice.dismisses().types(line);
        EXPECT_EQ(alice.replies(), "") << line;
        return alice.form();
    };
    const json large = shown("ordomart");
    EXPECT_EQ(large["buttons"].size(), 15U);
    EXPECT_EQ(shown("ordomart mainmenu"), large);
    EXPECT_EQ(shown("ordomart formmenu")["buttons"].size(), 4U);
}

TEST(Command, ManagingLastsUntilItIsResetOrThePlayerLeaves) {
    Stage stage;
    for (const auto& owner : {bob, std::string("systemshop")}) stage.writeshop(owner, {good("apple", 7, 10)});
    Actor* olga = &joinoperator(stage);
    stage.writeshop(olga->xuid(), nullptr);
    EXPECT_EQ(switchshop(*olga), "had his own");
    EXPECT_EQ(switchshop(*olga), "had the system shop");
    const auto manages = [&] {
        olga->dies().types("ordomart manage systemshop").revives();
        stage.ticks(1);
    };
    manages();
    EXPECT_EQ(switchshop(*olga), "had the system shop");
    manages();
    olga->types("ordomart resetmanage");
    EXPECT_EQ(switchshop(*olga), "had his own");

    olga->leaves();  // with the system shop
    olga = &joinoperator(stage);
    EXPECT_EQ(switchshop(*olga), "had his own");
}

TEST(Guards, TheCoolDownIsOfWholeSecondsAndOneForAllMenus) {
    Stage stage;
    Actor* alice = &stage.join("Alice", ada);
    struct {
        std::int64_t at;  // milliseconds behind a full second
        const char* word;
        bool opens;
    } const cases[] = {{999, "buy", true},       {1000, "recycle", false},      {1999, "ordomenu", false},
                       {2000, "recycle", true},  {2500, "recycle", false},      {3999, "buy", false},
                       {4000, "ordomenu", true}, {4001, "search sell x", false}};
    std::int64_t time = 0;
    for (const auto& c : cases) {
        stage.advance(c.at - time);
        time = c.at;
        alice->forgets().types(std::string("ordomart ") + c.word);
        EXPECT_EQ(alice->chat(), c.opens ? "" : toosoon) << c.at;
        EXPECT_EQ(alice->replies().empty(), c.opens) << c.at;
    }
    alice->forgets().types("ordomart formmenu");
    EXPECT_FALSE(alice->form().is_null()) << "forms have none";

    alice->leaves();
    alice = &stage.join("Alice", ada);
    EXPECT_EQ(alice->types("ordomart buy").chat(), "");
}

TEST(Guards, ASearchThatFoundNoListEndsWithTheVisit) {
    Stage stage;
    stage.writeshop(bob, json::array({good("apple", 7, 10), good("bread", 7, 10)}));
    stage.join("Alice", ada).types("ordomart filter").fills({{"Item name", "apple"}});
    stage.clients().leave("Alice");
    stage.join("Alice", ada).dies().types("ordomart search sell bread").revives().leaves();
    Actor& alice = stage.join("Alice", ada);
    opens(stage, alice, "ordomart buy");
    EXPECT_EQ(alice.shown(inventoryid, 9), "minecraft:apple*1") << "the filter stays";
    EXPECT_EQ(alice.shown(inventoryid, 10), "");
}
