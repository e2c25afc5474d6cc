// The default documents of "sellform.json" and "recycleform.json". Both begin with the same object of explanations, in
// which searchtaginfo and searchlvl hold an example of their value rather than a word about it.
#include "plugin/forms/categorydefaults.h"

#include <span>

namespace ordomart {

namespace {

struct category {
    const char* titlename;
    const char* imagepath;
    const char* searchtaginfo;
};

constexpr int searchintags = 4;

constexpr category minerals = {"矿物类", "textures/items/diamond.png",
                               "diamond${||}_ingot{||}netherite_scrap${||}coal${||}charcoal${||}emerald${||}quartz$"
                               "{||}amethyst_shard${||}redstone${||}lapis_lazuli$"};
constexpr category woods = {"木材类", "textures/blocks/planks_oak.png", "planks${||}_planks{||}log"};
constexpr category stones = {"石材类", "textures/blocks/stone.png",
                             "stone${||}stonebrick${||}blackstone${||}deepslate${||}basalt"};

constexpr category sellcategories[] = {
    minerals,
    {"装备类", "textures/items/diamond_chestplate.png", "_chestplate{||}_helmet{||}_leggings{||}_boots"},
    {"武器工具类", "textures/items/diamond_sword.png",
     "_sword{||}_pickaxe{||}_axe{||}_shovel{||}_hoe{||}bow${||}crossbow${||}trident${||}fishing_rod$"},
    woods,
    stones,
    {"食物类", "textures/items/potato.png", "cooked_{||}baked_{||}_stew{||}bread${||}_pie{||}cookie${||}cake"},
};

constexpr category recyclecategories[] = {
    {"原矿类", "textures/blocks/diamond_ore.png", "_ore{||}raw_"},
    minerals,
    woods,
    stones,
};

nlohmann::json explanations() {
    return {
        {"example", true},
        {"exampleex", "这是一个示例"},
        {"titlename", "此项填按钮名称。字符串类型"},
        {"titlenameex", "这是一个按钮：你将看到按钮名称为'这是一个按钮'"},
        {"imagepath", "引用材质路径，分为网络url和本地路径(只支持/)。字符串类型"},
        {"imagepathex", "textures/items/diamond.png：将使用textures/items/diamond.png的钻石物品icon作为图片"},
        {"searchtaginfo",
         "_ore：将匹配所有包含_ore的信息；_ore$：匹配为_ore的信息；diamond${||}_ingot{||}emerald$："
         "将匹配为diamond或包含_ingot或为emerald的信息"},
        {"searchlvl", "0x4|0x1：对应在物品名称和物品tag中搜寻"},
    };
}

nlohmann::json document(std::span<const category> categories) {
    auto made = nlohmann::json::array({explanations()});
    for (const auto& entry : categories) {
        made.push_back({{"titlename", entry.titlename},
                        {"imagepath", entry.imagepath},
                        {"searchtaginfo", entry.searchtaginfo},
                        {"searchlvl", searchintags}});
    }
    return made;
}

}  // namespace

nlohmann::json defaultsellcategories() { return document(sellcategories); }
nlohmann::json defaultrecyclecategories() { return document(recyclecategories); }

}  // namespace ordomart
