// The rules of inventory and blocks beyond what every host promises.
#include "platform/packets/containers.h"
#include "world_bare.h"

namespace {

class Rules : public bare::BareWorld {
protected:
    Rules() { open(); }
};

TEST_F(Rules, givingfillsstacksfirst) {
    using Picture = std::map<int, std::string>;  // "apple*60" by slot
    const struct {
        const char* what;
        std::map<int, ItemStack> before;
        ItemStack given;
        Picture after;
    } cases[] = {
        {"an empty inventory", {}, stack("apple", 10), {{0, "apple*10"}}},
        {"more than a stack", {}, stack("ender_pearl", 17), {{0, "ender_pearl*16"}, {1, "ender_pearl*1"}}},
        {"a later stack of its kind", {{5, stack("apple", 60)}}, stack("apple", 10), {{0, "apple*6"}, {5, "apple*64"}}},
        {"other items stay apart", {{0, stack("dirt")}}, stack("apple"), {{0, "dirt*1"}, {1, "apple*1"}}},
        {"one over its limit", {{0, stack("apple", 100)}}, stack("apple"), {{0, "apple*100"}, {1, "apple*1"}}},
    };
    auto& supplies = join("Alice", "1001").getSupplies();
    for (const auto& c : cases) {
        for (int i = 0; i < host::inventorysize; ++i) supplies.setItem(i, ItemStack());
        for (const auto& [slot, held] : c.before) supplies.setItem(slot, held);
        EXPECT_TRUE(supplies.add(c.given)) << c.what;
        Picture after;
        for (int i = 0; i < host::inventorysize; ++i)
            if (!supplies.getItem(i).isNull()) after[i] = told(supplies.getItem(i));
        EXPECT_EQ(after, c.after) << c.what;
    }
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
    ASSERT_EQ(link.packets.size(), 4u);  // inventory, armour, offhand, cursor
    const auto inventory = platform::readpacket<platform::InventoryContentPacket>(link.packets[0].body());
    EXPECT_EQ(inventory.items.at(0).stackid, alice.inventory().slot(0).stackid);

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
}

TEST_F(Rules, blocks) {
    auto& level = world->level();
    const auto id = [&](const char* name) { return static_cast<std::int64_t>(level.defaultBlockRuntimeId(name)); };
    auto* overworld = level.getBlockSource(0);
    EXPECT_EQ(overworld->getBlockRuntimeId({5, 63, 5}), id("minecraft:grass"));
    EXPECT_EQ(overworld->getBlockRuntimeId({5, 64, 5}), id("minecraft:air"));
    EXPECT_EQ(overworld->getBlockRuntimeId({5, 320, 5}), -1);
    world->setblock(0, {5, 64, 5}, "minecraft:chest");
    world->setblock(0, {5, 64, 5}, "minecraft:anvil", 1);
    EXPECT_EQ(overworld->getBlockRuntimeId({5, 64, 5}), id("minecraft:chest"));
    EXPECT_EQ(overworld->getExtraBlockRuntimeId({5, 64, 5}), id("minecraft:anvil"));
    EXPECT_EQ(level.getBlockSource(1)->getBlockRuntimeId({5, 64, 5}), id("minecraft:air"));
    EXPECT_THROW(world->setblock(0, {0, 0, 0}, "minecraft:nonsense"), std::runtime_error);
    EXPECT_THROW(world->setposition("Alice", {}, 7), std::runtime_error);
}

}  // namespace
