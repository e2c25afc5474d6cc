// Reading and replacing of files with the system's own calls; the standard streams cannot flush to the disk.
#include "host/core/files.h"

#include <sys/stat.h>

#include <algorithm>
#include <functional>

#include "host/core/descriptor.h"
#include "host/core/directorywatch.h"
#include "host/core/filestamp.h"
#include "host/core/paths.h"

namespace fs = std::filesystem;

namespace host {

namespace {

constexpr std::size_t mostbytes = std::size_t{256} << 20;
constexpr int mostlinks = 40;

// Only plain files are read, and no more at once than can be meant: a pipe or a gigabyte would hold the server up.
// `first` says where to begin in a file of so many bytes.
template <class First>
std::optional<std::string> readfrom(const std::optional<fs::path>& path, std::size_t most, First first) {
    if (!path) return std::nullopt;
    const Descriptor file(path->c_str(), O_RDONLY | O_NONBLOCK);
    struct stat status {};
    if (!file.isopen() || ::fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    const auto size = static_cast<std::size_t>(status.st_size);
    const std::size_t begin = std::min<std::size_t>(first(size), size);
    if (std::min(size - begin, most) > mostbytes) return std::nullopt;
    auto at = static_cast<off_t>(begin);
    std::string content(std::min(size - begin, most), '\0');
    std::size_t have = 0;
    while (have < content.size()) {
        const auto n = ::pread(file.number(), content.data() + have, content.size() - have, at);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) return std::nullopt;
        if (n == 0) break;  // it has become shorter meanwhile
        have += static_cast<std::size_t>(n);
        at += n;
    }
    content.resize(have);
    return content;
}

// Whoever lists a directory takes every name with ".json" in it for data, so this name must not hold it.
fs::path namebeside(const fs::path& target) {
    std::string name = target.filename().string();
    for (std::size_t at; (at = name.find(".json")) != std::string::npos;) name.erase(at, 5);
    return target.parent_path() / ("." + name + ".part");
}

// The file that is meant by a name that may be a symbolic link, also by one to a file that does not exist yet. By the
// real name of its directory, so that whoever writes the file writes it beside under one name.
std::optional<fs::path> behindlinks(fs::path path) {
    std::error_code nolink;
    for (int links = 0; links < mostlinks; ++links) {
        const auto target = fs::read_symlink(path, nolink);
        if (nolink) {
            const auto directory = fs::canonical(path.parent_path(), nolink);
            return nolink ? std::nullopt : std::optional(directory / path.filename());
        }
        path = path.parent_path() / target;
    }
    return std::nullopt;
}

bool writewhole(const fs::path& path, std::string_view content, const fs::path& modelof) {
    Descriptor file(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC);
    if (!file.isopen()) return false;
    struct stat status {};
    if (::stat(modelof.c_str(), &status) == 0) ::fchmod(file.number(), status.st_mode & 07777);
    return file.write(content) && ::fsync(file.number()) == 0 && file.close();
}

// What was done to the file's name is in force; without this a power failure could still undo it.
void flushdirectory(const fs::path& file) {
    const Descriptor directory(file.parent_path().c_str(), O_RDONLY | O_DIRECTORY);
    if (directory.isopen()) ::fsync(directory.number());
}

}  // namespace

bool DiskFiles::exists(const std::string& path) const {
    const auto target = below(root_, path);
    std::error_code error;
    return target && fs::exists(*target, error);
}

std::optional<platform::FileStamp> DiskFiles::stamp(const std::string& path) const {
    const auto target = below(root_, path);
    return target ? stampof(*target) : std::nullopt;
}

bool DiskFiles::makeDirectory(const std::string& path) {
    const auto target = below(root_, path);
    if (!target) return false;
    std::error_code error;
    fs::create_directories(*target, error);
    return fs::is_directory(*target, error);
}

std::optional<std::string> DiskFiles::read(const std::string& path) const {
    return readfrom(below(root_, path), std::string::npos, [](std::size_t) { return 0U; });
}

std::optional<std::string> DiskFiles::readpart(const std::string& path, std::uint64_t from, std::size_t most) const {
    return readfrom(below(root_, path), most, [from](std::size_t) { return from; });
}

std::optional<std::string> DiskFiles::readtail(const std::string& path, std::size_t most) const {
    return readfrom(below(root_, path), most, [most](std::size_t size) { return size > most ? size - most : 0; });
}

bool DiskFiles::replace(const std::string& path, std::string_view content) {
    const auto named = below(root_, path);
    if (!named || !named->has_filename()) return false;
    const auto target = behindlinks(*named);
    if (!target) return false;
    const auto beside = namebeside(*target);
    const std::lock_guard lock(writing_[fs::hash_value(beside) % writing_.size()]);
    const auto renamed = [&] {
        const auto change = changing(*target, path);
        return ::rename(beside.c_str(), target->c_str()) == 0;
    };
    if (!writewhole(beside, content, *target) || !renamed()) {
        ::unlink(beside.c_str());
        return false;
    }
    flushdirectory(*target);
    return true;
}

// Beside its name until it is finished, like any other. What a killed process has left there is written over.
class DiskFiles::Making : public platform::NewFile {
public:
    Making(DiskFiles& files, fs::path target, std::string path)
        : files_(files),
          target_(std::move(target)),
          path_(std::move(path)),
          beside_(namebeside(target_)),
          file_(beside_.c_str(), O_WRONLY | O_CREAT | O_TRUNC) {}
    ~Making() override {
        if (file_.isopen()) ::unlink(beside_.c_str());
    }
    [[nodiscard]] bool isopen() const { return file_.isopen(); }
    bool write(std::string_view piece) override { return iswritten_ = iswritten_ && file_.write(piece); }
    bool finish() override {
        if (!iswritten_ || ::fsync(file_.number()) != 0) return false;
        const auto change = files_.changing(target_, path_);
        if (::renameat2(AT_FDCWD, beside_.c_str(), AT_FDCWD, target_.c_str(), RENAME_NOREPLACE) != 0) return false;
        file_.close();
        flushdirectory(target_);
        return true;
    }

private:
    DiskFiles& files_;
    const fs::path target_;
    const std::string path_;
    const fs::path beside_;
    Descriptor file_;
    bool iswritten_ = true;
};

std::unique_ptr<platform::NewFile> DiskFiles::make(const std::string& path) {
    const auto named = below(root_, path);
    std::error_code error;
    if (!named || !named->has_filename() || fs::exists(fs::symlink_status(*named, error))) return nullptr;
    auto made = std::make_unique<Making>(*this, *named, path);
    return made->isopen() ? std::move(made) : nullptr;
}

bool DiskFiles::remove(const std::string& path) {
    const auto target = below(root_, path);
    if (!target) return false;
    {
        const auto change = changing(*target, path);
        if (::unlink(target->c_str()) != 0 && errno != ENOENT) return false;
    }
    flushdirectory(*target);
    return true;
}

FrozenFiles::Change DiskFiles::changing(const fs::path& file, const std::string& path) {
    return frozen_ != nullptr ? frozen_->changing(file, fs::path(path).lexically_normal()) : FrozenFiles::Change();
}

std::vector<std::string> DiskFiles::list(const std::string& directory) const {
    std::vector<std::string> names;
    const auto target = below(root_, directory);
    if (!target) return names;
    std::error_code error;
    for (fs::directory_iterator entry(*target, error), end; !error && entry != end; entry.increment(error)) {
        if (std::error_code gone; entry->is_regular_file(gone)) names.push_back(entry->path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::unique_ptr<platform::DirectoryWatch> DiskFiles::watch(const std::string& directory) {
    const auto target = below(root_, directory);
    return target ? watchdirectory(*target) : nullptr;
}

bool writeprivately(const fs::path& file, std::string_view content) {
    const auto part = file.parent_path() / ("." + file.filename().string() + ".part");
    ::unlink(part.c_str());
    Descriptor written(part.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0600);
    if (written.isopen() && written.write(content) && ::fsync(written.number()) == 0 && written.close() &&
        ::rename(part.c_str(), file.c_str()) == 0)
        return true;
    const int why = errno;
    ::unlink(part.c_str());
    errno = why;
    return false;
}

}  // namespace host
