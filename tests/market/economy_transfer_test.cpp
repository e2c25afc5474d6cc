// The tax, and who pays and receives what in a transfer, with a money library that writes down what it is asked and
// with a world's own scoreboard.
#include <gmock/gmock.h>

#include "host/network/network.h"
#include "host/world/items.h"
#include "host/world/worldparts.h"
#include "platform/library.h"
#include "platform/llmoney.h"
#include "plugin/economy/economymanager.h"
#include "tests/market/faultymoney.h"
#include "tests/market/shophost.h"

using namespace ordomart;
using testing::ElementsAre;

namespace {

std::vector<std::string> asked;   // of the library, in order
std::set<std::string> unwilling;  // the entries that refuse

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
    static bool note(const char* entry, std::string call) {
        asked.push_back(std::move(call));
        reason_ = unwilling.contains(entry) ? fmt::format("{} is unwilling", entry) : "";
        return reason_.empty();
    }
    static long long get(const std::string& xuid) {
        reason_ = xuid == "13" ? "the file is locked" : "";
        return xuid == "13" ? 0 : std::stoll(xuid);
    }
    static bool trans(const std::string& from, const std::string& to, long long value, const std::string& text) {
        return note("trans", fmt::format("trans <{}> <{}> {} {}", from, to, value, text));
    }
    static bool reduce(const std::string& xuid, long long value) {
        return note("reduce", fmt::format("reduce <{}> {}", xuid, value));
    }
    static bool add(const std::string& xuid, long long value) {
        return note("add", fmt::format("add <{}> {}", xuid, value));
    }
    static const char* lasterror() { return reason_.c_str(); }

    static inline std::string reason_;
    const std::map<std::string, void*> entries_ = {{"LLMoneyGet", reinterpret_cast<void*>(&get)},
                                                   {"LLMoneyTrans", reinterpret_cast<void*>(&trans)},
                                                   {"LLMoneyReduce", reinterpret_cast<void*>(&reduce)},
                                                   {"LLMoneyAdd", reinterpret_cast<void*>(&add)},
                                                   {"LLMoneyLastError", reinterpret_cast<void*>(&lasterror)}};
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
        unwilling.clear();
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
        const std::vector<std::string> all = {"LLMoneyGet", "LLMoneySet",     "LLMoneyTrans",     "LLMoneyReduce",
                                              "LLMoneyAdd", "LLMoneyGetHist", "LLMoneyClearHist", "LLMoneyLastError"};
        EXPECT_EQ(asked, mode == 1 ? all : std::vector<std::string>());
    }
}

TEST_F(Transfer, AnEntryThatTheLibraryLacksIsNamedWhenItIsCalled) {
    const std::string refused = "Ordomart 3 The payment of 100 from 21 to 22 is refused: ";
    library.missing = "LLMoneyTrans";
    bind();
    EXPECT_EQ(moneymode, 1);
    EXPECT_FALSE(createmoneyTrans(ada, bob, 100, "note"));
    EXPECT_THAT(host.log.lines, ElementsAre("Ordomart 3 LLmoney.dll has no LLMoneyTrans; the call gives nothing",
                                            refused + "there is no LLMoneyTrans\nnote:note"));
    EXPECT_EQ(MCGLOBALECONOMYMANAGER::queryMoneyhas(ada), 21) << "the others work";

    library.missing = "LLMoneyLastError";
    unwilling = {"trans"};
    bind();
    EXPECT_FALSE(createmoneyTrans(ada, bob, 100, "note"));
    EXPECT_THAT(host.log.lines, ElementsAre(refused + "no reason given\nnote:note"));
}

