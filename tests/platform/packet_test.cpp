// Packets against bytes written by hand, and what a reader does with broken ones.
#include <gtest/gtest.h>

#include <functional>

#include "platform/packets/blocks.h"
#include "platform/packets/containers.h"
#include "platform/packets/forms.h"
#include "platform/packets/messages.h"
#include "tests/platform/values.h"

using namespace platform;
using values::bytes;
using values::snbt;

namespace {

using SlotInfo = ItemStackRequestSlotInfo;

ItemStackRequestAction action(ActionType type, std::int8_t amount, SlotInfo from, SlotInfo to) {
    ItemStackRequestAction made;
    made.type = static_cast<std::uint8_t>(type);
    made.amount = amount;
    made.source = from;
    made.destination = to;
    return made;
}

NetworkItem named(std::optional<std::int32_t> stackid) {
    NetworkItem item{300, 1, 3, stackid};
    item.userdata = snbt("{display:{Name:A}}");
    return item;
}
// named(), from the length of the extra data on
const std::string namedextra =
    "24 ff ff 01 0a 00 00 0a 07 00 'display' 08 04 00 'Name' 01 00 'A' 00 00 00 00 00 00 00 00 00 00";
const std::string origin = "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00";

NetworkItem shield() {
    NetworkItem item{shieldnetworkid, 1};
    item.canplaceon = {"a"};
    item.candestroy = {"", "bc"};
    item.blockingtick = -2;
    return item;
}

ItemStackRequestAction creativeresult() {
    ItemStackRequestAction made;
    made.type = static_cast<std::uint8_t>(ActionType::craftresult);
    made.results = {{300, 64}};
    made.times = 1;
    return made;
}

struct Sample {
    const char* what;
    std::string written;  // header and body
    Packet made;
    std::function<Packet(std::string_view body)> again;  // read and written once more
};

template <class P>
Sample sample(const char* what, const std::string& hand, const P& packet) {
    return {what, bytes(hand), topacket(packet), [](std::string_view body) { return topacket(readpacket<P>(body)); }};
}

const std::vector<Sample>& samples() {
    static const std::vector<Sample> all = {
        sample("open", "2e 07 ff 05 40 c8 01 01", ContainerOpenPacket{7, -1, {-3, 64, 100}, -1}),
        sample("close", "2f 07 01", ContainerClosePacket{7, true}),
        sample("block below zero", "15 05 c4 ff ff ff 0f 04 ac 02 03 01", UpdateBlockPacket{{-3, -60, 2}, 300, 3, 1}),
        sample("block data", "38 02 02 06 0a 00 03 05 'pairx' 14 00",
               BlockActorDataPacket{{1, 2, 3}, snbt("{pairx:10}")}),
        sample("blank", "31 77 02 00 00", InventoryContentPacket{119, {{}, {}}}),
        sample("false stack", "32 00 23 d8 04 01 00 03 00 00" + namedextra,
               InventorySlotPacket{0, 35, named(std::nullopt)}),
        sample("real stack", "32 7c 00 d8 04 01 00 03 01 05 00" + namedextra, InventorySlotPacket{124, 0, named(-3)}),
        sample("block stack", "32 00 09 6b 40 00 00 00 9a 01 0a 00 00 00 00 00 00 00 00 00 00",
               InventorySlotPacket{0, 9, {-54, 64, 0, std::nullopt, 77}}),
        sample("shield",
               "32 00 09 c6 05 01 00 00 00 00 1b 00 00 01 00 00 00 01 00 'a' 02 00 00 00 00 00 02 00 'bc'"
               "fe ff ff ff ff ff ff ff",
               InventorySlotPacket{0, 9, shield()}),
        sample("held", "1f ac 02 d8 04 01 00 03 01 05 00" + namedextra + "04 04 00",
               MobEquipmentPacket{300, named(-3), 4, 4, 0}),
        sample("creative list", "91 01 02 01 d8 04 01 00 00 00 0a 00 00 00 00 00 00 00 00 00 00 ac 02 00",
               CreativeContentPacket{{{1, {300, 1}}, {300, {}}}}),
        sample("refusals", "94 01 02 01 01 01 05",
               ItemStackResponsePacket{{{ItemStackResponse::refused, -1, {}}, {ItemStackResponse::refused, -3, {}}}}),
        sample("acceptance", "94 01 01 00 01 01 1d 01 09 09 05 0e 01 'n' 00",
               ItemStackResponsePacket{{{ItemStackResponse::accepted, -1, {{29, {{9, 9, 5, 7, "n", 0}}}}}}}),
        sample("double tap",
               "93 01 02 01 01 02 3b 00 00 1d 09 0e 00 00 00 00 00 05 01 00 02 1d 09 00 3b 00 00 00 00 00 00 00",
               ItemStackRequestPacket{0,
                                      {{-1, {action(ActionType::swap, 0, {59, 0, 0}, {29, 9, 7})}, {}, 0},
                                       {-3, {action(ActionType::take, 2, {29, 9, 0}, {59, 0, 0})}, {}, 0}}}),
        sample("creative result",
               "93 01 01 01 01 13 01 d8 04 40 00 00 00 0a 00 00 00 00 00 00 00 00 00 00 01 01 01 'x' fe ff ff ff",
               ItemStackRequestPacket{0, {{-1, {creativeresult()}, {"x"}, -2}}}),
        sample("raw text", "09 00 00 02 'hi' 00 00", TextPacket{TextType::raw, false, "", "hi"}),
        sample("chat", "09 01 00 01 'A' 02 'hi' 01 '5' 00", TextPacket{TextType::chat, false, "A", "hi", {}, "5"}),
        sample("translation", "09 02 01 02 '%s' 02 01 'x' 00 00 00",
               TextPacket{TextType::translation, true, "", "%s", {"x", ""}}),
        sample("toast", "ba 01 01 'T' 02 'ok'", ToastRequestPacket{"T", "ok"}),
        sample("sound", "56 01 'a' 18 80 04 1f 00 00 80 3f 00 00 00 40", PlaySoundPacket{"a", {1.5f, 64, -2}, 1, 2}),
        sample("game type", "3e 02", SetPlayerGameTypePacket{1}),
        sample("command", "4d 02 '/a'" + origin + "00", CommandRequestPacket{"/a"}),
        sample("command of an actor", "4d 00 04" + origin.substr(2) + "03 01",
               CommandRequestPacket{"", {4, {}, "", -2}, true}),
        sample("command output", "4f" + origin + "03 01 01 01 02 'ok' 01 01 'p'",
               CommandOutputPacket{{}, 3, 1, {{true, "ok", {"p"}}}}),
        sample("data set", "4f" + origin + "04 00 00 02 '{}'", CommandOutputPacket{{}, 4, 0, {}, "{}"}),
        sample("form", "64 ac 02 02 '{}'", ModalFormRequestPacket{300, "{}"}),
        sample("form answer", "65 05 01 01 '1' 00", ModalFormResponsePacket{5, "1", std::nullopt}),
        sample("form closed", "65 05 00 01 00", ModalFormResponsePacket{5, std::nullopt, std::uint8_t{0}}),
    };
    return all;
}

}  // namespace

