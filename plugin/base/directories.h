// The directories of the plug-in. Any thread.
#pragma once

#include <string>

#include "platform/logger.h"

namespace ordomart {

// Makes a directory that is missing and tells so, the first line at the given level. False when it could not be made.
bool ensuredirectory(const std::string& path, platform::LogLevel announced);

}  // namespace ordomart
