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
#include "tests/host/servertest.h"
#include "tests/platform/values.h"

namespace {

using platform::Packet;
using platform::PacketId;
using platform::topacket;
using values::bytes;

std::string sealed(const Packet& packet) { return platform::sealpacket(packet); }
std::string sealed(PacketId id, const std::string& body) { return platform::sealpacket(Packet(id, body)); }
Packet command(std::string line) { return topacket(platform::CommandRequestPacket{std::move(line)}); }

class Wire : public coretests::ServerTest {
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
    platform::CommandRequestPacket longline;
    longline.line = "/" + std::string(2100, 'x');
    platform::ItemStackRequestPacket many;
    many.requests.resize(65);
    platform::ItemStackRequestPacket busy;
    busy.requests.resize(1);
    busy.requests[0].actions.resize(257);
    const Packet close = topacket(platform::ContainerClosePacket{3, false});
    const std::string player(16, '\0'), slot = "1c 00 00", tail = "00 00 00 00 00";
    const auto by = [](PacketId id, const std::string& hex) { return sealed(id, bytes(hex)); };
    const struct {
        std::string packet, line;  // the line's beginning
    } bad[] = {
        {"", "packet: dropped"},
        {"\xff\xff\xff\xff\xff\xff", "packet: dropped"},
        {bytes("ff ff ff ff 0f"), "packet: dropped"},
        {sealed(static_cast<PacketId>(777), "?"), "packet 777: dropped: unknown"},
        {sealed(PacketId::InventoryContent, ""), "packet 49: dropped: unknown"},
        {platform::sealpacket(close, 1), "ContainerClose: dropped: from sub-client 1, which has no player"},
        {platform::sealpacket(close, 0, 1), "ContainerClose: dropped: to sub-client 1"},
        {platform::sealpacket({static_cast<PacketId>(144)}, 2), "packet 144: dropped: from sub-client 2"},
        {by(PacketId::ContainerClose, "01"), "ContainerClose: dropped"},
        {by(PacketId::ContainerClose, "01 02"), "ContainerClose: dropped: a bool"},
        {by(PacketId::ContainerClose, "01 01 00"), "ContainerClose: dropped: bytes are left over"},
        {by(PacketId::ContainerClose, "80 00"), "ContainerClose: dropped: a container id above 127"},
        {by(PacketId::ItemStackRequest, "ff ff ff ff 0f"), "ItemStackRequest: dropped: a count"},
        {by(PacketId::ItemStackRequest, "01 09 01 63"), "ItemStackRequest: dropped"},
        {by(PacketId::ItemStackRequest, "01 09 01 0d 01 01 01 05 01 'a' 02" + tail),
         "ItemStackRequest: dropped: an ingredient"},
        {by(PacketId::ItemStackRequest, "02 09 00" + tail + "09 00" + tail),
         "ItemStackRequest: dropped: two requests of the number -5"},
        {by(PacketId::ItemStackRequest, "01 09 02 12 00 01 1c 09 00" + slot + tail),
         "ItemStackRequest: dropped: slot 9 of container 28"},
        {by(PacketId::ItemStackRequest, "01 09 01 00 01" + slot + "3d 00 00" + tail),
         "ItemStackRequest: dropped: slot 0 of container 61"},
        {sealed(topacket(many)), "ItemStackRequest: dropped: 65 requests"},
        {sealed(topacket(busy)), "ItemStackRequest: dropped: 1 requests with 257 actions"},
        {sealed(PacketId::ItemStackRequest, std::string(40'000, '\x12')), "ItemStackRequest: dropped: 40000 bytes"},
        {by(PacketId::CommandRequest, "'/x'"), "CommandRequest: dropped"},
        {sealed(PacketId::CommandRequest, bytes("06 '/say ' c3") + "(" + player),
         "CommandRequest: dropped: a text that is not UTF-8"},
        {sealed(PacketId::CommandRequest, bytes("02 '/x' 10") + player + bytes("00 00")),
         "CommandRequest: dropped: a command of unknown origin"},
        {sealed(PacketId::CommandRequest, bytes("02 '/x' 00") + player + bytes("01 ff 00")),
         "CommandRequest: dropped: a text that is not UTF-8"},
        {sealed(topacket(longline)), "CommandRequest: dropped: a text of 2101 bytes"},
        {by(PacketId::Text, "01 00 00 06 'hi' 0a '<B>' 00 00"), "Text: dropped: a text with control"},
        {by(PacketId::Text, "00 00 02 'hi' 00 00"), "Text: dropped: a client's text"},
        {by(PacketId::Text, "01 00 00 03 ed a0 80 00 00"), "Text: dropped: a text that is not UTF-8"},
        {by(PacketId::ModalFormResponse, "09"), "ModalFormResponse: dropped"},
        {by(PacketId::ModalFormResponse, "09 01 01 '1' 01 00"), "ModalFormResponse: dropped: a form is answered and"},
        {by(PacketId::ModalFormResponse, "09 00 00"), "ModalFormResponse: dropped: a form is neither"},
        {by(PacketId::ModalFormResponse, "09 00 01 02"), "ModalFormResponse: dropped: a form is closed for"},
        {by(PacketId::ModalFormResponse, "09 01 01 '1' 00"), "ModalFormResponse: dropped: there is no open form 9"},
        {std::string(host::Inbox::longestpacket + 1, 'x'), "packet: 1 dropped: too long or too many"},
    };
    alice->heard.clear();
    for (const auto& [packet, line] : bad) {
        SCOPED_TRACE(line);
        server->advanceclock(1000);
        const auto lines = cost(*alice, packet);
        ASSERT_EQ(lines.size(), 1u);
        EXPECT_TRUE(lines[0].starts_with("Alice: " + line)) << lines[0];
    }
    EXPECT_TRUE(cost(*alice, sealed(static_cast<PacketId>(144), "anything")).empty());  // known, of no account
    // Nothing is told back but that the two requests for slots that are none came to nothing.
    ASSERT_EQ(alice->heard.size(), 2u);
    for (const auto& answer : heard<platform::ItemStackResponsePacket>(*alice))
        EXPECT_EQ(answer.responses.at(0).result, platform::ItemStackResponse::refused);
}

TEST_F(Wire, aflooddrownsnobody) {
    const auto alice = join({.name = "Alice", .xuid = "1001"});
    const auto bob = join({.name = "Bob", .xuid = "1002"});
    newlines();
    for (int i = 0; i < 20'000; ++i) say(*alice, sealed(PacketId::ContainerClose, "\x01"));
    say(*bob, sealed(command("/nosuchcommand")));
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

TEST(Inbox, givesEachClientAShareOfARound) {
    host::Inbox inbox;
    inbox.open(1);
    inbox.open(2);
    const auto put = [&](host::ConnectionId who, int times, std::size_t bytes) {
        int now = 0;
        for (int i = 0; i < times; ++i)
            now += inbox.put(who, std::string(bytes, static_cast<char>('a' + i % 20))) ? 1 : 0;
        return now;
    };
    const auto take = [&](bool newround) {
        std::map<host::ConnectionId, std::string> begun;
        for (const auto& arrival : inbox.take(newround)) begun[arrival.connection] += arrival.packet[0];
        return std::pair(begun[1], begun[2]);
    };
    const auto run = [](int first, int behind) {
        std::string text;
        for (int i = first; i < behind; ++i) text += static_cast<char>('a' + i % 20);
        return text;
    };
    EXPECT_EQ(put(1, 300, 3), 300);
    EXPECT_EQ(put(2, 1, 3), 1);
    EXPECT_EQ(take(true), std::pair(run(0, 128), run(0, 1)));
    EXPECT_EQ(put(1, 1, 3), 0) << "no reason to look again before the next round";
    EXPECT_EQ(put(2, 1, 3), 1);
    EXPECT_EQ(take(false), std::pair(std::string(), run(0, 1)));
    EXPECT_EQ(take(true).first, run(128, 256));
    EXPECT_EQ(take(true).first, run(256, 300) + "a");
    EXPECT_EQ(put(1, 20, host::Inbox::longestpacket), 8) << "what waits is counted in bytes, too";
    EXPECT_EQ(inbox.takedropped().at(1), 12u);
    for (int i = 0; i < 8; ++i) EXPECT_EQ(take(true).first, run(i, i + 1)) << "one, however long";
    EXPECT_EQ(put(1, 600, 3), 512);
}

TEST_F(Wire, receivesfromanythread) {
    const auto alice = join({.name = "Alice", .xuid = "1001"});
    const std::string chat = sealed(topacket(platform::TextPacket{platform::TextType::chat, false, "", "hi"}));
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
    request.requests = {{-1, {{}, {}, {}}}, {-3, {{}, {}, {}}}};
    const platform::TextPacket chat{platform::TextType::chat};
    const std::string good[] = {sealed(topacket(request)), sealed(command("/ordomart menu")), sealed(topacket(chat)),
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

TEST_F(Wire, chatreacheseverybody) {
    const auto alice = join({.name = "Alice", .xuid = "1001"});
    const auto bob = join({.name = "Bob", .xuid = "1002"});
    // Nobody believes what it says of the speaker.
    say(*alice, sealed(topacket(platform::TextPacket{platform::TextType::chat, false, "The operator", "hello"})));
    server->settle();
    for (const auto& client : {alice, bob}) {
        const auto lines = heard<platform::TextPacket>(*client);
        ASSERT_EQ(lines.size(), 1u);
        EXPECT_EQ(lines[0].message, "<Alice> hello");
    }
}

TEST_F(Wire, aclosethatnobodywaitsforisansweredonceatick) {
    const auto alice = join({.name = "Alice", .xuid = "1001"});
    const auto asks = [](std::uint8_t id) { return topacket(platform::ContainerClosePacket{id, true}); };
    const auto opens = [](std::uint8_t id) { return topacket(platform::ContainerOpenPacket{id, -1, {}, -1}); };
    const struct {
        const char* what;
        int ticks;                   // before it
        std::vector<Packet> before;  // from the server
        std::uint8_t first, last;    // the ids that are closed
        bool serverside;
        std::size_t echoes;
    } closes[] = {
        {"the own screen", 0, {}, 0, 0, false, 1},
        {"and again, after the echo", 0, {}, 0, 0, false, 0},
        {"every id", 0, {}, 0, 127, false, 0},
        {"every id in the next tick", 1, {}, 0, 127, false, 1},
        {"told by the packet that the server wanted it", 1, {}, 3, 3, true, 0},
        {"of the open one in the same tick", 0, {opens(4)}, 4, 4, false, 1},
        {"which is closed by now", 0, {}, 4, 4, false, 0},
        {"asked to", 1, {asks(3)}, 3, 3, false, 0},
        {"asked to, and again", 0, {asks(3)}, 3, 3, false, 0},
        {"asked before it was opened", 0, {asks(5), opens(5)}, 5, 5, false, 1},
        {"made by hand, and readable by nobody", 1, {Packet(PacketId::ContainerOpen, "\x05")}, 5, 5, false, 1},
    };
    for (const auto& c : closes) {
        SCOPED_TRACE(c.what);
        server->ticks(c.ticks);
        server->run([&] {
            for (const Packet& sent : c.before) player(*alice).sendNetworkPacket(sent);
        });
        alice->heard.clear();
        for (int id = c.first; id <= c.last; ++id)
            say(*alice, sealed(topacket(platform::ContainerClosePacket{static_cast<std::uint8_t>(id), c.serverside})));
        server->settle();
        const auto echoed = heard<platform::ContainerClosePacket>(*alice);
        EXPECT_EQ(echoed.size(), c.echoes);
        for (const auto& echo : echoed) EXPECT_FALSE(echo.serverside);
        EXPECT_LE(alice->heard.size(), c.echoes + 4) << "more than one picture of the inventory";
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
    platform::ItemStackRequestAction take;
    take.amount = 4;
    take.source = {static_cast<std::uint8_t>(platform::ContainerName::hotbar), 0,
                   *heard<platform::InventorySlotPacket>(*alice).back().item.stackid};
    take.destination = {static_cast<std::uint8_t>(platform::ContainerName::cursor), 0, 0};
    // Also by a close that comes too often to be answered.
    for (const int request : {-3, -5}) {
        say(*alice, sealed(topacket(platform::ItemStackRequestPacket{0, {{request, {take}, {}, 0}}})));
        server->settle();
        EXPECT_EQ(server->world().item("Alice", 0).getCount(), 6);
        say(*alice, sealed(topacket(platform::ContainerClosePacket{0, false})));
        server->settle();
        EXPECT_EQ(server->world().item("Alice", 0).getCount(), 10);
    }

    // It is in the file by now, whatever becomes of the server.
    SQLite::Database file((directory.path / "server.sqlite").string(), SQLite::OPEN_READONLY);
    EXPECT_EQ(file.execAndGet("SELECT slot FROM slots WHERE player = '1001'").getInt(), 0);
    EXPECT_EQ(file.execAndGet("SELECT count(*) FROM slots").getInt(), 1);
}

}  // namespace
