// What stops a trade when all seems well: the shop is not as it was offered, the payment is refused, the server cannot
// save. Nobody is poorer for it, and somebody is told.
#include <fmt/format.h>

#include <limits>

#include "platform/host.h"
#include "platform/level.h"
#include "plugin/shopsystem/runtimeshopmanager.h"
#include "plugin/trade/trade.h"
#include "tests/market/chest_stage.h"
#include "tests/market/faultymoney.h"

using namespace chest;

namespace {

const std::string changed = "Operation failed, shopinfo has been changed";
const std::string paymentrefused =
    "The payment was refused, so nothing has been traded. If this goes on, please tell an operator.";
const std::string closed = "The server cannot save at the moment, so the market is closed. Please try again later.";

// One of the two trades, with the first row of its list: ten apples to buy, or ten loaves to sell, for 70.
struct deed {
    const char *list, *row, *command;
    std::vector<std::pair<std::string, json>> answer;
};
const deed buying{"Selling shops (form)", "apple", "ordomart buy", {{"quantity", "10"}}};
const deed selling{"Recycle shops (form)", "bread", "ordomart recycle", {}};

void opensshop(Stage& stage, Actor& alice) {
    stage.writeshop(bob, good("apple", 7, 10), commission("bread", 7, 20));
    alice.gives(8, "bread", 10);
}

// What the player is told; in a chest by a toast, and the view comes back. He answers the form, or closes it.
std::string does(Stage& stage, Actor& alice, const deed& what, bool chest, bool closes = false) {
    const auto answers = [&] {
        if (closes)
            alice.answers(nullptr);
        else
            alice.fills(what.answer);
    };
    if (chest) {
        alice.dismisses();
        rests(stage);
        opens(stage, alice, what.command);
        alice.clicks(ContainerName::inventory, 9).forgets();
        rests(stage);
        answers();
        stage.ticks(6);
        EXPECT_TRUE(alice.menuopen());
        EXPECT_EQ(alice.chat(), "");
        const auto told = alice.toasts();
        alice.closes();
        return told;
    }
    alice.dismisses().types("ordomart formmenu").presses(what.list).presses(what.row).forgets();
    answers();
    EXPECT_EQ(alice.toasts(), "");
    return alice.chat();
}

int times(const std::string& text, const std::string& part) {
    int found = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++found;
    return found;
}

}  // namespace

// Nobody's menu changes a shop without a mark of change; a file that somebody edits can. The form is held against what
// is there all the same.
TEST(TradeRefused, WhatIsNotAsItWasOfferedIsNotSold) {
    using shopsystem::globalruntimeshopmanager;
    const json apple = good("apple", 7, 10), broken = good("{Count:1b,Damage:0s,Name:\"addon:gem\"}", 7, 10);
    const std::string gone = "Operation failed, item has been changed";
    const struct {
        const char* name;
        json items, left;
        std::string told;
    } cases[] = {
        {"fewer", good("apple", 7, 9), good("apple", 7, 9), changed},
        {"more", good("apple", 7, 11), good("apple", 7, 11), changed},
        {"dearer", good("apple", 8, 10), good("apple", 8, 10), changed},
        {"other", good("dirt", 7, 10, "apple"), good("dirt", 7, 10, "apple"), changed},
        {"none", nullptr, nullptr, "catch checkexist error:" + gone},
        {"empty", json::array(), json::array(), "catch checkexist error:" + gone},
        {"gems", json::array({broken, apple}), apple, "catch checkrawitemvalid error:" + gone},
    };
    Stage stage({.llmoney = false});
    ordomart::moneymode = 0;
    Actor& alice = stage.join("Alice", ada).setmoney(100);
    const auto rows = [](const json& given) { return given.is_object() ? json::array({given}) : given; };
    for (const bool chest : {false, true})
        for (const auto& c : cases) {
            const auto owner = fmt::format("{}{}", c.name, chest);
            SCOPED_TRACE(owner);
            stage.writeshop(owner, apple);
            const auto shop = [&]() -> shopsystem::sellshop& { return globalruntimeshopmanager.getsellshop(owner); };
            stage.onserver([&] {
                ordomart::offertrade(platform::host().level->getPlayerByXuid(ada), shop().getglobalshopitem(0),
                                     chest ? ordomart::tradeface::globalchest : ordomart::tradeface::formlist);
                shop().items = rows(c.items);
            });
            alice.forgets().fills({{"quantity", "2"}});
            EXPECT_EQ(alice.chat() + alice.toasts(), (chest ? "SYSTEM: " : "") + c.told);
            stage.onserver([&] { EXPECT_EQ(shop().items, rows(c.left)); });
        }
    EXPECT_EQ(alice.money(), 100);
    EXPECT_EQ(alice.counts("minecraft:apple") + alice.counts("minecraft:dirt"), 0);
}

