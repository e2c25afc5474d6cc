// Everything that is done in a story, as one table.
#pragma once

#include <span>

#include "tests/story/world.h"

namespace story {

// What must be true behind an operation.
enum class holds {
    books,       // as trades move things
    everything,  // nothing has changed: a leave, a save, a restart
    nothing      // it comes from outside the market, and all is looked at anew
};

// Which list the operation makes anew, so that what is opened out of it is at the prices of now; without banned shops,
// unless it is that of one shop.
enum class madelist { none, one, all };

struct operation {
    const char* name;
    int weight;
    void (*run)(World&, std::size_t who, Dice&);
    holds behind = holds::books;
    madelist list = madelist::none;
};
[[nodiscard]] std::span<const operation> operations();

}  // namespace story
