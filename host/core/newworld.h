// Whether a world may be made in a server directory. Where there has been one, a file that is missing or empty means a
// disk that is not there or a copy that went wrong, and a new world beside the old money would make that final.
#pragma once

#include <filesystem>

namespace host {

// Throws StartError that names the world's file and what shows that there has been one. With `anew` a new one may be
// made all the same; what is left of the old one is kept under other names. True when only a world that exists will do.
[[nodiscard]] bool mustexist(const std::filesystem::path& world, bool anew);

}  // namespace host
