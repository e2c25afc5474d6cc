// Whose picture it is: what comes ticks or threads later than its menu was asked for is painted only for whoever still
// looks at that menu, no click counts on what is not painted, and a close repaints what it must and no more.
#include "tests/market/chest_server.h"

using namespace chest;

TEST(ChestPictures, NoClickCountsBeforeThePaint) {
    const auto taken = [](ContainerName from, int slot) { return action(ActionType::take, from, slot); };
    const struct {
        const char* command;
        platform::ItemStackRequestAction pressed;
    } cases[] = {{"ordomart buy", taken(ContainerName::inventory, 9)},
                 {"ordomart buy", taken(ContainerName::offhand, 1)},
                 {"ordomart buy", taken(ContainerName::hotbar, 6)},
                 {"ordomart buy", action(ActionType::swap, ContainerName::cursor, 0, ContainerName::hotbar, 2)},
                 {"ordomart ordomenu", taken(ContainerName::armor, 0)}};
    Stage stage({.adjust = &watchserver});
    stage.writeshop(bob, goods(3));
    Actor& alice = stage.join("Alice", ada);
    records(alice);
    for (const auto& each : cases)
        for (const int ticks : {0, 1, 4}) {  // the container opens with the first one
            SCOPED_TRACE(
                fmt::format("{} pressed from {} after {} ticks", each.command, each.pressed.source.container, ticks));
            alice.forgets().types(each.command);
            stage.ticks(ticks);
            sends(stage, alice, {{each.pressed}});
            EXPECT_EQ(responses(alice), "1");
            stage.ticks(6 - ticks);
            EXPECT_TRUE(alice.sounds().empty());
            // The menu is the one that was asked for, and alive.
            if (each.pressed.source.container != static_cast<std::uint8_t>(ContainerName::armor)) {
                EXPECT_EQ(named(alice, offhandid, 0), "Choose an item to buy it");
                alice.clicks(ContainerName::inventory, 9);
                EXPECT_NE(alice.formtext().find("good 00"), std::string::npos);
                alice.dismisses();
            } else {
                EXPECT_EQ(looks(alice, armorid, 0), "minecraft:emerald:3");
                alice.clicks(ContainerName::armor, 0);
                EXPECT_EQ(alice.shown(inventoryid, 9), "minecraft:apple*1");
                alice.closes();
            }
            rests(stage);
        }
    EXPECT_EQ(passedon, 0);
}

// By the fifth tick a player may have closed the screen, died, or opened another menu.
TEST(ChestPictures, AnOpeningThatIsOverIsNotPainted) {
    Stage stage({.adjust = &watchserver});
    stage.writeshop(bob, goods(3));
    Actor& alice = stage.join("Alice", ada).gives(9, "stone", 3);
    records(alice);
    int id = 0;  // of the opening: they are counted from 1
    const struct {
        const char* how;
        int ticks;
        std::function<void()> over;
        bool wasopen;
    } cases[] = {{"closed by a client that guessed the id", 0, [&] { closesraw(stage, alice, id); }, false},
                 {"closed", 2, [&] { alice.closes(); }, true},
                 {"died on the way", 0, [&] { alice.dies(); }, false},
                 {"died in front of the open screen", 3, [&] { alice.dies(); }, true},
                 {"died in front of the picture", 6, [&] { alice.dies().clicks(ContainerName::inventory, 9); }, true}};
    for (const auto& each : cases) {
        SCOPED_TRACE(each.how);
        ++id;
        alice.forgets().types("ordomart buy");
        stage.ticks(each.ticks);
        each.over();
        stage.ticks(10);
        EXPECT_EQ(order(alice).find("open") != std::string::npos, each.wasopen);
        EXPECT_FALSE(alice.menuopen());
        EXPECT_EQ(alice.shown(inventoryid, 9) + alice.shown(offhandid, 0), "minecraft:stone*3");
        EXPECT_TRUE(alice.form().is_null());
        passedon = 0;
        sends(stage, alice, {{action(ActionType::take, ContainerName::inventory, 20)}});
        EXPECT_EQ(passedon, 1) << "nothing of it is left";
        alice.revives();
        rests(stage);
    }
    for (const int ticks : {0, 1, 4}) {
        SCOPED_TRACE(fmt::format("another one after {} ticks", ticks));
        alice.types("ordomart ordomenu");
        stage.ticks(ticks);
        rests(stage);
        alice.types("ordomart buy");
        stage.ticks(4);
        EXPECT_EQ(looks(alice, armorid, 0), "") << "the first one's time has come, and is not his any more";
        stage.ticks(1);
        EXPECT_EQ(alice.shown(inventoryid, 9), "minecraft:apple*1");
        alice.clicks(ContainerName::hotbar, 8).closes();
        stage.ticks(6);
        EXPECT_EQ(alice.shown(inventoryid, 9), "minecraft:stone*3");
        rests(stage);
    }
}

