// Filling and sorting the read lists of one player at once, on the thread that asks. That is never the server thread,
// and not in a turn: one is taken for a few rows at a time. Each empties or keeps the list as its callers need and
// clamps the page. Players' menus order their lists from the builders instead (listbuilders.h).
#pragma once

#include <string>

#include "plugin/shopsystem/playershopstate.h"

namespace shopsystem {

// All shops: sellshop::prepareglobalsellshopfilterforplayer and its recycle twin.
// The shop "systemshop" alone, with filters; the recycle form does not empty the list itself.
void preparesystemsell(const std::string& playerxuid);
void preparesystemrecycle(const std::string& playerxuid);
// One shop: no ban test, private goods included, no search filter.
void preparesinglesell(const std::string& playerxuid, const std::string& shopxuid);
void preparesinglerecycle(const std::string& playerxuid, const std::string& shopxuid);

// By filterstep; 0 leaves the list as it is. Takes a turn to read and to replace the list, and sorts outside of it,
// unless the caller is in one. A list that has been rebuilt meanwhile stays as it is.
void sortsellreadlist(playershopstate& state);
void sortrecyclereadlist(playershopstate& state);

}  // namespace shopsystem
