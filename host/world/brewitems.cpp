// Potions, tipped arrows, spawn eggs and music discs.
#include "host/world/itemrows.h"

namespace host {

void makepotions(RowMaker& make) {
    // Longer and stronger brews have aux values of their own and the same name.
    const struct {
        FamilyPart effect;
        int brews;
    } effects[] = {
        {{"nightVision", {"Night Vision", "夜视"}, "#1f1fa1"}, 2},
        {{"invisibility", {"Invisibility", "隐身"}, "#7f8392"}, 2},
        {{"jump", {"Leaping", "跳跃"}, "#22ff4c"}, 3},
        {{"fireResistance", {"Fire Resistance", "抗火"}, "#e49a3a"}, 2},
        {{"moveSpeed", {"Swiftness", "迅捷"}, "#7cafc6"}, 3},
        {{"moveSlowdown", {"Slowness", "迟缓"}, "#5a6c81"}, 2},
        {{"waterBreathing", {"Water Breathing", "水肺"}, "#2e5299"}, 2},
        {{"heal", {"Healing", "治疗"}, "#f82423"}, 2},
        {{"harm", {"Harming", "伤害"}, "#430a09"}, 2},
        {{"poison", {"Poison", "剧毒"}, "#4e9331"}, 3},
        {{"regeneration", {"Regeneration", "再生"}, "#cd5cab"}, 3},
        {{"damageBoost", {"Strength", "力量"}, "#932423"}, 3},
        {{"weakness", {"Weakness", "虚弱"}, "#484d48"}, 2},
        {{"wither", {"Decay", "衰变"}, "#352a27"}, 1},
        {{"turtleMaster", {"the Turtle Master", "神龟"}, "#7b6f5a"}, 3},
        {{"slowFalling", {"Slow Falling", "缓降"}, "#fcf4e0"}, 2},
        {{"moveSlowdown", {"Slowness", "迟缓"}, "#5a6c81"}, 1},
    };
    const FamilyPart bases[] = {{"emptyPotion", {"Water", "水"}, "#385dc6"},
                                {"mundane", {"Mundane", "平凡的"}, "#385dc6"},
                                {"mundane.extended", {"Long Mundane", "平凡的"}, "#385dc6"},
                                {"thick", {"Thick", "浓稠的"}, "#385dc6"},
                                {"awkward", {"Awkward", "粗制的"}, "#385dc6"}};
    const struct {
        const char* name;
        NamePair words, water, base, of;
    } bottles[] = {
        {"potion", {"Potion", "药水"}, {"Water Bottle", "水瓶"}, {"{} Potion", "{}药水"}, {"Potion of {}", "{}药水"}},
        {"splash_potion",
         {"Splash Potion", "喷溅药水"},
         {"Splash Water Bottle", "喷溅型水瓶"},
         {"{} Splash Potion", "喷溅型{}药水"},
         {"Splash Potion of {}", "喷溅型{}药水"}},
        {"lingering_potion",
         {"Lingering Potion", "滞留药水"},
         {"Lingering Water Bottle", "滞留型水瓶"},
         {"{} Lingering Potion", "滞留型{}药水"},
         {"Lingering Potion of {}", "滞留型{}药水"}},
    };
    const auto brewed = [&](int aux, const NamePair& pattern) {
        for (const auto& [effect, brews] : effects)
            for (int i = 0; i < brews; ++i)
                make.variant(aux++, effect.id, combine(pattern, effect.words), effect.color);
    };
    for (const auto& bottle : bottles) {
        make.item(bottle.name, 1, 0, bottle.words, "potion", bases[0].color);
        int aux = 0;
        for (const FamilyPart& base : bases) {
            make.variant(aux, base.id, aux == 0 ? bottle.water : combine(bottle.base, base.words), base.color);
            ++aux;
        }
        brewed(aux, bottle.of);
    }
    // An arrow's aux value is that of the potion it was dipped in, and one more.
    make.item("arrow", 64, 0, {"Arrow", "箭"}, "arrow", "#8a8a8a");
    make.variant(0, "plain", {"Arrow", "箭"}, "#8a8a8a");
    brewed(static_cast<int>(std::size(bases)) + 1, {"Arrow of {}", "{}之箭"});
}

void makespawneggs(RowMaker& make) {
    const FamilyPart mobs[] = {
        {"allay", {"Allay", "悦灵"}, "#00daff"},
        {"axolotl", {"Axolotl", "美西螈"}, "#fbc1e3"},
        {"bat", {"Bat", "蝙蝠"}, "#4c3e30"},
        {"bee", {"Bee", "蜜蜂"}, "#edc343"},
        {"blaze", {"Blaze", "烈焰人"}, "#f6b201"},
        {"cat", {"Cat", "猫"}, "#efc88e"},
        {"cave_spider", {"Cave Spider", "洞穴蜘蛛"}, "#0c424e"},
        {"chicken", {"Chicken", "鸡"}, "#a1a1a1"},
        {"cod", {"Cod", "鳕鱼"}, "#c1a76a"},
        {"cow", {"Cow", "牛"}, "#443626"},
        {"creeper", {"Creeper", "苦力怕"}, "#0da70b"},
        {"dolphin", {"Dolphin", "海豚"}, "#223b4d"},
        {"donkey", {"Donkey", "驴"}, "#534539"},
        {"drowned", {"Drowned", "溺尸"}, "#8ff1d7"},
        {"elder_guardian", {"Elder Guardian", "远古守卫者"}, "#ceccba"},
        {"enderman", {"Enderman", "末影人"}, "#161616"},
        {"endermite", {"Endermite", "末影螨"}, "#6e6e6e"},
        {"evoker", {"Evoker", "唤魔者"}, "#959b9b"},
        {"fox", {"Fox", "狐狸"}, "#d5b69f"},
        {"frog", {"Frog", "青蛙"}, "#d07444"},
        {"ghast", {"Ghast", "恶魂"}, "#f9f9f9"},
        {"glow_squid", {"Glow Squid", "发光鱿鱼"}, "#095656"},
        {"goat", {"Goat", "山羊"}, "#a5947c"},
        {"guardian", {"Guardian", "守卫者"}, "#5a8272"},
        {"hoglin", {"Hoglin", "疣猪兽"}, "#c66e55"},
        {"horse", {"Horse", "马"}, "#c09e7d"},
        {"husk", {"Husk", "尸壳"}, "#797061"},
        {"llama", {"Llama", "羊驼"}, "#c09e7d"},
        {"magma_cube", {"Magma Cube", "岩浆怪"}, "#340000"},
        {"mooshroom", {"Mooshroom", "哞菇"}, "#a00f10"},
        {"mule", {"Mule", "骡"}, "#1b0200"},
        {"ocelot", {"Ocelot", "豹猫"}, "#efde7d"},
        {"panda", {"Panda", "熊猫"}, "#e7e7e7"},
        {"parrot", {"Parrot", "鹦鹉"}, "#0da70b"},
        {"phantom", {"Phantom", "幻翼"}, "#43518a"},
        {"pig", {"Pig", "猪"}, "#f0a5a2"},
        {"piglin", {"Piglin", "猪灵"}, "#995f40"},
        {"piglin_brute", {"Piglin Brute", "猪灵蛮兵"}, "#592a10"},
        {"pillager", {"Pillager", "掠夺者"}, "#532f36"},
        {"polar_bear", {"Polar Bear", "北极熊"}, "#f2f2f2"},
        {"pufferfish", {"Pufferfish", "河豚"}, "#f6b201"},
        {"rabbit", {"Rabbit", "兔子"}, "#995f40"},
        {"ravager", {"Ravager", "劫掠兽"}, "#757470"},
        {"salmon", {"Salmon", "鲑鱼"}, "#a00f10"},
        {"sheep", {"Sheep", "绵羊"}, "#e7e7e7"},
        {"shulker", {"Shulker", "潜影贝"}, "#946694"},
        {"silverfish", {"Silverfish", "蠹虫"}, "#6e6e6e"},
        {"skeleton", {"Skeleton", "骷髅"}, "#c1c1c1"},
        {"skeleton_horse", {"Skeleton Horse", "骷髅马"}, "#68684f"},
        {"slime", {"Slime", "史莱姆"}, "#51a03e"},
        {"spider", {"Spider", "蜘蛛"}, "#342d27"},
        {"squid", {"Squid", "鱿鱼"}, "#223b4d"},
        {"stray", {"Stray", "流浪者"}, "#617677"},
        {"strider", {"Strider", "炽足兽"}, "#9c3436"},
        {"tadpole", {"Tadpole", "蝌蚪"}, "#6d533d"},
        {"tropical_fish", {"Tropical Fish", "热带鱼"}, "#ef6915"},
        {"turtle", {"Sea Turtle", "海龟"}, "#e7e7e7"},
        {"vex", {"Vex", "恼鬼"}, "#7a90a4"},
        {"villager", {"Villager", "村民"}, "#563c33"},
        {"vindicator", {"Vindicator", "卫道士"}, "#959b9b"},
        {"wandering_trader", {"Wandering Trader", "流浪商人"}, "#456296"},
        {"warden", {"Warden", "监守者"}, "#0f4649"},
        {"witch", {"Witch", "女巫"}, "#340000"},
        {"wither_skeleton", {"Wither Skeleton", "凋灵骷髅"}, "#141414"},
        {"wolf", {"Wolf", "狼"}, "#d7d3d3"},
        {"zoglin", {"Zoglin", "僵尸疣猪兽"}, "#c66e55"},
        {"zombie", {"Zombie", "僵尸"}, "#00afaf"},
        {"zombie_horse", {"Zombie Horse", "僵尸马"}, "#315234"},
        {"zombie_pigman", {"Zombified Piglin", "僵尸猪灵"}, "#ea9393"},
        {"zombie_villager", {"Zombie Villager", "僵尸村民"}, "#563c33"},
    };
    for (const FamilyPart& mob : mobs)
        make.item(mob + "_spawn_egg", 64, 0, combine({"{} Spawn Egg", "{}刷怪蛋"}, mob.words), "egg", mob.color);
}

void makediscs(RowMaker& make) {
    const FamilyPart discs[] = {
        {"13", {"13", "13"}, "#e8c84b"},
        {"cat", {"cat", "cat"}, "#4fc04b"},
        {"blocks", {"blocks", "blocks"}, "#d8602f"},
        {"chirp", {"chirp", "chirp"}, "#c02a2a"},
        {"far", {"far", "far"}, "#a0d84b"},
        {"mall", {"mall", "mall"}, "#8a6be0"},
        {"mellohi", {"mellohi", "mellohi"}, "#b05ac0"},
        {"stal", {"stal", "stal"}, "#2b2b2b"},
        {"strad", {"strad", "strad"}, "#e8e8e8"},
        {"ward", {"ward", "ward"}, "#3da05a"},
        {"11", {"11", "11"}, "#3a3a40"},
        {"wait", {"wait", "wait"}, "#5aa0d8"},
        {"pigstep", {"Pigstep", "Pigstep"}, "#b8402f"},
        {"otherside", {"otherside", "otherside"}, "#4bb0a0"},
        {"5", {"5", "5"}, "#0f4a55"},
    };
    for (const FamilyPart& disc : discs)
        make.item("music_disc_" + std::string(disc.id), 1, 0,
                  combine({"Music Disc ({})", "音乐唱片（{}）"}, disc.words), "disc", disc.color);
}

}  // namespace host
