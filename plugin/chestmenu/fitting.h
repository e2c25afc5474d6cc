// What owners write comes out under their goods, and items bring data of their own: a false stack is cut to what the
// wire can carry and a page can bear, so that one of them never costs a player the others. Any thread.
#pragma once

#include <string>

#include "platform/packets/networkitem.h"

namespace ordomart {

// User data of one stack. A page of 26 stays below a megabyte; no text that a person reads is near it.
inline constexpr std::size_t moststackbytes = std::size_t{32} * 1024;

// The stack as it is sent. One that is too big keeps what a client shows of it, with long texts cut, and of very many
// lines the last ones, which are the market's.
[[nodiscard]] platform::NetworkItem fitted(const platform::ItemStack& stack);

// Ends a text that is longer than so many bytes with "…" behind its last whole character. Three bytes at least.
void shorten(std::string& text, std::size_t most);

}  // namespace ordomart
