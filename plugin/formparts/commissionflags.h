// The three tests that a commission may make beside the item's name, as players see them.
#pragma once

#include "plugin/shopsystem/shopitems.h"

namespace ordomart {

struct commissionflag {
    bool shopsystem::recycleshopitem::*set;
    const char* labelkey;
    [[nodiscard]] const char* glyph(const shopsystem::recycleshopitem& item) const {
        return item.*set ? " \uE0A0" : " \uE0A1";
    }
};

inline constexpr commissionflag commissionflags[] = {
    {&shopsystem::recycleshopitem::filterauxordamage, "recycleshopitem.filterauxdamage"},
    {&shopsystem::recycleshopitem::filterench, "recycleshopitem.filterench"},
    {&shopsystem::recycleshopitem::filteritemnbt, "recycleshopitem.filteritemnbt"},
};

}  // namespace ordomart
