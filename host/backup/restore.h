// A backup becomes a server directory again.
#pragma once

#include <filesystem>
#include <string_view>

namespace host {

// Everything is unpacked and proved in here, below the new directory, before any of it gets its place.
inline constexpr std::string_view restoringname = ".restore.part";

// Into a directory that is missing or empty; on failure it is that again. Gives the number of files. Throws
// BackupError.
std::size_t restore(const std::filesystem::path& archive, const std::filesystem::path& directory);

// Whether that was cut short in the directory, by a kill.
[[nodiscard]] bool halfrestored(const std::filesystem::path& directory);

}  // namespace host
