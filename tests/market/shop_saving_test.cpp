// Saves that fail, the stop, and the records of what has not reached its file.
#include <gtest/gtest.h>

#include "plugin/shopsystem/shoprecords.h"
#include "plugin/shopsystem/taskpool.h"
#include "tests/market/shophost.h"

using namespace market_tests;
using namespace shopsystem;
using market_tests::json;

namespace {

TEST(ShopSaving, AFailedSaveIsTriedAgainWithGrowingPauses) {
    struct {
        const char* name;
        std::function<void(ShopHost&, const std::string&)> breaks, mends;
        const char* why;
    } const cases[] = {
        {"disk", [](ShopHost& host, auto&) { host.disk.writable = false; },
         [](ShopHost& host, auto&) { host.disk.writable = true; }, "Can't write file "},
        {"torn", [](ShopHost& host, auto& path) { host.disk.contents[path] = "{"; },
         [](ShopHost& host, auto& path) { host.disk.contents[path] = "{}"; }, ""},
        {"list", [](ShopHost& host, auto& path) { host.disk.contents[path] = "[1]"; },
         [](ShopHost& host, auto& path) { host.disk.contents.erase(path); }, ""},
        {"locked",
         [](ShopHost& host, auto& path) {
             host.disk.contents.erase(path);
             host.disk.directories.insert(path);
         },
         [](ShopHost& host, auto& path) { host.disk.directories.erase(path); }, "Can't read file "},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ShopHost host;
        const auto path = ShopHost::path(c.name);
        auto& shop = buys(c.name);
        shop.recyclecost = 5;
        shop.markshopchanged();
        c.breaks(host, path);
        host.ticks(2);
        // The ticks at which the save is tried, counted from the first time.
        std::vector<int> tries;
        for (int tick = 1; tick <= 250; ++tick) {
            const int before = host.disk.reads[path];
            host.ticks(1);
            if (host.disk.reads[path] != before) tries.push_back(tick);
        }
        EXPECT_EQ(tries, (std::vector<int>{1, 3, 7, 15, 31, 63, 123, 183, 243}));
        EXPECT_EQ(host.told("The shop is not saved (recycles), and this is tried again: " + (c.why + path)), 1);
        EXPECT_EQ(host.told(path), 1);
        shop.recyclecost = 6;
        shop.markshopchanged();
        c.mends(host, path);
        host.ticks(60);
        EXPECT_EQ(host.document(c.name)["recycles"]["recyclecost"], 6);
        EXPECT_EQ(host.told("The shop is saved again (recycles): " + path), 1);
        EXPECT_EQ(shop.idleticks, 6) << "it ages from now on";
    }
}

TEST(ShopSaving, AnOrderlyStopSavesEverythingOnce) {
    ShopHost host;
    const auto change = [](const char* xuid) { sells(xuid).markshopchanged(); };
    for (const char* xuid : {"stopdirty", "stopwanted", "stopqueued", "stopclean", "stoplate"}) sells(xuid);
    // The worker is held up, so that the states stay where they are.
    std::promise<void> go;
    taskpool.enqueue([wait = go.get_future().share()] { wait.wait(); });
    change("stopqueued");
    globalruntimeshopmanager.tick();
    change("stopwanted");
    globalruntimeshopmanager.tick();
    change("stopdirty");
    change("stopqueued");  // its task has not looked yet
    const int before = host.background.underway();
    host.records.endpass();
    globalruntimeshopmanager.savealldirty();
    globalruntimeshopmanager.savealldirty();
    EXPECT_EQ(host.background.underway() - before, 2) << "one save for each that has none under way";
    for (const char* xuid : {"stopdirty", "stopwanted", "stopqueued", "stopclean"})
        host.disk.contents.erase(ShopHost::path(xuid));
    go.set_value();
    host.settle();
    for (const char* xuid : {"stopdirty", "stopwanted", "stopqueued"})
        EXPECT_TRUE(host.disk.contents.contains(ShopHost::path(xuid))) << xuid;
    EXPECT_FALSE(host.disk.contents.contains(ShopHost::path("stopclean")));

    // Once more, for what came into being meanwhile; nothing is left then.
    sells("stoplate").sellcount = 3;
    change("stoplate");
    host.records.endpass();
    globalruntimeshopmanager.savealldirty();
    host.settle();
    EXPECT_EQ(host.document("stoplate")["sell"]["sellcount"], 3);
    std::vector<std::string> unsaved;
    globalruntimeshopmanager.tellunsaved(unsaved);
    EXPECT_TRUE(unsaved.empty());
}

std::string packed(const json& section) {
    std::string bytes;
    json::to_msgpack(section, bytes);
    return bytes;
}

// A file is never ahead of what is on the disk beside it, and a record goes when its file has caught up.
TEST(ShopRecords, AChangeIsOnTheDiskBeforeItIsInItsFile) {
    ShopHost host;
    auto& shop = sells("recorded");
    shop.items = json::array({{{"price", 5}}});
    shop.markshopchanged();
    shop.sellcount = 1;
    shop.markshopchanged();
    const auto tickonly = [&] {
        globalruntimeshopmanager.tick();
        host.settle();
    };
    for (int i = 0; i < 5; ++i) tickonly();
    EXPECT_EQ(host.document("recorded")["sell"]["sellcount"], 0) << "the pass cannot be written";
    auto& table = host.records.tables["shops"];
    host.records.endpass();
    const json record = json::from_msgpack(table.at("recorded.sell"));
    EXPECT_EQ(record["sellcount"], 1);
    EXPECT_EQ(record["items"], shop.items) << "only lent";
    EXPECT_EQ(shop.items[0]["price"], 5);
    tickonly();
    tickonly();
    EXPECT_EQ(host.document("recorded")["sell"]["sellcount"], 1);

    // Changed again while the save is on its way: that record stays.
    std::promise<void> go;
    taskpool.enqueue([wait = go.get_future().share()] { wait.wait(); });
    host.disk.behindtheread = [&] { shop.markshopchanged(); };
    shop.markshopchanged();
    host.records.endpass();
    globalruntimeshopmanager.savealldirty();
    go.set_value();
    host.settle();
    host.records.endpass();
    EXPECT_TRUE(table.contains("recorded.sell"));
    host.ticks(4);
    EXPECT_TRUE(table.empty());
}

// Killed between a pass and its file: the next start has the shop as the pass left it, whatever the file says.
TEST(ShopRecords, WhatTheLastRunLeftStandsAboveTheFile) {
    const std::string standing = R"({"sell": {"sellcount": 1}, "recycles": {"recyclecost": 2}})";
    const std::string newer = packed({{"sellcount", 5}, {"items", json::array()}});
    struct {
        const char* name;
        std::string shopfile, record;
        const char* broken;  // why the file stands
        int sellcount, recyclecost;
    } const cases[] = {
        {"left", standing, newer, nullptr, 5, 2},
        {"left.sell", standing, newer, nullptr, 5, 2},
        {"leftnofile", "", newer, nullptr, 5, 0},
        {"leftbyhand", R"({"sell": {"sellcount": 9}, "recycles": {"recyclecost": 9}})", newer, nullptr, 5, 9},
        {"leftnumber", standing, "{", "holds no object", 1, 2},
        {"leftcut", standing, newer.substr(0, newer.size() - 1), "parse_error", 1, 2},
        {"leftlist", standing, packed({1, 2}), "holds no object", 1, 2},
        {"leftmistyped", standing, packed({{"sellcount", "many"}}), "sellcount", 1, 2},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ShopHost host;
        const std::string key = std::string(c.name) + ".sell";
        if (!c.shopfile.empty()) host.disk.contents[ShopHost::path(c.name)] = c.shopfile;
        host.records.tables["shops"] = {{key, c.record}, {"nonsense", "x"}};
        bringinrecords();
        EXPECT_EQ(sells(c.name).sellcount, c.sellcount);
        EXPECT_EQ(host.told("1 shops had changed when the last run ended"), 1);
        host.ticks(4);
        EXPECT_EQ(host.document(c.name)["sell"].value("sellcount", -1), c.sellcount);
        EXPECT_EQ(buys(c.name).recyclecost, c.recyclecost);
        EXPECT_TRUE(host.records.tables["shops"].empty());
        const auto& aside = host.records.tables["shops.broken"];
        EXPECT_EQ(aside.at("nonsense"), "x");
        EXPECT_EQ(aside.contains(key), c.broken != nullptr);
        if (c.broken == nullptr) continue;
        EXPECT_EQ(aside.at(key), c.record);
        EXPECT_EQ(host.told("The record of " + key + " is broken"), 1);
        EXPECT_EQ(host.told(c.broken), 1);
    }
    // A file that cannot be read closes a shop only where there is nothing newer.
    ShopHost host;
    host.disk.contents[ShopHost::path("lefttorn")] = "{";
    host.records.tables["shops"] = {{"lefttorn.sell", newer}};
    bringinrecords();
    EXPECT_EQ(sells("lefttorn").sellcount, 5);
    host.ticks(4);
    EXPECT_EQ(host.disk.contents.at(ShopHost::path("lefttorn")), "{");
    EXPECT_TRUE(host.records.tables["shops"].contains("lefttorn.sell"));
    host.disk.contents[ShopHost::path("lefttorn")] = standing;
    host.ticks(8);
    EXPECT_EQ(host.document("lefttorn")["sell"]["sellcount"], 5);
}

TEST(ShopRecords, AStopTellsWhatIsNotInItsFile) {
    for (const bool records : {true, false}) {
        ShopHost host;
        if (!records) host.services.records = nullptr;
        const std::string xuid = records ? "kept" : "lost", file = ShopHost::path(xuid);
        buys(xuid).recyclecost = 7;
        buys(xuid).markshopchanged();
        host.records.endpass();
        host.disk.contents[file] = "{";
        globalruntimeshopmanager.savealldirty();
        host.settle();
        std::vector<std::string> unsaved;
        globalruntimeshopmanager.tellunsaved(unsaved);
        ASSERT_EQ(unsaved.size(), 1U);
        EXPECT_TRUE(unsaved[0].starts_with(file + " (recycles): " + file + ": [json.exception.parse_error"))
            << unsaved[0];
        EXPECT_TRUE(unsaved[0].ends_with(records ? "; the server's records have it, and the next start brings it in"
                                                 : "; what changed since it was saved is lost"));
        host.disk.contents[file] = "{}";
        host.ticks(2);
    }
}

}  // namespace
