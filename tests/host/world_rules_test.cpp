// The rules of scoreboard, inventory and blocks.
#include <limits>

#include "platform/packets/containers.h"
#include "world_bare.h"

namespace {

class Rules : public bare::BareWorld {
protected:
    Rules() { open(); }
};

TEST_F(Rules, scores) {
    auto& board = world->scoreboard();
    auto& alice = join("Alice", "1001");
    EXPECT_EQ(board.getObjective("money"), nullptr);
    EXPECT_FALSE(board.addScore(alice, "money", 1));
    EXPECT_FALSE(board.setScore("money", "a1001", 1));
    EXPECT_THROW(static_cast<void>(board.getScore("money", "a1001")), std::runtime_error);
    EXPECT_EQ(board.getScore(alice, "money"), 0);
    EXPECT_THROW(world->setscore("Alice", "money", 1), std::runtime_error);

    auto* money = board.newObjective("money", "coins");
    EXPECT_EQ(board.newObjective("money", "other"), money);
    EXPECT_EQ(money->getDisplayName(), "coins");
    EXPECT_FALSE(board.getScoreboardId(alice).isValid());
    EXPECT_TRUE(board.addScore(alice, "money", 5));
    EXPECT_TRUE(board.reduceScore(alice, "money", 8));
    EXPECT_EQ(board.getScore(alice, "money"), -3);
    EXPECT_TRUE(money->hasScore(board.getScoreboardId(alice)));

    // A fake player may bear the name of a player, or look like his key.
    for (const char* name : {"Alice", "1001"}) {
        EXPECT_FALSE(board.getScoreboardId(std::string(name)).isValid());
        EXPECT_TRUE(board.setScore("money", name, 100));
    }
    EXPECT_EQ(world->score("Alice", "money"), -3);

    // An id without a score, as an offline account is at first.
    const auto id = board.createScoreboardId("a1001");
    EXPECT_EQ(board.createScoreboardId("a1001"), id);
    EXPECT_THROW(static_cast<void>(board.getScore("money", "a1001")), std::runtime_error);
    bool worked = false;
    EXPECT_EQ(board.modifyPlayerScore(worked, id, *money, 0, platform::PlayerScoreSetFunction::Add), 0);
    EXPECT_TRUE(worked);
    EXPECT_EQ(board.getScore("money", "a1001"), 0);
    board.modifyPlayerScore(worked, {}, *money, 1, platform::PlayerScoreSetFunction::Set);
    EXPECT_FALSE(worked);

    constexpr int most = std::numeric_limits<int>::max(), least = std::numeric_limits<int>::min();
    world->setscore("Alice", "money", most);
    EXPECT_TRUE(board.addScore(alice, "money", 1));
    EXPECT_EQ(board.getScore(alice, "money"), least);
    EXPECT_TRUE(board.reduceScore(alice, "money", 1));
    EXPECT_EQ(board.getScore(alice, "money"), most);
}

TEST_F(Rules, givingfillsstacksfirst) {
    struct Case {
        const char* what;
        std::map<int, std::pair<const char*, int>> before;
        const char* given;
        int count;
        bool fits;
        std::map<int, std::string> after;  // slots that differ
    };
    const Case cases[] = {
        {"an empty inventory", {}, "apple", 10, true, {{0, "apple*10"}}},
        {"more than a stack",
         {},
         "ender_pearl",
         40,
         true,
         {{0, "ender_pearl*16"}, {1, "ender_pearl*16"}, {2, "ender_pearl*8"}}},
        {"a later stack of its kind goes before an empty slot",
         {{5, {"apple", 60}}},
         "apple",
         10,
         true,
         {{0, "apple*6"}, {5, "apple*64"}}},
        {"other items stay apart", {{0, {"dirt", 1}}}, "apple", 1, true, {{1, "apple*1"}}},
        {"what is over its limit takes nothing", {{0, {"apple", 100}}}, "apple", 1, true, {{1, "apple*1"}}},
    };
    auto& alice = join("Alice", "1001");
    auto& supplies = alice.getSupplies();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        for (int i = 0; i < host::inventorysize; ++i) supplies.setItem(i, ItemStack());
        for (const auto& [slot, held] : c.before) supplies.setItem(slot, stack(held.first, held.second));
        EXPECT_EQ(supplies.canAdd(stack(c.given, c.count)), c.fits);
        EXPECT_EQ(supplies.add(stack(c.given, c.count)), c.fits);
        for (const auto& [slot, held] : c.after) EXPECT_EQ(told(supplies.getItem(slot)), held) << slot;
    }

    for (int i = 0; i < host::inventorysize; ++i) supplies.setItem(i, stack("apple", 64));
    supplies.setItem(20, stack("apple", 60));
    EXPECT_TRUE(supplies.canAdd(stack("apple", 4)));
    EXPECT_FALSE(supplies.add(stack("apple", 5)));
    EXPECT_EQ(told(supplies.getItem(20)), "apple*60");
    EXPECT_FALSE(supplies.canAdd(stack("dirt")));
    EXPECT_TRUE(supplies.add(ItemStack()));
    supplies.removeItem(20, 61);
    EXPECT_EQ(told(supplies.getItem(20)), "");
    supplies.removeItem(99, 1);
    EXPECT_TRUE(supplies.getItem(-1).isNull());
    EXPECT_THROW(supplies.setItem(36, ItemStack()), std::out_of_range);
}

