// What leaves the server: the question for a newer release and the reports of trades. The market is built with
// addresses of its own here, and whoever calls them is led to services on loopback; everything between is as it always
// is.
#include <fmt/format.h>
#include <gmock/gmock.h>

#include <atomic>
#include <future>
#include <latch>
#include <system_error>

#include "host/core/background.h"
#include "platform/http.h"
#include "plugin/errands/outbox.h"
#include "plugin/errands/tradereport.h"
#include "tests/host/coretools.h"
#include "tests/host/webservice.h"
#include "tests/market/quiethost.h"
#include "tests/stage/stage.h"

using namespace stage;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

const std::string ada = "2535400000000001", bob = "2535400000000002";
const std::string updates = "https://updates.test", reports = "http://reports.test";
const std::string nowhere = "http://127.0.0.1:1";

// The server's own calls, by other roads; and ten minutes of patience, so that nothing ends because its time is over.
class Signposts : public platform::Http {
public:
    std::map<std::string, std::string> roads;
    std::atomic<int> calls = 0;

    std::function<void(platform::Host&)> put() {
        return [this](platform::Host& host) { real_ = std::exchange(host.http, this); };
    }
    bool get(const std::string& url, int& status, std::string& result, int seconds) override {
        EXPECT_EQ(seconds, 10);
        ++calls;
        return real_->get(led(url), status, result, 600);
    }
    bool post(const std::string& url, const std::string& type, const std::string& body, int& status,
              std::string& result, int) override {
        ++calls;
        return real_->post(led(url), type, body, status, result, 600);
    }

private:
    [[nodiscard]] std::string led(const std::string& url) const {
        for (const auto& [from, to] : roads)
            if (url.starts_with(from + "/")) return to + url.substr(from.size());
        return nowhere;
    }
    platform::Http* real_ = nullptr;
};

class Errands : public testing::Test {
protected:
    Errands() { authority.write(trusted); }

    [[nodiscard]] Setting setting(json config = nullptr) {
        return {.config = std::move(config),
                .adjust = signposts.put(),
                .module = ADDRESSED_MODULE_PATH,
                .certificates = trusted};
    }
    // What the market said since the start, without its greeting and version.
    static std::vector<std::string> told(const Stage& stage) {
        std::istringstream all(stage.log());
        std::vector<std::string> lines;
        for (std::string line; std::getline(all, line);)
            if (!line.starts_with("[Server]")) lines.push_back(line);
        lines.erase(lines.begin(), lines.begin() + 3);
        return lines;
    }

    coretests::Directory directory;
    const coretests::Authority authority;
    const std::string trusted = (directory.path / "trusted.pem").string();
    Signposts signposts;
};

