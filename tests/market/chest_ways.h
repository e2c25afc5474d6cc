// The chest views as a map: by what sign each is known, and where a press leads, in the same container or to a dialog.
#pragma once

#include <algorithm>

#include "plugin/base/language.h"
#include "tests/market/chest_stage.h"

namespace chest {

// The key of the help sign that he sees, "" in the main menu, null for a picture that there is not.
inline constexpr const char* views[] = {"sellshop.helper1",
                                        "recycleshop.helper1",
                                        "sellshopfilterbyplayer.helper1",
                                        "recyleshopfilterbyplayer.helper1",
                                        "myshop.helper1",
                                        "myshop.onshop.helper1",
                                        "myshop.replenishmentshop.helper1",
                                        "myrecycleshop.helper1",
                                        "myrecycleshop.onreshop.helper1",
                                        "myrecycleshop.pickuprecycleitem.helper1"};
inline const char* viewof(const Actor& actor) {
    const auto sign = named(actor, offhandid, 0);
    if (sign.empty() && actor.shown(armorid, 0) == "minecraft:emerald*1") return "";
    const auto found =
        std::ranges::find_if(views, [&](const char* key) { return sign == ordomart::tr(actor.who().language, key); });
    return found != std::end(views) ? *found : nullptr;
}

// Where a press leads in the same container, by the signs of both views; and what dialog it leads to. A slot of -1
// is any that shows a stack.
struct way {
    const char* from;
    int container, slot;
    const char* to;
};
inline constexpr way doors[] = {
    {"", 6, 0, "sellshop.helper1"},
    {"", 6, 1, "recycleshop.helper1"},
    {"", 6, 2, "myshop.helper1"},
    {"", 28, 0, "sellshop.helper1"},
    {"", 28, 1, "recycleshop.helper1"},
    {"sellshop.helper1", 28, 2, "sellshopfilterbyplayer.helper1"},
    {"recycleshop.helper1", 28, 2, "recyleshopfilterbyplayer.helper1"},
    {"sellshopfilterbyplayer.helper1", 34, 1, "sellshop.helper1"},
    {"sellshopfilterbyplayer.helper1", 29, -1, "sellshop.helper1"},
    {"recyleshopfilterbyplayer.helper1", 34, 1, "recycleshop.helper1"},
    {"recyleshopfilterbyplayer.helper1", 29, -1, "recycleshop.helper1"},
    {"myshop.helper1", 28, 2, "myshop.onshop.helper1"},
    {"myshop.helper1", 28, 3, "myshop.replenishmentshop.helper1"},
    {"myshop.helper1", 6, 2, "myrecycleshop.helper1"},
    {"myshop.helper1", 34, 1, ""},
    {"myshop.onshop.helper1", 34, 1, "myshop.helper1"},
    {"myshop.replenishmentshop.helper1", 34, 1, "myshop.helper1"},
    {"myrecycleshop.helper1", 28, 2, "myrecycleshop.onreshop.helper1"},
    {"myrecycleshop.helper1", 28, 3, "myrecycleshop.pickuprecycleitem.helper1"},
    {"myrecycleshop.helper1", 6, 2, "myshop.helper1"},
    {"myrecycleshop.helper1", 34, 1, ""},
    {"myrecycleshop.onreshop.helper1", 34, 1, "myrecycleshop.helper1"},
    {"myrecycleshop.pickuprecycleitem.helper1", 34, 1, "myrecycleshop.helper1"},
};
inline constexpr const char* eventlog = "myshop.shopeventlog.form.menutitle";
inline constexpr way dialogs[] = {
    {"myshop.helper1", 29, -1, "myshop.adjustshop.form.menutitle"},
    {"myshop.helper1", 28, 4, "myshop.publishdiscount.form.menutitle"},
    {"myshop.helper1", 6, 0, "myshop.shopedit.form.menutitle"},
    {"myshop.replenishmentshop.helper1", 29, -1, "myshop.replenishmentshop.form.menutitle"},
    {"myshop.onshop.helper1", 29, -1, "myshop.onshop.form.menutitle"},
    {"myshop.onshop.helper1", 28, -1, "myshop.onshop.form.menutitle"},
    {"myshop.onshop.helper1", 6, -1, "myshop.onshop.form.menutitle"},
    {"myrecycleshop.helper1", 29, -1, "myrecycleshop.adjustshop.form.menutitle"},
    {"myrecycleshop.helper1", 6, 0, "myshop.shopedit.form.menutitle"},
    {"myrecycleshop.pickuprecycleitem.helper1", 29, -1, "myrecycleshop.pickupitem.form.menutitle"},
    {"myrecycleshop.onreshop.helper1", 29, -1, "myrecycleshop.onreshop.form.menutitle"},
    {"myrecycleshop.onreshop.helper1", 28, -1, "myrecycleshop.onreshop.form.menutitle"},
    {"myrecycleshop.onreshop.helper1", 6, -1, "myrecycleshop.onreshop.form.menutitle"},
};
template <class Ways>
const way* wayfrom(const Ways& ways, const char* view, const auto& at) {
    const auto found = std::ranges::find_if(ways, [&](const way& each) {
        return view != nullptr && view == std::string_view(each.from) && each.container == at.container &&
               (each.slot == -1 || each.slot == at.slot);
    });
    return found != std::end(ways) ? &*found : nullptr;
}

}  // namespace chest
