// Backups of a market that trades, and of the program as a process: whatever is restored from them is balanced.
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <atomic>
#include <thread>

#include "host/api/keyfiles.h"
#include "host/backup/command.h"
#include "host/backup/restore.h"
#include "host/bustle/bustle.h"
#include "host/clients.h"
#include "host/console/console.h"
#include "host/money.h"
#include "host/network/network.h"
#include "host/world/world.h"
#include "platform/scoreboard.h"
#include "tests/host/apicaller.h"
#include "tests/host/serverprocess.h"
#include "tests/host/servertest.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::HasSubstr;

constexpr const char* alice = "2535400000000001";
constexpr int purse = 1'000'000, stock = 500'000;
struct Shop {
    std::string xuid, item;
    int price;
};
// Many, so that one of them is saved at nearly every moment.
const std::vector<Shop> shops = [] {
    std::vector<Shop> made;
    for (const char* item : {"apple", "bread", "stick", "paper", "book", "brick", "coal", "diamond", "emerald",
                             "feather", "flint", "leather", "string", "sugar", "wheat"})
        made.push_back({fmt::format("25354000000010{:02}", made.size()), item, 3 + 7 * static_cast<int>(made.size())});
    return made;
}();

std::string pathof(const Shop& shop) { return "plugins/Ordomart/data/" + shop.xuid + ".json"; }

json shopfile(const Shop& shop) {
    const json common = {{"describe", ""},     {"isopshop", false},  {"ownerlang", "en_US"}, {"ownername", ""},
                         {"shopitemicon", ""}, {"shopname", "shop"}, {"shopstate", nullptr}};
    json sell = {{"biditems", nullptr},
                 {"items",
                  {{{"shopitemname", shop.item},
                    {"shopitemdescribe", ""},
                    {"shopitemtag", shop.item},
                    {"price", shop.price},
                    {"shopitemleftnum", stock},
                    {"itemnbt", "{Count:1b,Damage:0s,Name:\"minecraft:" + shop.item + "\",WasPickedUp:0b}"},
                    {"allowbesearched", true}}}},
                 {"salesvolume", 0},
                 {"sellcount", 0},
                 {"shopdiscount", nullptr}};
    json recycles = {{"recycleamount", 0}, {"recyclecost", 0}, {"recycleitems", nullptr}};
    sell.update(common);
    recycles.update(common);
    return {{"sell", sell}, {"recycles", recycles}};
}

class BackupMarket : public testing::Test {
protected:
    [[nodiscard]] host::ServerOptions options(const fs::path& below, bool manual, bool withllmoney) const {
        auto made = coretests::manually(directory);
        made.directory = below.string();
        made.manual = manual;
        if (!withllmoney) made.moneylibrary = "none";
        return made;
    }
    static std::int64_t balance(host::Server& server, bool withllmoney, const std::string& xuid) {
        if (withllmoney) return host::Money(*server.services().libraries).get(xuid);
        auto& board = server.world().scoreboard();
        if (xuid == alice) return server.world().score("Alice", "money");
        return board.getScoreboardId("a" + xuid).isValid() ? board.getScore("helpermoney", "a" + xuid) : 0;
    }
    // Pieces that Alice has bought, as money, goods and shops agree on.
    int bought(const fs::path& below, bool withllmoney) {
        host::Server server(options(below, true, withllmoney));
        server.start();
        int all = 0;
        std::int64_t worth = 0;
        std::vector<int> pieces;
        server.run([&] { server.network().join({.name = "Alice", .xuid = alice}, [](const std::string&) {}); });
        server.run([&] {
            for (const Shop& shop : shops) {
                int has = 0;
                for (int slot = 0; slot < 36; ++slot) {
                    const auto stack = server.world().item("Alice", slot);
                    if (stack.getTypeName() == "minecraft:" + shop.item) has += stack.getCount();
                }
                EXPECT_EQ(balance(server, withllmoney, shop.xuid), std::int64_t{has} * shop.price) << shop.item;
                worth += std::int64_t{has} * shop.price;
                all += has;
                pieces.push_back(has);
            }
            EXPECT_EQ(purse - balance(server, withllmoney, alice), worth);
        });
        server.settle();
        server.stop();
        for (std::size_t i = 0; i < pieces.size(); ++i) {
            std::ifstream in(below / pathof(shops[i]));
            const json sell = json::parse(in, nullptr, false)["sell"];
            EXPECT_EQ(sell["sellcount"], pieces[i]) << shops[i].item;
            EXPECT_EQ(sell["items"][0]["shopitemleftnum"], stock - pieces[i]) << shops[i].item;
        }
        return all;
    }

