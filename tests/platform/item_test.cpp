// Stacks: the item compound, counts, wear, and the way over the wire.
#include <gtest/gtest.h>

#include "platform/packets/networkitem.h"
#include "tests/platform/values.h"

using namespace platform;
using values::snbt;

class Stacks : public testing::Test {
    values::ItemTable table_;
};

TEST_F(Stacks, KeepWholeCompounds) {
    const std::string texts[] = {
        "{Count:1b,Damage:0s,Name:\"minecraft:apple\",WasPickedUp:0b}",
        "{Count:-1b,Damage:-3s,Name:\"minecraft:apple\",WasPickedUp:1b,tag:{display:{Name:\"A\"}}}",
        "{Block:{name:\"minecraft:chest\",version:17959425},CanDestroy:[\"a\"],Count:64b,Damage:0s,"
        "Name:\"minecraft:chest\",Slot:3b,WasPickedUp:0b}",
    };
    for (const auto& text : texts) EXPECT_EQ(ItemStack::fromTag(snbt(text)).save().toSNBT(), text);
    EXPECT_EQ(ItemStack::fromTag(snbt(texts[1])).getCount(), 255);
    // what is left out, short names, and user data of nothing
    EXPECT_EQ(ItemStack::fromTag(snbt("{Name:apple,tag:{}}")).save().toSNBT(), texts[0]);
    EXPECT_EQ(ItemStack::create("apple").save().toSNBT(), texts[0]);
}

TEST_F(Stacks, WithoutAnItemAreNull) {
    const std::string nothing = "{Count:0b,Damage:0s,Name:\"\",WasPickedUp:0b}";
    auto taken = ItemStack::create("apple", 3);
    taken.set(0);
    auto replaced = ItemStack::create("apple", 3);
    replaced.load(snbt("{Name:\"addon:gem\",Count:2b,tag:{x:1}}"));
    for (const auto& stack : {ItemStack(), taken, replaced, ItemStack::create("gem"), ItemStack::create("apple", 0),
                              ItemStack::fromTag(snbt("{Name:\"minecraft:apple\",Count:0b}"))}) {
        EXPECT_TRUE(stack.isNull());
        EXPECT_EQ(stack.getId(), 0);
        EXPECT_EQ(stack.save().toSNBT(), nothing);
        EXPECT_EQ(tonetwork(stack), NetworkItem());
        EXPECT_FALSE(stack.isStackable(stack));
    }
}

TEST_F(Stacks, TellCountWearAndTexts) {
    auto stack = ItemStack::create("apple", 3, 5);
    stack.set(300);
    EXPECT_EQ(stack.getCount(), 255);
    EXPECT_EQ(stack.getDamageValue(), 5);
    const auto sword = ItemStack::fromTag(
        snbt("{Name:diamond_sword,Damage:7s,tag:{Damage:40,display:{Name:\"Edge\",Lore:[\"one\",\"two\"]}}}"));
    EXPECT_EQ(sword.getDamageValue(), 40);
    EXPECT_EQ(sword.getAuxValue(), 7);
    EXPECT_EQ(sword.getMaxDamage(), 1561);
    EXPECT_EQ(sword.getCustomName(), "Edge");
    EXPECT_EQ(sword.getCustomLore(), (std::vector<std::string>{"one", "two"}));
    EXPECT_EQ(ItemStack::create("diamond_sword").getDamageValue(), 0);
    EXPECT_TRUE(ItemStack::create("apple", 3).isStackable(ItemStack::create("apple", 9)));
    EXPECT_FALSE(ItemStack::create("apple", 3).isStackable(stack));
}

TEST_F(Stacks, GoOverTheWireAndBack) {
    const auto stack = ItemStack::fromTag(
        snbt("{Name:chest,Count:100b,Damage:-2s,CanPlaceOn:[\"minecraft:dirt\"],tag:{display:{Name:\"A\"}}}"));
    const auto item = tonetwork(stack);
    EXPECT_EQ(item.networkid, -54);
    EXPECT_EQ(item.blockruntimeid, 77);
    EXPECT_EQ(item.canplaceon, std::vector<std::string>{"minecraft:dirt"});
    EXPECT_EQ(fromnetwork(item).save(), stack.save());
    auto unknown = item;
    unknown.networkid = 9999;
    EXPECT_TRUE(fromnetwork(unknown).isNull());
}
