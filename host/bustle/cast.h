// Who can come to a bustling market: names, crafts and what their goods are worth. Plain tables, so that a market of
// other people is a matter of writing them down.
#pragma once

#include <cstddef>
#include <span>

namespace host {

struct Ware {
    const char* item;  // without the namespace
    int value;         // what a piece is usually worth
    int aux = 0;
};

// A word in both languages of the market.
struct Said {
    const char *english, *chinese;
    [[nodiscard]] const char* in(bool chinesespeaker) const { return chinesespeaker ? chinese : english; }
};

struct Craft {
    Said tag, house, praise;  // the goods' tag, what a shop is called behind its owner's name, a good word
    std::span<const Ware> wares;
};

[[nodiscard]] std::span<const Craft> crafts();

struct Figure {
    const char* name;
    bool chinese;
};

// Those who are around at a time, at most; some more are away meanwhile.
inline constexpr int mostaround = 50;
[[nodiscard]] std::span<const Figure> figures();

}  // namespace host
