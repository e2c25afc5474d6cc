// The server's end of the wire against clients that do what they like: every bad packet costs one log line and nothing
// else, and an honest player beside them does not notice.
#include <SQLiteCpp/SQLiteCpp.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <thread>

#include "host/core/log.h"
#include "host/network/inbox.h"
#include "host/network/network.h"
#include "host/server.h"
#include "host/world/world.h"
#include "platform/form.h"
#include "platform/level.h"
#include "platform/packets/containers.h"
#include "platform/packets/forms.h"
#include "platform/packets/messages.h"

namespace {

using platform::Packet;
using platform::PacketId;
using platform::topacket;

std::string sealed(const Packet& packet) { return platform::sealpacket(packet); }
std::string sealed(PacketId id, const std::string& body) { return platform::sealpacket(Packet(id, body)); }

class Wire : public testing::Test {
protected:
    Wire() {
        const auto* info = testing::UnitTest::GetInstance()->current_test_info();
        directory_ = std::filesystem::path(testing::TempDir()) / (std::string("ordomart_wire_") + info->name());
        std::filesystem::remove_all(directory_);
        host::ServerOptions options;
        options.directory = directory_.string();
        options.module = MODULE_PATH;
        options.moneylibrary = LLMONEY_PATH;
        options.manual = true;
        options.quiet = true;
        server = std::make_unique<host::Server>(options);
        server->start();
    }
    ~Wire() override {
        server->stop();
        server.reset();
        std::filesystem::remove_all(directory_);
    }

    struct Client {
        host::ConnectionId connection = 0;
        std::vector<platform::Packet> heard;
    };
    std::shared_ptr<Client> join(const host::JoinRequest& request) {
        auto client = std::make_shared<Client>();
        server->run([&] {
            client->connection = server->network().join(request, [client](const std::string& bytes) {
                const auto envelope = platform::openpacket(bytes);
                client->heard.emplace_back(static_cast<PacketId>(envelope.number), std::string(envelope.body));
            });
        });
        return client;
    }
    void say(const Client& client, std::string packet) {
        server->network().receive(client.connection, std::move(packet));
    }
    platform::ServerPlayer& player(const Client& client) { return *server->network().player(client.connection); }
    template <class P>
    static std::vector<P> heard(const Client& client) {
        std::vector<P> all;
        for (const Packet& packet : client.heard)
            if (packet.id() == P::number) all.push_back(platform::readpacket<P>(packet.body()));
        return all;
    }
    std::vector<std::string> newlines() {
        std::vector<std::string> messages;
        for (const auto& line : server->log().lines(seen_)) {
            messages.push_back(line.message);
            seen_ = line.number;
        }
        return messages;
    }
    // The log lines that the packet costs.
    std::vector<std::string> cost(const Client& client, std::string packet) {
        newlines();
        say(client, std::move(packet));
        server->settle();
        return newlines();
    }

