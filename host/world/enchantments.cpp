// Ids 0 to 37, as the game keeps them in an item's "ench" list.
#include "host/world/enchantments.h"

namespace host {

namespace {

constexpr Enchantment table[] = {
    {"enchantment.protect.all", "Protection", "保护"},
    {"enchantment.protect.fire", "Fire Protection", "火焰保护"},
    {"enchantment.protect.fall", "Feather Falling", "摔落缓冲"},
    {"enchantment.protect.explosion", "Blast Protection", "爆炸保护"},
    {"enchantment.protect.projectile", "Projectile Protection", "弹射物保护"},
    {"enchantment.thorns", "Thorns", "荆棘"},
    {"enchantment.oxygen", "Respiration", "水下呼吸"},
    {"enchantment.waterWalker", "Depth Strider", "深海探索者"},
    {"enchantment.waterWorker", "Aqua Affinity", "水下速掘"},
    {"enchantment.damage.all", "Sharpness", "锋利"},
    {"enchantment.damage.undead", "Smite", "亡灵杀手"},
    {"enchantment.damage.arthropods", "Bane of Arthropods", "节肢杀手"},
    {"enchantment.knockback", "Knockback", "击退"},
    {"enchantment.fire", "Fire Aspect", "火焰附加"},
    {"enchantment.lootBonus", "Looting", "抢夺"},
    {"enchantment.digging", "Efficiency", "效率"},
    {"enchantment.untouching", "Silk Touch", "精准采集"},
    {"enchantment.durability", "Unbreaking", "耐久"},
    {"enchantment.lootBonusDigger", "Fortune", "时运"},
    {"enchantment.arrowDamage", "Power", "力量"},
    {"enchantment.arrowKnockback", "Punch", "冲击"},
    {"enchantment.arrowFire", "Flame", "火矢"},
    {"enchantment.arrowInfinite", "Infinity", "无限"},
    {"enchantment.lootBonusFishing", "Luck of the Sea", "海之眷顾"},
    {"enchantment.fishingSpeed", "Lure", "饵钓"},
    {"enchantment.frostwalker", "Frost Walker", "冰霜行者"},
    {"enchantment.mending", "Mending", "经验修补"},
    {"enchantment.curse.binding", "Curse of Binding", "绑定诅咒"},
    {"enchantment.curse.vanishing", "Curse of Vanishing", "消失诅咒"},
    {"enchantment.tridentImpaling", "Impaling", "穿刺"},
    {"enchantment.tridentRiptide", "Riptide", "激流"},
    {"enchantment.tridentLoyalty", "Loyalty", "忠诚"},
    {"enchantment.tridentChanneling", "Channeling", "引雷"},
    {"enchantment.crossbowMultishot", "Multishot", "多重射击"},
    {"enchantment.crossbowPiercing", "Piercing", "穿透"},
    {"enchantment.crossbowQuickCharge", "Quick Charge", "快速装填"},
    {"enchantment.soul_speed", "Soul Speed", "灵魂疾行"},
    {"enchantment.swift_sneak", "Swift Sneak", "迅捷潜行"},
};

}  // namespace

std::span<const Enchantment> enchantments() { return table; }

std::string romannumeral(int number) {
    constexpr struct {
        int value;
        const char* letters;
    } steps[] = {{1000, "M"}, {900, "CM"}, {500, "D"}, {400, "CD"}, {100, "C"}, {90, "XC"}, {50, "L"},
                 {40, "XL"},  {10, "X"},   {9, "IX"},  {5, "V"},    {4, "IV"},  {1, "I"}};
    if (number < 1 || number > 3999) return std::to_string(number);
    std::string made;
    for (const auto& step : steps)
        for (; number >= step.value; number -= step.value) made += step.letters;
    return made;
}

}  // namespace host
