// The program as a process: killed in the middle of its work, and told to end. What is on the disk afterwards is whole,
// and nobody has gained or lost by it.
#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>
#include <sys/inotify.h>

#include <atomic>
#include <random>
#include <thread>

#include "host/core/commands.h"
#include "host/money.h"
#include "host/network/network.h"
#include "host/world/world.h"
#include "platform/scoreboard.h"
#include "tests/host/apicaller.h"
#include "tests/host/serverprocess.h"
#include "tests/host/servertest.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;

constexpr const char* alice = "2535400000000001";
constexpr int purse = 1'000'000, stock = 5000;

struct Shop {
    const char *xuid, *item;
    int price;
};
constexpr Shop shops[] = {{"2535400000000002", "apple", 3},
                          {"2535400000000003", "bread", 50},
                          {"2535400000000004", "stick", 700},
                          {"2535400000000005", "paper", 11000}};
constexpr std::size_t shopcount = std::size(shops);
using Counts = std::array<int, shopcount>;

// The shop's file when so many of its goods are sold. Long, so that it takes its time to be written.
json shopfile(const Shop& shop, int sold) {
    const json common = {{"describe", std::string(40'000, 'd')},
                         {"isopshop", false},
                         {"ownerlang", "en_US"},
                         {"ownername", ""},
                         {"shopitemicon", ""},
                         {"shopname", "shop"},
                         {"shopstate", nullptr}};
    json sell = {
        {"biditems", nullptr},
        {"items",
         {{{"shopitemname", shop.item},
           {"shopitemdescribe", ""},
           {"shopitemtag", shop.item},
           {"price", shop.price},
           {"shopitemleftnum", stock - sold},
           {"itemnbt", std::string("{Count:1b,Damage:0s,Name:\"minecraft:") + shop.item + "\",WasPickedUp:0b}"},
           {"allowbesearched", true}}}},
        {"salesvolume", sold * shop.price},
        {"sellcount", sold},
        {"shopdiscount", nullptr}};
    json recycles = {{"recycleamount", 0}, {"recyclecost", 0}, {"recycleitems", nullptr}};
    sell.update(common);
    recycles.update(common);
    return {{"sell", sell}, {"recycles", recycles}};
}

// A market on the disk, the process that runs it, and a player in it who buys.
class HardStop : public testing::Test {
protected:
    static std::string pathof(const Shop& shop) { return std::string("plugins/Ordomart/data/") + shop.xuid + ".json"; }

    void opens(bool withllmoney) {
        llmoney = withllmoney;
        bought = asked = {};
        std::filesystem::remove_all(directory.path);
        for (const Shop& shop : shops) directory.put(pathof(shop), shopfile(shop, 0).dump(4));
        std::vector<std::string> arguments = {
            directory.path.string(), "--manual", "--quiet", "--empty", "--api-port", "0", "--token", "t"};
        if (!llmoney) arguments.emplace_back("--no-llmoney");
        process = std::make_unique<coretests::ServerProcess>(arguments);
        const std::string said = process->readsuntil("/#token=");
        const auto port = said.find("127.0.0.1:");
        ASSERT_NE(port, std::string::npos) << said << process->errors();
        api = std::make_unique<coretests::ApiCaller>(std::stoi(said.substr(port + 10)), "t");

        ASSERT_EQ(api->post("/api/players", {{"name", "Alice"}, {"xuid", alice}}).status, 200);
        if (llmoney)
            ASSERT_EQ(api->put("/api/players/Alice/money", {{"amount", purse}}).status, 200);
        else
            ASSERT_EQ(api->put("/api/players/Alice/score", {{"objective", "money"}, {"value", purse}}).status, 200);
        ASSERT_EQ(post("command", {{"line", "ordomart formmenu"}}), 200);
        ASSERT_TRUE(presses("Selling shops (form)"));
    }
    int post(const std::string& call, const json& body) { return api->post("/api/players/Alice/" + call, body).status; }
    // Null when there is none, and when the server is gone.
    json form() {
        const json seen = api->get("/api/players/Alice").body;
        return seen.is_object() ? seen.value("/form/json"_json_pointer, json()) : json();
    }
    // False when the server is gone.
    bool presses(const std::string& text) {
        const json shown = form();
        if (!shown.is_object()) return false;
        if (shown["type"] == "modal") return post("answer", {{"answer", shown["button1"] == text}}) == 200;
        for (std::size_t i = 0; i < shown["buttons"].size(); ++i)
            if (shown["buttons"][i]["text"].get<std::string>().find(text) != std::string::npos)
                return post("answer", {{"answer", i}}) == 200;
        ADD_FAILURE() << "no " << text << " in " << shown.dump();
        return false;
    }
    // One piece, with the list of goods in front of him before and after. False when the server is gone.
    bool buys(std::size_t number) {
        if (!presses(shops[number].item)) return false;
        json answer = json::array();
        const json shown = form();
        if (!shown.is_object()) return false;
        for (const json& element : shown["content"]) {
            answer.push_back(element.value("default", json()));
            if (element["text"].get<std::string>().find("quantity") != std::string::npos) answer.back() = "1";
        }
        ++asked[number];
        if (post("answer", {{"answer", answer}}) != 200) return false;
        ++bought[number];
        return presses("Continue");
    }

    // Every shop file holds one of the states that the shop has had.
    Counts soldonfile() {
        Counts sold{};
        for (std::size_t i = 0; i < shopcount; ++i) {
            const json file = json::parse(directory.get(pathof(shops[i])), nullptr, false);
            sold[i] = file.value("/sell/sellcount"_json_pointer, -1);
            EXPECT_TRUE(file == shopfile(shops[i], sold[i])) << shops[i].item << " in state " << sold[i];
        }
        return sold;
    }
    // Opens the directory again, and finds that whatever was paid for is there and no more, and that the shops know it.
    void accountsagree(const Counts& onfile) {
        auto options = coretests::manually(directory);
        if (!llmoney) options.moneylibrary = "none";
        host::Server server(options);
        server.start();
        Counts has{};
        server.run([&] {
            server.network().join({.name = "Alice", .xuid = alice}, [](const std::string&) {});
            std::int64_t worth = 0;
            for (std::size_t i = 0; i < shopcount; ++i) {
                has[i] = pieces(server, shops[i].item);
                worth += std::int64_t{has[i]} * shops[i].price;
                EXPECT_TRUE(bought[i] <= has[i] && has[i] <= asked[i]) << shops[i].item << " " << has[i];
                EXPECT_LE(onfile[i], has[i]) << "the file has sold what nobody has";
                EXPECT_EQ(balance(server, shops[i].xuid), std::int64_t{has[i]} * shops[i].price) << shops[i].item;
            }
            EXPECT_EQ(purse - balance(server, alice), worth);
        });
        server.settle();
        server.stop();
        EXPECT_EQ(soldonfile(), has);
    }
    static int pieces(host::Server& server, const std::string& item) {
        int sum = 0;
        for (int slot = 0; slot < 36; ++slot) {
            const auto stack = server.world().item("Alice", slot);
            if (stack.getTypeName() == "minecraft:" + item) sum += stack.getCount();
        }
        return sum;
    }
    std::int64_t balance(host::Server& server, const std::string& xuid) const {
        if (llmoney) return host::Money(*server.services().libraries).get(xuid);
        auto& board = server.world().scoreboard();
        if (xuid == alice) return server.world().score("Alice", "money");
        return board.getScoreboardId("a" + xuid).isValid() ? board.getScore("helpermoney", "a" + xuid) : 0;
    }

    coretests::Directory directory;
    bool llmoney = true;
    Counts bought{}, asked{};
    std::unique_ptr<coretests::ServerProcess> process;
    std::unique_ptr<coretests::ApiCaller> api;
};

// Kills the process at the n-th thing of a kind that happens to files of a directory.
class Killer {
public:
    Killer(const coretests::ServerProcess& victim, const std::filesystem::path& directory, std::uint32_t kind,
           std::string ending, int n)
        : notices_(::inotify_init1(IN_CLOEXEC)), watch_(::inotify_add_watch(notices_, directory.c_str(), kind)) {
        thread_ = std::thread([this, &victim, ending = std::move(ending), n] {
            int left = n;
            alignas(inotify_event) char buffer[4096];
            while (left > 0) {
                const auto got = ::read(notices_, buffer, sizeof buffer);
                for (ssize_t at = 0; at < got;) {
                    const auto* event = reinterpret_cast<const inotify_event*>(buffer + at);
                    at += static_cast<ssize_t>(sizeof *event + event->len);
                    if ((event->mask & IN_IGNORED) != 0) return;
                    if (std::string_view(event->name).ends_with(ending) && --left == 0) victim.kill(SIGKILL);
                }
            }
        });
    }
    ~Killer() {
        ::inotify_rm_watch(notices_, watch_);  // wakes the thread, if it still waits
        thread_.join();
        ::close(notices_);
    }

private:
    int notices_, watch_;
    std::thread thread_;
};

TEST_F(HardStop, AKillInTheMiddleOfASaveStormTearsNothing) {
    const auto data = directory.path / "plugins/Ordomart/data";
    const struct {
        const char* moment;
        std::filesystem::path directory;
        std::uint32_t kind;
        const char* ending;
        int most;
        bool llmoney;
    } rounds[] = {
        {"a shop file is begun", data, IN_CREATE, ".part", 6, true},
        {"it is being written", data, IN_MODIFY, ".part", 6, false},
        {"it is written and not yet in force", data, IN_CLOSE_WRITE, ".part", 6, true},
        {"it is in force", data, IN_MOVED_TO, ".json", 6, false},
        {"the world is written, scores and all", directory.path, IN_MODIFY, "server.sqlite-wal", 40, false},
        {"the world is written", directory.path, IN_MODIFY, "server.sqlite-wal", 40, true},
    };
    std::mt19937 random(20260131);
    for (const auto& round : rounds) {
        SCOPED_TRACE(round.moment);
        opens(round.llmoney);
        if (HasFatalFailure()) return;
        {
            const Killer killer(*process, round.directory, round.kind, round.ending,
                                1 + static_cast<int>(random() % static_cast<unsigned>(round.most)));
            bool alive = true;
            for (int i = 0; i < 200 && alive; ++i)
                alive = buys(random() % shopcount) && api->post("/api/ticks", {{"count", 20}}).status == 200;
            ASSERT_FALSE(alive) << "it was never killed";
        }
        EXPECT_EQ(process->wait(), -SIGKILL);
        accountsagree(soldonfile());
    }
}

TEST_F(HardStop, ATermSignalSavesEverything) {
    for (const bool withllmoney : {true, false}) {
        SCOPED_TRACE(withllmoney);
        opens(withllmoney);
        if (HasFatalFailure()) return;
        for (const std::size_t number : {0, 1, 1, 3}) ASSERT_TRUE(buys(number));
        EXPECT_EQ(soldonfile(), Counts{}) << "nothing was due to be saved yet";
        process->kill(SIGTERM);
        EXPECT_EQ(process->wait(), 0);
        EXPECT_EQ(process->errors(), "");
        EXPECT_EQ(soldonfile(), (Counts{1, 2, 0, 1}));
        accountsagree(bought);
    }
}

// The world's file is locked from before the purchase to after the end of the process.
TEST_F(HardStop, WhatAStopCannotSaveIsToldAndThereAtTheNextStart) {
    for (const bool withllmoney : {true, false}) {
        SCOPED_TRACE(withllmoney);
        opens(withllmoney);
        if (HasFatalFailure()) return;
        const std::string world = (directory.path / "server.sqlite").string();
        {
            SQLite::Database other(world, SQLite::OPEN_READWRITE);
            const SQLite::Transaction locked(other, SQLite::TransactionBehavior::IMMEDIATE);
            ASSERT_TRUE(buys(1));
            EXPECT_EQ(api->post("/api/ticks", {{"count", 5}}).status, 200);
            EXPECT_EQ(directory.get(std::string("plugins/Ordomart/log/") + shops[1].xuid + ".log"), "")
                << "no line is ahead of its trade";
            process->kill(SIGTERM);
            EXPECT_EQ(process->wait(), 2);
        }
        const std::string errors = process->errors();
        EXPECT_THAT(errors, HasSubstr("ordomart-server: not saved: " + world));
        EXPECT_THAT(errors, HasSubstr("server.unsaved.sql"));
        EXPECT_EQ(soldonfile(), Counts{}) << "no file is ahead of the world";
        accountsagree({});
    }
}

// The accounts of a file of the library's own come into the world once, and no such file is ever lost.
TEST(MoneyMoves, IntoTheWorldOnce) {
    coretests::Directory directory;
    const std::string former = (directory.path / "money.sqlite").string();
    for (const int balance : {100, 7}) {
        {
            SQLite::Database file(former, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
            file.exec(
                "CREATE TABLE llmoney_account (xuid TEXT PRIMARY KEY, balance INTEGER NOT NULL);"
                "CREATE TABLE llmoney_history (id INTEGER PRIMARY KEY, payer, payee, value, time, note);"
                "INSERT INTO llmoney_account VALUES ('5', " +
                std::to_string(balance) + ")");
        }
        auto options = coretests::manually(directory);
        options.newworld = true;
        host::Server server(options);
        server.start();
        server.run([&] { EXPECT_EQ(host::Money(*server.services().libraries).get("5"), 100); });
        server.stop();
        EXPECT_TRUE(std::filesystem::exists(former + ".moved"));
        EXPECT_EQ(std::filesystem::exists(former), balance == 7) << "what is not taken over stays where it is";
        EXPECT_EQ(directory.get("server.log").find("not used") != std::string::npos, balance == 7);
    }
}

// Its answer is out, its file is still being read beside the server, and the change is still to come.
TEST(OrderlyStop, SavesABanThatWasOrderedRightBefore) {
    coretests::Directory directory;
    const std::string file = std::string("plugins/Ordomart/data/") + shops[0].xuid + ".json";
    directory.put(file, shopfile(shops[0], 0).dump());
    host::Server server(coretests::manually(directory));
    server.start();
    server.run([&] {
        auto& network = server.network();
        const auto joins = [&](const char* name, const char* xuid) {
            return network.join({.name = name, .xuid = xuid}, [](const std::string&) {});
        };
        network.leave(joins("Bob", shops[0].xuid));
        const auto result = server.commands().execute("ordomart ban sell bob", network.player(joins("Alice", alice)),
                                                      platform::CommandPermissionLevel::GameMasters);
        ASSERT_EQ(result.messages.size(), 1U);
        EXPECT_TRUE(result.messages[0].success) << result.messages[0].text;
    });
    server.stop();
    EXPECT_EQ(json::parse(directory.get(file)).value("/sell/shopstate/isbaned"_json_pointer, false), true);
}

// What the program prints is read by whoever likes to: nobody, here.
TEST_F(HardStop, AnOutputThatNobodyReadsStopsNothing) {
    for (const bool quiet : {true, false}) {
        SCOPED_TRACE(quiet);
        process = std::make_unique<coretests::ServerProcess>(std::vector<std::string>{
            directory.path.string(), "--empty", "--api-port", "0", "--token", "t", quiet ? "--quiet" : "--manual"});
        const std::string said = process->readsuntil("/#token=");
        api = std::make_unique<coretests::ApiCaller>(std::stoi(said.substr(said.find("127.0.0.1:") + 10)), "t");
        ASSERT_EQ(api->post("/api/players", {{"name", "Alice"}}).status, 200);
        // Far more than a pipe holds.
        for (int i = 0; i < 300; ++i)
            ASSERT_EQ(post("command", {{"line", "nonsense" + std::string(2000, 'x')}}), 200) << i;
        process->kill(SIGTERM);
        EXPECT_EQ(process->wait(), 0);
    }
}

}  // namespace
