// Data files and the cache: what is written when, and what a broken file or disk must not destroy.
#include <gtest/gtest.h>

#include "tests/market/shophost.h"

using namespace market_tests;
using namespace shopsystem;
using market_tests::json;

namespace {

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
        host.ticks(3);
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
        host.ticks(3);
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
    host.ticks(1);
    EXPECT_EQ(shop.cachestate, savewanted);
    EXPECT_FALSE(shop.isdirty);
    EXPECT_EQ(host.disk.contents.at(ShopHost::path("changed")), before);
    host.ticks(1);
    EXPECT_EQ(shop.cachestate, saved);
    EXPECT_EQ(host.document("changed")["sell"]["shopname"], "new");
    EXPECT_TRUE(host.document("changed")["sell"]["shopstate"].is_null());
    host.disk.contents.erase(ShopHost::path("changed"));
    host.ticks(5);
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
    host.ticks(1);
    host.disk.writable = false;
    host.ticks(1);  // all three are saved, and fail
    host.disk.writable = true;
    host.ticks(4);
    for (const char* xuid : {"aged", "asked", "unsaved"}) age(xuid, 0);
    age("unsaved", 1);
    host.ticks(2);  // aged out and saved
    static_cast<void>(sells("asked"));
    for (const char* xuid : {"aged", "asked", "unsaved"}) host.put(xuid, {{"describe", "by hand"}});
    host.ticks(1);
    for (const char* xuid : {"aged", "asked", "unsaved"})
        EXPECT_EQ(sells(xuid).describe, std::string(xuid) == "aged" ? "by hand" : "in memory") << xuid;
    EXPECT_EQ(host.told("Can't write file"), 3);

    // The server's own shop, at whatever age.
    host.put("systemshop", {{"describe", "kept"}});
    auto& system = sells(ordomart::systemshopid);
    system.idleticks = maxidleticks;
    host.ticks(5);
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
        host.ticks(3);
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

}  // namespace
