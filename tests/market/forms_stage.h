// What the stories about forms read off the lists, the rows of a chest list and those of a form list, and what is told.
#pragma once

#include "tests/market/chest_stage.h"

namespace forms {

using namespace chest;

inline const std::string deadtext = "Dead people don't have permission to perform any operations!";
inline const std::string denied = "SYSTEM: you don't have this permission", banned = "the shop has been banned";
inline const std::string shopchanged = "SYSTEM: Operation failed, shopinfo has been changed";
inline const std::string slotschanged =
    "SYSTEM: Some of the slots hold something else by now. Nothing was taken from them.";

// The items of the page, "apple bread "; every stack shows one piece.
inline std::string chestrows(const Actor& player) {
    constexpr std::string_view before = "minecraft:", behind = "*1";
    std::string all;
    for (int slot = 9; slot < 35; ++slot)
        if (const auto item = player.shown(inventoryid, slot); !item.empty())
            all += item.substr(before.size(), item.size() - before.size() - behind.size()) + " ";
    return all;
}

// The names that the owners gave, from a list opened anew.
inline std::string formrows(Actor& player, const std::string& list) {
    player.dismisses().types("ordomart formmenu").presses(list);
    const json shown = player.form();
    std::string all;
    for (const auto& button : shown["buttons"]) {
        const auto text = button["text"].get<std::string>();
        const auto begin = text.find(':') + 1;
        all += text.substr(begin, text.find("§r§f(") - begin) + " ";
    }
    player.dismisses();
    return all;
}

// Three goods that hold "ruby" in one place each.
inline json rubies() {
    json bydesc = good("bread", 1, 5), bytag = good("stone", 1, 5);
    bydesc["shopitemdescribe"] = "as red as ruby";
    bytag["shopitemtag"] = "ruby";
    return {good("apple", 1, 5, "ruby one"), bydesc, bytag};
}

}  // namespace forms
