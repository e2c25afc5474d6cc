#include "host/demo/goods.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string_view>

namespace host {

using nlohmann::json;

namespace {

struct Good {
    const char* owner;
    const char* item;  // without the namespace
    const char* title;
    const char* describe;
    const char* tag;
    int price, stock;
    const char* userdata;  // inside of tag:{}, or empty
    bool listed;           // false: private
};

constexpr Good goods[] = {
    {"Rosa", "apple", "Orchard apples", "picked this morning", "food", 4, 320, "", true},
    {"Rosa", "bread", "Fresh bread", "still warm", "food", 9, 96, "", true},
    {"Rosa", "golden_carrot", "Golden carrots", "for long nights", "food", 45, 48, "", true},
    {"Rosa", "cooked_beef", "Steak", "", "food", 14, 128, "", true},
    {"Rosa", "pumpkin_pie", "Pumpkin pie", "grandmother's recipe", "food", 22, 0, "", true},
    {"Rosa", "honey_bottle", "Honey", "from the hill hives", "food", 30, 24, "", true},
    {"Rosa", "cookie", "Cookies by the piece", "", "food", 2, 500, "", true},
    {"Rosa", "golden_apple", "Golden apple", "do not eat all at once", "rare food", 380, 6, "", true},
    {"Rosa", "sapling", "Oak sapling", "plant more trees", "garden", 6, 40, "", true},
    {"Rosa", "bone_meal", "Bone meal", "", "garden", 3, 256, "", true},
    {"Rosa", "wheat_seeds", "Seeds", "kept back for the village", "garden", 1, 200, "", false},
    {"Bram", "iron_ingot", "Iron", "clean bars", "_ingot", 25, 640, "", true},
    {"Bram", "gold_ingot", "Gold", "", "_ingot", 70, 128, "", true},
    {"Bram", "diamond", "Diamonds", "deep slate cut", "diamond", 450, 37, "", true},
    {"Bram", "emerald", "Emeralds", "", "emerald", 160, 80, "", true},
    {"Bram", "coal", "Coal", "by the sack", "coal", 6, 900, "", true},
    {"Bram", "redstone", "Redstone dust", "", "redstone", 5, 700, "", true},
    {"Bram", "diamond_sword", "Bram's Pride", "sharp as the north wind", "weapon", 2400, 1,
     "display:{Name:\"\u00a7bBram's Pride\"},ench:[{id:9s,lvl:4s},{id:17s,lvl:3s}]", true},
    {"Bram", "iron_pickaxe", "Worn pickaxe", "some days left in it", "tools", 60, 2, "Damage:180", true},
    {"Bram", "diamond_pickaxe", "Miner's friend", "Efficiency IV", "tools", 1900, 1, "ench:[{id:15s,lvl:4s}]", true},
    {"Bram", "bow", "Hunting bow", "", "weapon", 210, 3, "Damage:12,ench:[{id:19s,lvl:2s}]", true},
    {"Bram", "iron_chestplate", "Guard's breastplate", "dented, honest", "armour", 240, 2, "Damage:35", true},
    {"Bram", "shield", "Oak shield", "", "armour", 130, 4, "", true},
    {"Bram", "netherite_ingot", "Netherite", "for regulars", "_ingot", 9000, 1, "", false},
    {"\u5c0f\u6e05", "clock", "\u7cbe\u5de5\u65f6\u949f", "\u8d70\u65f6\u5f88\u51c6", "\u6742\u8d27", 120, 5, "", true},
    {"\u5c0f\u6e05", "spyglass", "\u671b\u8fdc\u955c", "\u770b\u5f97\u66f4\u8fdc", "\u6742\u8d27", 180, 4, "", true},
    {"\u5c0f\u6e05", "lantern", "\u706f\u7b3c", "", "\u88c5\u9970", 28, 64, "", true},
    {"\u5c0f\u6e05", "bookshelf", "\u4e66\u67b6", "\u65e7\u4e66\u5f88\u591a", "\u88c5\u9970", 90, 32, "", true},
    {"\u5c0f\u6e05", "name_tag", "\u547d\u540d\u724c", "", "\u6742\u8d27", 260, 3, "", true},
    {"\u5c0f\u6e05", "ender_pearl", "\u672b\u5f71\u73cd\u73e0", "\u6295\u63b7\u524d\u8bf7\u4e09\u601d", "\u6742\u8d27",
     150, 16, "", true},
    {"\u5c0f\u6e05", "elytra", "\u65e7\u9798\u7fc5", "\u98de\u8fc7\u5f88\u591a\u5730\u65b9", "\u6742\u8d27", 7800, 1,
     "Damage:300,display:{Name:\"\u00a7d\u957f\u98ce\"}", true},
    {"\u5c0f\u6e05", "painting", "\u753b", "\u552e\u7f44\u518d\u753b", "\u88c5\u9970", 55, 0, "", true},
};

struct Commission {
    const char* owner;
    const char* item;
    const char* title;
    const char* describe;
    const char* tag;
    int offer, wanted;
    bool filterdamage;
    int collected = 0;  // has come in and waits for its owner
};

constexpr Commission commissions[] = {
    {"Rosa", "wheat", "Wheat for the bakery", "every grain helps", "food", 3, 200, false, 120},
    {"Rosa", "egg", "Eggs", "", "food", 5, 64, false},
    {"Bram", "cobblestone", "Stone for the wall", "any amount", "stone", 1, 1000, false, 500},
    {"Bram", "iron_ingot", "Iron, I never have enough", "", "_ingot", 18, 128, false},
    {"Bram", "leather", "Leather", "for aprons", "materials", 8, 40, false},
    {"\u5c0f\u6e05", "paper", "\u6536\u7eb8", "\u62a4\u4e66\u7528", "\u6742\u8d27", 4, 128, false},
    {"\u5c0f\u6e05", "iron_pickaxe", "\u5168\u65b0\u7684\u94c1\u9550", "\u53ea\u8981\u65b0\u7684", "\u5de5\u5177", 90,
     3, true},
};

struct Discount {
    const char* owner;
    const char* tag;
    const char* text;
};

constexpr Discount discounts[] = {
    {"Rosa", "rare food", "-50"}, {"Bram", "tools", "%80"}, {"\u5c0f\u6e05", "\u6742\u8d27", "%90"}};

// Shows an operator what a ban looks like, and how it is lifted.
constexpr const char* bannedbuyer = "\u5c0f\u6e05";

std::string itemtext(const char* item, std::string_view userdata, int count = 1) {
    return fmt::format("{{Count:{}b,Damage:0s,Name:\"minecraft:{}\",WasPickedUp:0b{}}}", count, item,
                       userdata.empty() ? "" : fmt::format(",tag:{{{}}}", userdata));
}

// What has come in, as it came: full stacks and a rest.
json stacksof(const Commission& commission) {
    constexpr int full = 64;
    json stacks = json::array();
    for (int left = commission.collected; left > 0; left -= full)
        stacks.push_back(itemtext(commission.item, "", std::min(left, full)));
    return stacks;
}

json section(const DemoOwner& owner) {
    return {{"describe", owner.describe}, {"isopshop", false},          {"ownerlang", owner.language},
            {"ownername", owner.name},    {"shopitemicon", owner.icon}, {"shopname", owner.shopname},
            {"shopstate", nullptr}};
}

}  // namespace

const std::vector<DemoOwner>& demoowners() {
    static const std::vector<DemoOwner> owners{
        {"Rosa", "2535400000000101", "Rosa's Larder", "Food and garden, fair prices", "minecraft:apple", "en_US"},
        {"Bram", "2535400000000102", "The Anvil", "Ore, bars and blades", "minecraft:anvil", "en_US"},
        {"\u5c0f\u6e05", "2535400000000103", "\u6e05\u98ce\u6742\u8d27\u94fa", "\u6742\u8d27\u4e0e\u88c5\u9970",
         "minecraft:lantern", "zh_CN"},
    };
    return owners;
}

json demoshop(const DemoOwner& owner) {
    const std::string_view name = owner.name;
    json sell = section(owner);
    sell.update({{"biditems", nullptr},
                 {"items", json::array()},
                 {"salesvolume", 0},
                 {"sellcount", 0},
                 {"shopdiscount", nullptr}});
    for (const Good& good : goods)
        if (name == good.owner)
            sell["items"].push_back({{"shopitemname", good.title},
                                     {"shopitemdescribe", good.describe},
                                     {"shopitemtag", good.tag},
                                     {"price", good.price},
                                     {"shopitemleftnum", good.stock},
                                     {"itemnbt", itemtext(good.item, good.userdata)},
                                     {"allowbesearched", good.listed}});
    // They do not end soon.
    constexpr std::int64_t farahead = 4102444800;
    for (const Discount& discount : discounts)
        if (name == discount.owner)
            sell["shopdiscount"] = {
                {{"shopitemtag", discount.tag}, {"discount", discount.text}, {"timestart", 0}, {"timeend", farahead}}};

    json recycles = section(owner);
    recycles.update({{"recycleamount", 0}, {"recyclecost", 0}, {"recycleitems", json::array()}});
    for (const Commission& wanted : commissions)
        if (name == wanted.owner)
            recycles["recycleitems"].push_back({{"recycleitemname", wanted.title},
                                                {"recycleitemdescribe", wanted.describe},
                                                {"recycleitemtag", wanted.tag},
                                                {"recycleitemleftwanna", wanted.wanted},
                                                {"nowhasrecyclenum", wanted.collected},
                                                {"offer", wanted.offer},
                                                {"itemnbt", itemtext(wanted.item, "")},
                                                {"allowbesearched", true},
                                                {"filterauxordamage", wanted.filterdamage},
                                                {"filterench", false},
                                                {"filteritemnbt", false},
                                                {"recycleditemnbtlist", stacksof(wanted)}});
    if (name == bannedbuyer)
        recycles["shopstate"] = {{"isbaned", true},
                                 {"bantimeend", -1},
                                 {"banreason", "\u793a\u4f8b\uff1a\u6b64\u5904\u6682\u505c\u56de\u6536"}};
    return {{"sell", std::move(sell)}, {"recycles", std::move(recycles)}};
}

}  // namespace host
