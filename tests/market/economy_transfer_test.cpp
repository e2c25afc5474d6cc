// The tax, and who pays and receives what in a transfer, with a money library that writes down what it is asked and
// with a world's own scoreboard.
#include <gmock/gmock.h>

#include "host/network/network.h"
#include "host/world/items.h"
#include "host/world/worldparts.h"
#include "platform/library.h"
#include "platform/llmoney.h"
#include "plugin/economy/economymanager.h"
#include "tests/market/shophost.h"

using namespace ordomart;
using testing::ElementsAre;
using testing::ElementsAreArray;

namespace {

std::vector<std::string> asked;  // of the library, in order
bool willing = true;             // whether its transfers work

class NotingLibrary : public platform::Libraries {
public:
    std::string missing;  // the entry that it lacks

    void* load(const std::string& name) override { return name == "LLmoney.dll" ? this : nullptr; }
    void* symbol(void*, const char* name) override {
        asked.emplace_back(name);
        const auto found = entries_.find(name);
        return found == entries_.end() || name == missing ? nullptr : found->second;
    }

private:
    static long long get(const std::string& xuid) { return std::stoll(xuid); }
    static bool trans(const std::string& from, const std::string& to, long long value, const std::string& note) {
        asked.push_back(fmt::format("trans <{}> <{}> {} {}", from, to, value, note));
        return willing;
    }
    static bool reduce(const std::string& xuid, long long value) {
        asked.push_back(fmt::format("reduce <{}> {}", xuid, value));
        return true;
    }
    const std::map<std::string, void*> entries_ = {{"LLMoneyGet", reinterpret_cast<void*>(&get)},
                                                   {"LLMoneyTrans", reinterpret_cast<void*>(&trans)},
                                                   {"LLMoneyReduce", reinterpret_cast<void*>(&reduce)}};
};

class NoLink : public host::ClientLink {
public:
    [[nodiscard]] bool isopen() const override { return true; }
    void send(const platform::Packet&) override {}
    void sendform(const std::string&, platform::ServerPlayer::FormAnswer) override {}
};

const std::string ada = "21", bob = "22";  // ada is online

class Transfer : public testing::Test {
protected:
    Transfer() {
        settings();
        asked.clear();
        willing = true;
        host.services.libraries = &library;
        host.services.clock = &clock;
        host.services.items = &host::itemtable();
        host.services.level = &world.level();
        host.services.scoreboard = &world.scoreboard();
        world.scoreboard().newObjective("money", "coins");
        world.scoreboard().newObjective("helpermoney", "offlinemoney");
        world.parts().enter({.name = "Ada", .xuid = ada}, link);
    }
    ~Transfer() override { settings(); }
    static void settings() {
        moneymode = 1;
        tax = 0;
        scoremoneyname = "money";
    }
    void bind() {
        bindeconomy();
        asked.clear();
        host.log.lines.clear();
    }

