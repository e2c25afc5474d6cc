// The grammar of words; commands.cpp and overload.cpp give them a meaning.
#include "host/core/commandline.h"

#include <algorithm>

namespace host {

namespace {

constexpr std::string_view blanks = " \t\r\n";

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

CommandWord quotedword(std::string_view line, std::size_t begin) {
    CommandWord word{{}, begin, begin + 1, true, false};
    while (word.end < line.size()) {
        char c = line[word.end++];
        if (c == '"') {
            word.closed = true;
            break;
        }
        const bool escape = c == '\\' && word.end < line.size() && (line[word.end] == '"' || line[word.end] == '\\');
        if (escape) c = line[word.end++];
        word.text += c;
    }
    return word;
}

CommandWord plainword(std::string_view line, std::size_t begin) {
    const auto end = std::min(line.find_first_of(blanks, begin), line.size());
    return {std::string(line.substr(begin, end - begin)), begin, end};
}

}  // namespace

CommandLine splitline(std::string_view line) {
    line = trimmed(line);
    if (!line.empty() && line.front() == '/') line = trimmed(line.substr(1));
    CommandLine result{std::string(line), {}};
    for (std::size_t at = 0; (at = line.find_first_not_of(blanks, at)) != std::string_view::npos;) {
        result.words.push_back(line[at] == '"' ? quotedword(line, at) : plainword(line, at));
        at = result.words.back().end;
    }
    return result;
}

std::string CommandLine::unexpected(std::size_t index) const {
    const bool atend = index >= words.size();
    const auto begin = atend ? line.size() : words[index].begin;
    const auto end = atend ? line.size() : words[index].end;
    const auto word = line.substr(begin, end - begin);
    return "Syntax error: Unexpected \"" + word + "\": at \"" + line.substr(0, begin) + ">>" + word + "<<" +
           line.substr(end) + "\"";
}

}  // namespace host
