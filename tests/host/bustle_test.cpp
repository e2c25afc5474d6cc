// The bustling market: in a demo it trades by its seed, in order and with books that balance; elsewhere there is none.
#include "host/bustle/bustle.h"

#include <gmock/gmock.h>

#include "host/bustle/cast.h"
#include "host/console/console.h"
#include "host/core/views.h"
#include "host/demo/demo.h"
#include "platform/item.h"
#include "tests/host/apiserver.h"

namespace {

using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

// A demo market with a bustle, driven by hand.
struct Market {
    Market() {
        EXPECT_TRUE(host::makedemo(directory.path.string()));
        server.start();
        host::playdemo(server);
    }
    ~Market() {
        bustle.stop();
        clients.leaveall();
        server.stop();
    }
    std::string says(const std::string& line) {
        printed.clear();
        console.line(line);
        return printed;
    }
    // Who traded what with whom, in order.
    std::vector<std::string> story() {
        std::vector<std::string> all;
        const json ledger = json::parse(server.views().ask("trades", R"({"most":"500","what":"all"})"));
        for (const json& trade : ledger["rows"])
            all.push_back(trade["actor"].dump() + trade["shop"].dump() + trade["item"].dump() + trade["pieces"].dump() +
                          trade["money"].dump());
        return all;
    }

    coretests::Directory directory;
    host::Server server{coretests::manually(directory)};
    host::Clients clients{server};
    host::Bustle bustle{server, clients};
    std::string printed;
    host::Console console{server, clients, bustle, [this](const std::string& text) { printed += text + "\n"; }};
};

std::vector<std::string> storyby(std::uint64_t seed) {
    Market market;
    market.bustle.start(6, seed);
    market.server.ticks(160);
    return market.story();
}

TEST(Bustle, TradesByItsSeedAndItsBooksBalance) {
    const auto twin = storyby(host::Bustle::usualseed), other = storyby(2);
    Market market;
    market.says("bustle 6");
    market.server.ticks(160);
    EXPECT_THAT(market.says("bustle"), HasSubstr("6 of 6 players of the bustle are here"));
    EXPECT_EQ(market.clients.joined().size(), 6U);
    EXPECT_GT(market.bustle.state().trades, 10U);
    const auto story = market.story();
    EXPECT_GE(story.size(), market.bustle.state().trades);
    EXPECT_EQ(story, twin);
    EXPECT_NE(story, other);
    for (const host::Craft& craft : host::crafts())
        for (const host::Ware& ware : craft.wares)
            EXPECT_FALSE(platform::ItemStack::create(ware.item, 1).isNull()) << ware.item;

    market.says("bustle 2");
    market.server.ticks(200);
    EXPECT_EQ(market.bustle.state().here, 2);
    EXPECT_THAT(market.says("bustle 51"), HasSubstr("1 to 50 players, not 51"));
    // Someone who is sent away from outside is replaced.
    market.clients.leave(market.clients.joined().front().name);
    market.server.ticks(100);
    EXPECT_EQ(market.clients.joined().size(), 2U);

    EXPECT_THAT(market.says("bustle off"), HasSubstr("no bustle"));
    EXPECT_TRUE(market.clients.joined().empty());
    market.server.ticks(60);
    EXPECT_TRUE(market.clients.joined().empty());
    market.clients.join({.name = "Olga", .xuid = "2535400000000999", .permission = 2});
    market.server.settle();
    EXPECT_THAT(market.says("Olga: ordomart audit"), HasSubstr("differences: 0."));
}

// What is heard by a crowd floods neither the terminal nor what is kept for pages.
TEST(Bustle, PlaysInTheBackground) {
    Market market;
    host::ControlApi api(market.server, market.clients, market.bustle, {.port = 0});
    api.start();
    coretests::ApiCaller caller(api.port(), api.token());
    // Who is rich stays so.
    caller.post("/api/players", {{"name", "Jonas"}});
    caller.put("/api/players/Jonas/money", {{"amount", 1'000'000}});
    caller.remove("/api/players/Jonas");
    // So does an owner who was paid before he came for the first time.
    caller.put("/api/players/Rosa/money", {{"amount", 70}});
    caller.post("/api/players", {{"name", "Rosa"}});
    EXPECT_EQ(caller.get("/api/players/Rosa/money").body["amount"], 70 + host::demopurse);
    caller.remove("/api/players/Rosa");
    EXPECT_EQ(caller.post("/api/bustle", {{"players", 3}}).body["players"], 3);
    market.printed.clear();
    market.server.ticks(200);
    EXPECT_EQ(market.printed, "");
    const json state = caller.get("/api/bustle").body;
    EXPECT_EQ(state["here"], 3);
    EXPECT_GT(state["trades"], 0);
    EXPECT_EQ(caller.get("/api/players/Mila").body["heard"], json::array());
    EXPECT_GT(caller.get("/api/players/Jonas/money").body["amount"], 500'000);
    EXPECT_EQ(caller.post("/api/bustle", {{"players", 0}}).status, 400);
    EXPECT_EQ(caller.remove("/api/bustle").body["here"], 0);
}

using RealMarket = coretests::ApiTest;

TEST_F(RealMarket, HasNoBustle) {
    host::Console console(*server, clients, bustle, [](const std::string& text) {
        EXPECT_THAT(text, AllOf(HasSubstr("only for a demo market"), Not(HasSubstr("players of the bustle"))));
    });
    console.line("bustle 12");
    console.line("bustle");
    EXPECT_THAT(caller->get("/api/bustle").body["refusal"], HasSubstr("only for a demo market"));
    EXPECT_EQ(caller->post("/api/bustle", {{"players", 12}}).status, 409);
    EXPECT_EQ(caller->remove("/api/bustle").body["players"], 0);
    EXPECT_TRUE(clients.joined().empty());
}

}  // namespace