    std::unique_ptr<host::Server> server;
    std::filesystem::path directory_;

private:
    std::uint64_t seen_ = 0;
};

TEST_F(Wire, refusesbadnames) {
    const struct {
        const char* what;
        host::JoinRequest request;
    } bad[] = {
        {"no name", {.name = ""}},
        {"17 letters", {.name = "abcdefghijklmnopq"}},
        {"a letter of another alphabet", {.name = "Ал"}},
        {"a line end", {.name = "a\nb"}},
        {"a quote", {.name = "a\"b"}},
        {"blanks alone", {.name = "  "}},
        {"xuid of letters", {.name = "Bob", .xuid = "12a"}},
        {"xuid with a sign", {.name = "Bob", .xuid = "-1"}},
        {"endless xuid", {.name = "Bob", .xuid = std::string(400, '1')}},
        {"language", {.name = "Bob", .language = "../../etc"}},
        {"permission", {.name = "Bob", .permission = 5}},
        {"name that is online", {.name = "alice", .xuid = "7"}},
        {"xuid that is online", {.name = "Bob", .xuid = "1001"}},
    };
    join({.name = "Alice", .xuid = "1001"});
    for (const auto& [what, request] : bad) {
        SCOPED_TRACE(what);
        EXPECT_THROW(join(request), std::runtime_error);
    }
    EXPECT_NO_THROW(join({.name = "Bob_the 2nd", .xuid = "1002"}));
    EXPECT_EQ(server->world().players().size(), 2u);
}

TEST_F(Wire, joinsandleaves) {
    const auto alice = join({.name = "Alice", .xuid = "1001"});
    EXPECT_EQ(heard<platform::InventoryContentPacket>(*alice).size(), 3u);
    EXPECT_EQ(server->network().connection("ALICE"), alice->connection);
    server->run([&] { server->network().leave(alice->connection); });
    EXPECT_EQ(server->network().player(alice->connection), nullptr);
    EXPECT_EQ(server->network().connection("Alice"), 0u);
    say(*alice, sealed(PacketId::ContainerClose, "x"));  // too late, and nobody minds
    server->settle();
    server->run([&] { server->network().leave(alice->connection); });
    EXPECT_NE(join({.name = "Alice", .xuid = "1001"})->connection, alice->connection);
}

TEST_F(Wire, dropsbadpacketswithalineeach) {
    const auto alice = join({.name = "Alice", .xuid = "1001"});
    const auto command = [](std::string line) {
        platform::CommandRequestPacket packet;
        packet.line = std::move(line);
        return topacket(packet);
    };
    const auto text = [](platform::TextType type, std::string message) {
        platform::TextPacket packet;
        packet.type = type;
        packet.message = std::move(message);
        return topacket(packet);
    };
    platform::ItemStackRequestPacket many;
    many.requests.resize(65);
    platform::ItemStackRequestPacket busy;
    busy.requests.resize(1);
    busy.requests[0].actions.resize(257);
    const Packet close = topacket(platform::ContainerClosePacket{3, false});
    const struct {
        std::string packet, line;  // the line's beginning
    } bad[] = {
        {"", "Alice: packet: dropped"},
        {"\xff\xff\xff\xff\xff\xff", "Alice: packet: dropped"},
        {std::string("\xff\xff\xff\xff\x0f", 5), "Alice: packet: dropped"},
        {sealed(static_cast<PacketId>(777), "?"), "Alice: packet 777: dropped"},
        {sealed(PacketId::InventoryContent, ""), "Alice: packet 49: dropped"},
        {sealed(PacketId::ContainerClose, "\x01"), "Alice: ContainerClose: dropped"},
        {sealed(PacketId::ContainerClose, "\x01\x02"), "Alice: ContainerClose: dropped"},
        {sealed(PacketId::ContainerClose, std::string("\x01\x01\x00", 3)), "Alice: ContainerClose: dropped"},
        {platform::sealpacket(close, 2), "Alice: ContainerClose: dropped: from sub-client 2"},
        {sealed(PacketId::ItemStackRequest, "\xff\xff\xff\xff\x0f"), "Alice: ItemStackRequest: dropped"},
        {sealed(PacketId::ItemStackRequest, std::string("\x01\x09\x01\x63", 4)), "Alice: ItemStackRequest: dropped"},
        {sealed(topacket(many)), "Alice: ItemStackRequest: dropped: 65 requests"},
        {sealed(topacket(busy)), "Alice: ItemStackRequest: dropped: 1 requests with 257 actions"},
        {sealed(PacketId::ItemStackRequest, std::string(40'000, '\x12')),
         "Alice: ItemStackRequest: dropped: 40000 bytes"},
        {sealed(PacketId::CommandRequest, "/x"), "Alice: CommandRequest: dropped"},
        {sealed(command("/say \xc3\x28")), "Alice: CommandRequest: dropped: a text that is not UTF-8"},
        {sealed(command("/" + std::string(2100, 'x'))), "Alice: CommandRequest: dropped: a text of"},
        {sealed(text(platform::TextType::chat, "hi\n<Bob> I owe you 5")), "Alice: Text: dropped: a text with control"},
        {sealed(text(platform::TextType::raw, "<Bob> I owe you 5")), "Alice: Text: dropped: a client's text"},
        {sealed(text(platform::TextType::chat, "\xed\xa0\x80")), "Alice: Text: dropped: a text that is not UTF-8"},
        {sealed(PacketId::ModalFormResponse, "\x09"), "Alice: ModalFormResponse: dropped"},
    };
    for (const auto& [packet, line] : bad) {
        SCOPED_TRACE(line);
        server->advanceclock(1000);
        const auto lines = cost(*alice, packet);
        ASSERT_EQ(lines.size(), 1u);
        EXPECT_TRUE(lines[0].starts_with(line)) << lines[0];
    }
    EXPECT_TRUE(cost(*alice, sealed(static_cast<PacketId>(144), "anything")).empty());  // known, of no account
    EXPECT_EQ(cost(*alice, std::string(host::Inbox::longestpacket + 1, 'x')).size(), 1u);
}

TEST_F(Wire, aflooddrownsnobody) {
    const auto alice = join({.name = "Alice", .xuid = "1001"});
    const auto bob = join({.name = "Bob", .xuid = "1002"});
    newlines();
    for (int i = 0; i < 20'000; ++i) say(*alice, sealed(PacketId::ContainerClose, "\x01"));
    platform::CommandRequestPacket command;
    command.line = "/nosuchcommand";
    say(*bob, sealed(topacket(command)));
    server->settle();
    const auto lines = newlines();
    EXPECT_LE(lines.size(), 40u);
    EXPECT_FALSE(lines.empty());
    EXPECT_EQ(heard<platform::CommandOutputPacket>(*bob).size(), 1u);
    server->run([&] { server->network().leave(alice->connection); });
    const auto last = newlines();
    ASSERT_FALSE(last.empty());
    EXPECT_NE(last[0].find("more bad packets"), std::string::npos) << last[0];
}

TEST_F(Wire, receivesfromanythread) {
    const auto alice = join({.name = "Alice", .xuid = "1001"});
    platform::TextPacket packet;
    packet.type = platform::TextType::chat;
    packet.message = "hi";
    const std::string chat = sealed(topacket(packet));
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < 100; ++i) say(*alice, chat);
        });
    for (auto& thread : threads) thread.join();
    server->settle();
    EXPECT_EQ(heard<platform::TextPacket>(*alice).size(), 400u);
}

// Packets that begin well and go astray in the middle.
TEST_F(Wire, outlivesnoise) {
    const auto alice = join({.name = "Alice", .xuid = "1001"});
    platform::ItemStackRequestPacket request;
    request.requests.resize(2);
    for (auto& r : request.requests) r.actions.resize(3);
    platform::CommandRequestPacket command;
    command.line = "/ordomart menu";
    platform::TextPacket chat;
    chat.type = platform::TextType::chat;
    const std::string good[] = {sealed(topacket(request)), sealed(topacket(command)), sealed(topacket(chat)),
                                sealed(topacket(platform::ModalFormResponsePacket{1, "[[[1]]]", std::nullopt})),
                                sealed(topacket(platform::ContainerClosePacket{1, true}))};
    std::mt19937 random(77);
    for (int round = 0; round < 3000; ++round) {
        std::string packet = good[random() % std::size(good)];
        for (unsigned n = random() % 4; n > 0; --n) packet[random() % packet.size()] = static_cast<char>(random());
        if (random() % 4 == 0) packet.resize(random() % (packet.size() + 1));
        if (random() % 8 == 0) packet += std::string(random() % 40, static_cast<char>(random()));
        say(*alice, std::move(packet));
        if (round % 50 == 0) server->settle();
    }
    server->settle();
    EXPECT_NE(server->network().player(alice->connection), nullptr);
    EXPECT_EQ(server->world().item("Alice", 0).getCount(), 0);
}

TEST_F(Wire, chatsandcloses) {
    const auto alice = join({.name = "Alice", .xuid = "1001"});
    const auto bob = join({.name = "Bob", .xuid = "1002"});
    platform::TextPacket packet;
    packet.type = platform::TextType::chat;
    packet.source = "The operator";  // nobody believes it
    packet.message = "hello";
    say(*alice, sealed(topacket(packet)));
    server->settle();
    for (const auto& client : {alice, bob}) {
        const auto lines = heard<platform::TextPacket>(*client);
        ASSERT_EQ(lines.size(), 1u);
        EXPECT_EQ(lines[0].message, "<Alice> hello");
    }

    const struct {
        const char* what;
        std::vector<Packet> before;  // from the server
        bool serverside;
        std::size_t echoes;
    } closes[] = {
        {"by himself", {}, false, 1},
        {"and again, after the echo", {}, false, 1},
        {"told so by the packet", {}, true, 0},
        {"asked to", {topacket(platform::ContainerClosePacket{3, true})}, false, 0},
        {"asked before it was opened",
         {topacket(platform::ContainerClosePacket{3, true}), topacket(platform::ContainerOpenPacket{3, -1, {}, -1})},
         false,
         1},
    };
    for (const auto& [what, before, serverside, echoes] : closes) {
        SCOPED_TRACE(what);
        server->run([&] {
            for (const Packet& sent : before) player(*alice).sendNetworkPacket(sent);
        });
        alice->heard.clear();
        say(*alice, sealed(topacket(platform::ContainerClosePacket{3, serverside})));
        server->settle();
        const auto echoed = heard<platform::ContainerClosePacket>(*alice);
        ASSERT_EQ(echoed.size(), echoes);
        for (const auto& echo : echoed) EXPECT_FALSE(echo.serverside);
    }
}

TEST_F(Wire, formsareansweredonceandfitting) {
    const auto alice = join({.name = "Alice", .xuid = "1001"});
    std::vector<std::string> answers;
    const auto ask = [&](const std::string& form) {
        server->run([&] {
            player(*alice).sendForm(form,
                                    [&](platform::ServerPlayer*, const std::string& json) { answers.push_back(json); });
        });
        return heard<platform::ModalFormRequestPacket>(*alice).back().formid;
    };
    const auto answer = [&](std::uint32_t form, std::optional<std::string> json) {
        server->advanceclock(1000);
        answers.clear();
        return cost(*alice, sealed(topacket(platform::ModalFormResponsePacket{form, std::move(json), std::nullopt})))
            .size();
    };
    const std::string column = platform::Form::SimpleForm("t", "c").addButton("a").addButton("b").tojson();
    const std::string dialog = platform::Form::ModalForm("t", "c", "yes", "no").tojson();
    const std::string fields = platform::Form::CustomForm("t")
                                   .addLabel("l", "label")
                                   .addInput("i", "input")
                                   .addToggle("t", "toggle")
                                   .addSlider("s", "slider", 2, 5)
                                   .addDropdown("d", "dropdown", {"x", "y"})
                                   .tojson();
    const struct {
        const std::string& form;
        std::string good;
        std::vector<std::string> bad;
    } cases[] = {
        {column, "1", {"2", "-1", "0.5", "true", "\"1\"", "[1]", "{}", "", "1 1", "nul", "99999999999999999999"}},
        {dialog, "true", {"1", "\"true\"", "[true]"}},
        {fields,
         R"([null,"é",true,5,1])",
         {R"([null,"",true,5])", R"([null,"",true,5,1,1])", R"(["","",true,5,1])", R"([null,1,true,5,1])",
          R"([null,"",1,5,1])", R"([null,"",true,1,1])", R"([null,"",true,6,1])", R"([null,"",true,5,2])",
          R"([null,"",true,5,-1])", R"([null,"",true,2.5,1])", R"([null,"",true,1e400,1])", "{}", "[", "3",
          "[null,\"\xff\",true,5,1]", "[null,\"" + std::string(70'000, 'x') + "\",true,5,1]", std::string(60'000, '['),
          R"([null,[[]],true,5,1])"}},
    };
    for (const auto& [form, good, bad] : cases) {
        SCOPED_TRACE(form);
        const auto id = ask(form);
        for (const std::string& json : bad) {
            SCOPED_TRACE(json.substr(0, 60));
            EXPECT_EQ(answer(id, json), 1u);
            EXPECT_TRUE(answers.empty());
        }
        EXPECT_EQ(answer(id, good), 0u);
        EXPECT_EQ(answers, std::vector{good});
        EXPECT_EQ(answer(id, good), 1u);  // the second answer to one form
        EXPECT_TRUE(answers.empty());
    }
    for (const auto& closing : {std::optional<std::string>(), std::optional<std::string>("null\n")}) {
        EXPECT_EQ(answer(ask(column), closing), 0u);
        EXPECT_EQ(answers, std::vector<std::string>{"null"});
    }
    EXPECT_EQ(answer(4711, "1"), 1u);

    // What a handler throws is logged, and the server goes on.
    server->run([&] {
        player(*alice).sendForm(column,
                                [](platform::ServerPlayer*, const std::string&) { throw std::runtime_error("oh"); });
        EXPECT_THROW(player(*alice).sendForm("[]", {}), std::invalid_argument);
    });
    const auto lines =
        cost(*alice, sealed(topacket(platform::ModalFormResponsePacket{
                         heard<platform::ModalFormRequestPacket>(*alice).back().formid, "1", std::nullopt})));
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0], "Alice: ModalFormResponse: handling it failed: oh");
}

