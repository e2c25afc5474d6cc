// Goods for measuring lists: names and descriptions in English and Chinese, some hundred tags, and a few words and tags
// whose share of the rows is known. The same number gives the same good, so that the shop files and what is put beside
// them are made from one source.
#pragma once

#include <fmt/format.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <random>
#include <string>
#include <vector>

namespace listgoods {

inline constexpr int ownshop = 3, othersshop = 4;  // of the viewer, and of a second one
inline constexpr int tradegoods = 50;              // in one shop more than were asked for, which is traded with

// Of three kinds that are alike, so that a query can be asked anew in other words.
inline constexpr int variants = 3;
inline constexpr std::array tenth{"building", "红石机械零件", "farming goods"};         // of the rows, each
inline constexpr std::array threehundredth{"banners", "音乐唱片收藏", "carpet rolls"};  // of the rows, each
// In a name or a description, each in one of thirty rows, and in one of six hundred.
inline constexpr std::array thirtieth{"weathered", "月光宝石", "hand-forged", "龙鳞纹样", "enchanted", "远古遗迹"};
inline constexpr std::array sixhundredth{"obsolete", "深海珍珠", "gilt-edged", "雪山琥珀", "smuggled", "失落王冠"};

struct good {
    std::string name, describe, tag, nbt;
    int price = 0, left = 0;
    bool isprivate = false;
};

inline std::string xuidof(int shop) { return fmt::format("25354{:011}", shop); }
inline bool isbanned(int shop) { return shop % 97 == 5; }
inline bool hasdiscount(int shop) { return shop % 20 == 1; }  // a fifth off what bears the first of the tags
inline int realprice(int shop, const good& of) {
    return hasdiscount(shop) && of.tag == tenth[0] ? of.price * 80 / 100 : of.price;
}

inline std::string tagfrom(std::minstd_rand& chance) {
    static constexpr std::array kinds{"tools", "weapons", "armour", "食物", "种子", "药水", "染料", "矿石", "books"};
    static constexpr std::array of{"of oak", "of stone",  "of iron", "铁制", "金制", "钻石",
                                   "下界",   "of copper", "末地",    "丛林", "沙漠", "雪原"};
    const auto r = chance() % 3000;
    for (std::size_t i = 0; i < tenth.size(); ++i)
        if (r / 300 == i) return tenth[i];
    for (std::size_t i = 0; i < threehundredth.size(); ++i)
        if (r >= 900 && (r - 900) / 10 == i) return threehundredth[i];
    return fmt::format("{} {}", kinds[chance() % kinds.size()], of[chance() % of.size()]);
}

inline good goodof(int shop, int place) {
    static constexpr std::array adjectives{"small", "heavy", "polished", "old", "精美的", "厚重的", "闪亮的", "便宜的"};
    static constexpr std::array stuffs{"oak", "iron", "golden", "diamond", "石制", "铜制", "木制", "水晶"};
    static constexpr std::array things{"sword", "pickaxe", "lantern", "bread", "helmet", "boat",
                                       "长剑",  "镐子",    "灯笼",    "面包",  "头盔",   "小船"};
    static constexpr std::array sayings{"made with care by the smith of the harbour",
                                        "sold by the dozen, no returns",
                                        "taken from the deepest mine of the north",
                                        "good for long journeys",
                                        "由港口的老铁匠亲手打造",
                                        "成打出售，概不退换",
                                        "来自北方最深的矿井",
                                        "适合长途旅行携带"};
    static constexpr std::array items{"apple", "bread", "diamond", "iron_ingot", "coal", "emerald", "redstone"};
    std::minstd_rand chance(static_cast<std::uint32_t>(shop) * 7919U + static_cast<std::uint32_t>(place) * 104729U + 1);
    chance.discard(3);
    const auto one = [&](const auto& of) { return of[chance() % of.size()]; };
    good made;
    made.name = fmt::format("{} {} {}", one(adjectives), one(stuffs), one(things));
    made.describe = fmt::format("{}; {}, no. {}", one(sayings), one(sayings), chance() % 100000);
    const auto strew = [&](const auto& words, std::uint32_t among) {
        for (const auto* word : words)
            if (chance() / 7 % among == 0) (chance() % 2 == 0 ? made.name : made.describe).append(" ").append(word);
    };
    strew(thirtieth, 30);
    strew(sixhundredth, 600);
    made.tag = tagfrom(chance);
    made.nbt = fmt::format("{{Count:1b,Damage:0s,Name:\"minecraft:{}\",WasPickedUp:0b}}", one(items));
    made.price = static_cast<int>(chance() / 5 % 100000);
    made.left = chance() % 20 == 0 ? 0 : 1 + static_cast<int>(chance() % 64);
    made.isprivate = chance() % 25 == 0;
    return made;
}

// Calls `body` with shop, place and good of each row that there is.
template <class Body>
void foreachgood(int shops, int goods, Body&& body) {
    for (int shop = 0; shop <= shops; ++shop)
        for (int place = 0; place < (shop == shops ? tradegoods : goods); ++place)
            body(shop, place, goodof(shop, place));
}

inline void writeshop(const std::filesystem::path& directory, int shop, int goods) {
    using nlohmann::json;
    json all = json::array(), wanted = json::array();
    for (int place = 0; place < goods; ++place) {
        const auto made = goodof(shop, place);
        all.push_back({{"shopitemname", made.name},
                       {"shopitemdescribe", made.describe},
                       {"shopitemtag", made.tag},
                       {"price", made.price},
                       {"shopitemleftnum", made.left},
                       {"itemnbt", made.nbt},
                       {"allowbesearched", !made.isprivate}});
        if (place % 10 != 0) continue;
        wanted.push_back({{"recycleitemname", made.name},
                          {"recycleitemdescribe", made.describe},
                          {"recycleitemtag", made.tag},
                          {"itemnbt", made.nbt},
                          {"recycleitemleftwanna", 1 + made.left},
                          {"nowhasrecyclenum", 0},
                          {"offer", made.price},
                          {"allowbesearched", true},
                          {"filterauxordamage", false},
                          {"filterench", false},
                          {"filteritemnbt", false},
                          {"recycleditemnbtlist", json::array()}});
    }
    json discounts = nullptr, state = nullptr;
    constexpr std::int64_t year2100 = 4102444800;
    if (hasdiscount(shop))
        discounts = json::array({{{"shopitemtag", tenth[0]}, {"discount", "%80"}, {"timeend", year2100}}});
    if (isbanned(shop)) state = {{"isbaned", true}, {"bantimeend", year2100}, {"banreason", "measured"}};
    const json sell{{"biditems", nullptr},
                    {"describe", "open all day, 全天营业"},
                    {"isopshop", false},
                    {"items", std::move(all)},
                    {"ownerlang", "en_US"},
                    {"ownername", fmt::format("Owner{}", shop)},
                    {"salesvolume", shop % 1000},
                    {"sellcount", shop % 100},
                    {"shopdiscount", std::move(discounts)},
                    {"shopitemicon", ""},
                    {"shopname", fmt::format("Shop {}", shop)},
                    {"shopstate", std::move(state)}};
    std::ofstream(directory / (xuidof(shop) + ".json"))
        << json{{"sell", sell}, {"recycles", {{"recycleitems", std::move(wanted)}}}}.dump(4);
}

inline void writeshops(const std::filesystem::path& directory, int shops, int goods) {
    std::filesystem::create_directories(directory);
    for (int shop = 0; shop < shops; ++shop) writeshop(directory, shop, goods);
    writeshop(directory, shops, tradegoods);
}

}  // namespace listgoods
