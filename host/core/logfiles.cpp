// Lines are appended with one system call each, so that a line is in the file when write() returns.
#include "host/core/logfiles.h"

#include <sys/stat.h>

#include "host/core/paths.h"

namespace host {

namespace {

bool samefile(const Descriptor& descriptor, const std::filesystem::path& path) {
    struct stat opened {
    }, named{};
    return ::fstat(descriptor.number(), &opened) == 0 && ::stat(path.c_str(), &named) == 0 &&
           opened.st_ino == named.st_ino && opened.st_dev == named.st_dev;
}

}  // namespace

bool LogFiles::open(const std::string& path, bool append) { return find(path, append ? 0 : O_TRUNC) != nullptr; }

void LogFiles::write(const std::string& path, std::string_view line) {
    const auto* file = find(path, 0);
    if (file != nullptr) file->write(line);
}

void LogFiles::close() {
    open_.clear();
    order_.clear();
}

const Descriptor* LogFiles::find(const std::string& path, int flags) {
    const auto target = below(root_, path);
    if (!target) return nullptr;
    if (frozen_ != nullptr) {
        if ((flags & O_TRUNC) != 0)
            frozen_->emptying(*target);
        else
            frozen_->appending(*target, std::filesystem::path(path).lexically_normal());
    }
    auto found = open_.find(path);
    if (found != open_.end()) {
        if (flags == 0 && samefile(found->second.descriptor, *target)) {
            order_.splice(order_.begin(), order_, found->second.place);
            return &found->second.descriptor;
        }
        order_.erase(found->second.place);
        open_.erase(found);
    }
    Descriptor opened(target->c_str(), O_WRONLY | O_CREAT | O_APPEND | flags);
    if (!opened.isopen()) return nullptr;
    if (open_.size() == mostopen) {
        open_.erase(order_.back());
        order_.pop_back();
    }
    order_.push_front(path);
    return &open_.emplace(path, File{std::move(opened), order_.begin()}).first->second.descriptor;
}

}  // namespace host