TEST(Packets, AsWrittenByHand) {
    for (const auto& s : samples()) {
        EXPECT_EQ(sealpacket(s.made), s.written) << s.what;
        const auto opened = openpacket(s.written);
        EXPECT_EQ(opened.number, static_cast<int>(s.made.id())) << s.what;
        EXPECT_EQ(s.again(opened.body).body(), opened.body) << s.what;
    }
}

TEST(Packets, TruncatedOrLengthenedAreRefused) {
    for (const auto& s : samples()) {
        const auto body = s.made.body();
        for (std::size_t n = 0; n < body.size(); ++n) {
            EXPECT_THROW((void)s.again(body.substr(0, n)), ReadError) << s.what << " " << n;
        }
        EXPECT_THROW((void)s.again(body + '\0'), ReadError) << s.what;
    }
}

// Whatever one wrong byte makes of a packet, it is read as something else or refused.
TEST(Packets, AnyWrongByteIsHarmless) {
    for (const auto& s : samples()) {
        for (std::size_t i = 0; i < s.made.body().size(); ++i) {
            for (int value = 0; value < 256; ++value) {
                auto body = s.made.body();
                body[i] = static_cast<char>(value);
                try {
                    (void)s.again(body);
                } catch (const ReadError&) {
                }
            }
        }
    }
}

