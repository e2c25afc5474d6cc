// Settings beside the fixed file of settings, in a file of their own: extras.json. Read and written back like that one.
#pragma once

#include <cstdint>
#include <string>

namespace ordomart {

extern std::int64_t ledgerdays;  // how long entries of the ledger are kept
extern bool awaymessage;         // whether a joining player is told what happened while he was away

}  // namespace ordomart
