// The items that differ only by material or colour: tools and armour, everything that is dyed, and copper in its
// stages.
#include <array>

#include "host/world/itemrows.h"

namespace host {

namespace {

// In the order of the aux values of wool.
const std::array<FamilyPart, 16> colors{{
    {"white", {"White", "白色"}, "#e9ecec"},
    {"orange", {"Orange", "橙色"}, "#f07613"},
    {"magenta", {"Magenta", "品红色"}, "#bd44b3"},
    {"light_blue", {"Light Blue", "淡蓝色"}, "#3aafd9"},
    {"yellow", {"Yellow", "黄色"}, "#f8c627"},
    {"lime", {"Lime", "黄绿色"}, "#70b919"},
    {"pink", {"Pink", "粉红色"}, "#ed8dac"},
    {"gray", {"Gray", "灰色"}, "#3e4447"},
    {"light_gray", {"Light Gray", "淡灰色"}, "#8e8e86"},
    {"cyan", {"Cyan", "青色"}, "#158991"},
    {"purple", {"Purple", "紫色"}, "#792aac"},
    {"blue", {"Blue", "蓝色"}, "#35399d"},
    {"brown", {"Brown", "棕色"}, "#724728"},
    {"green", {"Green", "绿色"}, "#546d1b"},
    {"red", {"Red", "红色"}, "#a12722"},
    {"black", {"Black", "黑色"}, "#141519"},
}};

}  // namespace

void makegear(RowMaker& make) {
    struct Material {
        FamilyPart part;
        int tool;  // durability of a tool, 0 where there are none
        std::array<int, 4> armor;
    };
    const Material materials[] = {
        {{"wooden", {"Wooden", "木"}, "#896727"}, 59, {}},
        {{"stone", {"Stone", "石"}, "#7f7f7f"}, 131, {}},
        {{"leather", {"Leather", "皮革"}, "#a5602f"}, 0, {55, 80, 75, 65}},
        {{"chainmail", {"Chainmail", "锁链"}, "#7a7a80"}, 0, {165, 240, 225, 195}},
        {{"iron", {"Iron", "铁"}, "#d8d8d8"}, 250, {165, 240, 225, 195}},
        {{"golden", {"Golden", "金"}, "#fdd835"}, 32, {77, 112, 105, 91}},
        {{"diamond", {"Diamond", "钻石"}, "#4aedd9"}, 1561, {363, 528, 495, 429}},
        {{"netherite", {"Netherite", "下界合金"}, "#4a4245"}, 2031, {407, 592, 555, 481}},
    };
    const FamilyPart tools[] = {{"sword", {"{} Sword", "{}剑"}, ""},
                                {"pickaxe", {"{} Pickaxe", "{}镐"}, ""},
                                {"axe", {"{} Axe", "{}斧"}, ""},
                                {"shovel", {"{} Shovel", "{}锹"}, ""},
                                {"hoe", {"{} Hoe", "{}锄"}, ""}};
    const FamilyPart pieces[] = {{"helmet", {"{} Helmet", "{}头盔"}, ""},
                                 {"chestplate", {"{} Chestplate", "{}胸甲"}, ""},
                                 {"leggings", {"{} Leggings", "{}护腿"}, ""},
                                 {"boots", {"{} Boots", "{}靴子"}, ""}};
    const NamePair leather[] = {{"Leather Cap", "皮革帽子"},
                                {"Leather Tunic", "皮革外套"},
                                {"Leather Pants", "皮革裤子"},
                                {"Leather Boots", "皮革靴子"}};
    for (const auto& [part, tool, armor] : materials) {
        if (tool != 0) {
            for (const FamilyPart& one : tools)
                make.item(part + "_" + one.id, 1, tool, combine(one.words, part.words), one.id, part.color);
        }
        if (armor[0] == 0) continue;
        for (std::size_t i = 0; i < armor.size(); ++i) {
            const bool ofleather = std::string_view(part.id) == "leather";
            make.item(part + "_" + pieces[i].id, 1, armor[i],
                      ofleather ? leather[i] : combine(pieces[i].words, part.words), pieces[i].id, part.color);
        }
    }
    make.item("turtle_helmet", 1, 275, {"Turtle Shell", "海龟壳"}, "helmet", "#4fb04b");
}

void makecolors(RowMaker& make) {
    struct Family {
        const char* name;
        int maxstack;
        NamePair words, pattern;
        const char* kind;
    };
    const Family families[] = {
        {"wool", 64, {"Wool", "羊毛"}, {"{} Wool", "{}羊毛"}, "block"},
        {"carpet", 64, {"Carpet", "地毯"}, {"{} Carpet", "{}地毯"}, "carpet"},
        {"concrete", 64, {"Concrete", "混凝土"}, {"{} Concrete", "{}混凝土"}, "block"},
        {"concrete_powder", 64, {"Concrete Powder", "混凝土粉末"}, {"{} Concrete Powder", "{}混凝土粉末"}, "block"},
        {"stained_hardened_clay", 64, {"Stained Terracotta", "染色陶瓦"}, {"{} Terracotta", "{}陶瓦"}, "block"},
        {"stained_glass", 64, {"Stained Glass", "染色玻璃"}, {"{} Stained Glass", "{}染色玻璃"}, "glass"},
        {"stained_glass_pane",
         64,
         {"Stained Glass Pane", "染色玻璃板"},
         {"{} Stained Glass Pane", "{}染色玻璃板"},
         "pane"},
        {"shulker_box", 1, {"Shulker Box", "潜影盒"}, {"{} Shulker Box", "{}潜影盒"}, "shulker"},
        {"bed", 1, {"Bed", "床"}, {"{} Bed", "{}床"}, "bed"},
    };
    for (const auto& family : families) {
        make.block(family.name, family.maxstack, family.words, family.kind, colors[0].color);
        make.variants(colors, family.pattern);
    }
    // Banners still count as dyes once did, from black up.
    make.block("banner", 16, {"Banner", "旗帜"}, "banner", colors[0].color);
    for (int aux = 0; aux < 16; ++aux) {
        const FamilyPart& color = colors[static_cast<std::size_t>(15 - aux)];
        make.variant(aux, color.id, combine({"{} Banner", "{}旗帜"}, color.words), color.color);
    }
    for (const FamilyPart& color : colors) {
        make.item(color + "_dye", 64, 0, combine({"{} Dye", "{}染料"}, color.words), "dye", color.color);
        make.block(color + "_candle", 64, combine({"{} Candle", "{}蜡烛"}, color.words), "candle", color.color);
        const bool silver = std::string_view(color.id) == "light_gray";
        make.block((silver ? "silver" : color.id) + std::string("_glazed_terracotta"), 64,
                   combine({"{} Glazed Terracotta", "{}带釉陶瓦"}, color.words), "block", color.color);
    }
}

void makecopper(RowMaker& make) {
    const FamilyPart stages[] = {{"", {"{}", "{}"}, "#c06c4f"},
                                 {"exposed_", {"Exposed {}", "斑驳{}"}, "#a17d67"},
                                 {"weathered_", {"Weathered {}", "锈蚀{}"}, "#6c996e"},
                                 {"oxidized_", {"Oxidized {}", "氧化{}"}, "#52a284"}};
    const FamilyPart coatings[] = {{"", {"{}", "{}"}, ""}, {"waxed_", {"Waxed {}", "涂蜡{}"}, ""}};
    const struct {
        const char* id;
        NamePair words;
        const char* kind;
    } forms[] = {{"copper", {"Copper", "铜块"}, "block"},
                 {"cut_copper", {"Cut Copper", "切制铜块"}, "block"},
                 {"cut_copper_stairs", {"Cut Copper Stairs", "切制铜楼梯"}, "stairs"},
                 {"cut_copper_slab", {"Cut Copper Slab", "切制铜台阶"}, "slab"}};
    for (const auto& form : forms) {
        for (const FamilyPart& coating : coatings) {
            for (const FamilyPart& stage : stages) {
                const std::string name = std::string(coating.id) + stage.id + form.id;
                const bool plain = name == "copper";
                make.block(plain ? "copper_block" : name, 64,
                           plain ? NamePair{"Block of Copper", "铜块"}
                                 : combine(coating.words, combine(stage.words, form.words)),
                           form.kind, stage.color);
            }
        }
    }
}

}  // namespace host
