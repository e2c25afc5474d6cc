// The backup that an operator asks for from outside, whether a server runs or not.
#pragma once

#include <filesystem>

#include "host/backup/backup.h"

namespace host {

// Throws BackupError.
[[nodiscard]] BackupReport backup(const std::filesystem::path& directory, const std::filesystem::path& target);

}  // namespace host
