// What the API shows of the plug-in's views and counts: descriptions, answers and refusals; and /metrics, read by a
// parser that believes nothing.
#include <gmock/gmock.h>

#include <SQLiteCpp/SQLiteCpp.h>

#include <cmath>
#include <optional>
#include <regex>
#include <set>
#include <sstream>

#include "host/board/board.h"
#include "host/core/views.h"
#include "host/world/world.h"
#include "platform/clock.h"
#include "platform/level.h"
#include "platform/library.h"
#include "platform/llmoney.h"
#include "platform/scoreboard.h"
#include "platform/views.h"
#include "tests/host/apiserver.h"

namespace {

using nlohmann::json;
using testing::Contains;
using testing::HasSubstr;
using testing::IsSupersetOf;

// The text form of Prometheus. Samples by their name and labels as written; throws for whatever is not in the form.
class Metrics {
public:
    explicit Metrics(const std::string& text) {
        if (text.empty() || text.back() != '\n') throw std::runtime_error("the last line does not end");
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);) read(line);
        for (const auto& [name, type] : types_)
            if (type == "histogram") checkhistogram(name);
    }
    [[nodiscard]] double at(const std::string& sample) const { return samples_.at(sample); }
    [[nodiscard]] const std::map<std::string, std::string>& types() const { return types_; }

