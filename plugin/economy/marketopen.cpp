#include "plugin/economy/marketopen.h"

#include <atomic>

#include "platform/stores.h"
#include "plugin/base/owntexts.h"

namespace ordomart {

namespace {
std::atomic<bool> istakingover = false;
}

bool marketopen() { return !istakingover && platform::Stores::writable(); }

const char* closedtext() { return istakingover ? owntext::takingover : owntext::cannotsave; }

void closefortakeover() { istakingover = true; }
void openaftertakeover() { istakingover = false; }

}  // namespace ordomart
