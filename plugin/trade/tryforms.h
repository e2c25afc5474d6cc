// The elements of the two confirm forms that are answered. What else stands in them is told in tryforms.cpp.
#pragma once

#include "plugin/formparts/formtools.h"

namespace ordomart {

inline constexpr inputelement buyquantity{"sellshop.trybuy.form.inputtitle", "sellshop.trybuy.inputbuynum",
                                          "input numbers"};
inline constexpr slotsliders sellamounts{"recycleshop_recyclemenu_slidertitle",
                                         "myrecycleshop.globalrecycle.form.inputrecycleitemnum"};

}  // namespace ordomart