TEST(Packets, EveryActionTypeAndNoOther) {
    const std::string slot = "1c 03 0e", other = "3b 00 01";
    const std::string actions[] = {
        "00 40" + slot + other,
        "01 ff" + slot + other,
        "02" + slot + other,
        "03 05" + slot + "01",
        "04 05" + slot,
        "05 05" + slot,
        "06 02",
        "07 01" + slot + other,
        "08 01" + slot + other,
        "09",
        "0a 02 03",
        "0b 02 03 05",
        "0c ac 02",
        "0d ac 02 03 06 00 02 01 05 00 07 00 04 01 00 00 06 02 01 'q' 02 08 03 01 't' 0a 04 01 'n' 01 00 0c",
        "0e ac 02",
        "0f ac 02 fe ff ff ff",
        "10 05 ac 02",
        "11 03 'abc'",
        "12",
        "13 01 d8 04 01 00 00 00 0a 00 00 00 00 00 00 00 00 00 00 02",
    };
    std::uint8_t type = 0;
    for (const auto& text : actions) {
        const auto body = bytes("01 05 01" + text + "00 00 00 00 00");
        const auto packet = readpacket<ItemStackRequestPacket>(body, 2);
        EXPECT_EQ(packet.subclient, 2);
        EXPECT_EQ(packet.requests.at(0).id, -3);
        EXPECT_EQ(packet.requests[0].actions.at(0).type, type);
        EXPECT_EQ(topacket(packet).body(), body) << text;
        ++type;
    }
    const auto drop = readpacket<ItemStackRequestPacket>(bytes("01 05 01" + actions[3] + "00 00 00 00 00"));
    EXPECT_EQ(drop.requests[0].actions[0].source, (SlotInfo{28, 3, 7}));
    EXPECT_EQ(drop.requests[0].actions[0].amount, 5);
    EXPECT_EQ(drop.requests[0].actions[0].flag, 1);
}

namespace {

template <class P>
void reads(std::string_view body) {
    (void)readpacket<P>(body);
}
struct Case {
    void (*read)(std::string_view);
    std::string body;
};
constexpr auto request = &reads<ItemStackRequestPacket>;
constexpr auto response = &reads<ItemStackResponsePacket>;
constexpr auto slot = &reads<InventorySlotPacket>;
constexpr auto content = &reads<InventoryContentPacket>;
constexpr auto text = &reads<TextPacket>;
constexpr auto opening = &reads<ContainerOpenPacket>;
constexpr auto closing = &reads<ContainerClosePacket>;
constexpr auto answer = &reads<ModalFormResponsePacket>;
constexpr auto blockdata = &reads<BlockActorDataPacket>;
constexpr auto command = &reads<CommandRequestPacket>;
constexpr auto output = &reads<CommandOutputPacket>;
constexpr auto gametype = &reads<SetPlayerGameTypePacket>;

const std::string uuid = "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00", requesttail = "00 00 00 00 00";

}  // namespace

// Each number at the end of what its kind allows, and one beyond.
TEST(Packets, NumbersEndWhereTheWireDoes) {
    const struct {
        void (*read)(std::string_view);
        std::string front, last, beyond, rest;
    } ends[] = {
        {closing, "", "7f", "80", "00"},
        {opening, "", "7f", "80", "ff 00 00 00 01"},
        {content, "", "7f", "80 01", "00"},
        {slot, "", "7f", "80 01", "00 00"},
        {command, "00", "0f", "10", uuid + "00 00"},
        {output, "00" + uuid + "00", "03", "05", "00 00"},
        {text, "", "0b", "0c", "00 00 00 00"},
        {gametype, "", "0c", "0e", ""},
        {gametype, "", "00", "01", ""},  // minus one
        {answer, "05 00 01", "01", "02", ""},
        {request, "01 05 01", "12", "14", requesttail},
        {request, "01 05 01 0d 00 00 01", "04 00 00 00", "05 00", "00" + requesttail},
        {request, "", "01 05 00", "02 05 00" + requesttail + "05 00", requesttail},  // two of one number
        {response, "01 00 05 01", "1d 01 23", "1d 01 24", "00 00 00 00 00"},
        {response, "01 00 05 01", "3c 01 32", "3d 01 32", "00 00 00 00 00"},
    };
    for (const auto& end : ends) {
        SCOPED_TRACE(end.front + " " + end.beyond);
        EXPECT_NO_THROW(end.read(bytes(end.front + end.last + end.rest)));
        EXPECT_THROW(end.read(bytes(end.front + end.beyond + end.rest)), ReadError);
    }
    const auto full = [](std::size_t requests, std::size_t actions) {
        ItemStackRequestPacket packet;
        for (std::size_t i = 0; i < requests; ++i) packet.requests.push_back({static_cast<std::int32_t>(i)});
        for (std::size_t i = 0; i < actions; ++i) packet.requests[i % requests].actions.emplace_back();
        return topacket(packet).body();
    };
    EXPECT_NO_THROW(request(full(64, 256)));
    EXPECT_THROW(request(full(65, 0)), ReadError);
    EXPECT_THROW(request(full(2, 257)), ReadError);
}

