// The lists of rows: which shops and rows each builder takes, and the orders.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cstring>

#include "plugin/shopsystem/lists.h"
#include "plugin/shopsystem/runtimeshopmanager.h"
#include "tests/market/shophost.h"

using namespace shopsystem;
using market_tests::json;
using market_tests::ShopHost;

namespace {

json good(const std::string& name, int left = 1, bool searchable = true, int price = 1) {
    return {{"shopitemname", name}, {"shopitemleftnum", left}, {"allowbesearched", searchable}, {"price", price}};
}
json wish(const std::string& name, bool searchable = true) {
    return {{"recycleitemname", name}, {"recycleitemleftwanna", 1}, {"allowbesearched", searchable}};
}

std::string names(playershopstate& state) {
    std::string all;
    for (std::size_t i = 0; i < state.sellreadlist.size(); ++i) all += state.sellreadlist.row(i).shopitemname + " ";
    all += "| ";
    for (std::size_t i = 0; i < state.recyclereadlist.size(); ++i)
        all += state.recyclereadlist.row(i).recycleitemname + " ";
    return all;
}

struct Market : ShopHost {
    playershopstate& state;

    explicit Market(const std::string& viewer) : state(getplayershopstate(viewer)) {
        disk.contents.emplace(ordomart::paths::data + "readme.txt", "no shop");
        disk.contents.emplace(ordomart::paths::data + ".json", "no shop either");
    }
};

TEST(Lists, EachBuilderTakesItsShopsAndRows) {
    Market market("viewer");
    const json banned = {{"isbaned", true}, {"bantimeend", -1}};
    const auto put = [&](const std::string& xuid, const json& state, bool isop = false) {
        market.put(xuid,
                   {{"items", {good(xuid), good(xuid + "-none", 0), good(xuid + "-own", 1, false)}},
                    {"isopshop", isop},
                    {"shopstate", state}},
                   {{"recycleitems", {wish(xuid), wish(xuid + "-own", false)}}, {"shopstate", state}});
    };
    put("b-banned", banned);
    put("c-shop", 0, true);
    put("viewer", 0);
    put("systemshop", 0);
    market.put("a-empty", {{"items", nullptr}}, {{"recycleitems", 5}});

    struct {
        const char* name;
        std::function<void()> run;
        const char* rows;
        const char* searched;  // while a search for "sys" is set
        bool searchends;
    } const cases[] = {
        {"global sell", [] { sellshop::prepareglobalsellshopfilterforplayer("viewer"); }, "c-shop | ", "| ", true},
        {"global recycle", [] { recycleshop::prepareglobalrecycleshopfilterforplayer("viewer"); }, "| c-shop ", "| ",
         true},
        {"system sell", [] { preparesystemsell("viewer"); }, "systemshop | ", "systemshop | ", false},
        {"system recycle", [] { preparesystemrecycle("viewer"); }, "| systemshop ", "| systemshop ", false},
        {"banned sell", [] { preparesinglesell("viewer", "b-banned"); }, "b-banned b-banned-own | ",
         "b-banned b-banned-own | ", false},
        {"single recycle", [] { preparesinglerecycle("viewer", "c-shop"); }, "| c-shop c-shop-own ",
         "| c-shop c-shop-own ", false},
    };
    for (const auto& c : cases) {
        for (const bool searching : {false, true}) {
            market.state.sellreadlist.clear();
            market.state.recyclereadlist.clear();
            market.state.searchfilter.itemnamefilter = "sys";
            market.state.searchmode = searching;
            c.run();
            EXPECT_EQ(names(market.state), searching ? c.searched : c.rows) << c.name;
            EXPECT_EQ(market.state.searchmode, searching && !c.searchends) << c.name;
        }
    }
    preparesystemrecycle("viewer");
    preparesystemrecycle("viewer");
    EXPECT_EQ(market.state.recyclereadlist.size(), 4U) << "this one leaves the emptying to its caller";

    market.state.searchmode = false;
    ordomart::enablesystemshopinglobalshop = true;
    market.state.filter.itemnamefilter = "shop";
    sellshop::prepareglobalsellshopfilterforplayer("viewer");
    ordomart::enablesystemshopinglobalshop = false;
    EXPECT_EQ(market.state.sellreadlist.size(), 2U);
    const auto row = market.state.sellreadlist.row(0);
    EXPECT_EQ(row.xuid + std::to_string(row.index) + std::to_string(row.isopshop), "c-shop01");
    market.state.filter = {};
}

TEST(Lists, PagesAreClampedAndLongShopsComeWhole) {
    Market market("pager");
    struct {
        int rows, page, clamped;
    } const cases[] = {{0, 3, 0}, {25, 1, 0}, {51, 2, 1}, {52, 2, 2}, {200, 5, 5}};
    for (const auto& c : cases) {
        const auto xuid = "rows" + std::to_string(c.rows);
        json items = json::array();
        for (int i = 0; i < c.rows; ++i) items.push_back(good(std::to_string(i)));
        market.put(xuid, {{"items", items}});
        market.state.sellpage = c.page;
        preparesinglesell("pager", xuid);
        EXPECT_EQ(market.state.sellreadlist.size(), static_cast<std::size_t>(c.rows));
        EXPECT_EQ(market.state.sellpage, c.clamped) << c.rows;
    }
    EXPECT_EQ(market.state.sellreadlist.row(199).index, 199);
}

// A shop that is in no cache, before and behind something that happens to its file or to the clock.
TEST(Lists, AShopThatOnlyItsFileHasIsReadAgainWhenItMayBeAnother) {
    struct Files : market_tests::ShopHost {
        market_tests::StampedFiles store;
        Files() {
            services.files = &store;
            store.directories = disk.directories;
        }
        ~Files() { services.files = &disk; }
        void becomes(const char* part, const std::string& other) {
            auto& text = store.contents[path("a")];
            text.replace(text.find(part), std::strlen(part), other);
        }
        // "pear 7 fruit sweet", and the revision.
        std::pair<std::string, std::uint32_t> list() {
            sellshop::prepareglobalsellshopfilterforplayer("viewer");
            const auto& all = getplayershopstate("viewer").sellreadlist;
            if (all.size() != 1) return {std::to_string(all.size()), UINT32_MAX};
            const auto row = all.row(0);
            return {fmt::format("{} {} {} {}", row.shopitemname, row.realprice, row.shopitemtag, row.shopitemdescribe),
                    row.revision};
        }
    };
    static constexpr auto pear = "pear 7 fruit sweet";
    const struct {
        const char* what;
        std::function<void(Files&)> between;
        std::string before, behind;
        bool sameshop = false;
    } cases[] = {
        {"another writing", [](Files& f) { f.becomes(":7", ": 7"); }, pear, pear, true},
        {"a price", [](Files& f) { f.becomes(":7", ":8"); }, pear, "pear 8 fruit sweet"},
        {"a discount", [](Files& f) { f.becomes("none", "fruit"); }, pear, "pear 5 fruit sweet"},
        {"a tag", [](Files& f) { f.becomes("fruit", "tree"); }, pear, "pear 7 tree sweet"},
        {"a description", [](Files& f) { f.becomes("sweet", "sour"); }, pear, "pear 7 fruit sour"},
        {"another item", [](Files& f) { f.becomes("{}", "[]"); }, pear, pear},
        {"a section twice", [](Files& f) { f.becomes("\"sell\":", R"("sell":{"items":5},"sell":)"); }, pear, pear,
         true},
        {"and the last without goods", [](Files& f) { f.becomes("}}", R"(},"sell":{"describe":""}})"); }, pear, "0"},
        {"the last second of a ban",
         [](Files& f) {
             f.becomes("}}", R"(,"shopstate":{"isbaned":true,"bantimeend":1000002,"banreason":""}}})");
             EXPECT_EQ(f.list().first, "0");
             f.clock.seconds = 1'000'002;
         },
         pear, pear},
        {"a ban that is over, and a clock that goes back",
         [](Files& f) {
             f.becomes("}}", R"(,"shopstate":{"isbaned":true,"bantimeend":999999,"banreason":""}}})");
             EXPECT_EQ(f.list().first, pear);
             f.clock.seconds = 999'990;
         },
         pear, "0"},
        {"a disk that was gone for once",
         [](Files& f) {
             f.becomes(":7", ":8");
             f.store.behindtheread = [] { throw std::runtime_error("gone"); };
             EXPECT_EQ(f.list().first, "0");
         },
         pear, "pear 8 fruit sweet"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        Files files;
        const json row = {{"shopitemname", "pear"},      {"price", 7},      {"shopitemtag", "fruit"},
                          {"shopitemdescribe", "sweet"}, {"itemnbt", "{}"}, {"shopitemleftnum", 1},
                          {"allowbesearched", true}};
        const json discount = {{"shopitemtag", "none"}, {"discount", "-2"}, {"timeend", 1'000'009}};
        files.store.contents[Files::path("a")] =
            json{{"sell", {{"items", {row}}, {"shopdiscount", {discount}}}}}.dump();
        const auto before = files.list();
        EXPECT_EQ(before.first, c.before);
        c.between(files);
        const auto behind = files.list();
        EXPECT_EQ(behind.first, c.behind);
        EXPECT_EQ(before.second == behind.second, c.sameshop) << "by the revision, which an old form has";
        EXPECT_EQ(globalruntimeshopmanager.cached("a", sell), nullptr);
    }
}

TEST(PlayerState, LeavingResetsWhatIsOfOneVisit) {
    Market market("visitor");
    auto& state = market.state;
    EXPECT_EQ(state.managedid, "114514");
    EXPECT_TRUE(state.showhelper);
    state.setatjoin(1);
    EXPECT_TRUE(!state.detailmode && state.doubleclickmode);
    state.setatjoin(7);
    EXPECT_TRUE(state.detailmode && state.doubleclickmode) << "kept by a desktop client";
    state.manage("systemshop");
    state.menumode = 3;
    state.filter.minsellcount = 5;
    state.searchfilter.minsellcount = 5;
    state.resetatleave();
    EXPECT_EQ(state.managedid, "114514");
    EXPECT_EQ(state.searchfilter.minsellcount, -1);
    EXPECT_EQ(state.sellreadlist.size(), 0U);
    EXPECT_TRUE(state.detailmode && !state.doubleclickmode);
    EXPECT_EQ(state.menumode, 3);
    EXPECT_EQ(state.filter.minsellcount, 5);
}

}  // namespace