private:
    [[noreturn]] static void wrong(const std::string& line) { throw std::runtime_error("not in the form: " + line); }

    void read(const std::string& line) {
        static const std::regex help("# HELP ([a-z][a-z0-9_]*) (.+)"), type("# TYPE ([a-z][a-z0-9_]*) (\\w+)"),
            sample(R"re(([a-z][a-z0-9_]*)(\{([a-z_]+="[^"\\]*",?)*\})? (\S+))re");
        std::smatch found;
        if (std::regex_match(line, found, help)) {
            if (!helps_.insert(found[1]).second) wrong("a second " + line);
        } else if (std::regex_match(line, found, type)) {
            current_ = found[1];
            if (!helps_.contains(current_) || !types_.emplace(current_, found[2]).second) wrong(line);
            const bool counts = current_.ends_with("_total");
            if (counts != (found[2] == "counter")) wrong(line);
        } else if (std::regex_match(line, found, sample)) {
            addsample(line, found);
        } else {
            wrong(line);
        }
    }

    void addsample(const std::string& line, const std::smatch& found) {
        const std::string name = found[1];
        static const std::set<std::string> parts = {"", "_bucket", "_sum", "_count"};
        const bool isof = name.starts_with(current_) && parts.contains(name.substr(current_.size())) &&
                          (types_.at(current_) == "histogram") == (name != current_);
        std::size_t read = 0;
        const double value = std::stod(found[4], &read);
        if (!isof || read != found[4].str().size()) wrong(line);
        if (!samples_.emplace(name + found[2].str(), value).second) wrong("a second " + line);
        order_.emplace_back(name + found[2].str(), value);
    }

    // Buckets rise by their bounds and in their counts, the last has no bound and is the count.
    void checkhistogram(const std::string& name) const {
        static const std::regex bound(R"re(,?le="([^"]+)")re");
        std::map<std::string, std::pair<double, double>> last;  // by the other labels
        for (const auto& [sample, value] : order_) {
            if (!sample.starts_with(name + "_bucket{")) continue;
            std::smatch found;
            if (!std::regex_search(sample, found, bound)) wrong(sample);
            const double end = found[1] == "+Inf" ? INFINITY : std::stod(found[1]);
            auto others = found.prefix().str().substr(name.size() + 7) + found.suffix().str();
            if (others == "{}") others.clear();
            const auto [place, isfirst] = last.try_emplace(others, end, value);
            if (!isfirst && (end <= place->second.first || value < place->second.second)) wrong(sample);
            place->second = {end, value};
        }
        if (last.empty()) wrong(name + " has no bucket");
        for (const auto& [others, bucket] : last) {
            if (!std::isinf(bucket.first)) wrong(name + " does not end");
            if (samples_.at(name + "_count" + others) != bucket.second) wrong(name + "_count" + others);
            (void)samples_.at(name + "_sum" + others);
        }
    }

    std::string current_;
    std::set<std::string> helps_;
    std::map<std::string, std::string> types_;
    std::map<std::string, double> samples_;
    std::vector<std::pair<std::string, double>> order_;
};

TEST(MetricsParser, RefusesWhatIsNotInTheForm) {
    const std::string head = "# HELP a_seconds A.\n# TYPE a_seconds histogram\n", low = "a_seconds_bucket{le=\"1\"} ",
                      high = "a_seconds_bucket{le=\"+Inf\"} ", end = "a_seconds_sum 1\na_seconds_count ";
    EXPECT_EQ(Metrics(head + low + "1\n" + high + "2\n" + end + "2\n").at("a_seconds_count"), 2);
    for (const std::string& bad :
         {std::string("a 1\n"), head + low + "2\n" + high + "1\n" + end + "1\n", head + low + "1\n" + end + "1\n",
          head + low + "1\n" + high + "2\n" + end + "3\n", head + head, head + low + "1",
          std::string("# HELP a A.\n# TYPE a counter\na 1\n"), std::string("# HELP a A.\n# TYPE a gauge\na 1\na 1\n")})
        EXPECT_ANY_THROW(Metrics{bad}) << bad;
}

// Its own plug-in beside the market, which offers what no market would.
class ViewsTest : public testing::Test {
protected:
    ViewsTest() : server_(coretests::manually(directory_, [this](platform::Host& host) { offer(*host.views); })) {
        server_.start();
        clients.emplace(server_);
        bustle.emplace(server_, *clients);
        api.emplace(server_, *clients, *bustle, host::ApiOptions{.port = 0});
        api->start();
        caller = std::make_unique<coretests::ApiCaller>(api->port(), api->token());
    }
    ~ViewsTest() override {
        api.reset();
        bustle.reset();
        clients.reset();
        server_.stop();
    }
    void offer(platform::Views& views) {
        views.offer({"echo", R"({"title": "Echo"})",
                     [](const std::string& query) { return R"({"rows": [)" + query + "]}"; }, true});
        views.offer({"picky", "{}",
                     [](const std::string&) -> std::string { throw std::invalid_argument("\"day\" must be a day"); }});
        views.offer({"broken", "{}", [](const std::string&) -> std::string { throw std::out_of_range("at()"); }, true});
        views.offer({"wild", "{}", [](const std::string&) { return std::string("{"); }});
        const auto count = views.counter({"test_total", "A \"test\".", {{"kind", "b"}}});
        count->add(2);
        views.counter({"test_total", "A \"test\".", {{"kind", "a"}}})->add(1);
        const auto times = views.histogram({"test_seconds", "Times."}, {0.1, 1});
        for (const double time : {0.05, 0.5, 0.5, 5.0}) times->add(time);
        views.gauge({"test_read", "Read."}, [] { return 7.5; });
        views.gauge({"test_failing", "Fails."}, []() -> double { throw std::runtime_error("no"); });
    }
    Metrics metrics() {
        const auto answer = caller->http.Get("/metrics");
        if (!answer || answer->status != 200) throw std::runtime_error("no metrics");
        return Metrics(answer->body);
    }

    coretests::Directory directory_;
    host::Server server_;
    std::optional<host::Clients> clients;
    std::optional<host::Bustle> bustle;
    std::optional<host::ControlApi> api;
    std::unique_ptr<coretests::ApiCaller> caller;
};

TEST_F(ViewsTest, AreListedAndAsked) {
    std::set<std::string> names;
    const json listed = caller->get("/api/views").body;
    for (const auto& view : listed["views"]) names.insert(view["name"]);
    EXPECT_THAT(names, IsSupersetOf({"echo", "picky", "now", "trades", "flows", "prices", "top-goods", "top-shops",
                                     "server", "shops", "market", "money"}));
    const struct {
        const char* path;
        int status;
        const char* says;
    } calls[] = {
        {"/api/views/echo?a=1&b=x%22%C3%A4&c=", 200, R"({"rows":[{"a":"1","b":"x\"ä"}]})"},
        {"/api/views/echo?a=1&a=2", 400, "\\\"a\\\" twice"},
        {"/api/views/nobody", 404, "no view \\\"nobody\\\""},
        {"/api/views/picky", 400, "must be a day"},
        {"/api/views/broken", 500, "at()"},
        {"/api/views/wild", 500, "wild"},
        {"/api/views/trades?colour=red", 400, "no field \\\"colour\\\""},
        {"/api/views/trades?player=Nobody", 400, "knows a player"},
        {"/api/views/trades?from=2026-02-30", 400, "must be a day"},
        {"/api/views/trades?item=minecraft:nothing", 400, "no item"},
        {"/api/views/trades?most=100000", 400, "from 1 to 500"},
        {"/api/views/prices", 400, "must name an item"},
        {"/api/views/flows?days=0", 400, "from 1 to 400"},
        {"/api/views/shops?section=other", 400, "must be sell or recycle"},
    };
    for (const auto& call : calls) {
        const auto answer = caller->get(call.path);
        EXPECT_EQ(answer.status, call.status) << call.path;
        EXPECT_THAT(answer.body.dump(), HasSubstr(call.says)) << call.path;
    }
    EXPECT_EQ(caller->get("/api/views/flows?days=7").body["rows"].size(), 7U);
    // A stranger is not told what went wrong.
    host::Board board(server_, {});
    board.start();
    const auto refused = httplib::Client("127.0.0.1", board.port()).Get("/api/broken");
    EXPECT_EQ(refused->status, 500);
    EXPECT_EQ(refused->body, R"({"error":"the answer could not be made"})");
    board.stop();
    EXPECT_EQ(server_.views().ask("echo", "1", true), R"({"rows": [1]})");
    EXPECT_THROW((void)server_.views().ask("trades", "{}", true), host::NoSuchView);
}

