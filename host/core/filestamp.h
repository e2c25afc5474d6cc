// What the system knows of a file without reading it.
#pragma once

#include <sys/stat.h>

#include <ctime>
#include <filesystem>
#include <optional>

#include "platform/files.h"

namespace host {

inline std::int64_t nanoseconds(const timespec& time) {
    return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

// Of the file that is meant by the path, behind all links.
inline std::optional<platform::FileStamp> stampof(const std::filesystem::path& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return std::nullopt;
    return platform::FileStamp{status.st_ino, static_cast<std::uint64_t>(status.st_size), nanoseconds(status.st_mtim),
                               nanoseconds(status.st_ctim)};
}

}  // namespace host
