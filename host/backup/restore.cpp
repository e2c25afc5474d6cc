// The world's file is the last that gets its place: a directory without it is no server that could be started by
// mistake.
#include "host/backup/restore.h"

#include <archive.h>
#include <archive_entry.h>
#include <fmt/format.h>
#include <sys/file.h>

#include <cstring>
#include <vector>

#include "host/backup/archive.h"
#include "host/backup/backuperror.h"
#include "host/backup/snapshot.h"
#include "host/core/descriptor.h"
#include "host/core/paths.h"

namespace host {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t longestsums = std::size_t{64} << 20;
constexpr const char* worldname = "server.sqlite";

struct ReadCloser {
    void operator()(struct archive* closed) const { archive_read_free(closed); }
};

std::string systemtext() { return std::strerror(errno); }

// The archive, entry by entry, into a directory that is there and empty.
class Unpacking {
public:
    Unpacking(const fs::path& file, const fs::path& into)
        : file_(file), into_(into), opened_(file.c_str(), O_RDONLY), archive_(archive_read_new()) {
        if (!opened_.isopen()) fail(systemtext());
        archive_read_support_format_tar(archive_.get());
        archive_read_support_filter_gzip(archive_.get());
        archive_read_support_filter_zstd(archive_.get());
        demand(archive_read_open_fd(archive_.get(), opened_.number(), 1 << 20));
    }

    std::size_t all() {
        for (struct archive_entry* entry = nullptr;;) {
            const int result = archive_read_next_header(archive_.get(), &entry);
            if (result == ARCHIVE_EOF) break;
            demand(result);
            if (complete_) fail("something follows the list of sums");
            unpack(entry);
        }
        if (!complete_) fail("it ends too early, or is no backup of a server");
        return count_;
    }

private:
    void unpack(struct archive_entry* entry) {
        const char* const told = archive_entry_pathname(entry);
        if (told == nullptr) fail("an entry has no name that can be read");
        std::string name = told;
        while (name.ends_with('/')) name.pop_back();
        const auto path = below(into_, name);
        if (!path || name.empty()) fail(fmt::format("the entry \"{}\" leads out of the directory", told));
        const auto kind = archive_entry_filetype(entry);
        const bool islink = archive_entry_hardlink(entry) != nullptr || archive_entry_symlink(entry) != nullptr;
        if (islink || (kind != AE_IFREG && kind != AE_IFDIR))
            fail(fmt::format("the entry \"{}\" is neither a plain file nor a directory", told));
        if (name == sumsname) return checksums(entry);
        std::error_code error;
        fs::create_directories(kind == AE_IFDIR ? *path : path->parent_path(), error);
        if (error) cannotwrite(*path, error.message());
        if (kind == AE_IFREG)
            unpackfile(entry, name, *path);
        else
            ::chmod(path->c_str(), (archive_entry_perm(entry) & 0777) | 0700);
    }

    void unpackfile(struct archive_entry* entry, const std::string& name, const fs::path& path) {
        Descriptor file(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0600);
        if (!file.isopen()) cannotwrite(path, systemtext());
        Sha256 sum;
        read([&](std::string_view bytes) {
            sum.add(bytes);
            if (!file.write(bytes)) cannotwrite(path, systemtext());
        });
        ::fchmod(file.number(), archive_entry_perm(entry) & 0777);
        const timespec modified = {archive_entry_mtime(entry), archive_entry_mtime_nsec(entry)};
        const timespec times[] = {modified, modified};
        ::futimens(file.number(), times);
        if (!file.close()) cannotwrite(path, systemtext());
        sums_ += sumline(sum.hex(), name);
        ++count_;
    }

    void checksums(struct archive_entry* entry) {
        if (archive_entry_size(entry) > static_cast<std::int64_t>(longestsums)) fail("its list of sums is too long");
        std::string listed;
        read([&](std::string_view bytes) { listed += bytes; });
        if (listed != sums_) fail(fmt::format("it is damaged: what was read does not fit its {}", sumsname));
        complete_ = true;
    }

    template <class Take>
    void read(Take&& take) {
        char buffer[1 << 16];
        for (;;) {
            const auto got = archive_read_data(archive_.get(), buffer, sizeof buffer);
            if (got == 0) return;
            if (got < 0) demand(static_cast<int>(got));
            take(std::string_view(buffer, static_cast<std::size_t>(std::max<la_ssize_t>(got, 0))));
        }
    }