TEST_F(Errands, TheUpdateCheckTellsTheOperator) {
    int status = 200;
    std::string body;
    const auto answer = [&](const auto&, httplib::Response& response) {
        response.status = status;
        response.set_content(body, "application/json");
    };
    const coretests::Authority stranger;
    const coretests::WebService releases(authority, answer), forged(stranger, answer);
    signposts.roads[updates] = releases.address();
    Stage stage(setting());

    const auto release = [](const std::string& tag, json more = {{"body", "Faster.\nSafer."}}) {
        more.update({{"name", nullptr},
                     {"tag_name", tag},
                     {"assets", {{{"browser_download_url", "https://files.test/a"}}, {{"x", 1}}}}});
        return more.dump();
    };
    const std::string info = "[Ordomart][info] ", latest = info + "Latest version.";
    const auto parser = [&](const std::string& why) {
        return info + "An error occurred while parsing the update configuration, [json.exception." + why;
    };
    const std::vector<std::string> newer = {info + "New version available: 1.10.0", "-->https://files.test/a",
                                            info + "Title:Faster.", "Safer."};
    struct {
        int status;
        std::string body;
        std::vector<std::string> begins;  // of the lines
    } const cases[] = {
        {403, release("v9.0.0"), {info + "Unable to check for updates. Error Code: 403"}},
        {500, "", {info + "Unable to check for updates. Error Code: 500"}},
        {200, R"({"tag_name": "v9.0.0"})", {}},
        {200, R"(["name"])", {}},
        {200, "null", {}},
        {200, "<html>", {parser("parse_error.101]")}},
        {200, R"({"name": "x"})", {parser("out_of_range.403] key 'assets'")}},
        {200, R"({"name": "x", "assets": [], "tag_name": "v9.0.0"})", {parser("out_of_range.401]")}},
        {200, R"({"name": "x", "assets": 5, "tag_name": "v9.0.0"})", {parser("type_error.304]")}},
        {200,
         R"({"name": "x", "assets": [{"browser_download_url": 5}], "tag_name": "v9.0.0"})",
         {parser("type_error.302]")}},
        {200,
         R"({"name": "x", "assets": [{"browser_download_url": ""}]})",
         {parser("out_of_range.403] key 'tag_name'")}},
        {200, release("soon"), {info + "An error was caught during the update process."}},
        {200, release("v1.2.0"), {latest}},
        {200, release("1.1.9"), {latest}},
        {200, release("v1.2.0-beta"), {latest}},
        {200, release("v1.10.0"), newer},
        {200,
         release("v1.3.0-beta", json::object()),
         {info + "New version available: 1.3.0 Beta", "-->https://files.test/a",
          parser("out_of_range.403] key 'body'")}},
    };
    for (const auto& c : cases) {
        status = c.status;
        body = c.body;
        stage.restart();
        std::vector<testing::Matcher<std::string>> begins(c.begins.size(), StartsWith(""));
        std::ranges::transform(c.begins, begins.begin(), [](const auto& begin) { return StartsWith(begin); });
        EXPECT_THAT(told(stage), testing::ElementsAreArray(begins)) << c.body;
        EXPECT_EQ(releases.asked().back().path, "/repos/acme/market/releases/latest");
    }
    for (const auto& road : {forged.address(), nowhere}) {
        signposts.roads[updates] = road;
        stage.restart();
        EXPECT_THAT(told(stage), ElementsAre(info + "Unable to check for updates. Error Code: -1")) << road;
    }
}

TEST_F(Errands, TradesAreReported) {
    const coretests::WebService collector([](const auto&, httplib::Response& response) { response.status = 500; });
    signposts.roads[reports] = collector.address();
    const std::string worn = R"({Count:1b,Damage:0s,Name:"minecraft:iron_sword",WasPickedUp:0b,tag:{Damage:5}})",
                      sharp = R"({Count:1b,Damage:0s,Name:"minecraft:iron_sword",WasPickedUp:0b,)"
                              R"(tag:{ench:[{id:9s,lvl:1s}]}})";
    const auto trade = [&](Stage& stage) {
        stage.writeshop(bob, {good("apple", 7, 10, "Fruit"), good(worn, 9, 1, "Old"), good(sharp, 9, 1, "Sharp")},
                        {commission("stone", 5, 20, "Rock")});
        Actor& alice = stage.join("Alice", ada).setmoney(100).gives(30, "stone", 8);
        for (const auto& [title, pieces] : {std::pair("Fruit", "3"), {"Old", "1"}, {"Sharp", "1"}}) {
            alice.dismisses().types("ordomart formmenu").presses("Selling shops (form)").presses(title);
            alice.fills({{"quantity", pieces}});
        }
        alice.dismisses().types("ordomart formmenu").presses("Recycle shops (form)").presses("Rock");
        alice.fills({{"Slot No.30§r", 4}});
        EXPECT_EQ(alice.money(), 100 - 21 - 9 - 9 + 20);
        const std::string log = stage.file("plugins/Ordomart/log/" + bob + ".log");
        EXPECT_EQ(std::ranges::count(log, '\n'), 3) << log;
    };
    {
        Stage stage(setting());
        trade(stage);
        std::vector<std::string> bodies;
        for (const auto& asked : collector.asked()) {
            EXPECT_EQ(asked.method + asked.path + asked.type, "POST/ordomart_formpostupload.phpapplication/json");
            bodies.push_back(asked.body);
        }
        const auto report = [](const char* item, int damage, int pieces, const char* type, int money) {
            return fmt::format(R"({{"itemdamage":{},"itemname":"minecraft:{}","itemunbreakvalue":{},)"
                               R"("serverport":19132,"tradecount":{},"tradetype":"{}","transmoney":{}}})",
                               damage, item,
                               damage == -1   ? -1
                               : *item == 'i' ? 5
                                              : -114514,
                               pieces, type, money);
        };
        EXPECT_THAT(bodies, ElementsAre(report("apple", 0, 3, "sell", 21), report("iron_sword", 0, 1, "sell", 9),
                                        report("stone", -1, 4, "recycle", 20)));
        EXPECT_THAT(stage.log(), testing::Not(HasSubstr("testuploaddata")));
    }
    const auto calls = signposts.calls.load();
    {
        Stage stage(setting({{"debugmode", 1}}));
        trade(stage);
    }
    EXPECT_EQ(signposts.calls - calls, 1) << "the update check alone";
    signposts.roads[reports] = nowhere;
    {
        Stage stage(setting());
        trade(stage);
        EXPECT_THAT(stage.log(), testing::Not(HasSubstr("testuploaddata"))) << "a service that is away is no error";
    }
    EXPECT_EQ(signposts.calls - calls, 1 + 1 + 3);
    {
        Stage stage({.adjust = signposts.put()});
        trade(stage);
    }
    EXPECT_EQ(signposts.calls - calls, 1 + 1 + 3) << "a build without addresses calls nobody";
}

