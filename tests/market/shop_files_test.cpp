// Data files and the cache: what is written when, and what a broken file or disk must not destroy.
#include <gtest/gtest.h>

#include "plugin/shopsystem/runtimeshopmanager.h"
#include "plugin/shopsystem/taskpool.h"
#include "tests/market/shophost.h"

using namespace shopsystem;
using market_tests::json;
using market_tests::ShopHost;

namespace {

constexpr int whole = -1;

void ticks(const ShopHost& host, int n) {
    for (; n > 0; --n) {
        globalruntimeshopmanager.tick();
        host.settle();
    }
}

TEST(ShopFiles, ANewOwnerGetsTheDefaultFile) {
    ShopHost host;
    EXPECT_TRUE(loadshopdata("newowner", sell).is_null());
    EXPECT_EQ(host.disk.contents.at(ShopHost::path("newowner")), R"({
    "recycles": {
        "describe": "",
        "isopshop": false,
        "ownerlang": "",
        "ownername": "",
        "recycleamount": 0,
        "recyclecost": 0,
        "recycleitems": null,
        "shopitemicon": "",
        "shopname": "",
        "shopstate": 0
    },
    "sell": {
        "biditems": null,
        "describe": "",
        "isopshop": false,
        "items": null,
        "ownerlang": "",
        "ownername": "",
        "salesvolume": 0,
        "sellcount": 0,
        "shopdiscount": null,
        "shopitemicon": "",
        "shopname": "",
        "shopstate": 0
    }
})");
    for (const char* empty : {"", "null"}) {
        host.disk.contents[ShopHost::path("emptyfile")] = empty;
        EXPECT_EQ(loadshopdata("emptyfile", sell).size(), 12U);
        EXPECT_EQ(host.document("emptyfile"), host.document("newowner"));
    }
    EXPECT_EQ(host.told("The file emptyfile.json is NULL,try load default json..."), 2);
}

TEST(ShopFiles, ASaveKeepsTheOtherSectionAndDropsBrokenText) {
    ShopHost host;
    host.disk.contents[ShopHost::path("both")] = R"({"recycles": {"kept": [1]}, "sell": {"old": 1}} behind)";
    saveshopdata("both", {{"shopname", "苹果\xff!"}}, sell);
    EXPECT_EQ(host.disk.contents.at(ShopHost::path("both")), R"({
    "recycles": {
        "kept": [
            1
        ]
    },
    "sell": {
        "shopname": "苹果!"
    }
})");
    host.disk.writable = false;
    EXPECT_THROW(saveshopdata("both", {}, recycle), std::runtime_error);
}

TEST(ShopFiles, ABrokenFileIsNamedAndLeftAlone) {
    struct {
        const char* name;
        std::string content;
    } const cases[] = {
        {"cut", R"({"sell": {"items": [)"},
        {"noobject", "[1, 2]"},
        {"nosection", R"({"sell": "none"})"},
        {"wrongtype", R"({"sell": {"shopname": 5}})"},
        {"wrongban", R"({"sell": {"shopstate": {"isbaned": "yes"}}})"},
        {"wrongrow", R"({"sell": {"items": [{"price": "10"}]}})"},
    };
    ShopHost host;
    for (const auto& c : cases) {
        host.disk.contents[ShopHost::path(c.name)] = c.content;
        try {
            static_cast<void>(globalruntimeshopmanager.getsellshop(c.name).getglobalshopitem(0));
            ADD_FAILURE() << c.name << " was read";
        } catch (const nlohmann::detail::exception& e) {
            EXPECT_NE(std::string(e.what()).find(ShopHost::path(c.name) + ": "), std::string::npos) << e.what();
        }
        ticks(host, 3);
        globalruntimeshopmanager.savealldirty();
        host.settle();
        EXPECT_EQ(host.disk.contents.at(ShopHost::path(c.name)), c.content);
    }
    host.disk.contents[ShopHost::path("cut")] = "{}";
    EXPECT_NO_THROW(static_cast<void>(globalruntimeshopmanager.getsellshop("cut"))) << "read again once it is mended";
}

// A file that is there and cannot be opened for a moment.
TEST(ShopFiles, AnUnreadableFileIsNotTakenForAMissingOne) {
    ShopHost host;
    host.disk.directories.insert(ShopHost::path("locked"));
    EXPECT_THROW(static_cast<void>(loadshopdata("locked", whole)), std::runtime_error);
    EXPECT_FALSE(host.disk.contents.contains(ShopHost::path("locked")));
}