    coretests::Directory directory;
};

// Alice: presses and fills what she is shown, as fast as it comes.
class Trader {
public:
    explicit Trader(host::Clients& clients) : clients_(clients), thread_([this] { trade(); }) {}
    ~Trader() {
        over_ = true;
        thread_.join();
    }

private:
    void trade() {
        std::size_t next = 0;
        while (!over_) {
            clients_.with("Alice", [&](client::ModelClient& c) {
                if (c.forms().empty()) {
                    if (std::exchange(asked_, true)) return;
                    return c.command("ordomart formmenu");
                }
                asked_ = false;
                const json form = json::parse(c.forms().front().json);
                if (form["type"] == "custom_form") {
                    json answer = json::array();
                    for (const json& element : form["content"]) {
                        answer.push_back(element.value("default", json()));
                        if (element["text"].get<std::string>().find("quantity") != std::string::npos)
                            answer.back() = "1";
                    }
                    return c.answer(answer.dump());
                }
                if (form["type"] == "modal") return c.answer(form["button1"] == "Continue" ? "true" : "false");
                const std::string& wanted = shops[next % shops.size()].item;
                for (const std::string& text : {wanted, std::string("Selling shops (form)")})
                    for (std::size_t i = 0; i < form["buttons"].size(); ++i)
                        if (form["buttons"][i]["text"].get<std::string>().find(text) != std::string::npos) {
                            if (text == wanted) ++next;
                            return c.answer(std::to_string(i));
                        }
                c.answer("null");
            });
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }

    host::Clients& clients_;
    std::atomic<bool> over_ = false;
    bool asked_ = false;
    std::thread thread_;
};

TEST_F(BackupMarket, ACopyTakenWhileTheyTradeIsBalanced) {
    for (const bool withllmoney : {true, false}) {
        SCOPED_TRACE(withllmoney);
        const fs::path home = directory.path / "home";
        fs::remove_all(home);
        for (const Shop& shop : shops) directory.put("home/" + pathof(shop), shopfile(shop).dump());
        std::vector<host::BackupReport> reports;
        {
            host::Server server(options(home, false, withllmoney));
            server.start();
            host::Clients clients(server);
            clients.join({.name = "Alice", .xuid = alice});
            server.run([&] {
                if (withllmoney)
                    host::Money(*server.services().libraries).set(alice, purse);
                else
                    server.world().setscore("Alice", "money", purse);
            });
            // So that copying the world takes its time.
            SQLite::Database((home / "server.sqlite").string(), SQLite::OPEN_READWRITE, 5000)
                .exec("CREATE TABLE large AS SELECT randomblob(20000000) AS bytes");
            const Trader trader(clients);
            for (int i = 0; i < 4; ++i) {
                std::this_thread::sleep_for(std::chrono::milliseconds(300));
                reports.push_back(server.backup((directory.path / fmt::format("b{}{}.tar", withllmoney, i)).string()));
            }
        }
        int before = -1;
        for (const auto& report : reports) {
            SCOPED_TRACE(report.text());
            const fs::path back = directory.path / "back";
            host::restore(report.file, back);
            const int now = bought(back, withllmoney);
            EXPECT_GE(now, before);
            before = now;
            fs::remove_all(back);
        }
        EXPECT_GT(before, 20) << "nobody has traded";
        EXPECT_GE(bought(home, withllmoney), before);
    }
}

// From outside, running and not, and killed in the middle; the page of an open browser goes on after a restart.
TEST_F(BackupMarket, TheProgramBacksUpADirectoryAndRestoresIt) {
    const auto home = directory.path / "home";
    directory.put("home/server/.keep", "");
    const auto path = [&](const std::string& name) { return (directory.path / name).string(); };
    const auto runs = [](const std::vector<std::string>& arguments, const std::string& told, int status = 0) {
        coretests::ServerProcess process(arguments);
        const std::string said = process.readsuntil({"\n"}) + process.errors();
        EXPECT_THAT(said, HasSubstr(told));
        EXPECT_EQ(process.wait(), status) << said;
    };
    const auto starts = [&](std::vector<std::string> more = {}) {
        more.insert(more.begin(), {home.string(), "--manual", "--quiet", "--empty", "--api-port", "0"});
        auto process = std::make_unique<coretests::ServerProcess>(more);
        EXPECT_THAT(process->readsuntil("\"stop\" ends."), HasSubstr("/#token="));
        return process;
    };
    const host::KeyFiles keys(home);
    const auto ownersalone = [&](std::string_view name) {
        struct stat status {};
        return ::stat((home / name).c_str(), &status) == 0 && (status.st_mode & 0777) == 0600;
    };
    const auto stops = [&](coretests::ServerProcess& process) {
        process.kill(SIGTERM);
        EXPECT_EQ(process.wait(), 0);
        EXPECT_FALSE(keys.address());
    };

    auto process = starts();
    const auto address = keys.address();
    ASSERT_TRUE(address);
    EXPECT_TRUE(ownersalone("api.token") && ownersalone("api.address"));
    runs({"--backup", path("running.tar"), home.string()}, "Backed up to " + path("running.tar"));
    runs({"--backup", path("running.tar"), home.string()}, "running.tar: there is such a file", 1);
    // In the middle of the next one.
    directory.put("home/large", std::string(100 << 20, 'l'));
    std::thread asks([&] {
        coretests::ApiCaller api(address->port, address->token);
        EXPECT_EQ(api.post("/api/backup", {{"file", (home / "killed.tar").string()}}).status, 0);
    });
    const auto part = host::partbeside(home / "killed.tar");
    for (int i = 0; i < 10'000 && !fs::exists(part); ++i) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    process->kill(SIGKILL);
    process->wait();
    asks.join();
    EXPECT_FALSE(fs::exists(home / "killed.tar"));
    EXPECT_TRUE(fs::exists(part)) << "it was killed too late";
    EXPECT_TRUE(keys.address()) << "of the server that was killed";
    runs({"--backup", path("stopped.tar.zst"), home.string()}, "Backed up to " + path("stopped.tar.zst"));

    // The token is that of the first start, unless another one is given.
    process = starts();
    EXPECT_FALSE(fs::exists(part));
    EXPECT_EQ(keys.address().value().token, address->token);
    stops(*process);
    process = starts({"--token", "given"});
    EXPECT_EQ(keys.address().value().token, "given");
    stops(*process);
    EXPECT_EQ(keys.token(), address->token);
    ::chmod((home / "api.token").c_str(), 0644);
    EXPECT_EQ(keys.token(), address->token);
    EXPECT_TRUE(ownersalone("api.token"));
    directory.put("home/api.token", "short\n");
    runs({home.string(), "--empty"}, "api.token: no token", 1);

    const host::Descriptor lock(home.c_str(), O_RDONLY | O_DIRECTORY);
    ASSERT_EQ(::flock(lock.number(), LOCK_EX), 0);
    runs({"--backup", path("none.tar"), home.string()}, "api.address cannot be read; it may be starting", 1);
    runs({"--restore", path("running.tar"), path("back")}, "files of " + path("running.tar") + " are restored");
    runs({"--restore", path("running.tar"), path("back")}, "the directory is not empty", 1);
    for (const char* secret : {"api.token", "api.address"}) EXPECT_FALSE(fs::exists(directory.path / "back" / secret));
    fs::create_directory(directory.path / "back/.restore.part");
    runs({path("back")}, "a restore was cut short here", 1);
}

using BackupLines = coretests::ServerTest;

TEST_F(BackupLines, StandInTheConsoleAndOneIsUnderWayAtATime) {
    host::Clients clients(*server);
    std::string said;
    host::Bustle bustle(*server, clients);
    host::Console console(*server, clients, bustle, [&](const std::string& text) { said += text + "\n"; });
    const std::string file = (directory.path / "with blanks.tar").string();
    console.line("backup " + file);
    console.line("backup " + file);
    EXPECT_THAT(said, testing::AllOf(HasSubstr("The backup is complete: " + file), HasSubstr("there is such a file")));
    {
        SQLite::Database other((directory.path / "server.sqlite").string(), SQLite::OPEN_READWRITE);
        const SQLite::Transaction locked(other, SQLite::TransactionBehavior::IMMEDIATE);
        server->run([&] { server->network().join({.name = "Alice", .xuid = alice}, [](const std::string&) {}); });
        said.clear();
        console.line("backup " + file + ".tar");
        EXPECT_THAT(said, HasSubstr("server.sqlite cannot be written since"));
        EXPECT_FALSE(fs::exists(file + ".tar"));
    }
    server->stop();
    said.clear();
    console.line("backup " + file + ".tar");
    EXPECT_THAT(said, HasSubstr("the server does not run"));
    EXPECT_EQ(directory.names(".").size(), 4U) << testing::PrintToString(directory.names("."));
}

}  // namespace
