// A command line cut into words.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace host {

struct CommandWord {
    std::string text;                // without quotes and escapes
    std::size_t begin = 0, end = 0;  // its place in the line, quotes included
    bool quoted = false;
    bool closed = true;  // false: a quote that does not end
};

struct CommandLine {
    std::string line;  // without its slash and the blanks around it
    std::vector<CommandWord> words;
    // The game's way to say where a line went wrong; the place after the last word is the end of the line.
    [[nodiscard]] std::string unexpected(std::size_t index) const;
};

// Words are separated by blanks. A text in double quotes is one word, in which \" is a quote and \\ a backslash.
[[nodiscard]] CommandLine splitline(std::string_view line);

}  // namespace host
