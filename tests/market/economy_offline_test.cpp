// Scoreboard money of players who come, go and are away: their accounts, and what they collect.
#include <gmock/gmock.h>

#include "platform/scoreboard.h"
#include "tests/stage/stage.h"

using namespace stage;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

const std::string ada = "2535400000000001";

// Every line with one of the titles, behind those that were there at the last look.
class Lines {
public:
    explicit Lines(Stage& stage) : stage_(stage) { fresh(); }
    std::vector<std::string> fresh() {
        std::vector<std::string> lines;
        for (const auto& line : stage_.server().log().lines(last_)) {
            last_ = line.number;
            static const char* const levels[] = {"debug", "info", "warn", "error", "fatal"};
            if (line.title == "Ordomart" || line.title == "debuglogger")
                lines.push_back(fmt::format("{} {}{} {}", line.title, levels[static_cast<int>(line.level)],
                                            line.onconsole ? "" : " file", line.message));
        }
        return lines;
    }

private:
    Stage& stage_;
    std::uint64_t last_ = 0;
};

void setaccount(Stage& stage, int value) {
    stage.onserver([&] { stage.server().world().scoreboard().setScore("helpermoney", "a" + ada, value); });
}

}  // namespace

TEST(OfflineMoney, JoiningMakesIdAndAccountOnce) {
    for (const bool debugging : {false, true}) {
        Stage stage({.config = {{"moneymode", 0}, {"debugmode", debugging}}, .llmoney = false});
        Lines lines(stage);
        const std::string head = debugging ? "debuglogger warn " : "debuglogger warn file ";
        stage.join("Ada", ada);
        EXPECT_THAT(lines.fresh(),
                    ElementsAre(head + "try to create scoreboardid for player: Ada...",
                                head + "try to create offmoneyxuidaccount: a" + ada + "...",
                                head + "try to add initscore(0) for offmoneyxuidaccount: a" + ada + "..."));
        EXPECT_THAT(stage.file("plugins/Ordomart/simpletrade.log"), HasSubstr("scoreboardid for player: Ada...\r\n"));
        EXPECT_EQ(stage.score("a" + ada, "helpermoney"), 0);
        stage.onserver([&] {
            auto& scores = stage.server().world().scoreboard();
            EXPECT_EQ(scores.getObjective("money")->getDisplayName(), "coins");
            EXPECT_EQ(scores.getObjective("helpermoney")->getDisplayName(), "offlinemoney");
        });
        stage.clients().leave("Ada");
        stage.join("Ada", ada);
        stage.join("Simulated", "");
        EXPECT_THAT(lines.fresh(), ElementsAre());
    }
}

TEST(OfflineMoney, AWholeSumIsCollectedOrNothing) {
    const std::string overflow =
        "ERROR:DATAOVERFLOW! FAILURE OF DEAL! THE NUMBER IS TOO BIG!\n"
        "数据溢出，你的离线金钱太多了！请联系管理员调查解决";
    struct {
        int current, offline, score, left;
        std::string chat, toast, sound;
    } const cases[] = {
        {20, 21, 41, 0, "获取离线金钱成功:21", "获取离线金钱成功: + §a21 §rcoins", "mob.villager.yes"},
        {20, -50, -30, 0, "获取离线金钱成功:-50", "获取离线金钱成功: + §a-50 §rcoins", "mob.villager.yes"},
        {20, 0, 20, 0, "您没有离线金钱:0", "", "mob.villager.no"},
        {2147483000, 1000, 2147483000, 1000, overflow, "", ""},
        {2147483000, 647, 2147483647, 0, "获取离线金钱成功:647", "获取离线金钱成功: + §a647 §rcoins",
         "mob.villager.yes"},
        {-2147483000, -1000, -2147483000, -1000, overflow, "", ""},
        {-1, 2147483647, 2147483646, 0, "获取离线金钱成功:2147483647", "获取离线金钱成功: + §a2147483647 §rcoins",
         "mob.villager.yes"},
    };
    Stage stage({.llmoney = false});
    Actor& player = stage.join("Ada", ada, "zh_CN");
    for (const auto& c : cases) {
        SCOPED_TRACE(fmt::format("{} and {}", c.current, c.offline));
        player.forgets().setmoney(c.current);
        setaccount(stage, c.offline);
        player.types("ordomart getoffscores");
        EXPECT_EQ(player.replies(), "");
        EXPECT_EQ(player.chat(), c.chat);
        EXPECT_EQ(player.toasts(), c.toast);
        EXPECT_EQ(player.sounds(), c.sound.empty() ? std::vector<std::string>() : std::vector{c.sound});
        EXPECT_EQ(player.money(), c.score);
        EXPECT_EQ(stage.score("a" + ada, "helpermoney"), c.left);
    }
}

// A simulated player is given nothing when he joins.
TEST(OfflineMoney, ABalanceThatDoesNotExistIsRepairedStepByStep) {
    Stage stage({.llmoney = false});
    Actor& player = stage.join("Simulated", "");
    Lines lines(stage);
    const std::string failed =
        "Ordomart error error Info:\"a\" has no score in \"helpermoney\"\nerror at get offmoney for a";
    player.types("ordomart getoffscores");
    EXPECT_EQ(player.chat(), "No");
    EXPECT_THAT(lines.fresh(), ElementsAre(failed, "Ordomart warn try to create offmoneyxuid for a...",
                                           "Ordomart warn try to create offmoneyxuid for Simulated..."));
    player.forgets().types("ordomart getoffscores");
    EXPECT_EQ(player.chat(), "No");
    EXPECT_THAT(lines.fresh(), ElementsAre(failed, "Ordomart warn try to add initscore(0) for a...",
                                           "Ordomart warn try to add initscore(0) for Simulated..."));
    player.forgets().types("ordomart getoffscores");
    EXPECT_EQ(player.chat(), "No:0");
    EXPECT_THAT(lines.fresh(), ElementsAre());
}

TEST(OfflineMoney, WithoutAScoreboardTheJoinFailsAndTheNextOneTriesAgain) {
    platform::Host* services = nullptr;
    platform::Scoreboard* board = nullptr;
    Stage stage({.llmoney = false, .adjust = [&](platform::Host& host) {
                     services = &host;
                     board = std::exchange(host.scoreboard, nullptr);
                 }});
    stage.join("Ada", ada);
    EXPECT_THAT(stage.log(), HasSubstr("[Ordomart][error] NULL Global Level or Scoreboard !\n"));
    EXPECT_THAT(stage.log(), HasSubstr("the obj doesn't exist"));
    stage.onserver([&] { services->scoreboard = board; });
    stage.clients().leave("Ada");
    stage.join("Ada", ada);
    EXPECT_EQ(stage.score("a" + ada, "helpermoney"), 0);
    EXPECT_THAT(stage.log(), HasSubstr("try to add initscore(0) for offmoneyxuidaccount: a" + ada));
}