// Whatever refuses, in either back end: nothing has changed hands, a form from before still fits, and the log knows
// from whom, to whom, how much and why.
TEST(TradeRefused, APaymentThatIsRefusedEndsIt) {
    constexpr int most = std::numeric_limits<std::int32_t>::max();
    struct fault {
        const deed& what;
        const char* refused;
        int alice, owner;  // what they have
        bool here;         // the owner is
        const char* why;
    };
    const char* const stagefault = "a fault of the stage";
    const char* const nochange = "the scoreboard refuses to change money";
    const char* const overflow = "2147483578 + 70 leaves the 32 bits of a score";
    const struct {
        bool llmoney;
        int tax, enough;
        std::vector<fault> faults;
    } settings[] = {
        {true, -5, 73, {{buying, "", 70, 0, true, "2535400000000001 has 70 and cannot pay 73"}}},
        {true,
         5,
         70,
         {{buying, "LLMoneyReduce", 70, 0, false, stagefault},
          {buying, "LLMoneyTrans", 70, 0, false, stagefault},
          {selling, "LLMoneyAdd", 5, 0, false, stagefault}}},
        {false,
         0,
         70,
         {{buying, "absent addScore", 70, 5, false, "the scoreboard refuses to change a2535400000000002"},
          {buying, "", 70, most - 69, false, overflow},
          {buying, "reduceScore", 70, 5, true, nochange},
          {buying, "addScore", 70, 5, true, nochange},
          {buying, "", 70, most - 69, true, overflow},
          {selling, "addScore", 5, 5, true, nochange},
          {selling, "", most - 69, 5, true, overflow}}},
    };
    for (const auto& set : settings) {
        faulty::Money faulty;
        Stage stage({.config = {{"tax", set.tax}}, .llmoney = set.llmoney, .adjust = faulty.adjust()});
        Actor& alice = stage.join("Alice", ada);
        Actor& carl = stage.join("Carl", "2535400000000003").setmoney(set.enough);
        opensshop(stage, alice);
        const auto before = stage.file("plugins/Ordomart/data/" + bob + ".json");
        carl.types("ordomart formmenu").presses(buying.list).presses(buying.row);
        Actor* owner = nullptr;
        const auto has = [&] {
            return owner != nullptr ? owner->money() : set.llmoney ? 0 : stage.score("a" + bob, "helpermoney");
        };
        for (const auto& each : set.faults)
            for (const bool chest : {false, true}) {
                SCOPED_TRACE(fmt::format("{}: {} {}, {}", each.what.row, each.refused, each.why, chest));
                if (each.here && owner == nullptr) owner = &stage.join("Bob", bob);
                if (owner != nullptr)
                    owner->setmoney(each.owner);
                else if (!set.llmoney)
                    stage.onserver(
                        [&] { stage.server().world().scoreboard().setScore("helpermoney", "a" + bob, each.owner); });
                alice.setmoney(each.alice);
                faulty::refuses = [&](std::string_view operation) { return operation == each.refused; };
                const bool buys = &each.what == &buying;
                const auto line = fmt::format("[Ordomart][error] The payment of 70 from {} to {} is refused: {}\n{}",
                                              buys ? ada : "SYSTEM", buys ? bob : ada, each.why,
                                              buys ? "note:buy item :Apple*10\n" : "");
                const int lines = times(stage.log() + "\n", line);
                EXPECT_EQ(does(stage, alice, each.what, chest), (chest ? "SYSTEM: " : "") + paymentrefused);
                EXPECT_TRUE(alice.form().is_null());
                EXPECT_TRUE(alice.sounds().empty());
                EXPECT_EQ(alice.money(), each.alice);
                EXPECT_EQ(has(), each.owner);
                EXPECT_EQ(alice.counts("minecraft:apple"), 0);
                EXPECT_EQ(alice.has(8), "minecraft:bread*10");
                EXPECT_EQ(times(stage.log() + "\n", line), lines + 1) << stage.log();
            }
        stage.seconds(4);
        EXPECT_EQ(stage.file("plugins/Ordomart/data/" + bob + ".json"), before);
        for (const char* suffix : {".log", ".relog"})
            EXPECT_FALSE(stage.exists("plugins/Ordomart/log/" + bob + suffix));
        EXPECT_EQ(times(stage.file("plugins/Ordomart/simpletrade.log"), "] " + ada + " pay "), 0);
        faulty::refuses = nullptr;
        if (owner != nullptr) owner->setmoney(0);
        carl.fills(buying.answer);
        EXPECT_EQ(carl.counts("minecraft:apple"), 10);
        EXPECT_EQ(carl.money(), 0);
    }
}

