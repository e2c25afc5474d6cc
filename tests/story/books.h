// The books of a story. Two pictures of the world are held against each other: what the shops say has happened tells
// what must have moved, to whom and for how much, and nothing else may have. Every coin and every piece is accounted
// for, those of operators too, whose goods come from nothing and whose money goes nowhere by rule.
#pragma once

#include "tests/story/world.h"

namespace story {

// Who has done the step, and by which form, if he has answered one.
struct deed {
    std::size_t who;
    bool isalive, isoperator, llmoney;
    std::optional<dialog> asked;
    bool bans = false;  // the step may ban a shop, or lift a ban
};

struct entry {
    std::string what = "nothing";  // the name of what has happened
    std::string fault;             // empty when the books are right
    bool inbanned = false;         // it was a trade in a banned shop
};
[[nodiscard]] entry book(const picture& then, const picture& now, const deed& by);

// What a form of a trade offers.
struct quote {
    std::string name;
    std::int64_t price = 0, quantity = 0;
};
[[nodiscard]] std::optional<quote> quoteof(const dialog& asked);
// What is wrong with the price on a form of a purchase that has just been opened from a list made anew.
[[nodiscard]] std::string wrongprice(const picture& then, const picture& now, const dialog& asked);

}  // namespace story
