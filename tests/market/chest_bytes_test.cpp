// What a chest menu sends, byte by byte, against bytes written by hand. Numbers of items and blocks are the host's, all
// else stands here.
#include "platform/host.h"
#include "platform/level.h"
#include "plugin/chestmenu/decoration.h"
#include "plugin/chestmenu/opening.h"
#include "tests/market/chest_stage.h"
#include "tests/platform/values.h"

using namespace chest;
using values::bytes, values::repeated;

namespace {

std::string hex(std::string_view raw) {
    std::string text;
    for (const unsigned char byte : raw) text += fmt::format("{:02x} ", byte);
    return text;
}

constexpr PacketId watched[] = {PacketId::ContainerOpen,     PacketId::ContainerClose,   PacketId::InventoryContent,
                                PacketId::InventorySlot,     PacketId::UpdateBlock,      PacketId::BlockActorData,
                                PacketId::ItemStackResponse, PacketId::SetPlayerGameType};

// Number and body of each, and forgets them.
std::vector<std::string> sent(const Actor& player) {
    std::vector<std::string> all;
    player.look([&](client::ModelClient& c) {
        for (const auto& packet : c.packets)
            if (std::find(std::begin(watched), std::end(watched), packet.id) != std::end(watched))
                all.push_back(fmt::format("{}: {}", static_cast<int>(packet.id), hex(packet.body)));
        c.packets.clear();
    });
    return all;
}
std::string hand(int number, const std::string& body) { return fmt::format("{}: {}", number, hex(bytes(body))); }

std::string encoded(std::int32_t value, void (platform::BinaryStream::*write)(std::int32_t)) {
    platform::BinaryStream stream;
    (stream.*write)(value);
    return hex(stream.bytes());
}

// A false stack of one piece and aux 3 with user data of the given length: a compound behind its marker, no places.
std::string stackof(const char* name, const char* length, const std::string& userdata) {
    const auto* item = platform::host().items->find(name);
    return encoded(item->networkid, &platform::BinaryStream::writeVarInt) + "01 00 03 00 " +
           encoded(item->blockruntimeid, &platform::BinaryStream::writeVarInt) + length + "ff ff 01 0a 00 00" +
           "0a 07 00 'display'" + userdata + "00" + "00 00 00 00 00 00 00 00";
}
const std::string shine = "09 04 00 'ench' 00 00 00 00 00";
const std::string blank = " 24" + repeated(" 00", 36);

}  // namespace

TEST(ChestBytes, OfTheMainMenuAndOfARefusal) {
    Stage stage;
    Actor& alice = stage.join("Alice", ada, "en_US", touch);
    stage.onserver([&] { stage.server().world().setposition("Alice", {-3.5F, 64.9F, 7.0F}); });
    records(alice);
    opens(stage, alice, "ordomart ordomenu");
    auto got = sent(alice);
    ASSERT_EQ(got.size(), 12U);
    got.resize(10);
    EXPECT_EQ(got, (std::vector<std::string>{
                       hand(47, "01 01"), hand(46, "01 ff 07 40 0e 01"),  //
                       hand(49, "77" + blank), hand(49, "78" + blank), hand(49, "00" + blank), hand(49, "7a" + blank),
                       hand(50, "78 00" + stackof("emerald", "51",
                                                  "09 04 00 'Lore' 08 01 00 00 00 1d 00 'Browse the goods of all shops'"
                                                  "08 04 00 'Name' 03 00 'Buy' 00")),
                       hand(50, "78 01" + stackof("chest", "5c",
                                                  "09 04 00 'Lore' 08 01 00 00 00 24 00"
                                                  "'Sell your items to the recycle shops'"
                                                  "08 04 00 'Name' 07 00 'Recycle' 00")),
                       hand(50, "78 02" + stackof("chest", "58",
                                                  "09 04 00 'Lore' 08 01 00 00 00 14 00 'Manage your own shop'"
                                                  "08 04 00 'Name' 07 00 'My shop' 00" +
                                                      shine)),
                       hand(50, "00 00" + stackof("ender_chest", "4e",
                                                  "09 04 00 'Lore' 00 00 00 00 00"
                                                  "08 04 00 'Name' 13 00 'System selling shop' 00" +
                                                      shine))}));
    alice.look([](client::ModelClient& c) {
        c.request({{-1, {action(ActionType::take, ContainerName::hotbar, 8)}}});
        c.request({{-3, {action(ActionType::swap, ContainerName::cursor, 0, ContainerName::hotbar, 8)}},
                   {300, {action(ActionType::take, ContainerName::hotbar, 8)}}});
    });
    stage.server().settle();
    EXPECT_EQ(sent(alice), (std::vector<std::string>{hand(148, "01 01 01"), hand(148, "02 01 05 01 d8 04")}));
}

