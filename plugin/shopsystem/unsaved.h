// What a stop could not write into the shop files. Each section is kept aside in a file of its own, which is taken into
// the shop file before anybody reads that shop again: at the next start, or, where the shop file does not take it yet,
// at each reading. Until then the shop stays closed, since what its file holds is older.
#pragma once

#include <string>

#include "plugin/shopsystem/baseshop.h"

namespace shopsystem {

// At a stop. The line that tells of it.
[[nodiscard]] std::string keepaside(const std::string& xuid, int section, const json& value, const std::string& why);
// At the start: looks what is there, and takes in what can be. The log names each.
void takeinunsaved();
// Before a shop is read. Throws what keeps a section that is there from being taken in, with nothing lost. Any thread;
// not in a turn, or on the server thread.
void takein(const std::string& xuid, int section);

}  // namespace shopsystem