// The log is the last step of a trade, and the trade is whole without it.
TEST(TradeRefused, ALogThatCannotBeWrittenLeavesNoHalfTrade) {
    class BadLog : public platform::LogSink {
    public:
        platform::LogSink* real = nullptr;
        void write(std::string_view title, platform::LogLevel level, std::string_view message, int console,
                   const std::string& file) override {
            if (title == "Ordomartlogger") throw std::runtime_error("no ink");
            real->write(title, level, message, console, file);
        }
        void setDefaultFile(const std::string& path, bool append) override { real->setDefaultFile(path, append); }
        bool openFile(const std::string& path, bool append) override { return real->openFile(path, append); }
    } log;
    Stage stage({.llmoney = false, .adjust = [&](platform::Host& host) { log.real = std::exchange(host.log, &log); }});
    stage.writeshop(bob, {good("apple", 7, 10)}, {commission("bread", 3, 5)});
    Actor& alice = stage.join("Alice", ada).setmoney(100).gives(8, "bread", 5);
    alice.types("ordomart formmenu").presses("Selling shops (form)").presses("apple").fills({{"quantity", "3"}});
    EXPECT_EQ(alice.form()["title"], "purchase successfully!");
    EXPECT_EQ(alice.has(0), "minecraft:apple*3");
    alice.dismisses().types("ordomart formmenu").presses("Recycle shops (form)").presses("bread").fills({});
    EXPECT_EQ(alice.form()["title"], "recycle successfully!");
    EXPECT_EQ(alice.counts("minecraft:bread"), 0);
    EXPECT_EQ(alice.money(), 94);
    const json shop = stage.shopfile(bob);
    EXPECT_EQ(shop["sell"]["items"][0]["shopitemleftnum"], 7);
    EXPECT_EQ(shop["recycles"]["recycleitems"][0]["nowhasrecyclenum"], 5);
    EXPECT_NE(stage.log().find("An runtimeerrorerror occurred, no ink"), std::string::npos);
}

TEST(TradeRefused, WhileTheServerCannotSave) {
    faulty::Stores stores;
    Stage stage({.adjust = [&](platform::Host& host) { host.stores = &stores; }});
    Actor& alice = stage.join("Alice", ada).setmoney(100);
    opensshop(stage, alice);
    stores.why = "server.sqlite cannot be written since yesterday";
    for (const deed* what : {&buying, &selling})
        for (const bool chest : {false, true}) {
            EXPECT_EQ(does(stage, alice, *what, chest), (chest ? "SYSTEM: " : "") + closed);
            EXPECT_EQ(does(stage, alice, *what, chest, true), "") << "who closes the form asks for nothing";
        }
    EXPECT_EQ(alice.has(8) + std::to_string(alice.money()), "minecraft:bread*10100");
    stores.why.clear();
    EXPECT_EQ(does(stage, alice, buying, false) + does(stage, alice, selling, false), "");
    EXPECT_EQ(alice.counts("minecraft:apple"), 10);
}
