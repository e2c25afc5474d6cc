// Network ids and block runtime ids are the game's own; a row that it does not have would have none, and is an error.
#include "host/world/itemrows.h"

#include <fmt/format.h>

#include <set>
#include <stdexcept>

#include "host/world/gamedata.h"

namespace host {

namespace {

std::string replaced(const std::string& pattern, const std::string& part) {
    std::string made = pattern;
    made.replace(made.find("{}"), 2, part);
    return made;
}

// The list as plain data: the compiler takes long over as many calls.
struct ListedRow {
    enum { item, block, variant, shapes } what;
    int number, durability;  // largest stack; of a variant the aux value
    const char *name, *english, *chinese, *kind, *color;
};
constexpr ListedRow listedrows[] = {
#define ITEM(name, maxstack, durability, english, chinese, kind, color) \
    {ListedRow::item, maxstack, durability, #name, english, chinese, kind, color},
#define BLOCK(name, maxstack, english, chinese, kind, color) \
    {ListedRow::block, maxstack, 0, #name, english, chinese, kind, color},
#define VARIANT(aux, id, english, chinese, color) {ListedRow::variant, aux, 0, #id, english, chinese, "", color},
#define SHAPES(name, english, chinese, color) {ListedRow::shapes, 64, 0, #name, english, chinese, "", color},
#include "host/world/itemdata.inc"
#undef ITEM
#undef BLOCK
#undef VARIANT
#undef SHAPES
};

void makesingleitems(RowMaker& make) {
    for (const auto& [what, number, durability, name, english, chinese, kind, color] : listedrows) {
        const NamePair words{english, chinese};
        switch (what) {
            case ListedRow::item:
                make.item(name, number, durability, words, kind, color);
                break;
            case ListedRow::block:
                make.block(name, number, words, kind, color);
                break;
            case ListedRow::variant:
                make.variant(number, name, words, color);
                break;
            case ListedRow::shapes:
                // A stone's shapes are named after it, and the names never differ but in that word.
                make.block(name + std::string("_stairs"), number, combine({"{} Stairs", "{}楼梯"}, words), "stairs",
                           color);
                make.block(name + std::string("_slab"), number, combine({"{} Slab", "{}台阶"}, words), "slab", color);
                make.block(name + std::string("_wall"), number, combine({"{} Wall", "{}墙"}, words), "wall", color);
        }
    }
}

}  // namespace

NamePair combine(const NamePair& pattern, const NamePair& part) {
    return {replaced(pattern.english, part.english), replaced(pattern.chinese, part.chinese)};
}

void RowMaker::add(std::string_view name, std::string_view group, int maxstack, const NamePair& words,
                   std::string_view kind, std::string_view color) {
    ItemRow& row = rows_.emplace_back();
    row.info.name = "minecraft:" + std::string(name);
    row.info.descriptionid = std::string(group) + "." + std::string(name) + ".name";
    row.info.maxstack = maxstack;
    const GameItem* item = gameitem(row.info.name);
    if (item == nullptr) throw std::logic_error(fmt::format("{} is no item of the game's", row.info.name));
    row.info.networkid = item->id;
    if (const GameBlock* block = gameblock(row.info.name); block != nullptr && item->isblock()) {
        row.info.blockruntimeid = block->first;
        row.info.auxblockruntimeids = block->byaux;
    }
    row.english = words.english;
    row.chinese = words.chinese;
    row.kind = kind;
    row.color = color;
}

void RowMaker::item(std::string_view name, int maxstack, int durability, const NamePair& words, std::string_view kind,
                    std::string_view color) {
    add(name, "item", maxstack, words, kind, color);
    rows_.back().info.maxdamage = durability;
}

void RowMaker::block(std::string_view name, int maxstack, const NamePair& words, std::string_view kind,
                     std::string_view color) {
    add(name, "tile", maxstack, words, kind, color);
}

void RowMaker::variant(int aux, std::string_view id, const NamePair& words, std::string_view color) {
    ItemRow& row = rows_.back();
    constexpr std::string_view tail = ".name";
    std::string descriptionid = row.info.descriptionid;
    descriptionid.insert(descriptionid.size() - tail.size(), "." + std::string(id));
    auto& byaux = row.info.auxdescriptionids;
    if (byaux.size() <= static_cast<std::size_t>(aux)) byaux.resize(static_cast<std::size_t>(aux) + 1);
    byaux[static_cast<std::size_t>(aux)] = descriptionid;
    row.variants.push_back({aux, std::move(descriptionid), words.english, words.chinese, std::string(color)});
}

void RowMaker::variants(std::span<const FamilyPart> parts, const NamePair& pattern, int firstaux) {
    for (const auto& part : parts) variant(firstaux++, part.id, combine(pattern, part.words), part.color);
}

void RowMaker::rest() {
    const struct {
        std::string_view ending;
        int maxstack;
    } smallstacks[] = {{"boat", 1}, {"raft", 1}, {"banner_pattern", 1}, {"sign", 16}};
    std::set<std::string_view> known{"minecraft:air"};
    for (const ItemRow& row : rows_) known.insert(row.info.name);
    std::vector<std::string> missing;
    for (const GameItem& item : gameitems())
        if (!known.contains(item.name)) missing.push_back(item.name.substr(item.name.find(':') + 1));
    for (const std::string& name : missing) {
        // "item.bed" is the block of a bed, which has another item.
        constexpr std::string_view ofblock = "item.";
        std::string_view block = name;
        if (block.starts_with(ofblock)) block.remove_prefix(ofblock.size());
        const bool isblock = gameitem("minecraft:" + name)->isblock();
        const std::string key = fmt::format("{}.{}.name", isblock ? "tile" : "item", block);
        int maxstack = 64;
        for (const auto& small : smallstacks)
            if (!isblock && name.ends_with(small.ending)) maxstack = small.maxstack;
        add(name, isblock ? "tile" : "item", maxstack, {key, key}, isblock ? "block" : "paper", "#8a8a8a");
        rows_.back().info.descriptionid = key;
    }
}

std::vector<ItemRow> makeitemrows() {
    RowMaker make;
    makesingleitems(make);
    makegear(make);
    makewoods(make);
    makecolors(make);
    makecopper(make);
    makepotions(make);
    makespawneggs(make);
    makediscs(make);
    make.rest();
    return make.take();
}

}  // namespace host
