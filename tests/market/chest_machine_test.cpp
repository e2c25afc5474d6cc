// The machinery under the menus: packet order, what is refused and what is passed on, in-place changes, and players who
// are gone or look elsewhere by the time that a picture comes.
#include "platform/hook.h"
#include "platform/network.h"
#include "platform/packets/blocks.h"
#include "plugin/chestmenu/opening.h"
#include "tests/market/chest_stage.h"

using namespace chest;

namespace {

// "close open content*4 slot": what was sent, runs of the same packet counted, the rest left out.
std::string order(const Actor& player) {
    std::vector<std::pair<std::string, int>> runs;
    player.look([&](client::ModelClient& c) {
        for (const auto& packet : c.packets) {
            const char* name = packet.id == PacketId::ContainerClose      ? "close"
                               : packet.id == PacketId::ContainerOpen     ? "open"
                               : packet.id == PacketId::InventoryContent  ? "content"
                               : packet.id == PacketId::InventorySlot     ? "slot"
                               : packet.id == PacketId::UpdateBlock       ? "block"
                               : packet.id == PacketId::BlockActorData    ? "data"
                               : packet.id == PacketId::SetPlayerGameType ? "gametype"
                                                                          : "";
            if (*name == '\0') continue;
            if (runs.empty() || runs.back().first != name) runs.emplace_back(name, 0);
            ++runs.back().second;
        }
        c.packets.clear();
    });
    std::string all;
    for (const auto& [name, count] : runs)
        all += (all.empty() ? "" : " ") + name + (count > 1 ? "*" + std::to_string(count) : "");
    return all;
}

}  // namespace

TEST(ChestMachine, AnOpeningByTheTick) {
    Stage stage;
    Actor& alice = stage.join("Alice", ada);
    stage.onserver([&] { stage.server().world().setposition("Alice", {-3.5F, 64.9F, 7.0F}); });
    records(alice);
    alice.types("ordomart ordomenu");
    EXPECT_EQ(order(alice), "close");
    EXPECT_FALSE(alice.menuopen());
    stage.ticks(1);
    EXPECT_EQ(order(alice), "open");
    alice.look([](client::ModelClient& c) {
        ASSERT_TRUE(c.container());
        EXPECT_EQ(c.container()->type, -1);
        EXPECT_EQ(c.container()->x, -4);
        EXPECT_EQ(c.container()->y, 64);
        EXPECT_EQ(c.container()->z, 7);
    });
    stage.ticks(3);
    EXPECT_EQ(order(alice), "");
    stage.ticks(1);
    EXPECT_EQ(order(alice), "content*4 slot*6");
}

TEST(ChestMachine, TheMainMenuLeadsOnAndBackInOneContainer) {
    Stage stage;
    stage.writeshop(bob, goods(1), json::array({commission("stone", 1, 1)}));
    Actor& alice = stage.join("Alice", ada);
    const auto id = [&] {
        int open = -1;
        alice.look([&](client::ModelClient& c) { open = c.container() ? c.container()->id : -1; });
        return open;
    };
    opens(stage, alice, "ordomart ordomenu");
    const struct {
        std::uint32_t container;
        int slot;
        const char *looks, *name, *lore;
    } items[] = {
        {armorid, 0, "minecraft:emerald:3", "Buy", "Browse the goods of all shops"},
        {armorid, 1, "minecraft:chest:3", "Recycle", "Sell your items to the recycle shops"},
        {armorid, 2, "minecraft:chest:3 shining", "My shop", "Manage your own shop"},
        {inventoryid, 0, "minecraft:ender_chest:3 shining", nullptr, nullptr},
        {inventoryid, 1, "minecraft:ender_chest:3 shining", nullptr, nullptr},
        {inventoryid, 8, "minecraft:oak_sign:3 shining", nullptr, nullptr},
        {offhandid, 0, "", "", ""},
    };
    for (const auto& item : items) {
        EXPECT_EQ(looks(alice, item.container, item.slot), item.looks);
        if (item.name != nullptr) {
            EXPECT_EQ(named(alice, item.container, item.slot), item.name);
            EXPECT_EQ(lore(alice, item.container, item.slot), item.lore);
        }
    }
    const int opened = id();
    alice.clicks(ContainerName::hotbar, 8);  // a text only
    EXPECT_EQ(looks(alice, armorid, 0), "minecraft:emerald:3");
    for (const auto& [choice, shown] : {std::pair{0, "minecraft:apple*1"}, std::pair{1, "minecraft:stone*1"}}) {
        alice.drops(ContainerName::armor, choice);  // as good as a click
        EXPECT_EQ(alice.shown(inventoryid, 9), shown);
        EXPECT_EQ(alice.shown(armorid, 0), "");
        alice.clicks(ContainerName::offhand, 1);
        EXPECT_EQ(looks(alice, armorid, 0), "minecraft:emerald:3");
        EXPECT_EQ(alice.shown(inventoryid, 9), "");
    }
    EXPECT_EQ(id(), opened);
    EXPECT_EQ(alice.sounds(), std::vector<std::string>(5, "random.click"));
    EXPECT_EQ(alice.chat(), "");
    alice.closes();
    EXPECT_EQ(alice.chat(), "NULL selected");
}

