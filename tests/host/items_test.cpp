// The item table: what a client, a saved stack or a reader of hover texts relies on.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>

#include "host/world/enchantments.h"
#include "host/world/gamedata.h"
#include "host/world/items.h"
#include "platform/host.h"
#include "platform/packets/networkitem.h"
#include "platform/text.h"

namespace {

using platform::ItemStack;

class Language : public platform::Texts {
public:
    std::string gametext(const std::string& key, const std::string&) const override { return key; }
    std::string currentlanguage() const override { return code; }
    platform::I18nBase* loadI18n(const std::string&, const std::string&, const platform::LangData&) override {
        return nullptr;
    }
    std::string code = "en_US";
};

class ItemTableTest : public testing::Test {
protected:
    void SetUp() override {
        services.items = &table;
        services.texts = &language;
        platform::installhost(&services);
    }
    void TearDown() override { platform::installhost(nullptr); }

    static ItemStack item(const std::string& snbt) {
        const auto tag = platform::CompoundTag::fromSNBT(snbt);
        return tag ? ItemStack::fromTag(*tag) : ItemStack();
    }

    host::ItemTable& table = host::itemtable();
    Language language;
    platform::Host services;
};

TEST_F(ItemTableTest, NamesAndNumbersAreUnique) {
    std::set<std::string> names;
    std::set<std::int32_t> ids, blocks;
    for (const auto& row : table.rows()) {
        EXPECT_TRUE(names.insert(row.info.name).second) << row.info.name;
        EXPECT_TRUE(ids.insert(row.info.networkid).second) << row.info.name;
        if (row.info.blockruntimeid != 0) {
            EXPECT_TRUE(blocks.insert(row.info.blockruntimeid).second) << row.info.name;
        }
        EXPECT_EQ(table.byid(row.info.networkid), &row.info);
        std::set<int> auxes;
        for (const auto& variant : row.variants) EXPECT_TRUE(auxes.insert(variant.aux).second) << variant.english;
    }
    EXPECT_GE(names.size(), 550u);
    EXPECT_FALSE(ids.contains(0));
    EXPECT_EQ(table.find("shield")->networkid, platform::shieldnetworkid);
    EXPECT_EQ(table.find("minecraft:shield"), table.find("shield"));
    for (const char* unknown : {"", "minecraft:", "shie", "addon:shield", "minecraft:minecraft:shield", "air"})
        EXPECT_EQ(table.find(unknown), nullptr) << unknown;
    EXPECT_EQ(table.byid(0), nullptr);
}

TEST_F(ItemTableTest, EveryRowCanBeShown) {
    const auto iscolor = [](const std::string& text) {
        return text.size() == 7 && text[0] == '#' && text.find_first_not_of("0123456789abcdef", 1) == std::string::npos;
    };
    const auto isfilled = [](const std::string& text) { return text.find_first_of("{}") == std::string::npos; };
    for (const auto& row : table.rows()) {
        EXPECT_FALSE(row.english.empty() || row.chinese.empty() || row.kind.empty()) << row.info.name;
        EXPECT_TRUE(iscolor(row.color)) << row.info.name;
        EXPECT_TRUE(isfilled(row.english + row.chinese)) << row.info.name;
        EXPECT_TRUE(row.info.maxdamage == 0 || row.info.maxstack == 1) << row.info.name;
        for (const auto& variant : row.variants) {
            EXPECT_TRUE(iscolor(variant.color)) << variant.english;
            EXPECT_TRUE(isfilled(variant.english + variant.chinese)) << variant.english;
        }
    }
}

TEST_F(ItemTableTest, KnowsStackSizesAndDurability) {
    const std::map<std::string, std::pair<int, int>> wanted = {
        {"ender_pearl", {16, 0}},     {"oak_sign", {16, 0}},          {"water_bucket", {1, 0}},
        {"diamond_sword", {1, 1561}}, {"golden_hoe", {1, 32}},        {"netherite_chestplate", {1, 592}},
        {"leather_boots", {1, 65}},   {"chainmail_helmet", {1, 165}}, {"banner", {16, 0}},
        {"music_disc_cat", {1, 0}},
    };
    for (const auto& [name, numbers] : wanted) {
        const auto* info = table.find(name);
        ASSERT_NE(info, nullptr) << name;
        EXPECT_EQ(std::pair(info->maxstack, info->maxdamage), numbers) << name;
    }
}

TEST_F(ItemTableTest, NamesGoByAuxValueInBothLanguages) {
    const struct {
        const char* name;
        std::int16_t aux;
        const char *english, *chinese;
    } cases[] = {
        {"apple", 0, "Apple", "苹果"},
        {"wool", 0, "White Wool", "白色羊毛"},
        {"wool", 14, "Red Wool", "红色羊毛"},
        {"wool", 99, "Wool", "羊毛"},
        {"planks", 5, "Dark Oak Planks", "深色橡木木板"},
        {"wood", 9, "Stripped Spruce Wood", "去皮云杉木"},
        {"bed", 15, "Black Bed", "黑色床"},
        {"skull", 3, "Player Head", "玩家的头"},
        {"potion", 0, "Water Bottle", "水瓶"},
        {"potion", 42, "Potion of Slowness", "迟缓药水"},
        {"arrow", 6, "Arrow of Night Vision", "夜视之箭"},
    };
    for (const auto& one : cases) {
        const auto stack = ItemStack::create(one.name, 1, one.aux);
        language.code = "en_US";
        EXPECT_EQ(table.hovertext(stack), one.english);
        EXPECT_EQ(table.gametext(stack.getDescriptionId(), "fr_FR"), one.english) << one.name << one.aux;
        language.code = "zh_CN";
        EXPECT_EQ(table.hovertext(stack), one.chinese);
        EXPECT_EQ(table.gametext(stack.getDescriptionId(), "zh_CN"), one.chinese) << one.name << one.aux;
    }
    EXPECT_EQ(table.gametext("item.nothing.name", "en_US"), "");
    EXPECT_EQ(table.gametext("enchantment.mending", "zh_CN"), "经验修补");
}

TEST_F(ItemTableTest, HoverTextTellsEnchantmentsAndWear) {
    const auto worn = item(R"({"Name":"minecraft:diamond_sword","Count":1b,"tag":{"Damage":1441,"ench":[)"
                           R"({"id":9s,"lvl":3s},{"id":17s,"lvl":1s},{"id":99s,"lvl":1s}]}})");
    language.code = "en_US";
    EXPECT_EQ(table.hovertext(worn), "Diamond Sword\n§7Sharpness III\n§7Unbreaking I\n§7Durability: 120 / 1561");
    language.code = "zh_CN";
    EXPECT_EQ(table.hovertext(worn), "钻石剑\n§7锋利 III\n§7耐久 I\n§7耐久度：120 / 1561");
    const auto named = item(R"({"Name":"minecraft:stick","Count":1b,"tag":{"display":{"Name":"Wand","Lore":["old"]},)"
                            R"("ench":[]}})");
    EXPECT_EQ(table.hovertext(named), "Wand");
    EXPECT_EQ(table.hovertext(ItemStack()), "");
}

TEST_F(ItemTableTest, TheCreativeListIsTheGames) {
    const auto& list = table.creativelist();
    ASSERT_EQ(list.size(), 1386u);
    std::set<std::string> seen, wanted;
    for (const auto& stack : list) {
        ASSERT_FALSE(stack.isNull());
        EXPECT_EQ(stack.getCount(), 1);
        EXPECT_TRUE(seen.insert(stack.save().toSNBT()).second) << stack.save().toSNBT();
    }
    EXPECT_EQ(list.front().getTypeName(), "minecraft:planks");
    EXPECT_TRUE(seen.contains(
        item(R"({"Name":"minecraft:enchanted_book","Count":1b,"tag":{"ench":[{"id":0s,"lvl":4s}]}})").save().toSNBT()));
    // Whatever has a name for an aux value can be picked with it.
    std::set<std::pair<std::string, int>> pickable;
    for (const auto& stack : list) pickable.insert({stack.getTypeName(), stack.getAuxValue()});
    for (const auto& row : table.rows())
        for (const auto& variant : row.variants)
            if (!pickable.contains({row.info.name, variant.aux}))
                wanted.insert(row.info.name + ":" + std::to_string(variant.aux));
    EXPECT_EQ(wanted, std::set<std::string>({}));
}

TEST_F(ItemTableTest, NumbersAreTheGames) {
    const struct {
        const char* name;
        std::int16_t aux;
        std::int32_t id, block;
    } cases[] = {
        {"planks", 0, 5, 9805},
        {"planks", 5, 5, 9810},
        {"wool", 14, 35, 4097},
        {"wood", 0, -212, 4099},
        {"wood", 8, -212, 4105},
        {"wood", 13, -212, 4110},
        {"coral_block", 12, -132, 7811},
        {"anvil", 8, 145, 10414},
        {"log", 3, 17, 10447},
        {"stone", 1, 1, 1269},
        {"planks", -1, 5, 9805},
        {"planks", 99, 5, 9805},
        {"chest", 3, 54, 10893},
        {"blue_candle", 0, -424, 0},
        {"bed", 14, 418, 0},
        {"skull", 3, 516, 0},
        {"wooden_door", 0, 359, 0},
        {"shield", 0, 355, 0},
        {"acacia_boat", 0, 379, 0},
        {"bamboo_chest_raft", 0, 648, 0},
        {"item.bed", 0, 26, 0},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.name);
        const auto wire = platform::tonetwork(ItemStack::create(one.name, 1, one.aux));
        EXPECT_EQ(wire.networkid, one.id);
        EXPECT_EQ(wire.blockruntimeid, one.block);
    }
    // Every item of the game can be held, under its number; what has no name here goes by the game's key.
    for (const host::GameItem& item : host::gameitems()) {
        if (item.name == "minecraft:air") continue;
        const auto* row = table.row(item.name);
        ASSERT_NE(row, nullptr) << item.name;
        EXPECT_EQ(row->info.networkid, item.id) << item.name;
        const auto* block = host::gameblock(item.name);
        EXPECT_EQ(row->info.blockruntimeid, item.isblock() && block != nullptr ? block->first : 0) << item.name;
    }
    EXPECT_EQ(table.rows().size() + 1, host::gameitems().size());
    EXPECT_EQ(table.gametext(table.find("bamboo_raft")->descriptionid, "zh_CN"), "item.bamboo_raft.name");
    EXPECT_EQ(table.find("bamboo_raft")->maxstack, 1);
    EXPECT_EQ(table.find("oak_hanging_sign")->descriptionid, "tile.oak_hanging_sign.name");
}

TEST(RomanNumerals, AreWrittenAsOnEnchantments) {
    const std::map<int, std::string> wanted = {{1, "I"},     {3, "III"},    {4, "IV"}, {9, "IX"},  {10, "X"},
                                               {49, "XLIX"}, {255, "CCLV"}, {0, "0"},  {-1, "-1"}, {32767, "32767"}};
    for (const auto& [number, text] : wanted) EXPECT_EQ(host::romannumeral(number), text);
}

}  // namespace
