// Scoreboard money of players who come, go and are away: their accounts, and what they collect.
#include <gmock/gmock.h>

#include <limits>
#include <set>

#include "platform/scoreboard.h"
#include "tests/market/faultymoney.h"
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
    const std::string stays = "离线金钱暂时无法领取，仍为你保留，请稍后再试。";
    const std::string closed = "服务器暂时无法保存数据，商店已暂停交易，请稍后再试。";
    constexpr int least = std::numeric_limits<std::int32_t>::min();
    struct {
        int current, offline, score, left;
        std::string chat;
        std::set<std::string> refused;
        std::string line = {};  // what is logged, where something is
    } const cases[] = {
        {20, 21, 41, 0, "获取离线金钱成功:21", {}},
        {20, -50, -30, 0, "获取离线金钱成功:-50", {}},
        {20, 0, 20, 0, "您没有离线金钱:0", {}},
        {2147483000, 647, 2147483647, 0, "获取离线金钱成功:647", {}},
        {-1, 2147483647, 2147483646, 0, "获取离线金钱成功:2147483647", {}},
        {2147483000, 1000, 2147483000, 1000, overflow, {}, "2147483000 + 1000 leaves the 32 bits of a score"},
        {-2147483000, -1000, -2147483000, -1000, overflow, {}, "-2147483000 + -1000 leaves the 32 bits of a score"},
        {least, least, least, least, overflow, {}, "-2147483648 + -2147483648 leaves the 32 bits of a score"},
        {20, 21, 20, 21, stays, {"addScore"}, "the scoreboard refuses to change money"},
        {20, 21, 20, 21, stays, {"setScore"}, "the account cannot be emptied"},
        {20, 21, 20, 21, closed, {"stores"}},
    };
    faulty::Stores stores;
    faulty::Money faulty;
    Stage stage({.llmoney = false, .adjust = [&](platform::Host& host) {
                     faulty.standbefore(host);
                     host.stores = &stores;
                 }});
    Actor& player = stage.join("Ada", ada, "zh_CN");
    Lines lines(stage);
    for (const auto& c : cases) {
        SCOPED_TRACE(fmt::format("{} and {}, {} refused", c.current, c.offline, c.refused.size()));
        player.forgets().setmoney(c.current);
        setaccount(stage, c.offline);
        lines.fresh();
        faulty::refuses = [&](std::string_view operation) { return c.refused.contains(std::string(operation)); };
        stores.why = c.refused.contains("stores") ? "full" : "";
        player.types("ordomart getoffscores");
        EXPECT_EQ(player.replies(), "");
        EXPECT_EQ(player.chat(), c.chat);
        const bool collected = c.offline != 0 && c.left == 0;
        EXPECT_EQ(player.toasts(), collected ? fmt::format("获取离线金钱成功: + §a{} §rcoins", c.offline) : "");
        EXPECT_EQ(player.sounds(), collected        ? std::vector<std::string>{"mob.villager.yes"}
                                   : c.offline == 0 ? std::vector<std::string>{"mob.villager.no"}
                                                    : std::vector<std::string>());
        EXPECT_EQ(player.money(), c.score);
        EXPECT_EQ(stage.score("a" + ada, "helpermoney"), c.left);
        std::vector<std::string> told;
        if (!c.line.empty()) told = {fmt::format("Ordomart error {} for Ada stay in a{}: {}", c.offline, ada, c.line)};
        EXPECT_EQ(lines.fresh(), told);
    }

    // Neither of the two steps can be taken back: the only way to see a coin twice, and it is told.
    int additions = 0;
    stores.why.clear();
    faulty::refuses = [&](std::string_view o) { return o == "setScore" || (o == "addScore" && additions++ > 0); };
    player.types("ordomart getoffscores");
    EXPECT_THAT(lines.fresh(), testing::Contains(testing::StartsWith("Ordomart fatal 21 TWICE: paid out to Ada and ")));
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
