// Paths as plug-ins write them, and what stands behind them on the disk.
#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

namespace host {

// The file below the root that a relative path with forward slashes means. Nothing for a path that could lead out of
// the root: an absolute one, one with "..", one that holds a zero byte.
[[nodiscard]] std::optional<std::filesystem::path> below(const std::filesystem::path& root, std::string_view path);

// The file of that name beside the running program.
[[nodiscard]] std::filesystem::path besideprogram(std::string_view name);

}  // namespace host
