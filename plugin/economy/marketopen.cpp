#include "plugin/economy/marketopen.h"

namespace ordomart {

bool marketopen() { return true; }

}  // namespace ordomart