TEST(ChestBytes, OfTheSignsAndOfASelection) {
    Stage stage;
    stage.writeshop(bob, goods(1));
    Actor& alice = stage.join("Alice", ada, "en_US", touch);
    records(alice);
    opens(stage, alice, "ordomart buy");
    const auto painted = sent(alice);
    const std::string lore = "09 04 00 'Lore' 08 01 00 00 00 1b 00 'Choose this sign to go back'";
    ASSERT_GT(painted.size(), 8U);
    EXPECT_EQ(painted[6],
              hand(49, "77 01" + stackof("oak_sign", "70",
                                         lore + "08 04 00 'Name' 18 00 'Choose an item to buy it' 00" + shine)));
    EXPECT_EQ(painted[7],
              hand(50, "7c 00" + stackof("oak_sign", "85 01",
                                         lore +
                                             "08 04 00 'Name' 2d 00 'Choose an item or a button to manage the shop'"
                                             "00" +
                                             shine)));
    sends(stage, alice, {{action(ActionType::drop, ContainerName::cursor, 0)}});
    EXPECT_EQ(sent(alice), (std::vector<std::string>{hand(50, "7c 00 00"), hand(148, "01 01 01")}));
    sends(stage, alice, {{action(ActionType::take, ContainerName::inventory, 9)}});
    const auto chosen = sent(alice);
    ASSERT_GE(chosen.size(), 2U);
    EXPECT_EQ(chosen[0], hand(47, "01 01"));
    EXPECT_EQ(chosen[1], hand(148, "01 01 05"));
}

TEST(ChestBytes, OfBlocksAndGameType) {
    Stage stage;
    Actor& alice = stage.join("Alice", ada);
    records(alice);
    ChestInvontorymenuguihelper::ChestInvontoryItemRequestListermanager manager;
    containermenuguihelper::blockcontainerblockconfig blocks;
    blocks.firstblocktag = std::make_unique<platform::CompoundTag>();
    blocks.secondblocktag = std::make_unique<platform::CompoundTag>();
    blocks.secondblocktag->putString("id", "Chest");
    blocks.placefirst = blocks.usesecond = true;
    std::string chestid;
    stage.onserver([&] {
        auto* player = stage.server().world().level().getPlayerByXuid(ada);
        platform::BinaryStream stream;
        stream.writeUnsignedVarInt(stage.server().world().level().defaultBlockRuntimeId("minecraft:chest"));
        chestid = hex(stream.bytes());
        ordomart::sendplayergametype(player, 1);
        containermenuguihelper::opencontainerlistener(manager, player, 200, {0, {10, -60, -7}}, {}, blocks,
                                                      &containermenuguihelper::welcomehandler,
                                                      &containermenuguihelper::acceptclick);
    });
    const std::string below = "c4 ff ff ff 0f 0d ";  // y and z
    EXPECT_EQ(sent(alice),
              (std::vector<std::string>{
                  hand(62, "02"), hand(47, "c8 01"), hand(21, "14" + below + chestid + "03 01"),
                  hand(56, "14" + below + "0a 00 03 05 'pairx' 16 03 05 'pairz' 0d 00"),
                  hand(21, "16" + below + chestid + "03 01"),
                  hand(56, "16" + below + "0a 00 08 02 'id' 05 'Chest' 03 05 'pairx' 14 03 05 'pairz' 0d 00")}));
    stage.ticks(1);
    EXPECT_EQ(sent(alice), std::vector<std::string>{hand(46, "c8 ff 14" + below + "01")});
}