TEST_F(Rules, stacknumbersgowiththestack) {
    auto& slots = join("Alice", "1001").inventory();
    const auto number = [&](int slot) { return slots.slot(slot).stackid; };
    slots.put(0, stack("apple", 10));
    const auto first = number(0);
    EXPECT_GT(first, 0);
    slots.put(0, stack("apple", 4));
    EXPECT_EQ(number(0), first);
    slots.put(0, stack("dirt", 4));
    EXPECT_NE(number(0), first);
    const auto dirt = number(0);
    slots.transfer(0, 7, 4, 0);
    EXPECT_EQ(number(0), 0);
    EXPECT_EQ(number(7), dirt);
    slots.transfer(7, 8, 1, 0);
    EXPECT_EQ(number(7), dirt);
    EXPECT_NE(number(8), dirt);
    slots.put(7, ItemStack());
    EXPECT_EQ(number(7), 0);
}

TEST_F(Rules, theclientistold) {
    auto& alice = join("Alice", "1001");
    alice.getSupplies().setItem(0, stack("apple", 10));
    alice.refreshInventory();
    ASSERT_EQ(link.packets.size(), 4u);
    const struct {
        std::uint32_t container;
        std::size_t size;
    } contents[] = {{0, 36}, {120, 4}, {119, 1}};
    for (std::size_t i = 0; i < 3; ++i) {
        const auto packet = platform::readpacket<platform::InventoryContentPacket>(link.packets[i].body());
        EXPECT_EQ(packet.containerid, contents[i].container);
        EXPECT_EQ(packet.items.size(), contents[i].size);
    }
    const auto cursor = platform::readpacket<platform::InventorySlotPacket>(link.packets[3].body());
    EXPECT_EQ(cursor.containerid, 124u);
    EXPECT_EQ(cursor.slot, 0u);
    const auto first = platform::readpacket<platform::InventoryContentPacket>(link.packets[0].body()).items[0];
    EXPECT_EQ(first.stackid, alice.inventory().slot(0).stackid);

    // What has been shown is not shown again; what an operator changes is, at the end of the pass.
    link.packets.clear();
    world->flush();
    EXPECT_TRUE(link.packets.empty());
    world->setitem("Alice", 37, stack("diamond_chestplate"));
    world->flush();
    ASSERT_EQ(link.packets.size(), 1u);
    const auto chest = platform::readpacket<platform::InventorySlotPacket>(link.packets[0].body());
    EXPECT_EQ(chest.containerid, 120u);
    EXPECT_EQ(chest.slot, 1u);
    EXPECT_EQ(chest.item.count, 1);

    EXPECT_TRUE(alice.isReadyForContainer());
    world->setalive("Alice", false);
    EXPECT_FALSE(alice.isReadyForContainer());
    world->setalive("Alice", true);
    link.open = false;
    EXPECT_FALSE(alice.isReadyForContainer());
    for (int i = 1; i <= 99; ++i) EXPECT_EQ(alice._nextContainerCounter(), i);
    EXPECT_EQ(alice._nextContainerCounter(), 1);
    EXPECT_EQ(alice.currentContainerCounter(), 1);
}

TEST_F(Rules, blocks) {
    auto& level = world->level();
    const auto id = [&](const char* name) { return static_cast<std::int64_t>(level.defaultBlockRuntimeId(name)); };
    auto* overworld = level.getBlockSource(0);
    ASSERT_NE(overworld, nullptr);
    EXPECT_EQ(level.getBlockSource(3), nullptr);
    EXPECT_EQ(level.getBlockSource(-1), nullptr);
    EXPECT_EQ(overworld->getBlockRuntimeId({5, 63, 5}), id("minecraft:grass"));
    EXPECT_EQ(overworld->getBlockRuntimeId({5, 64, 5}), id("minecraft:air"));
    EXPECT_EQ(overworld->getBlockRuntimeId({5, 320, 5}), -1);
    EXPECT_EQ(overworld->getExtraBlockRuntimeId({5, 64, 5}), -1);
    world->setblock(0, {5, 64, 5}, "minecraft:chest");
    world->setblock(0, {5, 64, 5}, "minecraft:anvil", 1);
    EXPECT_EQ(overworld->getBlockRuntimeId({5, 64, 5}), id("minecraft:chest"));
    EXPECT_EQ(overworld->getExtraBlockRuntimeId({5, 64, 5}), id("minecraft:anvil"));
    EXPECT_EQ(level.getBlockSource(1)->getBlockRuntimeId({5, 64, 5}), id("minecraft:air"));
    EXPECT_NE(id("minecraft:chest"), id("minecraft:anvil"));
    EXPECT_THROW(world->setblock(0, {0, 0, 0}, "minecraft:nonsense"), std::runtime_error);
    EXPECT_THROW(world->setposition("Alice", {}, 7), std::runtime_error);
}

}  // namespace
