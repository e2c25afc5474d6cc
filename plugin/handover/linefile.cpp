#include "plugin/handover/linefile.h"

#include <algorithm>
#include <stdexcept>

#include "platform/host.h"
#include "plugin/base/directories.h"
#include "plugin/base/globals.h"

namespace handover {

namespace {

constexpr std::size_t readatatime = std::size_t{256} << 10, longestline = std::size_t{64} << 20, longestname = 64;
constexpr std::string_view suffix = ".jsonl";

std::string folder() { return ordomart::paths::base + "exports/"; }

bool maystand(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_';
}

}  // namespace

std::string pathof(const std::string& name) {
    std::string_view bare = name;
    if (bare.ends_with(suffix)) bare.remove_suffix(suffix.size());
    if (bare.empty() || bare.size() > longestname || !std::ranges::all_of(bare, maystand)) return {};
    return folder() + std::string(bare) + std::string(suffix);
}

std::string nameof(const std::string& path) { return path.substr(path.rfind('/') + 1); }

linewriter::linewriter(const std::string& path) : path_(path) {
    auto& files = *platform::host().files;
    ordomart::ensuredirectory(folder(), platform::LogLevel::info);
    if (files.exists(path)) throw std::runtime_error(path + ": is there already");
    file_ = files.make(path);
    if (file_ == nullptr) throw std::runtime_error(path + ": cannot be made");
}

void linewriter::add(const std::string& line) {
    const auto had = buffer_.size();
    buffer_ += line;
    buffer_ += '\n';
    sum_.add(std::string_view(buffer_).substr(had));
    if (buffer_.size() >= readatatime) flush();
}

void linewriter::flush() {
    if (!file_->write(buffer_)) throw std::runtime_error(path_ + ": cannot be written");
    buffer_.clear();
}

void linewriter::finish() {
    flush();
    if (!file_->finish()) throw std::runtime_error(path_ + ": cannot be finished");
}

std::optional<std::string> linereader::next() {
    auto end = buffer_.find('\n', at_);
    while (end == std::string::npos && !isend_) {
        buffer_.erase(0, at_);
        const auto had = buffer_.size();
        at_ = 0;
        if (had > longestline) throw std::runtime_error("the line is too long");
        const auto more = platform::host().files->readpart(path_, from_, readatatime);
        if (!more) throw std::runtime_error("the file cannot be read");
        isend_ = more->size() < readatatime;
        from_ += more->size();
        buffer_ += *more;
        end = buffer_.find('\n', had);
    }
    before_ = sum_;
    if (end == std::string::npos) {
        if (at_ < buffer_.size()) ++number_, throw std::runtime_error("the line does not end");
        return std::nullopt;
    }
    ++number_;
    std::string line = buffer_.substr(at_, end - at_);
    sum_.add(std::string_view(buffer_).substr(at_, end + 1 - at_));
    at_ = end + 1;
    return line;
}

}  // namespace handover
