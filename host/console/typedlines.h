// The lines that were typed, in a file of the server directory that is its owner's alone: the last of them, one on each
// line, written anew with every line.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace host {

class TypedLines {
public:
    static constexpr std::size_t mostlines = 500, longest = 4096;  // bytes of a line

    explicit TypedLines(std::filesystem::path file);
    [[nodiscard]] const std::vector<std::string>& all() const { return lines_; }  // the latest last
    // Why it is not kept, or nothing. A line that is typed again at once, an empty one and one too long are left out.
    std::string add(const std::string& line);

private:
    const std::filesystem::path file_;
    std::vector<std::string> lines_;
    bool readable_ = true;  // what cannot be read is not overwritten
};

}  // namespace host
