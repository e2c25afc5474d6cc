// From a name to the numbers that it stands for. The system's look-up can take long and cannot be broken off.
#pragma once

#include <string>
#include <vector>

namespace host {

// Numbers of version 4 and 6, the preferred first; empty when there are none. Blocks.
[[nodiscard]] std::vector<std::string> addressesof(const std::string& name);

}  // namespace host
