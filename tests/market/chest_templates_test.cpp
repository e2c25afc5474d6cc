// The templates are put together byte by byte while compiling. Here they are held against what the platform's own
// writer makes of the same tree, and against its tolerant reader.
#include <gtest/gtest.h>

#include "platform/nbt/tags.h"
#include "plugin/chestmenu/decoration.h"
#include "plugin/chestmenu/templates.h"

using namespace ordomart;
using namespace std::string_literals;

namespace {

constexpr const char* emptychest = R"(Findable:0b,Items:[],id:"Chest",isMovable:1b)";
const std::string pairtail =
    "\x03\x05\0pairx\x03\x05\0pairz\x04\0\0\0\x03\x01\0x\x03\x01\0y\x67\0\0\0\x03\x01\0z\x04\0\0\0\0\0"s;

std::string stackentry(int slot, const std::string& name, int damage, const std::string& shown,
                       const std::string& before = {}) {
    return "{" + before + "Count:1b,Damage:" + std::to_string(damage) + "s,Name:\"minecraft:" + name +
           "\",Slot:" + std::to_string(slot) + "b,WasPickedUp:0b,tag:{RepairCost:0,display:{Name:\"" + shown + "\"}}}";
}

struct templatecase {
    const char* name;
    std::string_view bytes;
    std::string tree;  // entries in front of the tail
    std::string tail;
};

const templatecase cases[] = {
    {"full", templates::fullchest,
     R"(CustomName:"ONLINE CHESTMENU",Findable:0b,Items:[)" + stackentry(0, "emerald", 0, "shopmenu") + "," +
         stackentry(1, "skull", 3, "openselfshop") + "," +
         stackentry(2, "chest", 0, "nearbychestmenu",
                    R"(Block:{name:"minecraft:chest",states:{facing_direction:0},version:17959425},)") +
         R"(],id:"Chest",isMovable:1b)",
     "\x03\x01\0x\x5f\0\0\x03\x01\0y\0\0\0\x03\x01\0z\x4a\0\0\0\0"s},
    {"near", templates::nearchest, R"(CustomName:"nearbymenu",)"s + emptychest,
     "\x03\x01\0x\x61\0\0\x03\x01\0y\0\0\0\x03\x01\0z\x4c\0\0\0\0"s},
    {"plain", templates::plainchest, emptychest, "\x03\x01\0x\x03\x01\0y\x68\0\0\0\x03\x01\0z\x03\0\0\0\0\0"s},
    {"leader", templates::pairleader, emptychest + ",pairlead:1b"s, pairtail},
    {"follower", templates::pairfollower, emptychest + ",pairlead:0b"s, pairtail},
    {"stack", templates::basestack, R"(Count:1b,Damage:3s,Name:"minecraft:skull",WasPickedUp:0b)", "\0\0"s},
};

}  // namespace

TEST(ChestTemplates, AreTheirTreeAndTheirTailByteForByte) {
    for (const auto& each : cases) {
        const auto tree = CompoundTag::fromSNBT("{" + each.tree + "}");
        ASSERT_TRUE(tree) << each.name;
        auto written = tree->toBinary();
        written = written.substr(3, written.size() - 4);  // without root header and end
        EXPECT_EQ(std::string(each.bytes), written + each.tail) << each.name;
    }
}

TEST(ChestTemplates, KeepWhatStandsInFrontOfABrokenTail) {
    for (const auto& each : cases) {
        const auto read = readtoleranttag(each.bytes);
        const auto tree = CompoundTag::fromSNBT("{" + each.tree + "}");
        for (const auto& [key, value] : tree->entries()) {
            ASSERT_NE(read.get(key), nullptr) << each.name << " has lost " << key;
            EXPECT_EQ(*read.get(key), value) << each.name << " " << key;
        }
    }
    EXPECT_EQ(basestack().toSNBT(), CompoundTag::fromSNBT("{" + std::end(cases)[-1].tree + "}")->toSNBT());
}
