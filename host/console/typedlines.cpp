#include "host/console/typedlines.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstring>
#include <sstream>

#include "host/core/files.h"
#include "platform/utf8.h"

namespace host {

TypedLines::TypedLines(std::filesystem::path file) : file_(std::move(file)) {
    const DiskFiles files(file_.parent_path());
    const std::string name = file_.filename().string();
    const auto text = files.readtail(name, mostlines * longest);
    readable_ = text.has_value() || !files.exists(name);
    std::istringstream in(text.value_or(""));
    for (std::string line; std::getline(in, line);)
        if (!line.empty() && line.size() <= longest && platform::isutf8(line)) lines_.push_back(std::move(line));
    if (lines_.size() > mostlines) lines_.erase(lines_.begin(), lines_.end() - mostlines);
}

std::string TypedLines::add(const std::string& line) {
    if (line.empty() || line.size() > longest || (!lines_.empty() && lines_.back() == line)) return {};
    lines_.push_back(line);
    if (lines_.size() > mostlines) lines_.erase(lines_.begin());
    if (!readable_) return fmt::format("{}: it cannot be read, and what is typed is not kept", file_.string());
    std::string text;
    for (const std::string& kept : lines_) text += kept + '\n';
    if (writeprivately(file_, text)) return {};
    return fmt::format("{}: what is typed is not kept: {}", file_.string(), std::strerror(errno));
}

}  // namespace host