TEST_F(Wire, movesrealstacks) {
    const auto alice = join({.name = "Alice", .xuid = "1001"});
    server->run([&] { server->world().setitem("Alice", 0, platform::ItemStack::create("apple", 10)); });
    server->settle();
    const auto shown = heard<platform::InventorySlotPacket>(*alice).back();
    EXPECT_EQ(shown.item.count, 10);
    platform::ItemStackRequestPacket packet;
    packet.requests.resize(2);
    const auto action = [&](int request, std::uint8_t amount, std::int32_t stackid) {
        platform::ItemStackRequestAction take;
        take.amount = static_cast<std::int8_t>(amount);
        take.source = {static_cast<std::uint8_t>(platform::ContainerName::hotbar), 0, stackid};
        take.destination = {static_cast<std::uint8_t>(platform::ContainerName::cursor), 0, request == 0 ? 0 : -3};
        packet.requests[static_cast<std::size_t>(request)] = {-3 - 2 * request, {take}, {}, 0};
    };
    action(0, 4, *shown.item.stackid);
    action(1, 7, -3);  // one more than is left
    say(*alice, sealed(topacket(packet)));
    server->settle();
    const auto answers = heard<platform::ItemStackResponsePacket>(*alice);
    ASSERT_EQ(answers.size(), 1u);
    ASSERT_EQ(answers[0].responses.size(), 2u);
    EXPECT_EQ(answers[0].responses[0].result, platform::ItemStackResponse::accepted);
    EXPECT_EQ(answers[0].responses[1].result, platform::ItemStackResponse::refused);
    EXPECT_EQ(server->world().item("Alice", 0).getCount(), 6);

    // Closing puts the cursor's stack away, and the client is shown where.
    say(*alice, sealed(topacket(platform::ContainerClosePacket{0, false})));
    server->settle();
    EXPECT_EQ(server->world().item("Alice", 0).getCount(), 10);

    // It is in the file by now, whatever becomes of the server.
    SQLite::Database file((directory_ / "server.sqlite").string(), SQLite::OPEN_READONLY);
    EXPECT_EQ(file.execAndGet("SELECT slot FROM slots WHERE player = '1001'").getInt(), 0);
    EXPECT_EQ(file.execAndGet("SELECT count(*) FROM slots").getInt(), 1);
}

}  // namespace
