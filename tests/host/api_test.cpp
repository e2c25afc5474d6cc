// The control API as a tool meets it: who is let in, what it says to nonsense, and a player played through it.
#include <gmock/gmock.h>

#include <condition_variable>
#include <semaphore>
#include <thread>

#include "host/api/eventstream.h"
#include "host/core/commands.h"
#include "tests/host/apiserver.h"

namespace {

using coretests::ApiCaller;
using coretests::ApiTest;
using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

// Reads the stream of events until it is destroyed.
class Watcher {
public:
    Watcher(const host::ControlApi& api, const std::string& query)
        : http_("127.0.0.1", api.port()), thread_([this, path = "/api/events?token=" + api.token() + "&" + query] {
              http_.Get(path, [this](const char* data, std::size_t length) {
                  const std::lock_guard lock(mutex_);
                  text_.append(data, length);
                  more_.notify_all();
                  return !over_;
              });
          }) {}
    ~Watcher() {
        {
            const std::lock_guard lock(mutex_);
            over_ = true;
        }
        http_.stop();
        thread_.join();
    }
    // The data of the next event of the kind; those before it are passed over.
    json next(const std::string& kind) {
        const std::string head = "event: " + kind + "\ndata: ";
        std::unique_lock lock(mutex_);
        std::size_t at = 0, end = std::string::npos;
        more_.wait_for(lock, std::chrono::seconds(30), [&] {
            at = text_.find(head, read_);
            end = at == std::string::npos ? at : text_.find("\n\n", at);
            return end != std::string::npos;
        });
        if (end == std::string::npos) throw std::runtime_error("no event " + kind + " in " + text_.substr(read_));
        read_ = end + 2;
        return json::parse(text_.substr(at + head.size(), end - at - head.size()));
    }

private:
    std::mutex mutex_;
    std::condition_variable more_;
    std::string text_;
    std::size_t read_ = 0;
    bool over_ = false;
    httplib::Client http_;
    std::thread thread_;
};

TEST_F(ApiTest, LetsInOnlyWhoHasTheTokenAndComesFromHere) {
    const std::string here = "127.0.0.1:" + std::to_string(api.port()), token = api.token();
    const std::pair<std::string, std::string> bearer{"Authorization", "Bearer " + token};
    const struct {
        const char* what;
        std::string path;
        httplib::Headers headers;
        int status;
    } calls[] = {
        {"nothing", "/api/players", {}, 401},
        {"a wrong token", "/api/players", {{"Authorization", "Bearer " + token.substr(1) + "x"}}, 401},
        {"a part of it", "/api/players", {{"Authorization", "Bearer " + token.substr(0, 31)}}, 401},
        {"no bearer", "/api/players", {{"Authorization", token}}, 401},
        {"an empty one", "/api/players?token=", {}, 401},
        {"the token", "/api/players", {bearer}, 200},
        {"in the address", "/api/players?token=" + token, {}, 401},
        {"in both, wrong in the header", "/api/events?token=" + token, {{"Authorization", "Bearer x"}}, 401},
        {"another host's name", "/api/players", {bearer, {"Host", "evil.example"}}, 403},
        {"another port", "/api/players", {bearer, {"Host", "127.0.0.1:1"}}, 403},
        {"its other name", "/api/players", {bearer, {"Host", "localhost" + here.substr(9)}}, 200},
        {"a foreign page", "/api/players", {bearer, {"Origin", "http://evil.example"}}, 403},
        {"a page of no origin", "/api/players", {bearer, {"Origin", "null"}}, 403},
        {"its own page", "/api/players", {bearer, {"Origin", "http://" + here}}, 200},
        {"the page needs none", "/", {}, 200},
        {"but the name", "/", {{"Host", "evil.example"}}, 403},
        {"no such call", "/api/nothing", {bearer}, 404},
        {"no such file", "/../server.sqlite", {}, 404},
        {"a call of another method", "/api/ticks", {bearer}, 404},
        {"events without it", "/api/events", {}, 401},
    };
    httplib::Client http("127.0.0.1", api.port());
    for (const auto& call : calls) {
        SCOPED_TRACE(call.what);
        const auto result = http.Get(call.path, call.headers);
        ASSERT_TRUE(result);
        EXPECT_EQ(result->status, call.status) << result->body;
        if (call.status != 200) {
            EXPECT_TRUE(coretests::ApiCaller::read(result).body.contains("error"));
        }
    }
    const auto page = http.Get("/", {{"Range", "bytes=0-1,0-1"}});
    EXPECT_EQ(page->status, 200);
    EXPECT_THAT(page->body, testing::StartsWith("<!"));
    EXPECT_THAT(page->get_header_value("Content-Security-Policy"), HasSubstr("default-src 'self'"));
    EXPECT_THAT(page->body, testing::Not(HasSubstr(token)));
    EXPECT_THAT(api.address(), testing::EndsWith("/#token=" + token));
}

TEST_F(ApiTest, SaysWhatIsWrong) {
    joins("Alice");
    const auto nested = [](std::size_t levels) { return std::string(levels, '[') + std::string(levels, ']'); };
    const std::string deep = std::string(1'000'000, '['), deepanswer = R"({"answer": )" + nested(400'000) + "}",
                      deepsnbt = R"({"slot": 0, "snbt": "{a:)" + nested(400'000) + "}\"}";
    const struct {
        const char *method, *path, *body;
        int status;
        const char* error;
    } calls[] = {
        {"POST", "/api/players", "{", 400, "the body is no JSON"},
        {"POST", "/api/players", "[1]", 400, "the body must be a JSON object"},
        {"POST", "/api/players", "{}", 400, "\"name\" is missing"},
        {"POST", "/api/players", R"({"name": 3})", 400, "\"name\" cannot be of the type number"},
        {"POST", "/api/players", R"({"name": "Alice"})", 400, "Alice is joined here already"},
        {"POST", "/api/players", R"({"name": "alice", "xuid": "7"})", 400, "belongs to another player"},
        {"POST", "/api/players", R"({"name": "a\nb"})", 400, "letters, digits"},
        {"POST", "/api/players", R"({"name": "Bob", "device": "phone"})", 400, "desktop or touch"},
        {"POST", "/api/players", R"({"name": "Bob", "permission": 5})", 400, "0 to 4"},
        {"DELETE", "/api/players/Bob", "", 404, "no player \"Bob\" is joined here"},
        {"GET", "/api/players/Bob", "", 404, "no player \"Bob\" is joined here"},
        {"POST", "/api/players/Bob/close", "", 404, "no player \"Bob\" is joined here"},
        {"GET", "/api/players/Bob/creative", "", 404, "no player \"Bob\" is joined here"},
        {"GET", "/api/players/Bob/money", "", 404, "nobody here knows a player \"Bob\""},
        {"GET", "/api/players/Alice?heard=x", "", 400, "\"x\" is no number"},
        {"GET", "/api/players/Alice?heard=1x", "", 400, "\"1x\" is no number"},
        {"POST", "/api/players", deep.c_str(), 400, "the body is nested more than 64 levels deep"},
        {"POST", "/api/players/Alice/answer", deepanswer.c_str(), 400, "the body is nested more than 64 levels deep"},
        {"PUT", "/api/players/Alice/inventory", deepsnbt.c_str(), 400, "no SNBT"},
        {"POST", "/api/players/Alice/answer", R"({"answer": 0})", 409, "Alice has no form to answer"},
        {"POST", "/api/players/Alice/click", R"({"container": "chest", "slot": 0})", 400, "unknown container"},
        {"POST", "/api/players/Alice/click", R"({"container": 12, "slot": 0, "how": "kick"})", 400, "\"how\" is"},
        {"POST", "/api/players/Alice/creative", R"({"entry": 1})", 400, "no entry 1"},
        {"POST", "/api/players/Alice/request", R"({"requests": [{"actions": [{"type": "eat"}]}]})", 400, "\"eat\""},
        {"POST", "/api/players/Alice/request",
         R"({"requests": [{"actions": [{"type": "craftresult", "results": [{"item": "nothing"}]}]}]})", 400,
         "there is no item \"nothing\""},
        {"POST", "/api/players/Alice/request", R"({"requests": [{"actions": [{"type": 0, "count": 300}]}]})", 400,
         "\"count\" cannot be 300"},
        {"POST", "/api/players/Alice/request", R"({"requests": [{"actions": [3]}]})", 400, "no object with \"type\""},
        {"PUT", "/api/players/Alice/inventory", R"({"slot": 1.5, "item": "apple"})", 400, "\"slot\" cannot be 1.5"},
        {"PUT", "/api/players/Alice/inventory", R"({"slot": 41, "item": "apple"})", 400, "\"slot\" is 0 to 40"},
        {"PUT", "/api/players/Alice/inventory", R"({"slot": -1, "item": "apple"})", 400, "\"slot\" is 0 to 40"},
        {"PUT", "/api/players/Alice/inventory", R"({"slot": 0, "item": "nothing"})", 400, "there is no item"},
        {"PUT", "/api/players/Alice/inventory", R"({"slot": 0, "snbt": "{"})", 400, "no SNBT"},
        {"PUT", "/api/players/Alice/money", R"({"amount": -1})", 400, ""},
        {"PUT", "/api/players/Alice/permission", R"({"level": 5})", 400, "0 to 4"},
        {"PUT", "/api/players/Alice/gametype", R"({"gametype": 2})", 400, "a game type is"},
        {"PUT", "/api/players/Alice/score", R"({"objective": "none", "value": 1})", 400, "no objective \"none\""},
        {"POST", "/api/ticks", R"({"count": 0})", 400, "\"count\" is 1 to 100000"},
        {"POST", "/api/ticks", R"({"count": 100001})", 400, "\"count\" is 1 to 100000"},
        {"POST", "/api/speed", R"({"ticks": 0})", 400, "0.1 to 1000"},
        {"POST", "/api/speed", R"({"paused": "no"})", 400, "\"paused\" cannot be of the type string"},
        {"GET", "/api/log?after=x", "", 400, "\"x\" is no number"},
        {"GET", "/api/events?after=-1", "", 400, "\"-1\" is no number"},
    };
    for (const auto& call : calls) {
        SCOPED_TRACE(std::string(call.method) + " " + call.path + " " + call.body);
        httplib::Request request;
        request.method = call.method;
        request.path = call.path;
        request.body = call.body;
        const auto answer = coretests::ApiCaller::read(caller->http.send(request));
        EXPECT_EQ(answer.status, call.status);
        EXPECT_THAT(answer.body.value("error", "none"), HasSubstr(call.error));
    }
    EXPECT_EQ(caller->post("/api/players", {{"name", std::string(2 << 20, 'x')}}).status, 413);
    EXPECT_EQ(state()["slots"]["inventory"][0], nullptr);
}

TEST_F(ApiTest, PlaysAPlayer) {
    ASSERT_EQ(caller->post("/api/players", {{"name", "Alice"}, {"language", "zh_CN"}, {"permission", 1}}).status, 200);
    EXPECT_EQ(caller->post("/api/players/Alice/command", {{"line", "ordomart formmenu"}}).status, 200);
    const json form = state()["form"];
    EXPECT_EQ(form["json"]["type"], "form");
    EXPECT_EQ(caller->post("/api/players/Alice/answer", {{"answer", nullptr}, {"form", form["id"]}}).status, 200);
    EXPECT_EQ(state()["form"], nullptr);
    EXPECT_EQ(caller->post("/api/players/Alice/command", {{"line", "nonsense"}}).status, 200);
    EXPECT_THAT(heard("reply"), ElementsAre(HasSubstr("Unknown command: nonsense")));

    caller->put("/api/players/Alice/inventory", {{"slot", 3}, {"item", "wool"}, {"aux", 14}, {"count", 5}});
    EXPECT_EQ(shown("inventory", 3), "红色羊毛*5");
    caller->post("/api/players/Alice/click", {{"container", "hotbar"}, {"slot", 3}, {"how", "rightclick"}});
    EXPECT_EQ(shown("cursor", 0), "红色羊毛*3");
    const auto request = caller->post("/api/players/Alice/request",
                                      json::parse(R"({"requests": [{"id": -77, "actions": [{"type": "drop", "count": 9,
                        "source": {"container": "hotbar", "slot": 3}}]}]})"));
    EXPECT_EQ(request.body["ids"], json::array({-77}));
    EXPECT_EQ(shown("inventory", 3), "红色羊毛*2") << "more than there is";
    const json slots = caller->get("/api/players/Alice/inventory").body["slots"];
    EXPECT_EQ(slots.size(), 41U);
    EXPECT_EQ(slots[3]["count"], 2);

    caller->put("/api/players/Alice/money", {{"amount", 5'000'000'000}});
    EXPECT_EQ(caller->get("/api/players/Alice/money").body, json({{"amount", 5'000'000'000}, {"llmoney", true}}));
    caller->post("/api/players/Alice/kill");
    EXPECT_EQ(caller->get("/api/players").body["players"][0]["alive"], false);
    EXPECT_EQ(caller->post("/api/ticks", {{"count", 7}}).body["tick"], 7);
    joins("Bob");
    server->run([this] {
        server->commands().registerCommand("bosses", "b", platform::CommandPermissionLevel::GameMasters, 0, 128);
        server->commands().registerOverload("bosses", [] { return nullptr; }, {});
    });
    for (const auto& [name, offered] : {std::pair("Alice", 1U), std::pair("Bob", 0U)})
        EXPECT_EQ(caller->get(std::string("/api/complete?line=bos&player=") + name).body["completions"].size(),
                  offered);
    EXPECT_EQ(caller->remove("/api/players/Alice").status, 200);
    EXPECT_EQ(caller->get("/api/players/Alice").status, 404);
}

TEST_F(ApiTest, PicksInCreativeModeAsAClientAndByHand) {
    joins("Alice");
    EXPECT_TRUE(caller->get("/api/players/Alice/creative").body["entries"].empty());
    caller->put("/api/players/Alice/gametype", {{"gametype", 1}});
    EXPECT_EQ(state()["gametype"], 1);
    const json entries = caller->get("/api/players/Alice/creative").body["entries"];
    const auto wool = std::ranges::find_if(entries, [](const json& e) { return e["name"] == "Red Wool"; });
    ASSERT_NE(wool, entries.end());
    caller->post("/api/players/Alice/creative", {{"entry", (*wool)["entry"]}});
    EXPECT_EQ(shown("cursor", 0), "Red Wool*64");

    json pick = json::parse(R"({"requests": [{"id": -9, "actions": [
        {"type": "creativepick"}, {"type": "craftresult", "results": [{"item": "wool", "aux": 14}]},
        {"type": "place", "count": 3, "source": {"container": "createdoutput", "slot": 50, "stackid": -9},
         "destination": {"container": "hotbar", "slot": 0}}]}]})");
    pick["requests"][0]["actions"][0]["entry"] = (*wool)["entry"];
    caller->post("/api/players/Alice/request", pick);
    EXPECT_EQ(shown("inventory", 0), "Red Wool*3");
}

TEST_F(ApiTest, WatchersGetThePictureAndThenWhatChanges) {
    joins("Alice");
    caller->put("/api/players/Alice/inventory", {{"slot", 0}, {"item", "apple"}, {"count", 5}});
    Watcher watcher(api, "player=Alice&log=1");
    const json itself = watcher.next("server");
    EXPECT_EQ(itself["players"][0]["name"], "Alice");
    json picture = watcher.next("client")["state"];
    caller->post("/api/players/Alice/click", {{"container", "hotbar"}, {"slot", 0}});
    const auto follow = [&] {
        json wanted = state();
        wanted.erase("heard");
        while (picture != wanted) picture = picture.patch(watcher.next("patch")["patch"]);
    };
    follow();
    EXPECT_EQ(picture["slots"]["cursor"][0]["count"], 5);
    // Of a form that he closes the server has nothing to say.
    caller->post("/api/players/Alice/command", {{"line", "ordomart formmenu"}});
    follow();
    EXPECT_NE(picture["form"], nullptr);
    caller->post("/api/players/Alice/answer", {{"answer", nullptr}});
    follow();
    EXPECT_EQ(picture["form"], nullptr);

    joins("Bob");
    caller->post("/api/players/Bob/command", {{"line", "nonsense"}});
    says({"one"});
    const json one = watcher.next("heard");
    EXPECT_EQ(one["what"]["text"], "one");
    Watcher later(api, "player=Alice&heard=" + one["number"].dump());
    Watcher same(api, "player=Alice&heard=" + one["number"].dump() + "&run=" + itself["run"].get<std::string>());
    Watcher ofaformerrun(api, "player=Alice&log=1&heard=9999&after=9999&run=former");
    says({"two"});
    // A page that takes nothing is told no more, while another one is.
    host::EventStreams streams(*server, clients);
    streams.start();
    const auto slow = streams.subscribe({.players = {"Alice"}}), quick = streams.subscribe({.players = {"Alice"}});
    const auto reads = [&](const std::string& part) {
        std::string text;
        for (int i = 0; i < 3000 && text.find(part) == std::string::npos; ++i) {
            text += quick->take();
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return text.find(part) != std::string::npos;
    };
    EXPECT_TRUE(reads("event: client"));
    says({"three"});
    EXPECT_TRUE(reads("three"));
    EXPECT_EQ(slow->take().find("three"), std::string::npos);
    streams.stop();

    EXPECT_EQ(later.next("heard")["what"]["text"], "two");
    EXPECT_EQ(same.next("heard")["what"]["text"], "two");
    EXPECT_EQ(ofaformerrun.next("heard")["what"]["text"], "one");
    EXPECT_EQ(ofaformerrun.next("log")[0]["number"], 1);
    caller->remove("/api/players/Alice");
    EXPECT_EQ(watcher.next("gone")["player"], "Alice");
}

TEST_F(ApiTest, LinesAreToldOnceEach) {
    joins("Alice");
    std::vector<std::string> lines;
    for (int i = 0; i < 2500; ++i) lines.push_back("line " + std::to_string(i));
    says(lines);
    clients.with("Alice", [](client::ModelClient& c) {
        EXPECT_EQ(c.chat.size(), c.chat.mostkept);
        c.chat.clear();
    });
    says({"behind the clearing"});
    caller->remove("/api/players/Alice");
    joins("Alice");
    says({"joined anew"});
    lines.insert(lines.end(), {"behind the clearing", "joined anew"});
    const json all = caller->get("/api/players/Alice?heard=0").body["heard"];
    std::vector<std::string> texts;
    for (const json& what : all) texts.push_back(what["text"]);
    EXPECT_EQ(texts, lines);
    EXPECT_EQ(heard("chat"), std::vector<std::string>(lines.end() - 300, lines.end())) << "the last ones, unasked";
    const auto after = all[all.size() - 2]["number"].dump();
    EXPECT_EQ(caller->get("/api/players/Alice?heard=" + after).body["heard"], json::array({all.back()}));

    joins("Bob");
    caller->post("/api/players/Bob/command", {{"line", "nonsense"}});
    says(std::vector<std::string>(4999, "of Alice"));
    EXPECT_EQ(caller->get("/api/players/Bob").body["heard"].size(), 1U);
    EXPECT_EQ(caller->get("/api/players/Alice?heard=0").body["heard"].size(), 4999U);
    says({"one more"});
    EXPECT_TRUE(caller->get("/api/players/Bob").body["heard"].empty()) << "5000 of all together";
}

// A command that takes its time, on a server that nobody drives.
class SlowCommand : public platform::Command {
public:
    explicit SlowCommand(std::counting_semaphore<>& begun) : begun_(begun) {}
    void execute(const platform::CommandOrigin&, platform::CommandOutput& output) override {
        begun_.release();
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        output.success("done slowly");
    }

private:
    std::counting_semaphore<>& begun_;
};

class RunningApi : public ApiTest {
protected:
    RunningApi() : ApiTest(false) {}
    std::counting_semaphore<> begun{0};
};

TEST_F(RunningApi, ACommandIsAnsweredWhenItsReplyIsThere) {
    server->run([this] {
        server->commands().registerCommand("slow", "waits", platform::CommandPermissionLevel::Any, 0, 128);
        server->commands().registerOverload("slow", [this] { return std::make_unique<SlowCommand>(begun); }, {});
    });
    EXPECT_EQ(caller->post("/api/clock", {{"milliseconds", 1000}}).status, 409) << "it has a time of its own";
    joins("Alice");
    joins("Bob");
    // Bob's command runs when Alice's comes in, so that hers is read behind the work of the next pass.
    std::jthread other([this] {
        ApiCaller(api.port(), api.token()).post("/api/players/Bob/command", {{"line", "slow"}});
    });
    begun.acquire();
    EXPECT_EQ(caller->post("/api/players/Alice/command", {{"line", "slow"}}).status, 200);
    EXPECT_THAT(heard("reply"), ElementsAre("done slowly"));
}

TEST_F(RunningApi, APausedServerAnswersWhenItGoesOn) {
    joins("Alice");
    caller->post("/api/speed", {{"paused", true}});
    EXPECT_EQ(caller->post("/api/players/Alice/command", {{"line", "first"}}).status, 200);
    joins("Bob");
    EXPECT_THAT(heard("reply"), testing::IsEmpty());
    caller->post("/api/speed", {{"paused", false}});
    caller->post("/api/players/Alice/command", {{"line", "second"}});
    EXPECT_THAT(heard("reply"), ElementsAre(HasSubstr("first"), HasSubstr("second")));
}

}  // namespace
