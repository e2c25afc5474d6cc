// The page's files, built into the program.
#pragma once

#include <span>
#include <string_view>

namespace host {

struct WebFile {
    const char* path;  // "/", "/page.js"
    const char* type;
    std::string_view content;
};

[[nodiscard]] std::span<const WebFile> webfiles();

}  // namespace host
