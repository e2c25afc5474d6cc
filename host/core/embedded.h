// Files that are built into the program (cmake/embed.cmake).
#pragma once

#include <string_view>

namespace host {

struct EmbeddedFile {
    const char* path;  // "/page.js"; "/" for index.html
    const char* type;
    std::string_view content;
};

}  // namespace host
