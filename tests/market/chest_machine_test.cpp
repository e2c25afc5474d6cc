// The machinery under the menus: packet order, what is refused and what is passed on, in-place changes, players who
// leave, and handlers that throw.
#include "platform/network.h"
#include "plugin/chestmenu/decoration.h"
#include "plugin/chestmenu/hooks.h"
#include "plugin/chestmenu/opening.h"
#include "plugin/frame/events.h"
#include "tests/market/chest_server.h"

using namespace chest;
using ChestInvontorymenuguihelper::listenermanager;

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
    for (const int millisecondslater : {0, -3'600'000}) {  // at once, and when the clock has been set back
        opens(stage, alice, "ordomart buy");
        alice.closes().forgets();
        alice.types("ordomart recycle");
        EXPECT_EQ(alice.chat(), " Execution times are too frequent ");
        EXPECT_FALSE(alice.menuopen());
        stage.advance(millisecondslater != 0 ? millisecondslater : 2000);
        opens(stage, alice, "ordomart recycle");
        EXPECT_TRUE(alice.menuopen());
        alice.closes();
        rests(stage);
    }
}

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
        const char* refused;  // 1 for each request, in one packet; else the server is asked
    } cases[] = {
        {"one click", {{action(take, ContainerName::combined, 20)}}, "1"},
        {"a kind that no view reads", {{action(destroy, ContainerName::hotbar, 4)}}, "1"},
        {"a swap between slots", {{action(swap, ContainerName::hotbar, 4, ContainerName::inventory, 20)}}, "1"},
        {"two actions", {{click, click}}, nullptr},
        {"no action", {{}}, nullptr},
        {"a creative pick", {pick(take)}, "1"},
        {"a creative pick that ends otherwise", {pick(destroy)}, nullptr},
        {"a pair headed by a swap from the cursor", {{sign}, {action(take, ContainerName::combined, 20)}}, "1 1"},
        {"a pair headed otherwise", {{click}, {sign}}, nullptr},
        {"a pair with two actions", {{sign}, {click, click}}, nullptr},
        {"three requests", {{sign}, {click}, {click}}, nullptr},
    };
    for (const bool open : {true, false}) {
        Stage stage({.adjust = &watchserver});
        Actor& alice = stage.join("Alice", ada);
        if (open) opens(stage, alice, "ordomart buy");
        records(alice);
        for (const auto& each : cases) {
            SCOPED_TRACE(std::string(each.name) + (open ? " with a menu" : " without"));
            if (open && !alice.menuopen()) {  // the case before this one was a choice
                rests(stage);
                opens(stage, alice, "ordomart buy");
            }
            alice.forgets();
            passedon = 0;
            sends(stage, alice, each.batch);
            const bool refused = open && each.refused != nullptr;
            EXPECT_EQ(passedon, refused ? 0 : 1);
            if (refused) {
                EXPECT_EQ(responses(alice), each.refused);
            }
        }
        EXPECT_EQ(stage.log().find("detect recycle from creativeitem") != std::string::npos, open);
    }
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

TEST(ChestMachine, AnEndInItsOrder) {
    Stage stage;
    stage.writeshop(bob, goods(2));
    Actor& alice = stage.join("Alice", ada);
    records(alice);
    opens(stage, alice, "ordomart buy");
    order(alice);
    alice.closes();  // the server echoes what a client closes by itself
    EXPECT_EQ(order(alice), "content*3 slot text close");
    rests(stage);
    opens(stage, alice, "ordomart buy");
    order(alice);
    alice.look([](client::ModelClient& c) {  // the second click comes before the screen has closed, and is ignored
        for (const int slot : {9, 10}) c.move(ContainerName::inventory, slot, ContainerName::cursor, 0, 1);
    });
    stage.server().settle();
    EXPECT_EQ(order(alice), "close content*3 slot form");
    EXPECT_NE(alice.formtext().find("good 00"), std::string::npos);
}

