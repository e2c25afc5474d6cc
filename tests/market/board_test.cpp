// The board as strangers meet it: what everybody may see and nothing else, answers that are kept and never old, and
// calls of those who mean no good.
#include "host/board/board.h"

#include <gmock/gmock.h>
#include <httplib.h>

#include <set>

#include "host/board/answercache.h"
#include "host/core/views.h"
#include "tests/stage/stage.h"

using namespace stage;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using namespace std::chrono_literals;

namespace {

const std::string ada = "2535400000000001", bob = "2535400000000002", cid = "2535400000000003",
                  dan = "2535400000000004";

json hidden(json row) {
    row["allowbesearched"] = false;
    return row;
}

class BoardTest : public testing::Test {
protected:
    explicit BoardTest(host::Rate rate = {.atonce = 1e9, .asecond = 1e9})
        : board(stage.server(), {.rate = rate}), http("127.0.0.1", started()) {
        json full = good("chest", 30, 2, "Full chest");
        full["itemnbt"] =
            R"({Count:1b,Damage:0s,WasPickedUp:0b,tag:{Items:[{Count:1b,Name:"minecraft:apple"}],display:{Name:"a \"{"}},)"
            R"(Name:"minecraft:chest"})";
        full["shopitemdescribe"] = "of " + bob;
        stage.writeshop(
            bob,
            {good("apple", 7, 10, "Fine apple"), good("diamond", 900, 1, "Diamond$ 50%"), full,
             hidden(good("apple", 1, 5, "Secret apple")), good("apple", 2, 0, "Sold apple")},
            {commission("bread", 4, 20, "Any bread"), hidden(commission("bread", 9, 9, "Secret bread"))},
            {{"ownername", "Bob"},
             {"shopdiscount", {{{"shopitemtag", "diamond"}, {"discount", "%50"}, {"timeend", 4102444800}}}}});
        stage.writeshop("systemshop", {good("stick", 1, 1, "The state's")});
        const json ban = {{"isbaned", true}, {"bantimeend", 4102444800}, {"banreason", "Contraband"}};
        stage.writeshop(cid, {good("apple", 3, 3, "Contraband apple")}, {commission("bread", 1, 1, "Contraband bread")},
                        {{"ownername", "Cid"}, {"shopstate", ban}}, {{"ownername", "Cid"}, {"shopstate", ban}});
        json many = json::array();
        for (int i = 0; i < 30; ++i) many.push_back(good("coal", 100 + i, 64, "Coal " + std::to_string(i)));
        stage.writeshop(dan, many, nullptr, {{"ownername", "Dan"}, {"shopname", "Dan's"}});
    }
    ~BoardTest() override { board.stop(); }
    int started() {
        board.start();
        return board.port();
    }

    httplib::Result get(const std::string& path, const httplib::Headers& headers = {}) {
        return http.Get(path, headers);
    }
    json ask(const std::string& path) { return json::parse(get(path)->body); }
    std::vector<std::string> names(const std::string& path) {
        std::vector<std::string> all;
        const auto answer = ask(path);
        for (const auto& row : answer["rows"]) all.push_back(row["name"]);
        return all;
    }

    Stage stage;
    host::Board board;
    httplib::Client http;
};

class ShutBoardTest : public BoardTest {
protected:
    ShutBoardTest() : BoardTest({.atonce = 3, .asecond = 0.001}) {}
};

}  // namespace

