// What becomes of money that is asked to move: nothing to tell when it moved, or why it did not.
#pragma once

#include <exception>
#include <optional>
#include <string>

namespace ordomart {

using moneyrefusal = std::optional<std::string>;

// What is thrown on the way is a refusal, too.
template <class Move>
[[nodiscard]] moneyrefusal tried(const Move& move) {
    try {
        return move();
    } catch (const std::exception& e) {
        return e.what();
    }
}

}  // namespace ordomart