TEST_F(ViewsTest, MoneyOfAllAccountsIsSummed) {
    caller->post("/api/players", {{"name", "Ann"}});
    caller->post("/api/players", {{"name", "Ben"}});
    caller->post("/api/players", {{"name", "Cid"}});
    caller->post("/api/players", {{"name", "Dan"}});
    std::string title;
    const auto figures = [&] {
        std::map<std::string, std::int64_t> all;
        caller->post("/api/ticks", {{"count", 1}});
        caller->post("/api/ticks", {{"count", 1}});
        const auto answer = caller->get("/api/views/money");
        EXPECT_EQ(answer.status, 200) << answer.body;
        for (const auto& row : answer.body["rows"]) {
            all[row["name"]] = row["value"];
            if (row["name"] == "score-money") title = row["title"]["en_US"];
        }
        return all;
    };
    EXPECT_EQ(figures()["circulation"], 0);
    for (const auto& [name, amount] : std::map<std::string, int>{{"Ann", 70}, {"Ben", 30}, {"Cid", 20}})
        caller->put("/api/players/" + name + "/money", {{"amount", amount}});
    for (const int amount : {1, 0}) caller->put("/api/players/Dan/money", {{"amount", amount}});
    server_.run([&] {
        auto& libraries = *server_.services().libraries;
        const auto trans = reinterpret_cast<platform::llmoney::Trans*>(
            libraries.symbol(libraries.load("LLmoney.dll"), "LLMoneyTrans"));
        const auto xuid = platform::PlayerInfo::getXuid("Ann");
        EXPECT_TRUE(trans(xuid, "", 8, "fee") && trans("", xuid, 5, "prize"));
        server_.world().scoreboard().newObjective("money", "coins");
        server_.world().setscore("Ben", "money", 12);
        server_.world().setscore("Cid", "money", 0);
    });
    auto now = figures();
    const std::vector<std::int64_t> seen{now["accounts"], now["circulation"], now["largest"],    now["middle"],
                                         now["given1"],   now["taken30"],     now["score-money"]};
    EXPECT_THAT(seen, testing::ElementsAre(3, 117, 67, 30, 5, 8, 12));
    EXPECT_EQ(title, "Scores \"money\", of 1") << "of those who have some";
    // Payments of an earlier day.
    SQLite::Database file((directory_.path / "server.sqlite").string(), SQLite::OPEN_READWRITE, 1000);
    file.exec("UPDATE llmoney_history SET time = " + std::to_string(platform::unixseconds() - 5LL * 86400));
    now = figures();
    EXPECT_EQ(now["given1"], 0);
    EXPECT_EQ(now["given7"], 5);
}

