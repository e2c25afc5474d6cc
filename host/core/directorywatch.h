// A directory that the system watches (inotify), as platform/files.h promises it. What the system reports of the
// directory is not enough alone: the path may have come to mean another directory, which one look at each take() shows,
// and what a symbolic link leads to changes unseen, so links are stamped at each take(). Two ways to write stay unseen:
// under another name of the same file in another directory (a hard link), and through a memory mapping until it is
// closed.
#pragma once

#include <filesystem>
#include <memory>

#include "platform/files.h"

namespace host {

// A directory that is missing is watched as soon as it is there. Null when the system has no watch left to give, and on
// a file system that others may change without our kernel.
[[nodiscard]] std::unique_ptr<platform::DirectoryWatch> watchdirectory(std::filesystem::path directory);

}  // namespace host
