// Path arithmetic; nothing here touches a file.
#include "host/core/paths.h"

#include <algorithm>

namespace host {

std::optional<std::filesystem::path> below(const std::filesystem::path& root, std::string_view path) {
    if (path.find('\0') != std::string_view::npos) return std::nullopt;
    const std::filesystem::path relative(path);
    if (relative.is_absolute() || std::find(relative.begin(), relative.end(), "..") != relative.end()) {
        return std::nullopt;
    }
    return root / relative;
}

std::filesystem::path besideprogram(std::string_view name) {
    return std::filesystem::read_symlink("/proc/self/exe").parent_path() / name;
}

}  // namespace host
