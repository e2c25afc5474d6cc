// Saves that fail, the stop, and what it could not save.
#include <gtest/gtest.h>

#include "plugin/shopsystem/taskpool.h"
#include "plugin/shopsystem/unsaved.h"
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

    // Once more, for what came into being meanwhile; nothing is left to keep aside then.
    sells("stoplate").sellcount = 3;
    change("stoplate");
    globalruntimeshopmanager.savealldirty();
    host.settle();
    EXPECT_EQ(host.document("stoplate")["sell"]["sellcount"], 3);
    std::vector<std::string> unsaved;
    globalruntimeshopmanager.keepunsaved(unsaved);
    EXPECT_TRUE(unsaved.empty());
}

// What was put aside by a stop is newer than the shop file: nobody reads this one before.
TEST(ShopUnsaved, IsTakenInBeforeTheShopIsRead) {
    const std::string standing = R"({"sell": {"sellcount": 1}, "recycles": {"recyclecost": 2}})";
    const std::string newer = R"({"sellcount": 5})";
    const auto putaside = [](const std::string& xuid) { return ordomart::paths::unsaved + xuid + ".sell.json"; };
    struct {
        const char* name;
        std::string shopfile, aside;
        bool removable;
        std::string why;  // it waits
        int recyclecost;
    } const cases[] = {
        {"ready", standing, newer, true, "", 2},
        {"dotted.json", standing, newer, true, "", 2},
        {"nofile", "", newer, true, "", 0},
        {"tornshop", "{", newer, true, ShopHost::path("tornshop") + ": [json.exception.parse_error", 2},
        {"tornaside", standing, "{", true, putaside("tornaside") + ": [json.exception.parse_error", 2},
        {"noobject", standing, "[]", true, putaside("noobject") + ": holds no object", 2},
        {"kept", standing, newer, false, "Can't remove file " + putaside("kept"), 2},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ShopHost host;
        host.disk.removable = c.removable;
        if (!c.shopfile.empty()) host.disk.contents[ShopHost::path(c.name)] = c.shopfile;
        host.disk.contents[putaside(c.name)] = c.aside;
        host.disk.contents[ordomart::paths::unsaved + "notes.txt"] = "nobody's";
        takeinunsaved();
        EXPECT_EQ(host.told("What was not saved waits in " + putaside(c.name)), c.why.empty() ? 0 : 1);
        if (!c.why.empty()) {
            EXPECT_TRUE(fault([&] { sells(c.name); }).starts_with(c.why)) << fault([&] { sells(c.name); });
            EXPECT_EQ(host.disk.contents.at(putaside(c.name)), c.aside);
            EXPECT_NO_THROW(buys(c.removable ? "ready" : c.name)) << "the other shop is open";
            host.disk.removable = true;
            host.disk.contents[ShopHost::path(c.name)] = standing;
            if (c.aside != newer) host.disk.contents[putaside(c.name)] = newer;
        }
        EXPECT_EQ(sells(c.name).sellcount, 5);
        EXPECT_EQ(buys(c.name).recyclecost, c.recyclecost);
        EXPECT_FALSE(host.disk.contents.contains(putaside(c.name)));
    }
    ShopHost host;
    host.disk.contents[ShopHost::path("given up")] = standing;
    host.disk.contents[putaside("given up")] = "{";
    takeinunsaved();
    host.disk.contents.erase(putaside("given up"));
    EXPECT_EQ(sells("given up").sellcount, 1);
}

TEST(ShopUnsaved, IsKeptAsideOrSaidToBeLost) {
    for (const bool writable : {true, false}) {
        ShopHost host;
        const std::string xuid = writable ? "aside" : "lost", file = ShopHost::path(xuid);
        buys(xuid).recyclecost = 7;
        buys(xuid).markshopchanged();
        sells(xuid);
        host.disk.contents[file] = "{";
        host.disk.writable = writable;
        globalruntimeshopmanager.savealldirty();
        host.settle();
        std::vector<std::string> unsaved;
        globalruntimeshopmanager.keepunsaved(unsaved);
        ASSERT_EQ(unsaved.size(), 1U);
        EXPECT_TRUE(unsaved[0].starts_with(file + " (recycles): " + file + ": [json.exception.parse_error"))
            << unsaved[0];
        const auto aside = ordomart::paths::unsaved + xuid + ".recycles.json";
        EXPECT_TRUE(unsaved[0].ends_with(writable ? "; kept in " + aside + ", which the next start takes in"
                                                  : "; lost, since " + aside + " cannot be written either"));
        EXPECT_EQ(host.disk.contents.contains(aside), writable);
        if (writable) {
            EXPECT_EQ(json::parse(host.disk.contents.at(aside))["recyclecost"], 7);
        }
        host.disk.writable = true;
        host.disk.contents[file] = "{}";
        host.ticks(2);
    }
}

TEST(ShopPool, KeepsItsOrderAndOutlivesAFailure) {
    ShopHost host;
    std::string order;
    std::promise<void> go;
    taskpool.enqueue([wait = go.get_future().share()] { wait.wait(); });
    taskpool.enqueue([&](const char* name) { order += name; }, "a");
    auto failed = taskpool.enqueue([] { throw 5; });
    taskpool.enqueue(std::function<void()>());
    taskpool.enqueue([&] { order += "b"; });
    EXPECT_EQ(host.background.underway(), 5);
    go.set_value();
    host.settle();
    EXPECT_EQ(order, "ab");
    EXPECT_EQ(host.told("error at ??R<lambda_1>"), 2);

    auto pool = std::make_unique<ThreadPool>();
    for (int i = 0; i < 100; ++i) pool->enqueue([&] { order += "c"; });
    pool.reset();
    EXPECT_EQ(order.size(), 102U) << "the queue is finished before the end";
}

}  // namespace