    market_tests::QuietHost host;
    market_tests::StandingClock clock;
    NotingLibrary library;
    NoLink link;
    host::World world{":memory:"};
};

TEST(TransferFee, TruncatesTowardsZeroAndIsNeverNothing) {
    struct {
        std::int64_t amount;
        int percent;
        std::int64_t fee;
    } const cases[] = {{1000, 0, 0},
                       {1000, 5, 50},
                       {10, 5, 1},
                       {0, 5, 1},
                       {99, 5, 4},
                       {199, 5, 9},
                       {1000, -5, -50},
                       {10, -5, 1},
                       {-50, 3, -1},
                       {-199, 5, -9},
                       {199, 127, 252},
                       {-199, -128, 254},
                       {9'000'000'000'000'000'000, 100, 9'000'000'000'000'000'000}};
    for (const auto& c : cases) EXPECT_EQ(transferfee(c.amount, c.percent), c.fee) << c.percent << " % of " << c.amount;
}

TEST_F(Transfer, BindingAsksForTheWholeLibraryAndTheScoreboardForNothing) {
    for (const int mode : {1, 0, 2}) {
        asked.clear();
        moneymode = static_cast<std::int8_t>(mode);
        bindeconomy();
        EXPECT_EQ(moneymode, mode == 1 ? 1 : 0);
        EXPECT_EQ(getmoneyname(), mode == 1 ? "LLmoney" : "coins");
        const std::vector<std::string> all = {"LLMoneyGet", "LLMoneySet",     "LLMoneyTrans",    "LLMoneyReduce",
                                              "LLMoneyAdd", "LLMoneyGetHist", "LLMoneyClearHist"};
        EXPECT_EQ(asked, mode == 1 ? all : std::vector<std::string>());
    }
}

TEST_F(Transfer, AnEntryThatTheLibraryLacksIsNamedWhenItIsCalled) {
    library.missing = "LLMoneyTrans";
    bind();
    EXPECT_EQ(moneymode, 1);
    tax = 5;
    EXPECT_FALSE(createmoneyTrans(ada, bob, 100, "note"));
    EXPECT_THAT(asked, ElementsAre("reduce <21> 5"));
    EXPECT_THAT(host.log.lines, ElementsAre("Ordomart 3 LLmoney.dll has no LLMoneyTrans; the call gives nothing"));
    EXPECT_EQ(MCGLOBALECONOMYMANAGER::queryMoneyhas(ada), 21) << "the others work";
}

TEST_F(Transfer, TheLibraryIsAskedForTheFeeFirst) {
    bind();
    struct {
        int percent;
        std::string from, to;
        std::int64_t amount;
        std::vector<std::string> calls;
    } const cases[] = {{0, ada, bob, 1000, {"reduce <21> 0", "trans <21> <22> 1000 note"}},
                       {5, ada, bob, 1000, {"reduce <21> 50", "trans <21> <22> 950 note"}},
                       {5, ada, bob, 0, {"reduce <21> 1", "trans <21> <22> -1 note"}},
                       {-5, ada, bob, 1000, {"reduce <21> -50", "trans <21> <22> 1050 note"}},
                       {5, "0", bob, 1000, {"trans <> <22> 950 note"}},
                       {5, "", bob, 1000, {"trans <> <22> 950 note"}},
                       {5, ada, "0", 1000, {"reduce <21> 50", "trans <21> <> 950 note"}}};
    for (const auto& c : cases)
        for (const bool works : {true, false}) {
            asked.clear();
            willing = works;
            tax = static_cast<std::int8_t>(c.percent);
            EXPECT_EQ(createmoneyTrans(c.from, c.to, c.amount, "note"), works);
            EXPECT_THAT(asked, ElementsAreArray(c.calls)) << c.percent << " % of " << c.amount;
        }
    for (const char* system : {"", "0"}) {
        asked.clear();
        EXPECT_FALSE(MCGLOBALECONOMYMANAGER::addMoney(system, 1));
        EXPECT_FALSE(MCGLOBALECONOMYMANAGER::reduceMoneyhas(system, 1));
        EXPECT_THAT(asked, ElementsAre()) << "the system has no account";
    }
    EXPECT_THAT(host.log.lines, ElementsAre()) << "the library keeps the history";
}

TEST_F(Transfer, ScoresMoveByTheWholeAmountAndTheRest) {
    moneymode = 0;
    bind();
    struct {
        int percent;
        std::string from, to;
        std::int64_t amount;
        int ada, bob;  // how their balances change
        bool recorded;
    } const cases[] = {{0, ada, bob, 1000, -1000, 1000, true}, {5, ada, bob, 1000, -1000, 950, true},
                       {5, ada, bob, 0, 0, -1, true},          {-5, ada, bob, 1000, -1000, 1050, true},
                       {5, "0", bob, 1000, 0, 950, true},      {5, "", bob, 1000, 0, 950, true},
                       {5, bob, ada, 1000, 950, -1000, true},  {5, ada, "0", 1000, -1000, 0, false},
                       {5, bob, "", 1000, 0, -1000, false}};
    EXPECT_TRUE(createmoneyTrans("0", bob, 0, "makes the account"));
    for (const auto& c : cases) {
        SCOPED_TRACE(fmt::format("{} % of {} from {} to {}", c.percent, c.amount, c.from, c.to));
        host.log.lines.clear();
        tax = static_cast<std::int8_t>(c.percent);
        const auto before = MCGLOBALECONOMYMANAGER::queryMoneyhas(ada);
        const auto waiting = MCGLOBALECONOMYMANAGER::queryMoneyhas(bob);
        EXPECT_TRUE(createmoneyTrans(c.from, c.to, c.amount, "note"));
        EXPECT_EQ(MCGLOBALECONOMYMANAGER::queryMoneyhas(ada) - before, c.ada);
        EXPECT_EQ(MCGLOBALECONOMYMANAGER::queryMoneyhas(bob) - waiting, c.bob);
        EXPECT_EQ(world.scoreboard().getScore("helpermoney", "a22") - waiting, c.bob);
        const auto record = fmt::format("Ordomartlogger 1 {} pay {}coins to {},note:note", c.from, c.amount, c.to);
        EXPECT_EQ(host.log.lines, c.recorded ? std::vector{record} : std::vector<std::string>());
    }
}

TEST_F(Transfer, ScoreThatCannotBeChangedIsToldAndTheTransferGoesOn) {
    moneymode = 0;
    bind();
    tax = 5;
    EXPECT_TRUE(ensureobjectives());
    scoremoneyname = "nowhere";
    EXPECT_TRUE(createmoneyTrans(ada, ada, 100, "note"));
    EXPECT_THAT(
        host.log.lines,
        ElementsAre(
            "Ordomart 3 error at createmoneyTrans when reduce 100 money for 21 when use scoreboard ecc,\nnote:note",
            "Ordomart 3 error at createmoneyTrans when add 95 money for 21 when use scoreboard ecc,\nnote:note"));
}

}  // namespace
