// What the market counts for whoever watches the server. Made at the start; until then, and on a host that shows
// nothing, all of them count nowhere. Any thread.
#pragma once

#include <array>

#include "platform/views.h"

namespace ordomart {

struct marketcounts {
    struct tradecounts {
        platform::Counter trades, pieces, money;
    };
    tradecounts purchases, sales, undone;
    platform::Counter fees;
    platform::Counter saves, savefailures;      // of shop files
    std::array<platform::Histogram, 2> making;  // of lists, by the shops' kind
};
extern marketcounts counts;

void startcounts();

}  // namespace ordomart