TEST_F(BoardTest, ListsAreThoseOfTheGame) {
    const struct {
        const char* query;
        std::vector<std::string> names;
    } asked[] = {
        {"goods?text=apple", {"Fine apple"}},
        {"goods?text=apple&in=tag", {"Fine apple"}},
        {"goods?text=Bob&in=owner&sort=price", {"Fine apple", "Full chest", "Diamond$ 50%"}},
        {"goods?text=Bob", {}},
        {"goods?text=Fine%7B%7C%7C%7DFull&sort=name", {"Fine apple", "Full chest"}},
        {"goods?item=minecraft:apple", {"Fine apple"}},  // not what lies in the chest, whatever the keys' order
        {"goods?item=Chest", {"Full chest"}},
        {"goods?item=%E7%AE%B1%E5%AD%90", {"Full chest"}},  // the same in Chinese
        {"goods?item=minecraft:stick", {}},
        {"goods?item=minecraft:apple&tag=coal$", {}},
        {"goods?tag=apple%7B%7C%7C%7Dchest$", {"Fine apple", "Full chest"}},
        {"goods?name=Coal%202$", {"Coal 2"}},
        {"goods?sort=price&page=2&owner=Dan", {"Coal 26", "Coal 27", "Coal 28", "Coal 29"}},
        {"goods?page=100000000", {}},
        {"commissions", {"Any bread"}},
        {"commissions?item=minecraft:bread", {"Any bread"}},
        {"goods?text=%FF", {}},
    };
    for (const auto& [query, wanted] : asked) EXPECT_EQ(names(std::string("/api/") + query), wanted) << query;

    const auto first = ask("/api/goods?sort=price");
    EXPECT_EQ(first["count"], 33);
    EXPECT_EQ(first["next"], json({{"page", "2"}}));
    for (const char* page : {"3", "99"})
        EXPECT_EQ(ask(std::string("/api/goods?page=") + page)["previous"], json({{"page", "2"}}));
    EXPECT_EQ(ask("/api/goods?page=9&text=zz")["previous"], json({{"page", "1"}}));
    // Just a page, by as many alternatives as there may be.
    std::string text = "Coal%201";
    for (const char* more : {"Coal%202", "Coal%203", "Coal%204", "Coal%205", "Coal%206", "x", "y"})
        text += std::string("%7B%7C%7C%7D") + more;
    json just = ask("/api/goods?text=" + text);
    EXPECT_EQ(just["count"], 26);
    EXPECT_FALSE(just.contains("next"));
    json cheaper = ask("/api/goods?text=diamond")["rows"][0];
    EXPECT_EQ(cheaper["price"], 450);
    EXPECT_EQ(cheaper["before"], 900);
    const auto row = ask("/api/goods?text=apple")["rows"][0];
    EXPECT_EQ(row["price"], 7);
    EXPECT_EQ(row["left"], 10);
    EXPECT_FALSE(row.contains("before"));
    EXPECT_EQ(row["owner"], "Bob");
    EXPECT_EQ(row["item"]["id"], "minecraft:apple");
    EXPECT_EQ(row["item"]["name"]["en_US"], "Apple");
    EXPECT_NE(row["item"]["name"]["zh_CN"], row["item"]["name"]["en_US"]);
    // Each row is found again by its own address, whatever is in its name.
    const auto bobs = ask("/api/goods?owner=Bob");
    ASSERT_EQ(bobs["rows"].size(), 3U);
    for (const auto& one : bobs["rows"]) {
        httplib::Params params;
        for (const auto& [name, value] : one["address"].items()) params.emplace(name, value.get<std::string>());
        EXPECT_THAT(names("/api/goods?" + httplib::detail::params_to_query_str(params)),
                    ElementsAre(one["name"].get<std::string>()));
    }
}