TEST(ChestMachine, TooSoonAfterTheLastOpening) {
    Stage stage;
    Actor& alice = stage.join("Alice", ada);
    opens(stage, alice, "ordomart buy");
    alice.closes().forgets();
    alice.types("ordomart recycle");
    EXPECT_EQ(alice.chat(), " Execution times are too frequent ");
    rests(stage);
    opens(stage, alice, "ordomart recycle");
    EXPECT_TRUE(alice.menuopen());
}

namespace {

// Stands where the server's own handling is, so that a test sees what gets through to it.
int passedon = 0;
void* serversown = nullptr;
void count(platform::ServerNetworkHandler* handler, const platform::NetworkIdentifier& id,
           const platform::ItemStackRequestPacket& packet) {
    ++passedon;
    reinterpret_cast<platform::HandleItemStackRequest>(serversown)(handler, id, packet);
}
void watchserver(platform::Host& host) {
    host.hooks->replace(host.hooks->find(platform::symbols::handleItemStackRequest), &serversown,
                        reinterpret_cast<void*>(&count));
}

}  // namespace

TEST(ChestMachine, WhatIsRefusedAndWhatIsPassedOn) {
    using enum ActionType;
    const auto click = action(take, ContainerName::inventory, 20);
    const auto sign = action(swap, ContainerName::cursor, 0, ContainerName::hotbar, 4);
    const auto pick = [](ActionType last) {
        auto result = action(craftresult, ContainerName{}, 0);
        result.times = 1;
        return std::vector{action(creativepick, ContainerName{}, 0), result,
                           action(last, ContainerName::createdoutput, 50)};
    };
    const struct {
        const char* name;
        std::vector<std::vector<platform::ItemStackRequestAction>> batch;
        const char* refused;  // 7 for each request, in one packet; else the server is asked
    } cases[] = {
        {"one click", {{action(take, ContainerName::combined, 20)}}, "7"},
        {"a kind that no view reads", {{action(destroy, ContainerName::hotbar, 4)}}, "7"},
        {"a swap between slots", {{action(swap, ContainerName::hotbar, 4, ContainerName::inventory, 20)}}, "7"},
        {"two actions", {{click, click}}, nullptr},
        {"no action", {{}}, nullptr},
        {"a creative pick", {pick(take)}, "7"},
        {"a creative pick that ends otherwise", {pick(destroy)}, nullptr},
        {"a pair headed by a swap from the cursor", {{sign}, {action(take, ContainerName::combined, 20)}}, "7 7"},
        {"a pair headed otherwise", {{click}, {sign}}, nullptr},
        {"a pair with two actions", {{sign}, {click, click}}, nullptr},
        {"three requests", {{sign}, {click}, {click}}, nullptr},
    };
    for (const bool open : {true, false})
        for (const auto& each : cases) {
            SCOPED_TRACE(std::string(each.name) + (open ? " with a menu" : " without"));
            Stage stage({.adjust = &watchserver});
            Actor& alice = stage.join("Alice", ada);
            if (open) opens(stage, alice, "ordomart buy");
            records(alice);
            passedon = 0;
            sends(stage, alice, each.batch);
            const bool refused = open && each.refused != nullptr;
            EXPECT_EQ(passedon, refused ? 0 : 1);
            if (refused) {
                EXPECT_EQ(responses(alice), each.refused);
            }
            EXPECT_EQ(stage.log().find("detect recycle from creativeitem") != std::string::npos,
                      open && std::string(each.name) == "a creative pick");
        }
}

TEST(ChestMachine, ASecondClickBeforeTheScreenClosesIsIgnored) {
    Stage stage;
    stage.writeshop(bob, goods(2));
    Actor& alice = stage.join("Alice", ada);
    opens(stage, alice, "ordomart buy");
    alice.look([](client::ModelClient& c) {
        c.move(ContainerName::inventory, 9, ContainerName::cursor, 0, 1);
        c.move(ContainerName::inventory, 10, ContainerName::cursor, 0, 1);
    });
    stage.server().settle();
    alice.look([](client::ModelClient& c) { EXPECT_EQ(c.forms().size(), 1U); });
    EXPECT_NE(alice.formtext().find("good 00"), std::string::npos);
}

