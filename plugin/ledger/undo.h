// Takes one trade back on both legs: pieces, money, counters, deposit. It happens whole or not at all, and is an entry
// of the ledger itself. A trade is taken back once. Server thread.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/player.h"

namespace ledger {

struct undoresult {
    std::uint64_t number = 0;          // of the entry that does it; 0: nothing has changed
    std::vector<std::string> missing;  // why not, in the operator's language
    std::string done;                  // what has been done, in his language
};
[[nodiscard]] undoresult undo(const platform::ServerPlayer& by, std::uint64_t number);

}  // namespace ledger
