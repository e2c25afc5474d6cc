// Data files and the cache: what is written when, and what a broken file or disk must not destroy.
#include <gtest/gtest.h>

#include "plugin/shopsystem/runtimeshopmanager.h"
#include "plugin/shopsystem/taskpool.h"
#include "plugin/shopsystem/unsaved.h"
#include "tests/market/shophost.h"

using namespace shopsystem;
using market_tests::json;
using market_tests::ShopHost;

namespace {

constexpr int whole = -1;

sellshop& sells(const std::string& xuid) { return globalruntimeshopmanager.getsellshop(xuid); }
recycleshop& buys(const std::string& xuid) { return globalruntimeshopmanager.getrecycleshop(xuid); }

void ticks(const ShopHost& host, int n) {
    for (; n > 0; --n) {
        globalruntimeshopmanager.tick();
        host.settle();
    }
}

// What the body throws.
template <class Body>
std::string fault(Body body) {
    try {
        body();
        return "nothing";
    } catch (const std::exception& e) {
        return e.what();
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

    for (const char* name : {"100.json.bak", "700.json~", "readme.txt", "a.json.json", ".json"})
        host.disk.contents[ordomart::paths::data + name] = "{}";
    EXPECT_EQ(shopfilekeys(), (std::vector<std::string>{"", "a.json", "emptyfile", "newowner"}));
}

TEST(ShopFiles, ASaveKeepsTheOtherSectionAndDropsBrokenText) {
    ShopHost host;
    host.disk.contents[ShopHost::path("both")] = R"({"recycles": {"kept": [1]}, "sell": {"old": 1}} behind)";
    saveshopdata("both", {{"shopname", "苹果\xff!"}}, sell, [] { return json("not asked for"); });
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
}

TEST(ShopFiles, ABrokenFileIsNamedAndLeftAlone) {
    const std::string whole32 = "must be a whole number of 32 bits, but is ";
    struct {
        const char* name;
        std::string content;
        std::string place, why;
    } const cases[] = {
        {"cut", R"({"sell": {"items": [)", "", "[json.exception.parse_error.101]"},
        {"noobject", "[1, 2]", "", "[json.exception.type_error.305]"},
        {"nosection", R"({"sell": "none"})", "sell: ", "is no object"},
        {"text", R"({"sell": {"shopname": 5}})", "sell.shopname: ", "[json.exception.type_error.302]"},
        {"flag", R"({"sell": {"isopshop": 1}})", "sell.isopshop: ", "[json.exception.type_error.302]"},
        {"counter", R"({"sell": {"sellcount": 2147483648}})", "sell.sellcount: ", whole32 + "2147483648"},
        {"banflag", R"({"sell": {"shopstate": {"isbaned": "yes"}}})", "sell.shopstate.isbaned: ", "[json"},
        {"banend", R"({"sell": {"shopstate": {"bantimeend": 1e300}}})",
         "sell.shopstate.bantimeend: ", "must be a whole number of 64 bits, but is 1e+300"},
        {"row", R"({"sell": {"items": [{}, 5]}})", "sell.items[1]: ", "is no record, but number"},
        {"rowtext", R"({"sell": {"items": [{}, {"itemnbt": 5}]}})", "sell.items[1].itemnbt: ", "[json"},
        {"huge", R"({"sell": {"items": [{}, {"price": 1e300}]}})", "sell.items[1].price: ", whole32 + "1e+300"},
        {"long", R"({"sell": {"items": [{}, {"price": -5000000000}]}})", "sell.items[1].price: ", whole32 + "-5"},
        {"point", R"({"sell": {"items": [{}, {"price": 3.7}]}})", "sell.items[1].price: ", whole32 + "3.7"},
        {"quoted", R"({"sell": {"items": [{}, {"price": "12"}]}})", "sell.items[1].price: ", whole32 + "string"},
        {"truth", R"({"sell": {"items": [{}, {"price": true}]}})", "sell.items[1].price: ", whole32 + "boolean"},
    };
    ShopHost host;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        host.disk.contents[ShopHost::path(c.name)] = c.content;
        const auto said = fault([&] { static_cast<void>(sells(c.name).getglobalshopitem(1)); });
        EXPECT_TRUE(said.starts_with(ShopHost::path(c.name) + ": " + c.place + c.why)) << said;
        ticks(host, 3);
        globalruntimeshopmanager.savealldirty();
        host.settle();
        EXPECT_EQ(host.disk.contents.at(ShopHost::path(c.name)), c.content);
    }
    host.disk.contents[ShopHost::path("cut")] = "{}";
    EXPECT_NO_THROW(sells("cut")) << "read again once it is mended";
    host.put("wish", nullptr,
             {{"recyclecost", -2147483648}, {"recycleitems", {{{"offer", 2147483647}}, {{"offer", 0.5}}}}});
    EXPECT_EQ(buys("wish").getrecycleitem(0).offer - 1, -(buys("wish").recyclecost + 2)) << "all 32 bits";
    EXPECT_EQ(fault([] { static_cast<void>(buys("wish").getglobalrecycleitem(1)); }),
              ShopHost::path("wish") + ": recycles.recycleitems[1].offer: " + whole32 + "0.5");

    // A file that is there and cannot be opened for a moment is not taken for a missing one.
    host.disk.directories.insert(ShopHost::path("locked"));
    EXPECT_EQ(fault([] { sells("locked"); }), "Can't read file " + ShopHost::path("locked"));
    EXPECT_FALSE(host.disk.contents.contains(ShopHost::path("locked")));
}

// What somebody may do to a file between the reading of a shop and its save.
TEST(ShopFiles, WhatGoesUnderARunningServerIsWrittenWhole) {
    struct {
        const char* name;
        const char* left;  // null: deleted
        bool isotherknown, isotherread;
        const char* other;  // the other shop's name in the file
        int told;
    } const cases[] = {
        {"emptied", "", true, false, "mine", 0},
        {"nulled", "null", true, false, "mine", 0},
        {"deleted", nullptr, true, false, "mine", 0},
        {"half", "{}", true, false, "mine", 0},
        {"unknown", "", false, false, "", 1},
        {"read", "", false, true, "", 0},
        {"standing", R"({"recycles": {"shopname": "theirs"}})", true, false, "theirs", 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ShopHost host;
        host.put(c.name, {{"shopname", "sells"}}, {{"shopname", "mine"}});
        auto& shop = sells(c.name);
        if (c.isotherknown) buys(c.name);
        host.disk.contents[ShopHost::path(c.name)] = c.left != nullptr ? c.left : "";
        if (c.left == nullptr) host.disk.contents.erase(ShopHost::path(c.name));
        if (c.isotherread)
            buys(c.name);  // makes a new file, without the shop that is in use
        else
            shop.markshopchanged();
        ticks(host, 3);
        EXPECT_EQ(host.document(c.name)["sell"]["shopname"], "sells");
        EXPECT_EQ(host.document(c.name)["recycles"]["shopname"], c.other);
        EXPECT_EQ(host.told("its section recycles begins anew"), c.told);
    }
}

TEST(ShopCache, WritesAChangeTwoTicksLaterAndOnce) {
    ShopHost host;
    auto& shop = sells("changed");
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
    const auto age = [](const char* xuid, int missing) { sells(xuid).idleticks = maxidleticks - missing; };
    for (const char* xuid : {"aged", "asked", "unsaved"}) {
        sells(xuid).describe = "in memory";
        age(xuid, 0);
    }
    ticks(host, 1);
    host.disk.writable = false;
    ticks(host, 1);  // all three are saved, and fail
    host.disk.writable = true;
    ticks(host, 4);
    for (const char* xuid : {"aged", "asked", "unsaved"}) age(xuid, 0);
    age("unsaved", 1);
    ticks(host, 2);  // aged out and saved
    static_cast<void>(sells("asked"));
    for (const char* xuid : {"aged", "asked", "unsaved"}) host.put(xuid, {{"describe", "by hand"}});
    ticks(host, 1);
    for (const char* xuid : {"aged", "asked", "unsaved"})
        EXPECT_EQ(sells(xuid).describe, std::string(xuid) == "aged" ? "by hand" : "in memory") << xuid;
    EXPECT_EQ(host.told("Can't write file"), 3);

    // The server's own shop, at whatever age.
    host.put("systemshop", {{"describe", "kept"}});
    auto& system = sells(ordomart::systemshopid);
    system.idleticks = maxidleticks;
    ticks(host, 5);
    EXPECT_EQ(system.idleticks, maxidleticks);
    host.put("systemshop", {{"describe", "by hand"}});
    EXPECT_EQ(sells(ordomart::systemshopid).describe, "kept");
    for (const char* nearly : {"systemsho", "systemshop2", "Systemshop"})
        EXPECT_FALSE(sellshop(nearly).keepincache || sellshop(nearly).issystemshop) << nearly;
}

// An old form must fit no shop that has come in anew.
TEST(ShopCache, ARevisionNeverComesBack) {
    ShopHost host;
    const auto forget = [&] {
        sells("returning").idleticks = maxidleticks;
        ticks(host, 3);
    };
    sells("returning").revision = 0xFFFF;
    sells("returning").markshopchanged();
    EXPECT_EQ(sells("returning").revision, 0x10000U) << "nor by a wrap at 16 bits";
    EXPECT_EQ(sells("returning").getglobalshopitem(0).revision, 0U) << "no row";
    for (const std::uint32_t next : {0x10001U, 0x10002U}) {
        forget();
        host.put("returning", {{"items", {{{"price", 1}}}}}, nullptr);
        globalruntimeshopmanager.bringin("returning", sell);
        EXPECT_EQ(sells("returning").getglobalshopitem(0).revision, next);
        EXPECT_EQ(buys("returning").revision, 0U) << "of a kind";
    }
}

// Two threads bring in one shop: the second to end finds it changed by the first.
TEST(ShopCache, AShopThatIsBroughtInTwiceIsOne) {
    ShopHost host;
    host.disk.contents[ShopHost::path("twice")] = "{}";
    host.disk.behindtheread = [] {
        sells("twice").sellcount = 7;
        sells("twice").markshopchanged();
    };
    globalruntimeshopmanager.bringin("twice", sell);
    EXPECT_EQ(sells("twice").sellcount, 7);
    EXPECT_EQ(sells("twice").revision, 1U);

    // A thread that found no file puts no new one over what was saved meanwhile.
    host.disk.behindtheread = [&] { host.disk.contents[ShopHost::path("made")] = R"({"sell": {"sellcount": 9}})"; };
    globalruntimeshopmanager.bringin("made", sell);
    EXPECT_EQ(sells("made").sellcount, 9);
}

TEST(ShopCache, AFailedSaveIsTriedAgainWithGrowingPauses) {
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
        ticks(host, 2);
        // The ticks at which the save is tried, counted from the first time.
        std::vector<int> tries;
        for (int tick = 1; tick <= 250; ++tick) {
            const int before = host.disk.reads[path];
            ticks(host, 1);
            if (host.disk.reads[path] != before) tries.push_back(tick);
        }
        EXPECT_EQ(tries, (std::vector<int>{1, 3, 7, 15, 31, 63, 123, 183, 243}));
        EXPECT_EQ(host.told("The shop is not saved (recycles), and this is tried again: " + (c.why + path)), 1);
        EXPECT_EQ(host.told(path), 1);
        shop.recyclecost = 6;
        shop.markshopchanged();
        c.mends(host, path);
        ticks(host, 60);
        EXPECT_EQ(host.document(c.name)["recycles"]["recyclecost"], 6);
        EXPECT_EQ(host.told("The shop is saved again (recycles): " + path), 1);
        EXPECT_EQ(shop.idleticks, 6) << "it ages from now on";
    }
}

TEST(ShopCache, AnOrderlyStopSavesEverythingOnce) {
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
        ticks(host, 2);
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