TEST(ChestMachine, WhoClosesBeforeThePaintKeepsHisStacks) {
    Stage stage;
    Actor& alice = stage.join("Alice", ada).gives(9, "stone", 3);
    alice.types("ordomart buy");
    stage.ticks(2);
    alice.closes();
    stage.ticks(10);
    EXPECT_EQ(alice.shown(inventoryid, 9), "minecraft:stone*3");
    EXPECT_EQ(alice.shown(offhandid, 0), "");
}

TEST(ChestMachine, WhoLeavesInTheMiddleIsForgotten) {
    Stage stage({.adjust = &watchserver});
    stage.writeshop(bob, goods(3));
    stage.join("Alice", ada).gives(9, "stone", 3).leaves();
    for (const int ticks : {0, 1, 4, 6}) {
        SCOPED_TRACE(ticks);
        stage.join("Alice", ada).types("ordomart buy");
        stage.ticks(ticks);
        stage.clients().leave("Alice");
        // Back at once, with a menu left behind: a new session, and nothing of the old one.
        Actor& alice = stage.join("Alice", ada);
        stage.ticks(10);
        EXPECT_EQ(alice.shown(inventoryid, 9), "minecraft:stone*3");
        passedon = 0;
        sends(stage, alice, {{action(ActionType::take, ContainerName::inventory, 20)}});
        EXPECT_EQ(passedon, 1);
        stage.clients().leave("Alice");
    }
    EXPECT_EQ(stage.log().find("[error]"), std::string::npos) << stage.log();
    EXPECT_EQ(stage.log().find("notemptyrecordfix"), std::string::npos) << stage.log();
}

TEST(ChestMachine, APictureThatComesLateDoesNotPaintOverTheNextMenu) {
    Stage stage;
    stage.writeshop(bob, goods(3));
    Actor& alice = stage.join("Alice", ada);
    opens(stage, alice, "ordomart ordomenu");
    alice.look([](client::ModelClient& c) {  // both clicks arrive before the list is there
        c.move(ContainerName::armor, 0, ContainerName::cursor, 0, 1);
        c.request({{0, {action(ActionType::take, ContainerName::offhand, 1)}}});
    });
    stage.server().settle();
    EXPECT_EQ(looks(alice, armorid, 0), "minecraft:emerald:3");
    EXPECT_EQ(alice.shown(inventoryid, 9), "");
}

TEST(ChestMachine, ARecordIsFoundByItsKeyAndReplacedAsAWhole) {
    using namespace containermenuguihelper;
    Stage stage;
    stage.join("Alice", ada);
    ChestInvontorymenuguihelper::ChestInvontoryItemRequestListermanager manager;
    stage.onserver([&] {
        auto* player = stage.server().world().level().getPlayerByXuid(ada);
        auto click = action(ActionType::take, ContainerName::inventory, 9);
        EXPECT_FALSE(manager.trylistenaction(player, 7, &click));
        EXPECT_FALSE(manager.runselectedaction(player, 7, &click));
        EXPECT_FALSE(manager.removecontainerlistener(player, 7, 7));

        ListenRecorder record;
        record.prehandler = &acceptclick;
        manager.addnewblockcontainerpacketlistener(player, 7, record, {});
        EXPECT_FALSE(manager.trylistenaction(player, 8, &click));
        EXPECT_TRUE(manager.trylistenaction(player, 7, &click));
        EXPECT_TRUE(manager.find(player, 7)->selection.isfrom(ContainerName::inventory));

        record.prehandler = &takeorplacefilter;
        manager.addnewblockcontainerpacketlistener(player, 7, record, {});
        EXPECT_TRUE(manager.find(player, 7)->selection.empty());
        EXPECT_FALSE(manager.trylistenaction(player, 7, &click)) << "not from a block's container";
        click.source.container = static_cast<std::uint8_t>(ContainerName::blockentity);
        EXPECT_TRUE(manager.trylistenaction(player, 7, &click));
        EXPECT_TRUE(manager.removecontainerlistener(player, 8, 7));
        EXPECT_EQ(manager.find(player, 7), nullptr);
    });
    const auto log = stage.log();
    EXPECT_NE(log.find("[Ordomart][info] error at actioner cant't find recorder"), std::string::npos);
    EXPECT_NE(log.find("[Ordomart][info] warning:notemptyrecordfix tryoverwrite"), std::string::npos);
}

// ---- the form that stands on blocks, which no menu asks for

namespace {

using containermenuguihelper::ListenRecorder;

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
    const auto told = recover();
    EXPECT_TRUE(told.starts_with("11 0; 11 pair -1 -1; 10 0; 10 1; ")) << told;
    EXPECT_FALSE(record.restorepending);
    EXPECT_EQ(recover(), "");
}