TEST_F(ViewsTest, MetricsAreInTheFormAndCount) {
    const auto seen = metrics();
    EXPECT_EQ(seen.at("test_total{kind=\"a\"}"), 1);
    EXPECT_EQ(seen.at("test_total{kind=\"b\"}"), 2);
    EXPECT_EQ(seen.at("test_seconds_bucket{le=\"0.1\"}"), 1);
    EXPECT_EQ(seen.at("test_seconds_bucket{le=\"1\"}"), 3);
    EXPECT_EQ(seen.at("test_seconds_sum"), 6.05);
    EXPECT_EQ(seen.at("test_read"), 7.5);
    EXPECT_FALSE(seen.types().contains("test_failing"));
    for (const auto& [name, type] : std::map<std::string, std::string>{{"ordomart_trades_total", "counter"},
                                                                       {"ordomart_money_total", "counter"},
                                                                       {"ordomart_fees_total", "counter"},
                                                                       {"ordomart_shops", "gauge"},
                                                                       {"ordomart_rows", "gauge"},
                                                                       {"ordomart_list_seconds", "histogram"},
                                                                       {"ordomart_shop_saves_total", "counter"},
                                                                       {"server_players", "gauge"},
                                                                       {"server_pass_seconds", "histogram"},
                                                                       {"server_turn_wait_seconds", "histogram"},
                                                                       {"server_write_failures_total", "counter"},
                                                                       {"server_waiting", "gauge"}})
        EXPECT_THAT(seen.types(), Contains(std::pair(name, type)));
    clients->join({.name = "Alice", .xuid = "2535400000000001"});
    server_.ticks(3);
    const auto later = metrics();
    EXPECT_EQ(later.at("server_players"), 1);
    EXPECT_EQ(later.at("server_ticks_total"), seen.at("server_ticks_total") + 3);
    EXPECT_GT(later.at("server_writes_total"), seen.at("server_writes_total"));
    EXPECT_GE(later.at("server_pass_seconds_count"), seen.at("server_pass_seconds_count") + 3);
}

TEST_F(ViewsTest, MetricsAreAskedForWithTheTokenUnlessTheyAreOpen) {
    httplib::Client stranger("127.0.0.1", api->port());
    EXPECT_EQ(stranger.Get("/metrics")->status, 401);
    host::ControlApi open(server_, *clients, *bustle, {.port = 0, .openmetrics = true});
    open.start();
    httplib::Client watcher("127.0.0.1", open.port());
    const auto answer = watcher.Get("/metrics");
    EXPECT_EQ(answer->status, 200);
    EXPECT_THAT(answer->get_header_value("Content-Type"), HasSubstr("version=0.0.4"));
    EXPECT_NO_THROW(Metrics(answer->body));
    EXPECT_EQ(watcher.Get("/metrics", {{"Host", "evil.example"}})->status, 403);
    EXPECT_EQ(watcher.Get("/api/views")->status, 401);
    EXPECT_EQ(watcher.Post("/metrics")->status, 404);
    open.stop();
}

}  // namespace
