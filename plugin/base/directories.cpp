// Directories are made where they are first needed.
#include "plugin/base/directories.h"

#include <fmt/format.h>

#include "platform/files.h"
#include "platform/host.h"
#include "plugin/base/globals.h"

namespace ordomart {

bool ensuredirectory(const std::string& path, LogLevel announced) {
    Files& files = *host().files;
    if (files.exists(path)) return true;
    logger.put(announced, fmt::format("Can't find direct,try create:{} ", path));
    const bool made = files.makeDirectory(path);
    if (made)
        logger.info("create {} success!", path);
    else
        logger.error("create {} error!", path);
    return made;
}

}  // namespace ordomart
