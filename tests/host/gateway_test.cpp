// The door for a gateway: what passes it, who is refused, and that whoever misbehaves there harms nobody else.
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <semaphore>

#include "host/clients.h"
#include "host/core/commands.h"
#include "host/world/gamedata.h"
#include "platform/packets/containers.h"
#include "tests/host/gatewayclient.h"

namespace {

using namespace coretests;
using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

TEST_F(Gateway, TellsWhatAClientNeedsAtItsStart) {
    begin({.offline = true});
    struct stat status {};
    for (const char* name : {"gateway.sock", "gateway.token"}) {
        ASSERT_EQ(::stat((directory.path / name).c_str(), &status), 0) << name;
        EXPECT_EQ(status.st_mode & 0777, 0600u) << name;
    }
    const std::string kept = token();
    GatewayClient client = stranger();
    client.say(login, 0, json{{"token", kept}, {"gateway", "test 1"}});
    const auto first = client.hear();
    ASSERT_EQ(first.operation, hello);
    const json told = first.json();
    EXPECT_EQ(told.at("protocol"), 560);
    EXPECT_EQ(told.at("version"), "1.19.50");
    EXPECT_EQ(told.at("offline"), true);
    EXPECT_EQ(told.at("air"), 10462);
    EXPECT_EQ(told.at("limits").at("packet"), 256 * 1024);
    EXPECT_EQ(told.at("items").size(), 1163u);
    EXPECT_THAT(told.at("items"), testing::Contains(json({"minecraft:shield", 355, false})));
    std::vector<int> numbers;
    for (int i = 0; i < told.at("start"); ++i) {
        const auto frame = client.hear();
        ASSERT_EQ(frame.operation, start);
        const auto envelope = platform::openpacket(frame.payload);
        numbers.push_back(envelope.number);
        if (envelope.number == 145) {
            EXPECT_EQ(platform::readpacket<platform::CreativeContentPacket>(envelope.body).entries.size(), 1386u);
        }
    }
    EXPECT_THAT(numbers, ElementsAre(122, 119, 145));

    // The market's own command, and one that comes later.
    const auto find = [](const json& all, const std::string& name) {
        for (const json& one : all)
            if (one.at("name") == name) return one;
        return json();
    };
    const json first_commands = client.hear().json();
    const json market = find(first_commands.at("commands"), "ordomart");
    EXPECT_EQ(market.at("permission"), 0);
    const json& parameter = market.at("overloads").at(0).at(0);
    EXPECT_EQ(parameter.at("kind"), "enum");
    EXPECT_TRUE(parameter.at("optional"));
    EXPECT_THAT(find(first_commands.at("enums"), parameter.at("enum")).at("values"), testing::Contains("buy"));
    server->run([&] {
        auto& registry = server->commands();
        registry.registerCommand("later", "Comes later", platform::CommandPermissionLevel::GameMasters, 0, 0);
        platform::CommandParameter many{.name = "many", .kind = platform::CommandParameter::Kind::Int};
        registry.registerOverload("later", [] { return nullptr; }, {many});
    });
    const json later = find(client.await(commands).json().at("commands"), "later");
    EXPECT_EQ(later.at("permission"), 1);
    EXPECT_EQ(later.at("overloads"), json::parse(R"([[{"name":"many","kind":"int","optional":false}]])"));

    // The token outlives the server, the socket does not.
    end();
    EXPECT_FALSE(std::filesystem::exists(directory.path / "gateway.sock"));
    begin();
    EXPECT_EQ(token(), kept);
}

TEST_F(Gateway, PacketsGoBothWaysAsTheyAre) {
    begin();
    std::vector<std::string> other;  // what a client beside is sent, who does the same
    host::ConnectionId beside = 0;
    server->run([&] {
        beside =
            server->network().join({.name = "Beside", .xuid = "9"}, [&](std::string one) { other.push_back(one); });
    });
    GatewayClient client = gateway();
    client.say(open, 5, player("Zed", {{"xuid", "78"}, {"language", "zh_CN"}, {"device", 2}}));
    const auto answer = client.await(opened);
    ASSERT_EQ(answer.operation, opened);
    EXPECT_EQ(answer.session, 5u);
    EXPECT_EQ(answer.json().at("xuid"), "78");
    EXPECT_EQ(answer.json().at("position"), json::parse("[0.5,64.0,0.5]"));
    EXPECT_EQ(answer.json().at("gametype"), 0);
    server->run([&] {
        const auto* joined = server->world().level().getPlayerByXuid("78");
        ASSERT_NE(joined, nullptr);
        EXPECT_EQ(joined->getDeviceType(), 2);
        EXPECT_EQ(joined->getLanguageCode(), "zh_CN");
        EXPECT_EQ(joined->sessionid(), answer.json().at("entity"));
    });
    // The inventory comes right behind, and a pulse at the end of the pass.
    std::vector<std::string> heard;
    for (auto frame = client.hear(); frame.operation != pulse; frame = client.hear()) {
        ASSERT_EQ(frame.operation, packetback);
        heard.push_back(frame.payload);
    }
    server->run([&] { EXPECT_EQ(heard, other); });
    // Byte for byte: both ask the same, and hear the same.
    const auto ask = [&](const std::string& line) {
        server->run([&] { other.clear(); });
        server->network().receive(beside, command(line));
        client.say(packet, 5, command(line));
        heard.clear();
        for (;;) {
            const auto frame = client.await(packetback);
            heard.push_back(frame.payload);
            if (platform::openpacket(frame.payload).number == static_cast<int>(platform::PacketId::CommandOutput))
                break;
        }
        server->run([&] { EXPECT_EQ(heard.back(), other.back()) << line; });
    };
    ask("nothing of the kind");
    ask("ordomart bans");
    // A broken packet is the client's own affair.
    client.say(packet, 5, std::string("\xff\xff\xff\xff\xff\xff"));
    client.say(packet, 5, std::string());
    ask("still here");
    // Closed by the client: not answered; by the server: told once, and whatever is still on its way does not count.
    client.say(open, 6, player("Yan", {{"xuid", "79"}}));
    ASSERT_EQ(client.await(opened).session, 6u);
    client.say(close, 5, json{{"reason", "the line\nbroke" + std::string(1000, '.')}});
    awaitonline({"Beside", "Yan"});
    awaitlog("Zed: the line?broke");
    for (const auto& line : server->log().lines())
        EXPECT_THAT(line.message, testing::Not(HasSubstr(std::string(200, '.'))));
    server->run([&] { server->network().leave(server->network().connection("Yan"), "sent away"); });
    const auto farewell = client.await(closed);
    EXPECT_EQ(farewell.session, 6u);
    EXPECT_EQ(farewell.reason(), "sent away");
    client.say(packet, 6, command("late"));
    client.say(close, 6, std::string());
    client.say(close, 5, std::string("no json"));
    client.say(open, 7, player("Zed", {{"xuid", "78"}}));
    EXPECT_EQ(client.await(opened).session, 7u);
    // The server stops in good order.
    door->stop();
    EXPECT_EQ(client.await(closed, 7).reason(), "the server stops");
    EXPECT_EQ(client.await(closed, 0).reason(), "the server stops");
    EXPECT_EQ(client.await(pulse).operation, 0);
    EXPECT_EQ(online(), std::vector<std::string>{"Beside"});
}

TEST_F(Gateway, RefusesWhoMayNotPlay) {
    begin();
    GatewayClient client = gateway();
    std::uint64_t session = 0;
    const auto answer = [&](const std::string& request) {
        client.say(open, ++session, request);
        for (;;) {
            const auto frame = client.hear();
            if (frame.operation == opened || frame.operation == refused) {
                EXPECT_EQ(frame.session, session);
                return frame.operation == opened ? std::string("opened") : frame.reason();
            }
            if (frame.operation == 0) return std::string("ended");
        }
    };
    const json bad = {{"xuid", "5"}};
    const std::pair<std::string, const char*> cases[] = {
        {player("Zed").dump(), "opened"},
        {player("Other").dump(), "online"},                              // the xuid is
        {player("zed", {{"xuid", "80"}}).dump(), "belongs to another"},  // the name is
        {player("Anna", {{"authenticated", false}}).dump(), "signed in"},
        {json{{"name", "Anna"}, {"xuid", "80"}}.dump(), "signed in"},
        {player("Anna", {{"xuid", ""}}).dump(), "without an xuid"},
        {player("Anna", {{"xuid", 80}}).dump(), "\"xuid\""},
        {player("Anna", {{"xuid", "8a"}}).dump(), "xuid"},
        {player("Anna\n").dump(), "name"},
        {player("Anna", {{"device", 1e30}}).dump(), "\"device\""},
        {player("Anna", {{"device", -1}}).dump(), "\"device\""},
        {player("Anna", {{"language", "../x"}}).dump(), "language"},
        {"", "signed in"},
        {"[]", "no JSON object"},
        {"{\"name\":", "the request"},
        {std::string(100'000, '['), "the request"},
        {player("Anna", {{"xuid", "80"}}).dump(), "opened"},
    };
    for (const auto& [request, wanted] : cases)
        EXPECT_THAT(answer(request), HasSubstr(wanted)) << request.substr(0, 100);
    EXPECT_EQ(online(), (std::vector<std::string>{"Zed", "Anna"}));
    end();

    // Without signing in: by the name alone, and whatever xuid is claimed.
    begin({.offline = true});
    client = gateway();
    client.say(open, 1, player("Olga", {{"authenticated", false}, {"xuid", "77"}}));
    const std::string xuid = client.await(opened).json().at("xuid");
    server->run([&] { EXPECT_EQ(host::defaultxuid(*server, "Olga"), xuid); });
    EXPECT_NE(xuid, "77");
    client.say(open, 2, player("Zed", {{"authenticated", false}, {"xuid", "1"}}));
    EXPECT_EQ(client.await(opened).json().at("xuid"), "77");
}

TEST_F(Gateway, EndsWithWhoeverBreaksTheRules) {
    begin({.login = std::chrono::milliseconds(300)});
    const std::string in = framed(login, 0, json{{"token", token()}}.dump());
    const std::string joined = in + framed(open, 3, player("Zed").dump());
    const struct {
        std::string bytes;
        const char* reason;
    } cases[] = {
        {framed(login, 0, R"({"token":"0123456789abcdef0123456789abcdef"})"), "token is wrong"},
        {framed(login, 0, "{}"), "token is wrong"},
        {framed(login, 0, "{\"token\":7}"), "\"token\""},
        {framed(login, 0, "token"), "the login"},
        {framed(login, 1, json{{"token", token()}}.dump()), "a login with a session"},
        {framed(open, 1, player("Zed").dump()), "no login"},
        {framed(packet, 0, "x"), "no login"},
        {"GET / HTTP/1.1\r\nHost: localhost\r\n\r\n", "a frame of"},
        {framed(0, 1, 0, ""), "a frame of 0 bytes"},
        {std::string("\x08\0\0\0", 4), "a frame of 8 bytes"},
        {std::string("\x0a\0\4\0", 4), "a frame of 262154 bytes"},
        {std::string("\xff\xff\xff\xff", 4), "a frame of 4294967295 bytes"},
        {in.substr(0, in.size() - 1), "no login in time"},
        {in + in, "a second login"},
        {in + framed(5, 0, ""), "unknown operation 5"},
        {in + framed(0, 0, ""), "unknown operation 0"},
        {in + framed(0x83, 1, ""), "unknown operation 131"},
        {in + framed(packet, 1, command("x")), "never was"},
        {in + framed(packet, 0, command("x")), "never was"},
        {in + framed(close, 9, ""), "never was"},
        {in + framed(open, 0, player("Zed").dump()), "open of session 0"},
        {joined + framed(open, 3, player("Yan", {{"xuid", "78"}}).dump()), "open of session 3 after 3"},
        {joined + framed(open, 2, player("Yan", {{"xuid", "78"}}).dump()), "open of session 2 after 3"},
        {joined + framed(packet, 4, command("x")), "never was"},
        {joined + framed(0, packet, 3, ""), "a frame of 0 bytes"},
    };
    for (const auto& one : cases) {
        GatewayClient client = stranger();
        ASSERT_TRUE(client.send(one.bytes)) << one.reason;
        const auto last = client.await(closed, 0);
        EXPECT_THAT(last.reason(), HasSubstr(one.reason));
        EXPECT_EQ(client.hear().operation, 0) << one.reason;
        awaitonline({});
    }
    // A whole frame byte by byte is one.
    GatewayClient client = stranger();
    for (const char byte : in) client.send({byte});
    EXPECT_EQ(client.hear().operation, hello);
    // One gateway at a time, and strangers do not crowd it out.
    client.say(open, 1, player("Zed"));
    client.await(opened);
    GatewayClient second = stranger();
    second.send(in);
    EXPECT_EQ(second.await(closed).reason(), "another gateway is connected");
    std::vector<GatewayClient> crowd;
    for (int i = 0; i < 40; ++i) crowd.push_back(stranger());
    EXPECT_EQ(crowd.front().hear().operation, 0);
    client.say(packet, 1, command("still here"));
    EXPECT_EQ(client.await(packetback).operation, packetback);
    // It dies: its players leave, the one beside stays, and the next gateway is let in.
    host::Clients beside(*server);
    beside.join({.name = "Beside", .xuid = "9"});
    client.send(framed(packet, 1, command("half")).substr(0, 20));
    client.hangup();
    awaitonline({"Beside"});
    client = gateway();
    client.say(open, 1, player("Zed"));
    EXPECT_EQ(client.await(opened).operation, opened);
    EXPECT_EQ(online(), (std::vector<std::string>{"Beside", "Zed"}));
}

TEST_F(Gateway, WhoDoesNotTakeIsCutOff) {
    const auto speak = [&](const std::string& name, std::size_t bytes) {
        server->run([&] {
            for (auto* one : server->world().level().getAllPlayers())
                for (std::size_t i = 0; i < bytes && one->getRealName() == name; i += 1000)
                    one->sendText(std::string(1000, '.'));
        });
    };
    // A session that is sent more than its share ends, and the other does not notice.
    begin({.limits = {.ofsession = 300'000, .ofall = 3'000'000}});
    GatewayClient client = gateway();
    client.say(open, 1, player("Zed"));
    client.say(open, 2, player("Yan", {{"xuid", "78"}}));
    client.await(opened, 2);
    speak("Zed", 900'000);
    EXPECT_THAT(client.await(closed).reason(), HasSubstr("too slow"));
    awaitonline({"Yan"});
    client.say(packet, 2, command("still here"));
    EXPECT_EQ(client.await(packetback, 2).operation, packetback);
    // A packet that fits in no frame ends its player alone.
    server->run([&] { server->world().level().getAllPlayers().front()->sendText(std::string(300'000, '.')); });
    EXPECT_THAT(client.await(closed).reason(), HasSubstr("too long"));
    awaitonline({});
    end();

    // A gateway that takes nothing: by what waits, or by the time. The server thread goes on meanwhile.
    for (const bool bytime : {false, true}) {
        begin({.limits = {.ofsession = bytime ? 50'000'000u : 1'500'000u, .ofall = bytime ? 50'000'000u : 2'000'000u},
               .stalled = std::chrono::milliseconds(bytime ? 200 : 60'000)});
        client = gateway();
        client.say(open, 1, player("Zed"));
        client.say(open, 2, player("Yan", {{"xuid", "78"}}));
        client.await(opened, 2);
        speak("Zed", 1'400'000);
        speak("Yan", 1'400'000);
        awaitonline({});
        awaitlog("what is sent is not taken");
        end();
    }

    // More is asked for than the server gets done: nothing is lost, the rest waits in the socket.
    begin();
    client = gateway();
    constexpr int many = 500;
    std::string flood;
    for (int i = 1; i <= many; ++i) {
        flood += framed(open, static_cast<std::uint64_t>(i),
                        player("P" + std::to_string(i), {{"xuid", std::to_string(i)}}).dump());
        if (i % 2 == 0) flood += framed(close, static_cast<std::uint64_t>(i), "");
    }
    ASSERT_TRUE(client.send(flood));
    int answered = 0;
    for (int i = 1; i <= many; ++i) answered += client.await(opened).operation == opened ? 1 : 0;
    EXPECT_EQ(answered, many);
    EXPECT_TRUE(comes([&] { return online().size() == many / 2; })) << online().size();
    // While the server has enough to do the gateway is not heard; what nothing comes of is done in the end, too.
    std::binary_semaphore busy(0);
    server->post([&] { busy.acquire(); });
    flood.clear();
    for (int i = 0; i < many; ++i) flood += framed(close, 2, std::string(20'000, 'x'));
    const auto taken = client.offer(flood);
    EXPECT_LT(taken, flood.size() / 2);
    busy.release();
    client.send(flood.substr(taken) + framed(open, many + 1, player("Last", {{"xuid", "999"}}).dump()));
    EXPECT_EQ(client.await(opened).session, many + 1u);
}

TEST(GatewayOutbound, CountsWhatWaitsAndNothingElse) {
    host::Outbound out({.ofsession = 100, .ofall = 400});
    out.open(1, "");
    for (std::uint64_t session = 2; session < 50; ++session) {
        EXPECT_TRUE(out.packet(1, std::string(40, 'x')));
        out.open(session, "");
        EXPECT_TRUE(out.packet(session, std::string(80, 'x')));
        out.forget(session);
        EXPECT_NE(out.take(1000), "");
    }
    EXPECT_FALSE(out.overflown());
    out.close(1, "over");
    EXPECT_NE(out.take(1000), "");
    out.close(1, "over");
    EXPECT_EQ(out.take(1000), "") << "it is told once";
}

TEST_F(Gateway, ListensWhereItIsToldOrSaysWhy) {
    begin({.port = 0});
    EXPECT_THAT(door->address(), testing::StartsWith("127.0.0.1:"));
    EXPECT_FALSE(std::filesystem::exists(directory.path / "gateway.sock"));
    host::GatewayDoor second(*server, {.port = std::stoi(door->address().substr(10))});
    EXPECT_THROW(second.start(), host::StartError);
    directory.put("gateway.token", "short\n");
    host::GatewayDoor third(*server, {});
    EXPECT_THROW(third.start(), host::StartError);
}

}  // namespace
