// A watch over a directory on any host.
#pragma once

#include <memory>
#include <string>

#include "platform/files.h"

namespace platform {

// The host's own watch. On a host that has none, one that lists the directory and compares stamps, which notices what
// the stamps do; files without a stamp are changed in every answer.
[[nodiscard]] std::unique_ptr<DirectoryWatch> watchDirectory(const std::string& directory);

}  // namespace platform
