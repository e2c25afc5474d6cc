#include "plugin/economy/marketopen.h"

#include "platform/stores.h"

namespace ordomart {

bool marketopen() { return platform::Stores::writable(); }

}  // namespace ordomart
