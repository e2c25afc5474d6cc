// The item table: what a client, a saved stack or a reader of hover texts relies on.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>

#include "host/world/enchantments.h"
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

TEST_F(ItemTableTest, TheCreativeListHoldsEveryItemAndVariantOnce) {
    std::set<std::pair<std::string, int>> seen;
    for (const auto& stack : table.creativelist()) {
        ASSERT_FALSE(stack.isNull());
        EXPECT_EQ(stack.getCount(), 1);
        EXPECT_TRUE(seen.insert({stack.getTypeName(), stack.getAuxValue()}).second) << stack.getTypeName();
    }
    std::size_t wanted = 0;
    for (const auto& row : table.rows()) wanted += std::max<std::size_t>(row.variants.size(), 1);
    EXPECT_EQ(seen.size(), wanted);
}

TEST(RomanNumerals, AreWrittenAsOnEnchantments) {
    const std::map<int, std::string> wanted = {{1, "I"},     {3, "III"},    {4, "IV"}, {9, "IX"},  {10, "X"},
                                               {49, "XLIX"}, {255, "CCLV"}, {0, "0"},  {-1, "-1"}, {32767, "32767"}};
    for (const auto& [number, text] : wanted) EXPECT_EQ(host::romannumeral(number), text);
}

}  // namespace