TEST_F(Transfer, TheLibraryIsAskedForTheFeeFirstAndGetsItBack) {
    bind();
    const auto refused = [](const char* who, std::int64_t amount, const char* why) {
        return fmt::format("Ordomart 3 The payment of {} from {} is refused: {} is unwilling\nnote:note", amount, who,
                           why);
    };
    const std::string lost =
        "Ordomart 4 50 LOST: taken from 21 for a payment to 22 that was refused, and it cannot be given back: add is "
        "unwilling";
    using List = std::vector<std::string>;
    const std::string poor = "000";  // has nothing
    struct {
        int percent;
        std::string from, to;
        std::int64_t amount;
        std::set<std::string> unwilling;
        List calls, lines;
    } const cases[] = {
        {0, ada, bob, 1000, {}, {"trans <21> <22> 1000 note"}, {}},
        {5, ada, bob, 1000, {}, {"reduce <21> 50", "trans <21> <22> 950 note"}, {}},
        {5, ada, bob, 0, {}, {"reduce <21> 1"}, {}},
        {5, poor, bob, 0, {}, {}, {}},
        {127, ada, bob, 10, {}, {"reduce <21> 12"}, {}},
        {127, "11", bob, 10, {}, {"reduce <11> 11"}, {}},
        {-5, ada, bob, 1000, {}, {"trans <21> <22> 1050 note"}, {}},
        {5, "0", bob, 1000, {}, {"trans <> <22> 950 note"}, {}},
        {5, "", bob, 1000, {}, {"trans <> <22> 950 note"}, {}},
        {5, ada, "0", 1000, {}, {"reduce <21> 50", "trans <21> <> 950 note"}, {}},
        {0, ada, "0", 9, {"trans"}, {"trans <21> <> 9 note"}, {refused("21 to SYSTEM", 9, "trans")}},
        {5, ada, bob, 1000, {"reduce"}, {"reduce <21> 50"}, {refused("21 to 22", 1000, "reduce")}},
        {5,
         ada,
         bob,
         1000,
         {"trans"},
         {"reduce <21> 50", "trans <21> <22> 950 note", "add <21> 50"},
         {refused("21 to 22", 1000, "trans")}},
        {5,
         ada,
         bob,
         1000,
         {"trans", "add"},
         {"reduce <21> 50", "trans <21> <22> 950 note", "add <21> 50"},
         {lost, refused("21 to 22", 1000, "trans")}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(fmt::format("{} % of {} from {} to {}, {} unwilling", c.percent, c.amount, c.from, c.to,
                                 c.unwilling.size()));
        asked.clear();
        host.log.lines.clear();
        unwilling = c.unwilling;
        tax = static_cast<std::int8_t>(c.percent);
        EXPECT_EQ(createmoneyTrans(c.from, c.to, c.amount, "note"), c.unwilling.empty());
        EXPECT_EQ(asked, c.calls);
        EXPECT_EQ(host.log.lines, c.lines) << "without a refusal the library keeps the history";
    }
    asked.clear();
    for (const char* system : {"", "0"}) {
        EXPECT_FALSE(MCGLOBALECONOMYMANAGER::addMoney(system, 1));
        EXPECT_FALSE(MCGLOBALECONOMYMANAGER::reduceMoneyhas(system, 1));
    }
    EXPECT_FALSE(MCGLOBALECONOMYMANAGER::reduceMoneyhas(ada, -1));
    EXPECT_THAT(asked, ElementsAre()) << "the system has no account, and a negative sum is no payment";

    host.log.lines.clear();
    EXPECT_EQ(moneyof("13"), std::nullopt);
    EXPECT_EQ(MCGLOBALECONOMYMANAGER::queryMoneyhas("13"), 0);
    EXPECT_EQ(moneyof(poor), 0) << "no money is not no answer";
    const std::string unread = "Ordomart 3 The balance of 13 cannot be read: the file is locked";
    EXPECT_THAT(host.log.lines, ElementsAre(unread, unread));
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

// No sum leaves 32 bits, and what is refused half-way is taken back.
TEST_F(Transfer, AScoreThatCannotBeChangedEndsTheTransfer) {
    constexpr std::int64_t most = 2147483647;
    faulty::Money faulty;
    faulty.standbefore(host.services);
    moneymode = 0;
    tax = 5;
    bind();
    EXPECT_TRUE(createmoneyTrans("0", bob, 1, "makes the account")) << "and a tax of all of it";
    struct {
        std::string from, to;
        std::int64_t amount;
        int ada, bob;  // what they have
        std::set<std::string> refused;
        std::vector<std::string> lines;  // beginnings
    } const cases[] = {
        {ada, bob, 100, 100, 0, {"reduceScore"}, {"reduce 100 money for 21", "100 from 21 to 22"}},
        {ada, bob, 100, 100, 0, {"absent addScore"}, {"add 95 money for 22", "100 from 21 to 22"}},
        {ada, bob, 100, 100, 0, {"addScore", "absent addScore"}, {"add 95 money for 22", "100 from 21 to 22"}},
        {bob, ada, 100, 0, 100, {"addScore"}, {"add 95 money for 21", "100 from 22 to 21"}},
        {ada, bob, 100, 100, most - 94, {}, {"add 95 money for 22", "100 from 21 to 22"}},
        {bob, ada, 100, most - 94, 100, {}, {"add 95 money for 21", "100 from 22 to 21"}},
        {ada, bob, 100, -most + 50, 0, {}, {"reduce 100 money for 21", "100 from 21 to 22"}},
        {ada, bob, most + 1, most, 0, {}, {"reduce 2147483648 money for 21", "2147483648 from 21 to 22"}},
        {"0", bob, 6'000'000'000, 0, 0, {}, {"add 5700000000 money for 22", "6000000000 from SYSTEM to 22"}},
        {ada, bob, -100, 0, 0, {}, {"-100 from 21 to 22"}},
        {ada, "0", 100, 100, 0, {"reduceScore"}, {"reduce 100 money for 21", "100 from 21 to SYSTEM"}},
        {ada, bob, 100, 100, 0, {"gone"}, {"reduce 100 money for 21", "100 from 21 to 22"}},
    };
    const auto has = [&] {
        auto& board = world.scoreboard();
        return std::pair(world.score("Ada", "money"), board.getScore("helpermoney", "a22"));
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(fmt::format("{} from {} to {}, {} refused", c.amount, c.from, c.to, c.refused.size()));
        world.setscore("Ada", "money", c.ada);
        world.scoreboard().setScore("helpermoney", "a22", c.bob);
        faulty::refuses = [&](std::string_view operation) { return c.refused.contains(std::string(operation)); };
        scoremoneyname = c.refused.contains("gone") ? "nowhere" : "money";
        host.log.lines.clear();
        EXPECT_FALSE(createmoneyTrans(c.from, c.to, c.amount, "note"));
        EXPECT_EQ(has(), std::pair(c.ada, c.bob));
        ASSERT_EQ(host.log.lines.size(), c.lines.size()) << testing::PrintToString(host.log.lines);
        const bool ishalf = c.lines.size() == 2;
        if (ishalf) {
            EXPECT_EQ(host.log.lines[0], fmt::format("Ordomart 3 error at createmoneyTrans when {} when use scoreboard "
                                                     "ecc,\nnote:note",
                                                     c.lines[0]));
        }
        EXPECT_TRUE(host.log.lines.back().starts_with("Ordomart 3 The payment of " + c.lines.back() + " is refused: "))
            << host.log.lines.back();
    }
    // Neither road is open any more.
    scoremoneyname = "money";
    world.setscore("Ada", "money", 100);
    int reductions = 0;
    faulty::refuses = [&](std::string_view operation) { return operation == "absent addScore" || reductions++ > 0; };
    host.log.lines.clear();
    EXPECT_FALSE(createmoneyTrans(ada, bob, 100, "note"));
    EXPECT_TRUE(host.log.lines.at(1).starts_with("Ordomart 4 100 LOST: taken from 21 for a payment to 22 "))
        << host.log.lines[1];
}

}  // namespace