TEST(ShopCache, WritesAChangeTwoTicksLaterAndOnce) {
    ShopHost host;
    auto& shop = globalruntimeshopmanager.getsellshop("changed");
    const auto before = host.disk.contents.at(ShopHost::path("changed"));
    shop.shopname = "new";
    shop.markshopchanged();
    shop.markshopchanged();
    ticks(host, 1);
    EXPECT_EQ(shop.cachestate, savewanted);
    EXPECT_FALSE(shop.isdirty);
    EXPECT_EQ(host.disk.contents.at(ShopHost::path("changed")), before);
    ticks(host, 1);
    EXPECT_EQ(shop.cachestate, saved);
    EXPECT_EQ(host.document("changed")["sell"]["shopname"], "new");
    EXPECT_TRUE(host.document("changed")["sell"]["shopstate"].is_null());
    host.disk.contents.erase(ShopHost::path("changed"));
    ticks(host, 5);
    EXPECT_EQ(shop.cachestate, idle);
    EXPECT_FALSE(host.disk.contents.contains(ShopHost::path("changed"))) << "written without need";
    EXPECT_EQ(host.background.underway(), 0);
}

TEST(ShopCache, ForgetsWhatNobodyAsksForUnlessItIsUnsaved) {
    ShopHost host;
    host.disk.contents[ShopHost::path("other")] = "{}";
    for (const char* xuid : {"kept", "aged", "asked", "unsaved"})
        globalruntimeshopmanager.getsellshop(xuid).keepincache = std::string(xuid) == "kept";
    const auto age = [](const char* xuid, int missing) {
        globalruntimeshopmanager.getsellshop(xuid).idleticks = maxidleticks - missing;
    };
    for (const char* xuid : {"aged", "asked", "unsaved"}) age(xuid, 0);
    ticks(host, 1);
    host.disk.writable = false;
    ticks(host, 1);  // all three are saved, and fail
    host.disk.writable = true;
    ticks(host, 4);
    for (const char* xuid : {"aged", "asked", "unsaved"}) age(xuid, 0);
    globalruntimeshopmanager.getsellshop("unsaved").revision = 7;
    age("unsaved", 1);
    ticks(host, 2);  // aged out and saved
    globalruntimeshopmanager.getsellshop("asked").revision = 7;
    ticks(host, 1);
    for (const char* xuid : {"aged", "asked", "unsaved"})
        EXPECT_EQ(globalruntimeshopmanager.getsellshop(xuid).revision, std::string(xuid) == "aged" ? 1 : 7) << xuid;
    EXPECT_EQ(globalruntimeshopmanager.getsellshop("kept").idleticks, 0);
    EXPECT_GE(host.told("Can't write file"), 3);
}

TEST(ShopCache, AFailedWriteIsTriedAgainAndABrokenFileIsNot) {
    ShopHost host;
    auto& shop = globalruntimeshopmanager.getrecycleshop("retry");
    shop.recyclecost = 5;
    shop.markshopchanged();
    host.disk.writable = false;
    ticks(host, 3);
    EXPECT_TRUE(shop.isdirty || shop.cachestate == savewanted);
    host.disk.writable = true;
    ticks(host, 4);
    EXPECT_EQ(host.document("retry")["recycles"]["recyclecost"], 5);

    host.disk.contents[ShopHost::path("retry")] = "{";
    shop.markshopchanged();
    ticks(host, 10);
    EXPECT_EQ(shop.cachestate, queued) << "not tried again";
    EXPECT_EQ(host.told("error at ??R<lambda_1>@?3???0ThreadPool@shopsystem@@QEAA@XZ@QEBA@XZ"), 1);
    EXPECT_EQ(host.told("The shop is not saved: plugins/Ordomart/data/retry.json"), 1);
    host.disk.contents[ShopHost::path("retry")] = "{}";
    globalruntimeshopmanager.savealldirty();
    host.settle();
    EXPECT_EQ(host.document("retry")["recycles"]["recyclecost"], 5) << "saved by the orderly stop";
}

TEST(ShopCache, AnOrderlyStopSavesEverythingOnce) {
    ShopHost host;
    const auto change = [](const char* xuid) { globalruntimeshopmanager.getsellshop(xuid).markshopchanged(); };
    for (const char* xuid : {"stopdirty", "stopwanted", "stopqueued", "stopclean"})
        globalruntimeshopmanager.getsellshop(xuid);
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