namespace {

// Menus that fail, in places of the table where this program has none.
constexpr auto faulty = ordomart::screen::myrecycleshoponreshop, pictureless = ordomart::screen::myrecycleshoppickup;
using containermenuguihelper::ListenRecorder;

bool recordinhandler = false;
bool onclick(platform::ServerPlayer* player, platform::ItemStackRequestAction* click, ListenRecorder* record) {
    if (click->source.slot == 9) throw std::runtime_error("no click");
    if (click->source.slot == 10) ordomart::switchmenu(player, record, pictureless);
    return click->source.slot == 11;
}
bool onclose(platform::ServerPlayer* player, platform::ItemStackRequestAction*, ListenRecorder* record) {
    recordinhandler = listenermanager().find(player, record->containerid) == record;
    throw std::logic_error("no close");
}
void drawone(platform::ServerPlayer* player) {
    ordomart::falsestack stack;
    stack.load();
    stack.sendto(player, ordomart::layout::inventory, 9);
}
void drawnothing(platform::ServerPlayer*) { throw std::runtime_error("no picture"); }

const ordomart::menuentry entries[] = {{faulty, {&onclose, &onclick, &drawone}},
                                       {pictureless, {&onclose, &containermenuguihelper::acceptclick, &drawnothing}}};

}  // namespace

TEST(ChestMachine, WhatThrowsLeavesNothingUndone) {
    Stage stage({.adjust = &watchserver});
    Actor& alice = stage.join("Alice", ada).gives(9, "stone", 3);
    stage.onserver(&ordomart::installpackethooks);
    records(alice);
    const auto server = [&](const std::function<void(platform::ServerPlayer*)>& work) {
        stage.onserver([&] { work(stage.server().world().level().getPlayerByXuid(ada)); });
    };
    const auto opens = [&](ordomart::screen which) {
        rests(stage);
        alice.forgets();
        server([&](auto* player) {
            EXPECT_EQ(ordomart::openchestmenu(player, which), ordomart::opresult::opened);
            auto& record = *listenermanager().infront(player);
            record.restorepending = true;  // as if it stood on a block
            record.dimensionid = 0;
        });
        stage.ticks(6);
    };
    const auto isover = [&] {
        EXPECT_FALSE(alice.menuopen());
        EXPECT_EQ(alice.shown(inventoryid, 9), "minecraft:stone*3");
        EXPECT_EQ(closed, 1) << "the server's own end of it";
        EXPECT_TRUE(recordinhandler);
        EXPECT_FALSE(recordatclose);
        EXPECT_NE(order(alice).find("block"), std::string::npos) << "the real block is back";
        server([](auto* player) { EXPECT_EQ(listenermanager().infront(player), nullptr); });
        closed = 0;
    };
    opens(faulty);
    for (int i = 0; i < 2; ++i) alice.clicks(ContainerName::inventory, 9);
    EXPECT_EQ(responses(alice), "1\n1");
    EXPECT_EQ(passedon, 0);
    EXPECT_TRUE(alice.menuopen());
    EXPECT_EQ(alice.shown(inventoryid, 9), "minecraft:skull*1");
    sends(stage, alice, {{action(ActionType::take, ContainerName::inventory, 11)}});
    isover();
    // A menu that cannot be drawn is closed again, opened so or led to.
    opens(pictureless);
    isover();
    opens(faulty);
    sends(stage, alice, {{action(ActionType::take, ContainerName::inventory, 10)}});
    isover();

    const auto log = stage.log();
    EXPECT_NE(log.find("[Ordomart][error] An runtimeerrorerror occurred, no click"), std::string::npos) << log;
    EXPECT_NE(log.find("An runtimeerrorerror occurred, no picture at base:showmenu"), std::string::npos) << log;
    EXPECT_NE(log.find("An error was caught during the prehandlemain process."), std::string::npos) << log;
    server([](auto* player) {  // who leaves takes his records with him
        ListenRecorder record;
        listenermanager().addnewblockcontainerpacketlistener(player, 7, record, {});
        ordomart::onplayerleft({player});
        EXPECT_EQ(listenermanager().find(player, 7), nullptr);
    });
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
        record.picture = {.menu = ordomart::screen::ordomenu, .complete = true};
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
