// Everything that is made of a kind of wood, and the parts of the trees.
#include <array>

#include "host/world/itemrows.h"

namespace host {

namespace {

// The first six are the aux values of the old wooden blocks.
const std::array<FamilyPart, 9> woods{{
    {"oak", {"Oak", "橡木"}, "#a2834f"},
    {"spruce", {"Spruce", "云杉木"}, "#735531"},
    {"birch", {"Birch", "白桦木"}, "#c0af79"},
    {"jungle", {"Jungle", "丛林木"}, "#a07351"},
    {"acacia", {"Acacia", "金合欢木"}, "#a85a32"},
    {"dark_oak", {"Dark Oak", "深色橡木"}, "#432b14"},
    {"mangrove", {"Mangrove", "红树木"}, "#763631"},
    {"crimson", {"Crimson", "绯红木"}, "#653147"},
    {"warped", {"Warped", "诡异木"}, "#2b6963"},
}};
constexpr std::size_t oldwoods = 6;     // one item with aux values for all of them
constexpr std::size_t firstfungus = 7;  // from here on no trees but huge fungi

// Of the trunk and its planks Chinese says "spruce" and not "spruce wood"; but an oak's wood cannot lose that word.
NamePair trunk(const FamilyPart& wood) {
    constexpr std::string_view oak = "橡木", timber = "木";
    NamePair words = wood.words;
    if (!words.chinese.ends_with(oak)) words.chinese.resize(words.chinese.size() - timber.size());
    return words;
}

// Things that have one item for each wood.
struct WoodThing {
    const char* tail;     // after the wood's id
    const char* oakname;  // some oak ones are older than the scheme
    int maxstack;
    NamePair pattern;
    const char* kind;
};

const WoodThing woodthings[] = {
    {"_stairs", "oak_stairs", 64, {"{} Stairs", "{}楼梯"}, "stairs"},
    {"_door", "wooden_door", 64, {"{} Door", "{}门"}, "door"},
    {"_trapdoor", "trapdoor", 64, {"{} Trapdoor", "{}活板门"}, "trapdoor"},
    {"_fence_gate", "fence_gate", 64, {"{} Fence Gate", "{}栅栏门"}, "fence"},
    {"_button", "wooden_button", 64, {"{} Button", "{}按钮"}, "button"},
    {"_pressure_plate", "wooden_pressure_plate", 64, {"{} Pressure Plate", "{}压力板"}, "plate"},
    {"_sign", "oak_sign", 16, {"{} Sign", "{}告示牌"}, "sign"},
};

// Things of which the old woods share an item, and the newer ones have one each.
struct SharedThing {
    const char* name;
    const char* tail;
    NamePair words, pattern;
    const char* kind;
    bool oftrunk;
};

const SharedThing sharedthings[] = {
    {"planks", "_planks", {"Wood Planks", "木板"}, {"{} Planks", "{}木板"}, "planks", true},
    {"fence", "_fence", {"Fence", "栅栏"}, {"{} Fence", "{}栅栏"}, "fence", false},
    {"wooden_slab", "_slab", {"Wooden Slab", "木台阶"}, {"{} Slab", "{}台阶"}, "slab", false},
};

const NamePair log{"{} Log", "{}原木"}, wood{"{} Wood", "{}"}, strippedwood{"Stripped {} Wood", "去皮{}"};

// Trunks that are items of their own, for the woods from `first` to before `last`.
struct TrunkThing {
    const char* head;
    const char* tail;
    NamePair pattern;
    bool oftrunk;
    std::size_t first, last;
};

const TrunkThing trunkthings[] = {
    {"stripped_", "_log", {"Stripped {} Log", "去皮{}原木"}, true, 0, firstfungus},
    {"", "_log", log, true, oldwoods, firstfungus},
    {"", "_wood", wood, false, oldwoods, firstfungus},
    {"stripped_", "_wood", strippedwood, false, oldwoods, firstfungus},
    {"", "_stem", {"{} Stem", "{}菌柄"}, true, firstfungus, woods.size()},
    {"stripped_", "_stem", {"Stripped {} Stem", "去皮{}菌柄"}, true, firstfungus, woods.size()},
    {"", "_hyphae", {"{} Hyphae", "{}菌核"}, true, firstfungus, woods.size()},
    {"stripped_", "_hyphae", {"Stripped {} Hyphae", "去皮{}菌核"}, true, firstfungus, woods.size()},
};

void maketrunks(RowMaker& make) {
    constexpr std::size_t oldlogs = 4;  // then the aux values had run out, and a second item was made
    constexpr int firststripped = 8;
    make.block("log", 64, {"Log", "原木"}, "log", woods[0].color);
    for (std::size_t i = 0; i < oldwoods; ++i) {
        if (i == oldlogs) make.block("log2", 64, {"Log", "原木"}, "log", woods[i].color);
        make.variant(static_cast<int>(i % oldlogs), woods[i].id, combine(log, trunk(woods[i])), woods[i].color);
    }
    make.block("wood", 64, {"Wood", "木头"}, "log", woods[0].color);
    make.variants(std::span(woods).first(oldwoods), wood);
    for (std::size_t i = 0; i < oldwoods; ++i) {
        make.variant(firststripped + static_cast<int>(i), "stripped." + std::string(woods[i].id),
                     combine(strippedwood, woods[i].words), woods[i].color);
    }
    for (const auto& thing : trunkthings) {
        for (const auto& one : std::span(woods).subspan(thing.first, thing.last - thing.first)) {
            make.block(thing.head + (one + thing.tail), 64,
                       combine(thing.pattern, thing.oftrunk ? trunk(one) : one.words), "log", one.color);
        }
    }
}

// In Chinese these go by the tree and not by its timber.
void maketrees(RowMaker& make) {
    const std::array<FamilyPart, oldwoods> trees{{
        {"oak", {"Oak", "橡树"}, "#4f8a2c"},
        {"spruce", {"Spruce", "云杉"}, "#4a6b4a"},
        {"birch", {"Birch", "白桦"}, "#6b8f4b"},
        {"jungle", {"Jungle", "丛林"}, "#3f8a1c"},
        {"acacia", {"Acacia", "金合欢"}, "#6f8a2c"},
        {"dark_oak", {"Dark Oak", "深色橡树"}, "#3f6b1c"},
    }};
    constexpr std::size_t oldleaves = 4;
    const NamePair leaves{"{} Leaves", "{}树叶"};
    make.block("sapling", 64, {"Sapling", "树苗"}, "sapling", trees[0].color);
    make.variants(trees, {"{} Sapling", "{}树苗"});
    make.block("leaves", 64, {"Leaves", "树叶"}, "plant", trees[0].color);
    make.variants(std::span(trees).first(oldleaves), leaves);
    make.block("leaves2", 64, {"Leaves", "树叶"}, "plant", trees[oldleaves].color);
    make.variants(std::span(trees).subspan(oldleaves), leaves);
}

}  // namespace

void makewoods(RowMaker& make) {
    for (const auto& thing : sharedthings) {
        make.block(thing.name, 64, thing.words, thing.kind, woods[0].color);
        for (std::size_t i = 0; i < woods.size(); ++i) {
            const NamePair words = combine(thing.pattern, thing.oftrunk ? trunk(woods[i]) : woods[i].words);
            if (i < oldwoods)
                make.variant(static_cast<int>(i), woods[i].id, words, woods[i].color);
            else
                make.block(woods[i] + thing.tail, 64, words, thing.kind, woods[i].color);
        }
    }
    for (const auto& thing : woodthings) {
        for (std::size_t i = 0; i < woods.size(); ++i) {
            make.block(i == 0 ? thing.oakname : woods[i] + thing.tail, thing.maxstack,
                       combine(thing.pattern, woods[i].words), thing.kind, woods[i].color);
        }
    }
    maketrunks(make);
    for (const auto& one : std::span(woods).first(firstfungus)) {
        make.item(one + "_boat", 1, 0, combine({"{} Boat", "{}船"}, one.words), "boat", one.color);
        make.item(one + "_chest_boat", 1, 0, combine({"{} Boat with Chest", "{}运输船"}, one.words), "boat", one.color);
    }
    maketrees(make);
}

}  // namespace host