// Nobody ever answers, neither the check nor a report, and the market goes on; then the server stops.
TEST_F(Errands, TradesAndAStopWaitForNobody) {
    ::signal(SIGPIPE, SIG_IGN);  // as the program does: the service hangs up
    const coretests::MuteService mute;
    signposts.roads = {{updates, "https://" + mute.authority()}, {reports, "http://" + mute.authority()}};
    directory.put("plugins/Ordomart/data/" + bob + ".json", shopfileof(bob, {good("apple", 1, 100, "Fruit")}).dump());
    host::Server server({.directory = directory.path.string(),
                         .module = ADDRESSED_MODULE_PATH,
                         .moneylibrary = LLMONEY_PATH,
                         .quiet = true,
                         .certificates = trusted,
                         .adjust = signposts.put()});
    server.start();
    host::Clients clients(server);
    clients.join({"Alice", ada});
    server.run([&] { host::Money(*server.services().libraries).set(ada, 100); });
    // Waits for a form that shows the text, and answers it by what the form says. Others come up meanwhile and are
    // closed.
    const auto answers = [&](const std::string& text, const std::function<json(const json&)>& answer) {
        for (bool done = false; !done; std::this_thread::yield())
            clients.with("Alice", [&](client::ModelClient& c) {
                if (c.forms().empty()) return;
                if (c.forms().front().json.find(text) == std::string::npos) return c.answer("null");
                c.answer(answer(json::parse(c.forms().front().json)).dump());
                done = true;
            });
    };
    constexpr int trades = 9;
    for (int i = 0; i < trades; ++i) {
        clients.with("Alice", [](client::ModelClient& c) { c.command("ordomart formmenu"); });
        // By its text: the menu behind the trade before may come up late, and is another one.
        for (const std::string text : {"Selling shops (form)", "Fruit"})
            answers(text, [&](const json& form) {
                int button = 0;
                while (form["buttons"][button]["text"].get<std::string>().find(text) == std::string::npos) ++button;
                return json(button);
            });
        answers("quantity", [](const json& form) {
            json filled = json::array();
            for (const json& element : form["content"])
                filled.push_back(element["type"] == "input" ? json("1") : json(nullptr));
            return filled;
        });
        answers("Player Alice paid 1 for Apple*1", [](const json&) { return false; });
        clients.with("Alice", [](client::ModelClient& c) {
            while (!c.forms().empty()) c.answer("null");
        });
    }
    server.run([&] { EXPECT_EQ(host::Money(*server.services().libraries).get(ada), 100 - trades); });
    clients.leaveall();
    server.stop();
    std::string dropped;
    for (const auto& line : server.log().lines())
        if (line.title == "debuglogger" && line.level == platform::LogLevel::debug) dropped = line.message;
    EXPECT_EQ(dropped, fmt::format("{} trade reports were dropped", trades - ordomart::outbox::mostsenders));
    EXPECT_EQ(signposts.calls, 1 + int{ordomart::outbox::mostsenders});
}

