// Item stacks as bytes in the world's file.
#pragma once

#include <string>

#include "platform/item.h"

namespace host {

[[nodiscard]] std::string encodestack(const platform::ItemStack& stack);
// Throws std::runtime_error that begins with `where`. An item that the table does not hold is logged and gives the null
// stack; its row stays in the file until something else is put in its place.
[[nodiscard]] platform::ItemStack decodestack(const std::string& bytes, const std::string& where);

}  // namespace host
