// The page's files, built into the program.
#pragma once

#include <span>

#include "host/core/embedded.h"

namespace host {

using WebFile = EmbeddedFile;

[[nodiscard]] std::span<const WebFile> webfiles();

}  // namespace host
