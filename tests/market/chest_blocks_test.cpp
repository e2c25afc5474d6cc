// The form of a menu that stands on blocks, which none of the menus asks for.
#include "platform/host.h"
#include "platform/packets/blocks.h"
#include "plugin/chestmenu/opening.h"
#include "plugin/chestviews/openers.h"
#include "plugin/shopsystem/playershopstate.h"
#include "tests/market/chest_stage.h"

using namespace chest;

namespace {

using containermenuguihelper::ListenRecorder;

// Named here, or the archive that this program takes the menu from leaves it out.
ordomart::opresult (*volatile const menu)(platform::ServerPlayer*) = &ordomart::openOrdomenu;

struct Blocks {
    Stage stage;
    Actor& alice = stage.join("Alice", ada);
    Actor& carl = stage.join("Carl", "2535400000000003");
    ChestInvontorymenuguihelper::ChestInvontoryItemRequestListermanager manager;

    Blocks() {
        records(alice);
        records(carl);
    }
    bool opens(const Actor& who, bool isdouble, bool ready = true) {
        bool opened = false;
        stage.onserver([&] {
            auto* player = stage.server().world().level().getPlayerByXuid(who.xuid());
            if (!ready) stage.server().world().setalive(who.who().name, false);
            containermenuguihelper::blockcontainerblockconfig blocks;
            blocks.placefirst = true;
            blocks.usesecond = isdouble;
            blocks.firstblocktag = std::make_unique<platform::CompoundTag>();
            if (isdouble) blocks.secondblocktag = std::make_unique<platform::CompoundTag>();
            opened = containermenuguihelper::opencontainerlistener(
                manager, player, player->_nextContainerCounter(), {0, {10, 64, -7}}, {}, blocks,
                &containermenuguihelper::welcomehandler, &containermenuguihelper::acceptclick);
        });
        return opened;
    }
    // What the client was told of blocks: "x layer", and "x pairx pairz" for data.
    std::string told(const Actor& who) const {
        std::string all;
        who.look([&](client::ModelClient& c) {
            for (const auto& packet : c.packets) {
                if (packet.id == PacketId::UpdateBlock) {
                    const auto block = platform::readpacket<platform::UpdateBlockPacket>(packet.body);
                    all += fmt::format("{} {}; ", block.position.x, block.layer);
                } else if (packet.id == PacketId::BlockActorData) {
                    const auto data = platform::readpacket<platform::BlockActorDataPacket>(packet.body);
                    all += fmt::format("{} pair {} {}; ", data.position.x, data.data.getInt("pairx", -1),
                                       data.data.getInt("pairz", -1));
                }
            }
            c.packets.clear();
        });
        return all;
    }
};

}  // namespace

TEST(ChestBlocks, ADoubleChestIsPairedAndAPositionIsForOnePlayer) {
    Blocks b;
    EXPECT_FALSE(b.opens(b.alice, true, false)) << "the dead are not ready";
    b.alice.revives().forgets();
    EXPECT_TRUE(b.opens(b.alice, true));
    EXPECT_EQ(b.told(b.alice), "10 1; 10 pair 11 -7; 11 1; 11 pair 10 -7; ");
    b.alice.forgets();
    EXPECT_FALSE(b.opens(b.carl, false));
    EXPECT_EQ(order(b.carl), "");
    EXPECT_TRUE(b.opens(b.alice, false)) << "the same player may";
    EXPECT_EQ(order(b.alice), "close block data");
    b.stage.ticks(1);
    EXPECT_EQ(order(b.alice), "open*2");
}

// Brings the menu, which enters itself, into this program.
[[maybe_unused]] const auto mainmenu = &ordomart::openOrdomenu;

TEST(ChestBlocks, ARefusedOpeningIsNotPainted) {
    Blocks b;
    containermenuguihelper::blockcontainerblockconfig blocks;
    blocks.placefirst = true;
    auto& manager = ChestInvontorymenuguihelper::listenermanager();
    ordomart::opresult results[2] = {};
    b.stage.onserver([&] {
        for (const Actor* who : {&b.alice, &b.carl}) {
            shopsystem::getplayershopstate(who->xuid()).menuopentime = 0;
            auto* player = b.stage.server().world().level().getPlayerByXuid(who->xuid());
            results[who == &b.carl] = ordomart::openchestmenu(player, ordomart::screen::ordomenu, {}, blocks);
        }
    });
    EXPECT_EQ(results[0], ordomart::opresult::opened);
    EXPECT_EQ(results[1], ordomart::opresult::refused);
    EXPECT_EQ(order(b.alice), "close block");
    b.stage.ticks(5);
    EXPECT_EQ(order(b.alice), "open content*4 slot*6");
    EXPECT_EQ(order(b.carl), "");
    EXPECT_NE(b.stage.log().find("[Ordomart][info] BlockPos has been used by others!"), std::string::npos);
    b.stage.onserver([&] {
        auto* player = b.stage.server().world().level().getPlayerByXuid(ada);
        manager.removecontainerlistener(player, 0, player->currentContainerCounter());
    });
}

TEST(ChestBlocks, TheRealBlocksComeBackOnceAskedFor) {
    Blocks b;
    b.stage.onserver([&] {
        b.stage.server().world().setblock(0, {10, 64, -7}, "minecraft:stone");
        b.stage.server().world().setblock(0, {10, 64, -7}, "minecraft:dirt", 1);
    });
    ListenRecorder record;
    record.blockpos = {10, 64, -7};
    record.dimensionid = 0;
    record.doublecontainer = true;
    const auto recover = [&] {
        b.stage.onserver(
            [&] { b.manager.recoverrawblockenvir(b.stage.server().world().level().getPlayerByXuid(ada), &record); });
        return b.told(b.alice);
    };
    EXPECT_EQ(recover(), "");
    record.restorepending = true;
    b.stage.onserver([&] {
        auto* player = b.stage.server().world().level().getPlayerByXuid(ada);
        auto* const level = std::exchange(platform::host().level, nullptr);
        b.manager.recoverrawblockenvir(player, &record);
        platform::host().level = level;
    });
    EXPECT_EQ(order(b.alice), "block data") << "the chest in the second place, which needs no world";
    EXPECT_TRUE(record.restorepending);
    EXPECT_NE(b.stage.log().find("[Ordomart][error] error: Global<level> is NULL at recoverrawblockenvir"),
              std::string::npos);
    const auto told = recover();
    EXPECT_TRUE(told.starts_with("11 0; 11 pair -1 -1; 10 0; 10 1; ")) << told;
    EXPECT_FALSE(record.restorepending);
    EXPECT_EQ(recover(), "");
}
