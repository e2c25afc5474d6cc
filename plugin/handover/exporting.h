// The market written down while it goes on. Each shop is taken in one turn, with the number of the ledger's next entry:
// of its entries those below that number are in the file, and the sums by day count no others, so that shop, ledger and
// sums of one shop fit each other; two shops may be some seconds apart. Background threads.
#pragma once

#include <functional>
#include <string>

#include "plugin/handover/filewalk.h"

namespace handover {

// `goeson` is asked between two turns; `wrote` hears of each part that is done, by the kind of its lines. Throws
// std::runtime_error, and then there is no file: it is there as a whole or not at all.
linecounts exportmarket(const std::string& path, const std::function<bool()>& goeson,
                        const std::function<void(const linecounts&)>& wroteshops);

}  // namespace handover