// All clicks of a case arrive before the list is there.
TEST(ChestPictures, APictureThatComesLateIsPaintedOnlyWhereItIsAwaited) {
    using enum ActionType;
    const auto helmet = action(take, ContainerName::armor, 0), back = action(take, ContainerName::offhand, 1),
               next = action(take, ContainerName::hotbar, 8), good = action(take, ContainerName::inventory, 9);
    const struct {
        std::vector<platform::ItemStackRequestAction> before, burst;
        bool closes;
        const char *order, *first, *armour;  // the packets of the burst; what stands in the end
    } cases[] = {
        {{}, {helmet, back}, false, "content*12 slot*6", "", "minecraft:emerald:3"},
        {{}, {helmet, back, helmet}, false, "content*12 slot*6 content*5 slot*31", "minecraft:apple*1", ""},
        {{helmet}, {next, back, helmet}, false, "content*9 slot*6 content*5 slot*9", "minecraft:apple*1", ""},
        {{helmet}, {next, good, next}, false, "content slot*9", "minecraft:apple*1", ""},
        {{helmet}, {next}, true, "content*4 slot text close", "minecraft:stone*3", ""},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.order);
        Stage stage;
        stage.writeshop(bob, goods(30));
        Actor& alice = stage.join("Alice", ada).gives(9, "stone", 3);
        opens(stage, alice, "ordomart ordomenu");
        for (const auto& click : each.before) sends(stage, alice, {{click}});
        records(alice);
        alice.forgets().look([&](client::ModelClient& c) {
            for (const auto& click : each.burst) c.request({{0, {click}}});
            if (each.closes) c.close();
        });
        stage.server().settle();
        EXPECT_EQ(order(alice), each.order);
        EXPECT_EQ(alice.shown(inventoryid, 9), each.first);
        EXPECT_EQ(looks(alice, armorid, 0), each.armour);
        EXPECT_TRUE(alice.form().is_null());
    }
}

// The list is made anew by the fifth press, and is one page then; the press behind it comes before that page is there.
TEST(ChestPictures, APageThatIsLostLeavesNoButtonBehind) {
    Stage stage;
    const std::string carl = "2535400000000003";
    stage.writeshop(bob, goods(20));
    stage.writeshop(carl, goods(10));
    Actor& alice = stage.join("Alice", ada);
    Actor& root = stage.join("Root", "2535400000000009", "en_US", desktop, 1);
    stage.join("Carl", carl);
    opens(stage, alice, "ordomart buy");
    const auto press = [&](std::initializer_list<int> slots) {
        alice.look([&](client::ModelClient& c) {
            for (const int slot : slots) c.request({{0, {action(ActionType::take, ContainerName::hotbar, slot)}}});
        });
        stage.server().settle();
    };
    for (const int slot : {8, 3, 3, 3, 3}) press({slot});
    EXPECT_EQ(looks(alice, inventoryid, 0), "minecraft:book:3 shining");
    root.types("ordomart ban sell Carl");
    press({3, 8});
    EXPECT_EQ(looks(alice, inventoryid, 0), "");
    EXPECT_EQ(looks(alice, inventoryid, 8), "");
    EXPECT_NE(lore(alice, inventoryid, 9).find("good 00"), std::string::npos);
    EXPECT_EQ(alice.shown(inventoryid, 29), "");
}

TEST(ChestPictures, AStrayCloseIsAnsweredOnceATickAndNeverOverAMenu) {
    Stage stage({.adjust = &watchserver});
    stage.writeshop(bob, goods(1));
    Actor& alice = stage.join("Alice", ada).gives(9, "stone", 3);
    records(alice);
    const std::string inventory = "content*3 slot";
    // Of those that nobody asked for the server deals with the first of a tick.
    const auto answer = [&](int id, int times, int dealtwith) {
        closed = 0;
        closesraw(stage, alice, id, times);
        EXPECT_EQ(closed, dealtwith);
        auto sent = order(alice);
        return sent.substr(0, sent.find(" close"));
    };
    EXPECT_EQ(answer(55, 128, 1), inventory);
    EXPECT_EQ(answer(56, 3, 0), "");
    opens(stage, alice, "ordomart buy");
    order(alice);
    EXPECT_EQ(answer(55, 3, 1), "close");
    EXPECT_EQ(alice.shown(inventoryid, 9), "minecraft:apple*1");
    alice.closes();
    EXPECT_EQ(order(alice), "content*3 slot text close");
    EXPECT_EQ(answer(1, 3, 0), "");
    rests(stage);
    alice.types("ordomart buy");
    order(alice);
    EXPECT_EQ(answer(2, 1, 1), inventory + " text") << "an open one does its work, whatever was answered in this tick";
    stage.ticks(1);
    EXPECT_EQ(answer(2, 3, 1), inventory);
}
