// Makes the rows of the item table: from the list in itemdata.inc, and families of items that differ only by colour,
// wood or material from code.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/world/items.h"

namespace host {

// A thing's name in both languages. Families put names together by replacing "{}" of a pattern.
struct NamePair {
    std::string english, chinese;
};

[[nodiscard]] NamePair combine(const NamePair& pattern, const NamePair& part);

// What one member of a family adds to each thing made of it.
struct FamilyPart {
    const char* id;
    NamePair words;
    const char* color;
};

[[nodiscard]] inline std::string operator+(const FamilyPart& part, const char* tail) {
    return std::string(part.id) + tail;
}

class RowMaker {
public:
    // `name` is the short one, "apple". What wears does so by `durability`.
    void item(std::string_view name, int maxstack, int durability, const NamePair& words, std::string_view kind,
              std::string_view color);
    void block(std::string_view name, int maxstack, const NamePair& words, std::string_view kind,
               std::string_view color);
    // Of the row made last.
    void variant(int aux, std::string_view id, const NamePair& words, std::string_view color);
    // One for each part, with rising aux values.
    void variants(std::span<const FamilyPart> parts, const NamePair& pattern, int firstaux = 0);

    // Whatever else the game has, under the keys by which a client finds the names.
    void rest();

    [[nodiscard]] std::vector<ItemRow> take() { return std::move(rows_); }

private:
    void add(std::string_view name, std::string_view group, int maxstack, const NamePair& words, std::string_view kind,
             std::string_view color);

    std::vector<ItemRow> rows_;
};

// The families, each in a fixed order. Where the game of this version keeps one as an item with aux values, so do they.
void makegear(RowMaker& make);
void makewoods(RowMaker& make);
void makecolors(RowMaker& make);
void makecopper(RowMaker& make);
void makepotions(RowMaker& make);
void makespawneggs(RowMaker& make);
void makediscs(RowMaker& make);

// All of them.
[[nodiscard]] std::vector<ItemRow> makeitemrows();

}  // namespace host
