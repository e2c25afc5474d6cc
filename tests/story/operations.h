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

struct operation {
    const char* name;
    int weight;
    void (*run)(World&, std::size_t who, Dice&);
    holds behind = holds::books;
    bool makeslist = false;  // a form that is open behind it shows what is true now
};
[[nodiscard]] std::span<const operation> operations();

}  // namespace story
