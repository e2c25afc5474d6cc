#include "host/core/directorywatch.h"

#include <linux/magic.h>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <sys/vfs.h>

#include <algorithm>
#include <array>
#include <map>
#include <string_view>
#include <utility>

#include "host/core/descriptor.h"
#include "host/core/filestamp.h"

namespace fs = std::filesystem;

namespace host {

namespace {

constexpr std::uint32_t watched = IN_CREATE | IN_MODIFY | IN_ATTRIB | IN_CLOSE_WRITE | IN_MOVE | IN_DELETE |
                                  IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;
constexpr std::uint32_t losing = IN_Q_OVERFLOW | IN_IGNORED | IN_UNMOUNT | IN_DELETE_SELF | IN_MOVE_SELF;

// Shared ones: the system reports what this machine writes there and nothing else.
constexpr std::uint32_t sharedfilesystems[] = {
    NFS_SUPER_MAGIC, SMB_SUPER_MAGIC,  CIFS_SUPER_MAGIC, SMB2_SUPER_MAGIC, V9FS_MAGIC,
    AFS_SUPER_MAGIC, CEPH_SUPER_MAGIC, CODA_SUPER_MAGIC, FUSE_SUPER_MAGIC,
};

bool isshared(const fs::path& directory) {
    struct statfs status {};
    return ::statfs(directory.c_str(), &status) == 0 &&
           std::ranges::count(sharedfilesystems, static_cast<std::uint32_t>(status.f_type)) != 0;
}

struct Identity {
    dev_t device = 0;
    ino_t file = 0;
    bool operator==(const Identity&) const = default;
};

std::optional<Identity> identityof(const fs::path& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return std::nullopt;
    return Identity{status.st_dev, status.st_ino};
}

// What is written beside a file before it takes the file's name.
bool istemporary(std::string_view name) { return name.starts_with('.') && name.ends_with(".part"); }

class InotifyWatch final : public platform::DirectoryWatch {
public:
    explicit InotifyWatch(fs::path directory)
        : directory_(std::move(directory)), inotify_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {}

    [[nodiscard]] bool ispossible() {
        if (!inotify_.isopen()) return false;
        watch();
        return watching_ || !identityof(directory_);
    }

    Changes take() override {
        Changes changes;
        auto& names = changes.names;
        // What is queued is taken off in any case.
        const bool missed = !drain(names) || !watching_ || identityof(directory_) != identity_;
        if (std::exchange(first_, false) || missed) {
            watch();
            findlinks();
            return {.all = true};
        }
        sortonce(names);
        for (const auto& name : names) {
            if (std::error_code gone; fs::is_symlink(directory_ / name, gone))
                links_[name] = look(name);
            else
                links_.erase(name);
        }
        for (auto& [name, seen] : links_) {
            const auto now = look(name);
            if (!seen.certain || seen.target != now.target) names.push_back(name);
            seen = now;
        }
        if (!links_.empty()) sortonce(names);
        return changes;
    }

private:
    // Certain unless a further change could bear the same time: the system's clock for files stands still for
    // milliseconds.
    struct Link {
        std::optional<platform::FileStamp> target;
        bool certain = false;
    };

    static void sortonce(std::vector<std::string>& names) {
        std::sort(names.begin(), names.end());
        names.erase(std::unique(names.begin(), names.end()), names.end());
    }

    void watch() {
        if (watching_) ::inotify_rm_watch(inotify_.number(), watch_);
        // Asked before it is watched: if the path comes to mean another directory in between, the next look shows it.
        const auto identity = identityof(directory_);
        watch_ = identity && !isshared(directory_) ? ::inotify_add_watch(inotify_.number(), directory_.c_str(), watched)
                                                   : -1;
        watching_ = watch_ >= 0;
        identity_ = identity.value_or(Identity{});
    }

    void findlinks() {
        links_.clear();
        if (!watching_) return;
        std::error_code error;
        for (fs::directory_iterator entry(directory_, error), end; !error && entry != end; entry.increment(error)) {
            const auto name = entry->path().filename().string();
            if (std::error_code gone; entry->is_symlink(gone)) links_[name] = look(name);
        }
        if (error) identity_ = {};  // so that the next take() begins again
    }

    [[nodiscard]] Link look(const std::string& name) const {
        timespec now{};
        ::clock_gettime(CLOCK_REALTIME_COARSE, &now);
        const auto target = stampof(directory_ / name);
        return {target, !target || target->changed < nanoseconds(now)};
    }

    // Only what is queued now, since a busy writer could go on for ever. False when something was missed.
    bool drain(std::vector<std::string>& names) {
        int queued = 0;
        if (::ioctl(inotify_.number(), FIONREAD, &queued) != 0) return false;
        bool complete = true;
        while (queued > 0) {
            alignas(inotify_event) std::array<char, 16384> buffer;
            const auto n = ::read(inotify_.number(), buffer.data(), buffer.size());
            if (n < 0 && errno == EINTR) continue;
            if (n <= 0) return false;
            queued -= static_cast<int>(n);
            for (const char* at = buffer.data(); at < buffer.data() + n;) {
                const auto& event = *reinterpret_cast<const inotify_event*>(at);
                complete = note(event, names) && complete;
                at += sizeof(event) + event.len;
            }
        }
        return complete;
    }

    // False when the event says that others are missing from here on.
    [[nodiscard]] bool note(const inotify_event& event, std::vector<std::string>& names) const {
        if ((event.mask & IN_Q_OVERFLOW) == 0 && event.wd != watch_) return true;  // of a directory watched before
        if ((event.mask & losing) != 0) return false;
        if (event.len == 0 || (event.mask & IN_ISDIR) != 0) return true;
        const std::string_view name(event.name);
        if (!istemporary(name) && (names.empty() || names.back() != name)) names.emplace_back(name);
        return true;
    }

    const fs::path directory_;
    const Descriptor inotify_;
    bool first_ = true, watching_ = false;
    int watch_ = -1;
    Identity identity_;
    std::map<std::string, Link> links_;
};

}  // namespace

std::unique_ptr<platform::DirectoryWatch> watchdirectory(fs::path directory) {
    auto watch = std::make_unique<InotifyWatch>(std::move(directory));
    return watch->ispossible() ? std::move(watch) : nullptr;
}

}  // namespace host
