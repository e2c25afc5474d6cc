#include "host/bustle/cast.h"

namespace host {

namespace {

constexpr Ware fields[] = {{"wheat", 3}, {"carrot", 4}, {"potato", 4},      {"beetroot", 5},
                           {"apple", 5}, {"egg", 5},    {"melon_slice", 2}, {"pumpkin", 9}};
constexpr Ware bakery[] = {{"bread", 9},        {"cookie", 2},       {"cake", 60},
                           {"pumpkin_pie", 21}, {"baked_potato", 8}, {"sugar", 4}};
constexpr Ware mine[] = {{"coal", 6},         {"iron_ingot", 24},  {"gold_ingot", 68}, {"redstone", 5},
                         {"lapis_lazuli", 9}, {"copper_ingot", 8}, {"diamond", 430},   {"quartz", 12}};
constexpr Ware timber[] = {{"log", 6},    {"planks", 2}, {"sapling", 6}, {"stick", 1},
                           {"chest", 16}, {"ladder", 4}, {"charcoal", 5}};
constexpr Ware furs[] = {{"leather", 8},    {"feather", 2},     {"string", 4},       {"bone", 5},
                         {"gunpowder", 13}, {"rabbit_hide", 4}, {"cooked_beef", 14}, {"arrow", 3}};
constexpr Ware quarry[] = {{"cobblestone", 1}, {"stone", 2},     {"glass", 5},    {"sand", 2},
                           {"gravel", 2},      {"clay_ball", 2}, {"obsidian", 45}};
constexpr Ware loom[] = {{"wool", 6},     {"wool", 8, 1}, {"wool", 8, 4}, {"wool", 9, 11},
                         {"wool", 9, 14}, {"carpet", 3},  {"string", 4}};
constexpr Ware books[] = {{"paper", 4},     {"book", 14},      {"bookshelf", 85},
                          {"painting", 50}, {"name_tag", 240}, {"ink_sac", 7}};
constexpr Ware smithy[] = {{"iron_pickaxe", 84}, {"iron_axe", 82}, {"iron_sword", 66}, {"bucket", 76},
                           {"shears", 48},       {"shield", 130},  {"torch", 3},       {"lantern", 28}};

constexpr Craft all[] = {
    {{"harvest", "农产"}, {"Fields", "农庄"}, {"from our own fields", "自家田里的"}, fields},
    {{"bakery", "糕点"}, {"Bakehouse", "点心铺"}, {"still warm", "刚出炉"}, bakery},
    {{"ore", "矿物"}, {"Mine", "矿行"}, {"clean and sorted", "成色很好"}, mine},
    {{"timber", "木材"}, {"Sawmill", "木料行"}, {"well dried", "晾干了的"}, timber},
    {{"hides", "皮货"}, {"Furs", "皮货铺"}, {"from the last hunt", "上次打猎所得"}, furs},
    {{"stone", "石料"}, {"Quarry", "采石场"}, {"for big walls", "盖房子用"}, quarry},
    {{"wool", "羊毛"}, {"Loom", "织坊"}, {"dyed by hand", "手工染色"}, loom},
    {{"books", "书画"}, {"Bookstall", "书画摊"}, {"for long evenings", "慢慢看"}, books},
    {{"tools", "工具"}, {"Smithy", "铁匠铺"}, {"made to last", "经久耐用"}, smithy},
};

constexpr Figure people[] = {
    {"Mila", false},    {"晓雨", true},          {"Jonas", false},      {"NightOwl7", false},  {"Tessa", false},
    {"阿木", true},     {"Oakley", false},       {"Pip", false},        {"Ingrid", false},     {"青禾", true},
    {"Marlow", false},  {"creeper_kate", false}, {"Felix", false},      {"南风", true},        {"Nadia", false},
    {"Hugo", false},    {"小满", true},          {"Saskia", false},     {"DigDeep", false},    {"Robin", false},
    {"夜航船", true},   {"Elif", false},         {"Otto", false},       {"Wren", false},       {"老周", true},
    {"Dario", false},   {"Juno", false},         {"MossyStone", false}, {"Casper", false},     {"云朵", true},
    {"Lotte", false},   {"Anders", false},       {"石头", true},        {"Mirela", false},     {"Quinn", false},
    {"Tobias", false},  {"星河", true},          {"Priya", false},      {"BlockBaker", false}, {"Ewan", false},
    {"半夏", true},     {"Zofia", false},        {"Basil", false},      {"Noor", false},       {"阿福", true},
    {"Rufus", false},   {"Amara", false},        {"白鹿", true},        {"Linus", false},      {"Yara", false},
    {"Old Tom", false}, {"木子", true},          {"Freya", false},      {"Kasimir", false},    {"秋山", true},
    {"Selma", false},   {"Ravi", false},         {"Hazel", false},      {"海棠", true},        {"Teodor", false},
    {"Maren", false},   {"Silas", false},        {"拾光", true},        {"Lin_Fox", false},
};

}  // namespace

std::span<const Craft> crafts() { return all; }

std::span<const Figure> figures() { return people; }

}  // namespace host
