// The machinery under the menus: packet order, what is refused and what is passed on, in-place changes, and players who
// are gone or look elsewhere by the time that a picture comes.
#include "platform/hook.h"
#include "platform/host.h"
#include "platform/network.h"
#include "plugin/chestmenu/opening.h"
#include "tests/market/chest_stage.h"

using namespace chest;

TEST(ChestMachine, AnOpeningByTheTick) {
    const struct {
        const char* command;
        int device;
        const char* painted;
    } cases[] = {{"ordomart ordomenu", desktop, "content*4 slot*6"},
                 {"ordomart buy", desktop, "content*5 slot*6"},  // the sign; two goods and four buttons
                 {"ordomart buy", touch, "content*5 slot*7"},    // the sign on the cursor in front of them
                 {"ordomart recycle", desktop, "content*5 slot*4"}};
    for (const auto& each : cases) {
        SCOPED_TRACE(each.command);
        Stage stage;
        stage.writeshop(bob, goods(2));
        Actor& alice = stage.join("Alice", ada, "en_US", each.device);
        records(alice);
        alice.types(each.command);
        EXPECT_EQ(order(alice), "close");
        EXPECT_FALSE(alice.menuopen());
        stage.ticks(1);
        EXPECT_EQ(order(alice), "open");
        EXPECT_TRUE(alice.menuopen());
        stage.ticks(3);
        EXPECT_EQ(order(alice), "");
        stage.ticks(1);
        EXPECT_EQ(order(alice), each.painted);
    }
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