// ---- below the stage: the queue, and records that no trade makes

class Outbox : public testing::Test {
protected:
    // A host of threads, or of none.
    class Threads : public platform::BackgroundThreads {
    public:
        bool none = false;
        host::BackgroundBodies bodies{[] {}, [](const std::string& failure) { ADD_FAILURE() << failure; }};
        void start(std::function<void()> body) override {
            if (none) throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
            bodies.start(std::move(body));
        }
        std::shared_ptr<void> busy() override { return bodies.busy(); }
        bool stopping() const override { return bodies.stopping(); }
    };
    Outbox() { quiet.services.background = &threads; }

    market_tests::QuietHost quiet;
    Threads threads;
};

TEST_F(Outbox, SendsInOrderByAFewAndDropsWhatIsTooMuch) {
    constexpr int senders = ordomart::outbox::mostsenders, room = ordomart::outbox::mostwaiting;
    std::promise<void> opened;
    const auto gate = opened.get_future().share();
    std::latch busy(senders);
    std::mutex mutex;
    std::vector<int> sent;
    ordomart::outbox box([&](int type, const json& record) {
        {
            const std::lock_guard lock(mutex);
            sent.push_back(type);
            EXPECT_EQ(record, json({{"n", type}}));
        }
        if (type < senders) busy.count_down();
        gate.wait();
    });
    const auto put = [&](int n) { box.put(n, {{"n", n}}); };
    int next = 0;
    while (next < senders) put(next++);
    busy.wait();
    while (next < senders + room + 7) put(next++);
    EXPECT_EQ(threads.bodies.underway().bodies, senders);
    EXPECT_THAT(quiet.log.lines, ElementsAre());
    opened.set_value();
    threads.bodies.waitidle();
    EXPECT_EQ(sent.size(), static_cast<std::size_t>(senders + room));
    EXPECT_EQ(*std::ranges::max_element(sent), senders + room - 1) << "what came last was dropped";
    EXPECT_THAT(quiet.log.lines, ElementsAre("debuglogger 0 7 trade reports were dropped"));

    put(next);
    threads.bodies.waitidle();
    EXPECT_EQ(sent.back(), next) << "it goes on, with new threads";
    threads.none = true;
    put(++next);
    EXPECT_EQ(quiet.log.lines.back(), "debuglogger 0 1 trade reports were dropped");
    threads.none = false;
    put(++next);
    threads.bodies.waitidle();
    EXPECT_EQ(sent.back(), next);
    threads.bodies.announcestop();
    put(next + 1);
    threads.bodies.waitidle();
    EXPECT_EQ(sent.back(), next) << "a server that stops sends no more";
    EXPECT_EQ(quiet.log.lines.size(), 3U);
}

TEST_F(Outbox, ARecordThatLacksSomethingIsToldByItsFirstKey) {
    json record = {{"itemname", "x"}, {"tradecount", 1}};
    const std::string line = "Ordomart 3 An error occurred while parsing the testuploaddata, ";
    ordomart::testuploaddata(0, record);
    EXPECT_EQ(quiet.log.lines.back(), line + "[json.exception.out_of_range.403] key 'itemdamage' not found");
    record.erase("itemname");
    ordomart::testuploaddata(1, record);
    EXPECT_EQ(quiet.log.lines.back(), line + "[json.exception.out_of_range.403] key 'itemname' not found");
}

}  // namespace
