// The shops of this market that another one is to be taken into, and what becomes of those behind it. Background
// threads.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace handover {

// Names those of the owners whose shops hold something here, or have a past in the ledger: the first ones, all of them
// in the log. Empty when there is none.
[[nodiscard]] std::string notempty(const std::vector<std::string>& owners, const std::function<bool()>& goeson);

// Brings what was taken in to its files, some shops at a time, and keeps none of them in memory for it.
void savetakenin();

}  // namespace handover
