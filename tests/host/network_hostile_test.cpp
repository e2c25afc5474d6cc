// The server's end of the wire against clients that do what they like: every bad packet costs one log line and nothing
// else, and an honest player beside them does not notice.
#include <SQLiteCpp/SQLiteCpp.h>
#include <gtest/gtest.h>

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
#include "tests/host/manualserver.h"

namespace {

using platform::Packet;
using platform::PacketId;
using platform::topacket;

std::string sealed(const Packet& packet) { return platform::sealpacket(packet); }
std::string sealed(PacketId id, const std::string& body) { return platform::sealpacket(Packet(id, body)); }

class Wire : public coretests::ManualServer {
protected:
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

private:
    std::uint64_t seen_ = 0;
};

TEST_F(Wire, refusesbadnames) {
    const struct {
        const char* what;
        host::JoinRequest request;
    } bad[] = {
        {"no name", {.name = ""}},
        {"half a letter", {.name = "\xd0"}},
        {"seventeen letters", {.name = "清清清清清清清清清清清清清清清清清"}},
        {"a line end", {.name = "a\nb"}},
        {"xuid of letters", {.name = "Bob", .xuid = "12a"}},
        {"endless xuid", {.name = "Bob", .xuid = std::string(400, '1')}},
        {"language", {.name = "Bob", .language = "../../etc"}},
        {"name that is online", {.name = "alice", .xuid = "7"}},
        {"xuid that is online", {.name = "Bob", .xuid = "1001"}},
        {"nobody's xuid", {.name = "Bob", .xuid = "0"}},
        {"one xuid twice", {.name = "Bob", .xuid = "01001"}},
        {"a blank in front", {.name = " Bob", .xuid = "2"}},
        {"two blanks", {.name = "B  ob", .xuid = "2"}},
    };
    // With each of these the name looks like another's.
    const char* const looksalike[] = {"\u200e", "\u200f",     "\u202a",    "\u202b", "\u202c", "\u202d", "\u202e",
                                      "\u2066", "\u2067",     "\u2068",    "\u2069", "\u061c", "\u200b", "\u200c",
                                      "\u200d", "\u2060",     "\ufeff",    "\u00a0", "\u3000", "\u3164", "\u00ad",
                                      "\u0301", "\u00a7",     "\ue100",    "\ufe0f", "\u0085", "\u2028", "\ufffd",
                                      "\uffff", "\U000e0041", "\U0010ffff"};
    join({.name = "Alice", .xuid = "1001"});
    for (const auto& [what, request] : bad) {
        SCOPED_TRACE(what);
        EXPECT_THROW(join(request), std::runtime_error);
    }
    for (const std::string mark : looksalike)
        for (const std::string& name : {mark + "Alice", "Ali" + mark + "ce", "Alice" + mark}) {
            SCOPED_TRACE(name);
            EXPECT_THROW(join({.name = name, .xuid = "2"}), std::runtime_error);
        }
    EXPECT_NO_THROW(join({.name = "Bob_the 2nd", .xuid = "1002"}));
    EXPECT_NO_THROW(join({.name = "小清", .xuid = "1003"}));
    EXPECT_NO_THROW(join({.name = "Jos\u00e9 \u0416\u05d0\u0639\U0001f600", .xuid = "1004"}));
}

TEST_F(Wire, aftertheleavingnobodyislistenedto) {
    const auto alice = join({.name = "Alice", .xuid = "1001"});
    EXPECT_EQ(server->network().connection("ALICE"), alice->connection);
    for (int i = 0; i < 2; ++i) server->run([&] { server->network().leave(alice->connection); });
    EXPECT_EQ(server->network().player(alice->connection), nullptr);
    EXPECT_EQ(server->network().connection("Alice"), 0u);
    EXPECT_TRUE(cost(*alice, sealed(PacketId::ContainerClose, "x")).empty());
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

TEST_F(Wire, formanswersoutofallboundsaredropped) {
    const auto alice = join({.name = "Alice", .xuid = "1001"});
    int answers = 0;
    server->run([&] {
        player(*alice).sendForm(platform::Form::CustomForm("t").addInput("i", "input").tojson(),
                                [&](platform::ServerPlayer*, const std::string&) {
                                    ++answers;
                                    throw std::runtime_error("oh");
                                });
        EXPECT_THROW(player(*alice).sendForm("[]", {}), std::invalid_argument);
    });
    const auto form = heard<platform::ModalFormRequestPacket>(*alice).back().formid;
    const auto answer = [&](std::uint32_t id, std::string json) {
        server->advanceclock(1000);
        return cost(*alice, sealed(topacket(platform::ModalFormResponsePacket{id, std::move(json), std::nullopt})));
    };
    for (const std::string& json : {std::string("[3]"), std::string("[\"\xff\"]"), std::string(60'000, '['),
                                    "[\"" + std::string(70'000, 'x') + "\"]"})
        EXPECT_EQ(answer(form, json).size(), 1u) << json.substr(0, 60);
    EXPECT_EQ(answer(4711, "[\"\"]").size(), 1u);
    EXPECT_EQ(answers, 0);
    EXPECT_EQ(answer(form, "[\"\"]"), std::vector<std::string>{"Alice: ModalFormResponse: handling it failed: oh"});
    EXPECT_EQ(answer(form, "[\"\"]").size(), 1u);
    EXPECT_EQ(answers, 1);
}

TEST_F(Wire, closingputsthecursoraway) {
    const auto alice = join({.name = "Alice", .xuid = "1001"});
    server->run([&] { server->world().setitem("Alice", 0, platform::ItemStack::create("apple", 10)); });
    server->settle();
    const auto shown = heard<platform::InventorySlotPacket>(*alice).back();
    platform::ItemStackRequestAction take;
    take.amount = 4;
    take.source = {static_cast<std::uint8_t>(platform::ContainerName::hotbar), 0, *shown.item.stackid};
    take.destination = {static_cast<std::uint8_t>(platform::ContainerName::cursor), 0, 0};
    say(*alice, sealed(topacket(platform::ItemStackRequestPacket{0, {{-3, {take}, {}, 0}}})));
    server->settle();
    EXPECT_EQ(server->world().item("Alice", 0).getCount(), 6);
    say(*alice, sealed(topacket(platform::ContainerClosePacket{0, false})));
    server->settle();
    EXPECT_EQ(server->world().item("Alice", 0).getCount(), 10);

    // It is in the file by now, whatever becomes of the server.
    SQLite::Database file((directory.path / "server.sqlite").string(), SQLite::OPEN_READONLY);
    EXPECT_EQ(file.execAndGet("SELECT slot FROM slots WHERE player = '1001'").getInt(), 0);
    EXPECT_EQ(file.execAndGet("SELECT count(*) FROM slots").getInt(), 1);
}

}  // namespace
