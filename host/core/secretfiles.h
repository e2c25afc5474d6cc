// Files for the server's user alone, and the tokens that are kept in such files.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace host {

// Replaces the file; nobody else can open it at any moment. Throws StartError.
void writesecret(const std::filesystem::path& file, std::string_view content);

// The token that the file holds, or a new random one that it holds from now on. Throws StartError.
[[nodiscard]] std::string kepttoken(const std::filesystem::path& file);

// Takes the same time whatever is wrong with the given one.
[[nodiscard]] bool sametoken(std::string_view given, std::string_view token);

}  // namespace host
