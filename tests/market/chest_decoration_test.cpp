// The tag helpers meet items that players stored: paths that are missing, hold something else, or are there already.
#include <gtest/gtest.h>

#include "plugin/chestmenu/decoration.h"
#include "plugin/chestmenu/fitting.h"

using namespace ordomart;

namespace {

struct helpercase {
    const char* name;
    const char* before;
    void (*change)(CompoundTag&);
    const char* after;
};

const helpercase cases[] = {
    {"lock makes the tag", "{}", [](CompoundTag& t) { setitemlock(t); }, R"({tag:{"minecraft:item_lock":1b}})"},
    {"item name is no display name", R"({Name:"a",tag:{display:{Name:"b"}}})",
     [](CompoundTag& t) { setitemname(t, "c"); }, R"({Name:"c",tag:{display:{Name:"b"}}})"},
    {"display name makes its path", R"({Name:"a"})", [](CompoundTag& t) { setdisplayname(t, "b"); },
     R"({Name:"a",tag:{display:{Name:"b"}}})"},
    {"a path of another type gives way", R"({tag:{display:3}})", [](CompoundTag& t) { setdisplayname(t, "b"); },
     R"({tag:{display:{Name:"b"}}})"},
    {"lines go behind those that are there", R"({tag:{display:{Lore:["x"]}}})",
     [](CompoundTag& t) { addloreline(t, "y\nz"); }, R"({tag:{display:{Lore:["x","y\nz"]}}})"},
    {"a lore of numbers gives way", R"({tag:{display:{Lore:[1,2]}}})", [](CompoundTag& t) { addloreline(t, "y"); },
     R"({tag:{display:{Lore:["y"]}}})"},
    {"a text of two lines", "{}", [](CompoundTag& t) { addlorelines(t, "a\nb"); },
     R"({tag:{display:{Lore:["a","b"]}}})"},
    {"a last newline leaves an empty line", "{}", [](CompoundTag& t) { addlorelines(t, "a\n"); },
     R"({tag:{display:{Lore:["a",""]}}})"},
    {"an empty text is a line", "{}", [](CompoundTag& t) { addlorelines(t, ""); }, R"({tag:{display:{Lore:[""]}}})"},
    {"clearing lore makes the path", "{}", [](CompoundTag& t) { clearlore(t); }, R"({tag:{display:{Lore:[]}}})"},
    {"clearing lore keeps the name", R"({tag:{display:{Lore:["x"],Name:"n"}}})", [](CompoundTag& t) { clearlore(t); },
     R"({tag:{display:{Lore:[],Name:"n"}}})"},
    {"shine empties enchantments", R"({tag:{ench:[{id:1s,lvl:2s}]}})", [](CompoundTag& t) { setshine(t); },
     R"({tag:{ench:[]}})"},
    {"shine taken away leaves no key", "{}",
     [](CompoundTag& t) {
         setshine(t);
         clearshine(t);
     },
     "{tag:{}}"},
    {"nothing to take away", "{}", [](CompoundTag& t) { clearshine(t); }, "{}"},
};

}  // namespace

TEST(ChestDecoration, TagHelpers) {
    for (const auto& each : cases) {
        auto tag = CompoundTag::fromSNBT(each.before);
        const auto wanted = CompoundTag::fromSNBT(each.after);
        ASSERT_TRUE(tag && wanted) << each.name;
        each.change(*tag);
        EXPECT_EQ(tag->toSNBT(), wanted->toSNBT()) << each.name;
    }
}

TEST(ChestDecoration, ATextIsCutBetweenTwoCharacters) {
    const struct {
        const char* text;
        std::size_t most;
        const char* after;
    } cutcases[] = {{"abcdef", 6, "abcdef"}, {"abcdefg", 6, "abc…"}, {"äöüä", 7, "äö…"},
                    {"äöüä", 6, "ä…"},       {"😀😀", 6, "…"},         {"", 3, ""}};
    for (const auto& each : cutcases) {
        std::string text = each.text;
        shorten(text, each.most);
        EXPECT_EQ(text, each.after) << each.text;
    }
}