TEST(Packets, HostileValuesAreRefused) {
    const std::string fourbillion = "ff ff ff ff 0f", item = "00 00 d8 04 01 00 00 00 00";
    const auto userdata = [&](const std::string& tag) {
        BinaryStream out;
        out.writeRaw(bytes(item));
        out.writeString(bytes("ff ff 01") + tag + bytes("00 00 00 00 00 00 00 00"));
        return out.bytes();
    };
    EXPECT_NO_THROW(slot(userdata(bytes("0a 00 00 00"))));
    const Case cases[] = {
        {request, bytes(fourbillion + "01 00 00 00 00 00 00")},            // requests
        {request, bytes("01 01" + fourbillion + "12 00 00 00 00 00")},     // actions
        {request, bytes("01 01 01 12" + fourbillion + "00 00 00 00 00")},  // names to filter
        {request, bytes("01 01 01 13" + fourbillion + "00 00 00 00 00 00 00 00 00")},
        {request, bytes("01 01 01 03 01 1c 00 00 02 00 00 00 00 00")},  // a bool of 2
        {response, bytes(fourbillion + "00 00")},
        {response, bytes("01 00 01 01 1d" + fourbillion + "00 00 00 00 00 00")},
        {content, bytes("00" + fourbillion + "00")},
        {content, bytes("00 03 00 00")},
        {slot, bytes(item + fourbillion + "00 00")},                                   // extra data past the end
        {slot, bytes("00 00 d8 04 01 00 00 02 00 0a 00 00 00 00 00 00 00 00 00 00")},  // has_stack_id of 2
        {slot, bytes(item + "0a 05 00 00 00 00 00 00 00 00 00")},                      // user data of another form
        {slot, bytes(item + "0a 00 00 ff ff ff 7f 00 00 00 00")},                      // two billion names
        {slot, bytes(item + "0a 00 00 ff ff ff ff 00 00 00 00")},                      // minus one
        {slot, bytes(item + "0b 00 00 00 00 00 00 00 00 00 00 00")},                   // a byte left in the extra data
        {slot, userdata(bytes("0a 00 00") + values::repeated(bytes("0a 00 00"), 10000))},
        {slot, userdata(bytes("0a 00 00") + values::repeated(bytes("0a 00 00"), 10000) +
                        values::repeated(bytes("00"), 10001))},
        {blockdata, bytes("02 02 02 0a 00") + values::repeated(bytes("0a 00"), 10000)},
        {text, bytes("00 02 00 00 00")},                    // a bool of 2
        {text, bytes("00 00" + fourbillion + "61 00 00")},  // a long text
        {text, bytes("00 00 ff ff ff ff ff 00 00")},        // an endless varint
        {text, bytes("00 00 ff ff ff ff 1f 00 00")},        // one of 33 bits
        {closing, bytes("07 02")},
        {answer, bytes("05 02 01 31 00")},
        {answer, bytes("05 01 01 '1' 01 00")},          // answered and closed
        {answer, bytes("05 00 00")},                    // neither
        {answer, bytes("05 01 01 ff 00")},              // not UTF-8
        {text, bytes("01 00 01 c3 01 '(' 00 00")},      // nor in two pieces
        {command, bytes("00 00" + uuid + "01 80 00")},  // nor a request's id
        {blockdata, bytes("02 02 02 0a 01 'a' 00")},    // a root with a name
    };
    for (std::size_t i = 0; i < std::size(cases); ++i) EXPECT_THROW(cases[i].read(cases[i].body), ReadError) << i;
}

TEST(Packets, TheHeaderHoldsNumberAndSubclients) {
    EXPECT_EQ(sealpacket(Packet(PacketId::ToastRequest, "x"), 2, 1), bytes("ba 31 'x'"));
    const auto sealed = bytes("ba 31 'x'");
    const auto opened = openpacket(sealed);
    EXPECT_EQ(opened.number, 186);
    EXPECT_EQ(opened.sender, 2);
    EXPECT_EQ(opened.target, 1);
    EXPECT_EQ(opened.body, "x");
    EXPECT_EQ(openpacket(bytes("ff 07")).number, 1023);
    EXPECT_TRUE(openpacket(bytes("09")).body.empty());
    for (const auto* header : {"", "80", "80 80 01", "ff ff ff ff ff 01"}) {
        EXPECT_THROW((void)openpacket(bytes(header)), ReadError) << header;
    }
}

TEST(Packets, AHandMadePacketTakesItsStream) {
    BinaryStream stream;
    stream.writeUnsignedVarInt(0);
    stream.writeUnsignedVarInt(35);
    stream.writeType(named(std::nullopt));
    auto packet = MinecraftPackets::createPacket(PacketId::InventorySlot);
    packet.read(stream);
    EXPECT_EQ(sealpacket(packet), samples()[5].written);
}
