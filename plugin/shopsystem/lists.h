// Filling and sorting the read lists. The builders run off the server thread and not in a turn: they take one for a
// few rows at a time. Each empties or keeps the list as its callers need, clamps the page, and throws what a broken
// shop file throws, with the rows so far in the list.
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

// By filterstep; 0 leaves the file order. Takes a turn to read and to replace the list, and sorts outside of it, unless
// the caller is in one. A list that has been rebuilt meanwhile stays as it is.
void sortsellreadlist(playershopstate& state);
void sortrecyclereadlist(playershopstate& state);

}  // namespace shopsystem