    void demand(int result) const {
        if (result >= ARCHIVE_WARN) return;
        const char* const text = archive_error_string(archive_.get());
        fail(fmt::format("it is damaged, or no archive: {}", text != nullptr ? text : "unknown error"));
    }
    [[noreturn]] void fail(const std::string& why) const {
        throw BackupError(fmt::format("{}: {}", file_.string(), why));
    }
    [[noreturn]] static void cannotwrite(const fs::path& path, const std::string& why) {
        throw BackupError(fmt::format("{}: it cannot be written: {}", path.string(), why));
    }

    const fs::path &file_, &into_;
    Descriptor opened_;
    std::unique_ptr<struct archive, ReadCloser> archive_;
    std::string sums_;
    std::size_t count_ = 0;
    bool complete_ = false;
};

void checkdatabase(const fs::path& archive, const fs::path& file) {
    std::string damage;
    try {
        if (file.filename() != worldname && !Snapshot::isdatabase(file)) return;
        damage = Snapshot(file).damage();
    } catch (const SQLite::Exception& e) {
        damage = e.what();
    }
    if (!damage.empty())
        throw BackupError(fmt::format("{}: its {} is damaged: {}", archive.string(), file.filename().string(), damage));
}

// Where it all goes: locked against servers, and as it was before unless everything has its place.
class Place {
public:
    explicit Place(const fs::path& directory) : directory_(directory), staging_(directory / restoringname) {
        std::error_code error;
        made_ = fs::create_directories(directory_, error);
        if (error) throw BackupError(fmt::format("{}: the directory cannot be made: {}", name(), error.message()));
        lock_ = Descriptor(directory_.c_str(), O_RDONLY | O_DIRECTORY);
        if (::flock(lock_.number(), LOCK_EX | LOCK_NB) != 0)
            throw BackupError(fmt::format("{}: a server runs in this directory", name()));
        for (const auto& entry : fs::directory_iterator(directory_, error))
            if (entry.path() != staging_)
                throw BackupError(fmt::format("{}: the directory is not empty; there is {} in it", name(),
                                              entry.path().filename().string()));
        fs::remove_all(staging_, error);
        if (!fs::create_directory(staging_, error))
            throw BackupError(fmt::format("{}: it cannot be written to: {}", name(), error.message()));
    }
    ~Place() {
        std::error_code ignored;
        fs::remove_all(staging_, ignored);
        for (const auto& file : moved_) fs::remove_all(file, ignored);
        if (made_ && !settled_) fs::remove(directory_, ignored);
    }

    [[nodiscard]] const fs::path& staging() const { return staging_; }
    void settle() {
        flush();
        std::vector<fs::path> entries;
        for (const auto& entry : fs::directory_iterator(staging_))
            if (entry.path().filename() != worldname) entries.push_back(entry.path().filename());
        entries.emplace_back(worldname);
        for (const auto& entry : entries) {
            std::error_code error;
            fs::rename(staging_ / entry, directory_ / entry, error);
            if (error) throw BackupError(fmt::format("{}: {}", (directory_ / entry).string(), error.message()));
            moved_.push_back(directory_ / entry);
        }
        flush();
        moved_.clear();
        settled_ = true;
    }

private:
    [[nodiscard]] std::string name() const { return directory_.string(); }
    void flush() const {
        if (::syncfs(lock_.number()) != 0)
            throw BackupError(fmt::format("{}: it cannot be written: {}", name(), systemtext()));
    }

    const fs::path directory_, staging_;
    Descriptor lock_;
    std::vector<fs::path> moved_;
    bool made_ = false, settled_ = false;
};

}  // namespace

std::size_t restore(const fs::path& archive, const fs::path& directory) {
    if (std::error_code missing; !fs::is_regular_file(archive, missing))
        throw BackupError(fmt::format("{}: there is no such file", archive.string()));
    Place place(fs::absolute(directory).lexically_normal());
    const auto count = Unpacking(archive, place.staging()).all();
    if (!fs::exists(place.staging() / worldname))
        throw BackupError(fmt::format("{}: there is no world in it", archive.string()));
    for (const char* name : {worldname, "money.sqlite"})
        if (name == worldname || fs::exists(place.staging() / name)) checkdatabase(archive, place.staging() / name);
    place.settle();
    return count;
}

bool halfrestored(const fs::path& directory) {
    std::error_code missing;
    return fs::exists(directory / restoringname, missing);
}

}  // namespace host
