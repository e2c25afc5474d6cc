// What the file promises: everything is there again after a stop or a crash, and a file that is not ours is left alone.
#include <fstream>
#include <iterator>

#include "host/world/stacks.h"
#include "world_bare.h"

namespace {

class Restart : public bare::BareWorld {};

std::string bytesof(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST_F(Restart, findseverything) {
    open();
    const auto sword = fromsnbt(
        R"({Name:"minecraft:diamond_sword",Count:1b,Damage:0s,tag:{Damage:7,ench:[{id:9s,lvl:3s}],display:{Name:"§cSting"}}})");
    {
        auto& alice = join("Alice", "1001", 2);
        alice.getSupplies().setItem(0, sword);
        alice.getSupplies().setItem(35, stack("apple", 64));
        alice.setArmor(platform::ArmorSlot::feet, stack("diamond_boots"));
        alice.setOffhandSlot(stack("shield"));
        alice.drop(stack("dirt", 3));
        auto& robot = join("Robot 1");
        robot.getSupplies().setItem(4, stack("stone", 5));
        // He loses his connection to a server that is killed: nothing puts this away.
        robot.inventory().put(host::cursorslot, stack("stone", 2));

        world->setalive("Alice", false);
        world->setgametype("Alice", 1);
        world->setposition("Alice", {10.5f, 70, -3.25f}, 1);
        auto& board = world->scoreboard();
        board.newObjective("money", "coins");
        board.newObjective("helpermoney", "offlinemoney");
        board.addScore(alice, "money", 250);
        board.setScore("helpermoney", "a1001", -50);
        board.createScoreboardId("noscore");
        world->flush();
        alice.getSupplies().setItem(1, stack("dirt"));  // after the last pass: lost
    }
    reopen();

    EXPECT_EQ(world->knownplayers().getXuid("Alice"), "1001");
    EXPECT_EQ(world->knownplayers().fromXuid("1001"), "Alice");
    EXPECT_EQ(world->score("alice", "money"), 250);
    auto& board = world->scoreboard();
    EXPECT_EQ(board.getObjective("money")->getDisplayName(), "coins");
    EXPECT_EQ(board.getScore("helpermoney", "a1001"), -50);
    const auto noscore = board.getScoreboardId("noscore");
    EXPECT_TRUE(noscore.isValid());
    EXPECT_FALSE(board.getObjective("money")->hasScore(noscore));
    EXPECT_GT(board.createScoreboardId("later").raw, noscore.raw);

    const auto ground = world->droppeditems();
    ASSERT_EQ(ground.size(), 1u);
    EXPECT_EQ(told(ground[0].stack), "dirt*3");
    ASSERT_EQ(world->players().size(), 2u);
    EXPECT_FALSE(world->players()[0].alive);
    EXPECT_FALSE(world->players()[0].online);

    auto& alice = join("Alice", "1001");
    EXPECT_EQ(alice.getSupplies().getItem(0).save(), sword.save());
    EXPECT_EQ(told(alice.getSupplies().getItem(1)), "");
    EXPECT_EQ(told(alice.getSupplies().getItem(35)), "apple*64");
    EXPECT_EQ(told(alice.getArmor(platform::ArmorSlot::feet)), "diamond_boots*1");
    EXPECT_EQ(told(alice.getOffhandSlot()), "shield*1");
    EXPECT_EQ(static_cast<int>(alice.getCommandPermissionLevel()), 2);
    EXPECT_EQ(alice.getPlayerGameType(), 1);
    EXPECT_FALSE(alice.isAlive());
    EXPECT_EQ(alice.getPosition().toBlockPos(), (platform::BlockPos{10, 70, -4}));
    EXPECT_EQ(alice.getDimensionId(), 1);
    EXPECT_EQ(told(join("Robot 1").getSupplies().getItem(4)), "stone*7");
}

TEST_F(Restart, keepswhatleavingputaway) {
    open();
    auto& alice = join("Alice", "1001");
    for (int i = 0; i < host::inventorysize; ++i) alice.getSupplies().setItem(i, stack("dirt", 64));
    alice.getSupplies().setItem(9, stack("apple", 60));
    alice.inventory().put(host::cursorslot, stack("apple", 4));
    world->parts().leave(alice);
    world->flush();
    auto& again = join("Alice", "1001");
    EXPECT_EQ(told(again.getSupplies().getItem(9)), "apple*64");
    again.inventory().put(host::cursorslot, stack("apple", 4));  // no room now
    world->parts().leave(again);
    world->flush();
    reopen();
    ASSERT_EQ(world->droppeditems().size(), 1u);
    EXPECT_EQ(told(world->droppeditems()[0].stack), "apple*4");
}

TEST_F(Restart, leavesforeignfilesalone) {
    struct Case {
        const char* what;
        std::function<void(const std::string&)> make;
    };
    const Case cases[] = {
        {"no database", [](const std::string& file) { std::ofstream(file) << std::string(9000, 'x'); }},
        {"a newer format",
         [](const std::string& file) {
             SQLite::Database(file, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE).exec("PRAGMA user_version = 99");
         }},
        {"damaged",
         [](const std::string& file) {
             SQLite::Database made(file, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
             made.exec("CREATE TABLE t(x); INSERT INTO t VALUES (zeroblob(20000))");
             std::fstream(file, std::ios::in | std::ios::out | std::ios::binary).seekp(4096)
                 << std::string(8192, '\xff');
         }},
        {"tables of somebody else",
         [](const std::string& file) {
             SQLite::Database(file, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE).exec("CREATE TABLE players(id)");
         }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        c.make(path());
        const std::string before = bytesof(path());
        try {
            open();
            ADD_FAILURE() << "was opened";
        } catch (const host::StartError& e) {
            EXPECT_NE(std::string(e.what()).find(path()), std::string::npos) << e.what();
        }
        EXPECT_TRUE(bytesof(path()) == before);
        for (const char* tail : {"", "-wal", "-shm"}) std::filesystem::remove(path() + tail);
    }
    EXPECT_THROW(World("/nowhere/at/all.sqlite"), host::StartError);
}

// For nine seconds, in passes 50 ms apart, the file is locked: so many tries, and what is told.
TEST_F(Restart, triesafailedwriteagainwithgrowingpauses) {
    open();
    auto& alice = join("Alice", "1001");
    world->flush();
    EXPECT_EQ(world->stores().unwritable(), "");
    SQLite::Database other(path(), SQLite::OPEN_READWRITE);
    other.exec("CREATE TRIGGER full BEFORE INSERT ON slots BEGIN SELECT RAISE(ABORT, 'the disk is full'); END");
    alice.getSupplies().setItem(3, stack("apple", 9));
    world->parts().leave(alice);
    log.lines.clear();
    const auto pass = [&] {
        world->flush();
        passes(50);
    };
    pass();
    const std::string state = world->stores().unwritable();
    for (const std::string& part : {path(), std::string("1970-01-01"), std::string("the disk is full")})
        EXPECT_NE(state.find(part), std::string::npos) << state;
    ASSERT_EQ(log.lines.size(), 1u);
    EXPECT_EQ(log.lines[0].find(state), 0u) << log.lines[0];
    {
        const SQLite::Transaction locked(other, SQLite::TransactionBehavior::IMMEDIATE);
        for (int i = 1; i < 180; ++i) pass();
    }
    EXPECT_NE(world->stores().unwritable().find("database is locked"), std::string::npos);
    EXPECT_EQ(log.lines.size(), 1u) << "told once, not at every try";
    other.exec("DROP TRIGGER full");
    pass();
    EXPECT_NE(world->stores().unwritable(), "") << "it is not tried in every pass";
    for (int i = 0; i < 80; ++i) pass();
    EXPECT_EQ(world->stores().unwritable(), "");
    ASSERT_EQ(log.lines.size(), 2u);
    EXPECT_NE(log.lines[1].find("is written again, after 11 s"), std::string::npos) << log.lines[1];
    reopen();
    EXPECT_EQ(told(join("Alice", "1001").getSupplies().getItem(3)), "apple*9");
}

TEST_F(Restart, asetbackclockdoesnotputoffthenexttry) {
    open();
    join("Alice", "1001");
    SQLite::Database other(path(), SQLite::OPEN_READWRITE);
    {
        const SQLite::Transaction locked(other, SQLite::TransactionBehavior::IMMEDIATE);
        world->flush();
    }
    passes(-3'600'000);
    world->flush();
    EXPECT_EQ(world->stores().unwritable(), "");
}

// Records, scores and what waits for them: all of a pass or nothing, whichever part of it cannot be written.
TEST_F(Restart, writesapassasawhole) {
    open();
    auto& alice = join("Alice", "1001");
    world->scoreboard().newObjective("money", "coins");
    world->flush();
    int told = 0;
    const auto changes = [&](const char* state) {
        world->scoreboard().addScore(alice, "money", 1);
        world->tables().put("shops", "bob", [state]() -> std::string {
            if (std::string_view(state) == "thrown") throw std::runtime_error("the shop does not know itself");
            return state;
        });
        world->stores().whenwritten([&] { ++told; });
        world->flush();
    };
    const auto infile = [&] {
        return SQLite::Database(path()).execAndGet("SELECT value || bytes FROM scores, records").getString();
    };
    changes("one");
    EXPECT_EQ(told, 1);
    EXPECT_EQ(infile(), "1one");
    changes("thrown");
    EXPECT_EQ(told, 1);
    EXPECT_EQ(infile(), "1one");
    EXPECT_NE(world->stores().unwritable().find("the shop does not know itself"), std::string::npos);
    passes(5000);
    std::vector<std::string> points;
    world->parts().atwrite = [&](std::string_view point) {
        points.emplace_back(point);
        if (point == "unfinished") {
            EXPECT_EQ(infile(), "1one") << "nothing is to be seen before the commit";
        }
    };
    changes("three");
    EXPECT_EQ(points, (std::vector<std::string>{"begun", "unfinished", "committed"}));
    EXPECT_EQ(told, 3);
    EXPECT_EQ(infile(), "3three");
    world->flush();
    EXPECT_EQ(points.size(), 3U) << "a pass without a change writes nothing";
}

// What a last write cannot leave in the file is in it after the next start, also when that is cut short and comes
// twice.
TEST_F(Restart, keepsasidewhatcannotbewrittenatlast) {
    open();
    auto& alice = join("Alice", "1001");
    alice.getSupplies().setItem(0, stack("dirt", 5));
    alice.drop(stack("dirt", 3));
    world->scoreboard().newObjective("money", "co'ins");
    world->flush();
    EXPECT_EQ(world->lastflush(), "");
    alice.getSupplies().setItem(0, stack("dirt", 0));
    alice.getSupplies().setItem(3, stack("apple", 9));
    alice.drop(stack("apple", 2));
    world->scoreboard().addScore(alice, "money", 250);
    const std::string aside = path().substr(0, path().size() - 6) + "unsaved.sql";
    std::string script;
    {
        SQLite::Database other(path(), SQLite::OPEN_READWRITE);
        const SQLite::Transaction locked(other, SQLite::TransactionBehavior::IMMEDIATE);
        const std::string lost = world->lastflush();
        for (const std::string& part : {path(), std::string("database is locked"), aside})
            EXPECT_NE(lost.find(part), std::string::npos) << lost;
        EXPECT_EQ(world->lastflush(), "") << "it is kept already";
        script = bytesof(aside);
    }
    for (int start = 0; start < 2; ++start) {
        world.reset();
        std::ofstream(aside, std::ios::binary) << script;
        open();
        EXPECT_FALSE(std::filesystem::exists(aside));
        EXPECT_EQ(world->score("Alice", "money"), 250);
        ASSERT_EQ(world->droppeditems().size(), 2u);
        auto& again = join("Alice", "1001");
        EXPECT_EQ(told(again.getSupplies().getItem(0)), "");
        EXPECT_EQ(told(again.getSupplies().getItem(3)), "apple*9");
    }
    world.reset();
    std::ofstream(aside) << "DELETE FROM slots; what is this";
    try {
        open();
        FAIL() << "was opened";
    } catch (const host::StartError& e) {
        EXPECT_NE(std::string(e.what()).find(aside), std::string::npos) << e.what();
    }
    EXPECT_TRUE(std::filesystem::exists(aside));
    std::filesystem::remove(aside);
    open();
    EXPECT_EQ(told(join("Alice", "1001").getSupplies().getItem(3)), "apple*9");
}

TEST_F(Restart, namesadamagedslot) {
    open();
    join("Alice", "1001").getSupplies().setItem(3, stack("apple", 9));
    world->flush();
    world.reset();
    SQLite::Database(path(), SQLite::OPEN_READWRITE).exec("UPDATE slots SET stack = x'0a00'");
    open();
    try {
        join("Alice", "1001");
        FAIL() << "came in";
    } catch (const std::runtime_error& e) {
        EXPECT_NE(std::string(e.what()).find("slot 3 of Alice"), std::string::npos) << e.what();
    }
    EXPECT_FALSE(world->players()[0].online);
}

TEST_F(Restart, keepsnamesapart) {
    open();
    auto& alice = join("Alice", "1001", 3);
    EXPECT_THROW(join("Alice", "1001"), std::runtime_error);
    EXPECT_THROW(join("aLICE", "1002"), std::runtime_error);
    EXPECT_THROW(join("alice"), std::runtime_error);
    world->parts().leave(alice);
    auto& renamed = join("Alicia", "1001");
    EXPECT_EQ(static_cast<int>(renamed.getCommandPermissionLevel()), 3);
    const auto xuids = [&] {
        std::string found;
        for (const char* name : {"Alice", "alice", "ALICIA", "Alic", "Alicea"})
            found += world->knownplayers().getXuid(name) + " ";
        return found;
    };
    EXPECT_EQ(xuids(), "  1001   ");
    EXPECT_EQ(world->knownplayers().fromXuid("1001"), "Alicia");
    EXPECT_NO_THROW(join("Alice", "1002"));
    EXPECT_EQ(xuids(), "1002 1002 1001   ");
    // As a file of another maker may have it; the name as it stands goes first.
    world->parts().names.learn("1003", "alice");
    EXPECT_EQ(xuids(), "1002 1003 1001   ");
    auto& robot = join("Robot");
    EXPECT_EQ(world->level().getPlayerByXuid(""), nullptr);
    EXPECT_EQ(world->level().getPlayerByXuid("name:robot"), nullptr);
    EXPECT_EQ(world->level().getPlayerByXuid("1002")->getRealName(), "Alice");
    EXPECT_EQ(world->level().getPlayer(robot.sessionid()), &robot);
    const auto gone = robot.sessionid();
    world->parts().leave(robot);
    EXPECT_EQ(world->level().getPlayer(gone), nullptr);
    EXPECT_NE(join("Robot").sessionid(), gone);
    EXPECT_THROW(static_cast<void>(world->item("Nobody", 0)), std::runtime_error);
    world->flush();
    reopen();
    EXPECT_EQ(xuids(), "1002 1003 1001   ");
}

}  // namespace