TEST_F(BoardTest, ShowsNothingPrivateAndNobodysKey) {
    std::set<std::string> shown;
    const auto all = ask("/api");
    for (const auto& view : all["views"]) {
        EXPECT_EQ(view["open"], true);
        EXPECT_FALSE(view.contains("actions"));
        shown.insert(view["name"]);
    }
    EXPECT_EQ(shown, (std::set<std::string>{"goods", "commissions", "prices"}));
    Actor& ana = stage.join("Ana", ada).setmoney(100);
    ana.types("ordomart formmenu").presses("Selling shops (form)").presses("Fine apple").fills({{"quantity", "1"}});
    std::vector<std::string> calls = {"/api", "/api/prices?item=minecraft:apple", "/api/prices?item=apple&days=400"};
    for (const char* view : {"goods", "commissions"})
        for (const char* query :
             {"", "?text=Secret", "?text=Contraband", "?text=Sold", "?owner=Cid", "?owner=Cid$", "?tag=apple",
              "?text=2535&in=owner", "?text=Cid&in=owner", "?item=minecraft:apple", "?item=minecraft:bread",
              "?sort=left", "?sort=name", "?sort=tag", "?sort=price&page=2"})
            calls.push_back(std::string("/api/") + view + query);
    for (const auto& call : calls) {
        const auto answer = get(call);
        EXPECT_EQ(answer->status, 200) << call << answer->body;
        for (const auto& word : {ada, bob, cid, dan, std::string("Secret"), std::string("Contraband"),
                                 std::string("Sold"), std::string("Cid")})
            EXPECT_THAT(answer->body, Not(HasSubstr(word))) << call;
    }
    const auto today = ask("/api/prices?item=apple&days=1")["rows"][0];
    EXPECT_EQ(today["median"], 7);
    EXPECT_EQ(today["day"], host::ServerOptions().manualclock / 86400'000 * 86400);
    EXPECT_EQ(ask("/api/prices?item=apple&variant=minecraft:apple:3")["rows"], json::array());
}

TEST_F(BoardTest, OperatorsSeeEveryShopAndTrade) {
    const auto answer = [&](const char* view, const json& query) {
        return json::parse(stage.server().views().ask(view, query.dump()));
    };
    const auto names = [&](const json& query) {
        std::vector<std::string> all;
        const json shops = answer("shops", query);
        for (const auto& row : shops["rows"]) all.push_back(row["name"]);
        return all;
    };
    const std::string cids = cid + "'s shop", bobs = bob + "'s shop", wishes = bob + "'s recycleshop";
    const struct {
        json query;
        std::vector<std::string> names;
        bool ismore = false;
    } asked[] = {
        {{{"section", "sell"}}, {"Dan's", bobs, cids, "systemshop's shop"}},
        {{{"section", "sell"}, {"state", "open"}, {"most", "2"}}, {"Dan's", bobs}, true},
        {{{"section", "sell"}, {"state", "open"}, {"most", "2"}, {"first", "1"}}, {bobs, "systemshop's shop"}},
        {{{"state", "banned"}}, {cids, cid + "'s recycleshop"}},
        {{{"name", "boB"}, {"section", "sell"}}, {bobs}},
        {{{"name", bob}}, {bobs, wishes}},
        {{{"name", "aN'S"}}, {"Dan's"}},
    };
    for (const auto& [query, wanted, ismore] : asked) {
        EXPECT_EQ(names(query), wanted) << query;
        EXPECT_EQ(answer("shops", query).contains("next"), ismore) << query;
    }
    const json most = answer("shops", {{"name", "Bob"}})["rows"][0];
    EXPECT_EQ(most["pieces"], 10 + 1 + 2 + 5);
    EXPECT_EQ(most["worth"], 70 + 450 + 60 + 5);
    std::map<std::string, json> market;
    for (const json figures = answer("market", json::object()); const auto& row : figures["rows"])
        market[row["name"]] = row["value"];
    EXPECT_EQ(market["bannedsell"], 1);
    EXPECT_EQ(market["sellshops"], 4);
    EXPECT_EQ(market["goods"], 4 + 1 + 30 + 1);

    Actor& ana = stage.join("Ana", ada, "en_US", 7, 1).setmoney(100);
    for (const char* pieces : {"1", "2"})
        ana.types("ordomart formmenu")
            .presses("Selling shops (form)")
            .presses("Fine apple")
            .fills({{"quantity", pieces}})
            .dismisses();
    EXPECT_THAT(ana.setmoney(0).forgets().types("ordomart undo 1").replies(), HasSubstr("is undone"));
    EXPECT_EQ(ana.chat(), "") << "she has been told";
    std::vector<std::string> trades;
    const auto day = host::ServerOptions().manualclock / 86400'000 * 86400;
    const auto date = std::to_string(day);
    for (const json all = answer("trades", {{"from", date}, {"until", date}}); const auto& row : all["rows"])
        trades.push_back(row["number"].dump() + row["kind"]["en_US"].dump() + row["undoable"].dump());
    EXPECT_THAT(trades, ElementsAre("3\"purchase undone\"false", "2\"bought\"true", "1\"bought\"false"));
}

TEST_F(BoardTest, AnswersAreKeptUntilSomethingChanges) {
    const auto first = get("/api/goods?owner=Bob&text=apple");
    const auto tag = first->get_header_value("ETag");
    ASSERT_FALSE(tag.empty());
    EXPECT_THAT(first->get_header_value("Cache-Control"), HasSubstr("no-cache"));
    const auto unchanged = [&](const std::string& path, const std::string& tags) {
        return get(path, {{"If-None-Match", tags}})->status == 304;
    };
    EXPECT_EQ(get("/api/goods?text=apple&owner=Bob")->body, first->body);
    EXPECT_TRUE(unchanged("/api/goods?owner=Bob&text=apple", "\"x\", W/" + tag));
    EXPECT_FALSE(unchanged("/api/goods?owner=Bob&text=apple", "\"x\""));
    EXPECT_TRUE(get("/api/commissions")->get_header_value("ETag") != tag);

    Actor& ana = stage.join("Ana", ada).setmoney(100);
    ana.types("ordomart formmenu").presses("Selling shops (form)").presses("Fine apple").fills({{"quantity", "3"}});
    ASSERT_EQ(ana.has(0), "minecraft:apple*3");
    EXPECT_FALSE(unchanged("/api/goods?owner=Bob&text=apple", tag));
    EXPECT_EQ(ask("/api/goods?owner=Bob&text=apple")["rows"][0]["left"], 7);
    // And by a file that somebody else has written.
    stage.writeshop(dan, {good("coal", 5, 1, "Last coal")}, nullptr, {{"ownername", "Dan"}});
    EXPECT_THAT(names("/api/goods?owner=Dan"), ElementsAre("Last coal"));
    // And by a setting.
    const auto shut = get("/api/goods?tag=stick")->get_header_value("ETag");
    EXPECT_THAT(names("/api/goods?tag=stick"), ElementsAre());
    const std::string config = "plugins/Ordomart/config.json";
    auto settings = json::parse(stage.file(config));
    settings["enablesystemshopinglobalshop"] = true;
    stage.write(config, settings.dump());
    stage.join("Olga", cid, "en_US", 7, 1).types("ordomart reload");
    stage.ticks(60);
    EXPECT_FALSE(unchanged("/api/goods?tag=stick", shut));
    EXPECT_THAT(names("/api/goods?tag=stick"), ElementsAre("The state's"));
    const auto page = get("/");
    EXPECT_THAT(page->body, HasSubstr("/board/board.js"));
    EXPECT_TRUE(unchanged("/", page->get_header_value("ETag")));
}

TEST_F(BoardTest, RefusesWhatItDoesNotServe) {
    const std::string longtext(201, 'x');
    std::string alternatives = "a";
    for (int i = 0; i < 8; ++i) alternatives += "%7B%7C%7C%7Da";
    const struct {
        std::string path;
        int status;
    } calls[] = {{"/api/trades", 404},
                 {"/api/shops", 404},
                 {"/api/", 404},
                 {"/api/players", 404},
                 {"/api/events", 404},
                 {"/metrics", 404},
                 {"/main.js", 404},
                 {"/board/../main.js", 404},
                 {"/board/%2e%2e/main.js", 404},
                 {"/api/goods/x", 404},
                 {"/api/goods?colour=red", 400},
                 {"/api/goods?text=a&text=b", 400},
                 {"/api/goods?text=" + longtext, 400},
                 {"/api/goods?text=" + alternatives, 400},
                 {"/api/goods?owner=" + alternatives, 400},
                 {"/api/goods?x=" + std::string(3000, 'y'), 400},
                 {"/api/goods?sort=5", 400},
                 {"/api/goods?in=shop", 400},
                 {"/api/goods?page=0", 400},
                 {"/api/goods?page=-1", 400},
                 {"/api/goods?page=99999999999999999999", 400},
                 {"/api/goods?item=minecraft:nothing", 400},
                 {"/api/prices", 400}};
    for (const auto& [path, status] : calls) {
        const auto answer = get(path);
        EXPECT_EQ(answer->status, status) << path;
        EXPECT_TRUE(json::parse(answer->body).contains("error")) << path;
    }
    EXPECT_EQ(http.Post("/api/goods", "{}", "application/json")->status, 405);
    EXPECT_EQ(http.Delete("/api/goods")->status, 405);
    EXPECT_EQ(http.Head("/api/goods")->status, 200);
    httplib::Request withbody;
    withbody.method = "GET";
    withbody.path = "/api/goods";
    withbody.body = "{}";
    EXPECT_EQ(http.send(withbody)->status, 413);
    EXPECT_EQ(get("/api/goods")->get_header_value("Access-Control-Allow-Origin"), "*");
}

TEST_F(ShutBoardTest, WhoeverCallsTooOftenWaits) {
    const auto from = [](const char* address) { return httplib::Headers{{"X-Forwarded-For", address}}; };
    for (const char* address : {"198.51.100.1", "203.0.113.9, 198.51.100.1", "198.51.100.1"})
        EXPECT_EQ(get("/api", from(address))->status, 200);
    const auto refused = get("/api", from("1.2.3.4, 198.51.100.1"));
    EXPECT_EQ(refused->status, 429);
    EXPECT_GT(std::stoi(refused->get_header_value("Retry-After")), 0);
    EXPECT_EQ(get("/", from("198.51.100.1"))->status, 429);
    int callers = 0;
    EXPECT_EQ(get("/api", from("198.51.100.2"))->status, 200);
    EXPECT_EQ(get("/api")->status, 200);
    // Whoever is no proxy of this machine speaks for himself.
    http.stop();
    http.set_interface("127.0.0.2");
    for (const int status : {200, 200, 200, 429})
        EXPECT_EQ(get("/api", from(("192.0.2." + std::to_string(++callers)).c_str()))->status, status) << callers;
}

TEST(BoardParts, RatesAndBounds) {
    host::RateLimit limit({.atonce = 2, .asecond = 0.5});
    host::RateLimit::Time now{};
    const struct {
        const char* who;
        std::chrono::milliseconds later;
        int refused;
    } calls[] = {
        {"10.0.0.1", 0ms, 0},         {"10.0.0.1", 0ms, 0},    {"10.0.0.1", 0ms, 2},        {"10.0.0.1", 1000ms, 1},
        {"10.0.0.1", 1000ms, 0},      {"10.0.0.2", 0ms, 0},    {"::ffff:10.0.0.1", 0ms, 2}, {"2001:db8::1", 0ms, 0},
        {"2001:db8::ffff:2", 0ms, 0}, {"2001:db8::3", 0ms, 2}, {"2001:db8:0:1::3", 0ms, 0}, {"", 0ms, 0},
        {"10.0.0.1", 3600'000ms, 0},  {"10.0.0.1", 0ms, 0},    {"10.0.0.1", 0ms, 2},        {"fe80::1%eth0", 0ms, 0}};
    for (const auto& [who, later, refused] : calls) EXPECT_EQ(limit.refusedfor(who, now += later), refused) << who;
    for (std::size_t i = 0; i < 2 * host::RateLimit::most; ++i) (void)limit.refusedfor(std::to_string(i), now);
    EXPECT_EQ(limit.size(), host::RateLimit::most);

    host::AnswerCache cache(10'000);
    const auto body = std::make_shared<const std::string>(3'000, 'x');
    for (const char* question : {"a", "b", "a", "c", "a", "d"}) {
        if (cache.find(question, "1") == nullptr) cache.keep(question, "1", body);
        EXPECT_LE(cache.bytes(), 10'000U);
    }
    EXPECT_EQ(cache.find("a", "1"), body);
    EXPECT_EQ(cache.find("b", "1"), nullptr);
    EXPECT_EQ(cache.find("a", "2"), nullptr);
    EXPECT_EQ(cache.find("a", "1"), nullptr);
    cache.keep("e", "1", std::make_shared<const std::string>(20'000, 'x'));
    EXPECT_EQ(cache.find("e", "1"), nullptr);
}
