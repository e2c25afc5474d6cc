#include "host/backup/archive.h"

#include <archive.h>
#include <archive_entry.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <openssl/evp.h>
#include <sys/file.h>

#include <cstdio>
#include <cstring>
#include <ctime>

#include "host/backup/backuperror.h"

namespace host {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t chunk = 1 << 20;

struct Ending {
    const char* text;
    int (*filter)(struct archive*);  // null: none
};
constexpr Ending endings[] = {{".tar", nullptr},
                              {".tar.gz", archive_write_add_filter_gzip},
                              {".tgz", archive_write_add_filter_gzip},
                              {".tar.zst", archive_write_add_filter_zstd}};

const Ending* endingof(const std::string& name) {
    const auto found = std::ranges::find_if(endings, [&](const Ending& each) { return name.ends_with(each.text); });
    return found == std::end(endings) ? nullptr : found;
}

fs::path checked(fs::path file) {
    std::error_code missing;
    if (endingof(file.filename()) == nullptr)
        throw BackupError(
            fmt::format("{}: the name of a backup ends in .tar, .tar.gz, .tgz or .tar.zst", file.string()));
    if (fs::exists(fs::symlink_status(file, missing)))
        throw BackupError(fmt::format("{}: there is such a file, and a backup overwrites nothing", file.string()));
    return file;
}

struct EntryCloser {
    void operator()(struct archive_entry* closed) const { archive_entry_free(closed); }
};

}  // namespace

fs::path partbeside(const fs::path& file) {
    return file.parent_path() / fmt::format(".{}{}", file.filename().string(), partending);
}

Descriptor makepart(const fs::path& part) {
    if (const Descriptor left(part.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK);
        left.isopen() && ::flock(left.number(), LOCK_EX | LOCK_NB) != 0)
        return {};
    ::unlink(part.c_str());
    Descriptor made(part.c_str(), O_RDWR | O_CREAT | O_EXCL, 0600);
    if (made.isopen() && ::flock(made.number(), LOCK_EX | LOCK_NB) != 0) return {};
    return made;
}

bool isarchivename(const std::string& name) { return endingof(name) != nullptr; }

std::string sumline(std::string_view sum, const std::string& name) {
    std::string escaped;
    for (const char c : name) escaped += c == '\\' ? "\\\\" : c == '\n' ? "\\n" : std::string(1, c);
    return fmt::format("{}{}  {}\n", escaped == name ? "" : "\\", sum, escaped);
}

void ArchiveCloser::operator()(struct archive* closed) const { archive_free(closed); }

Sha256::Sha256() : context_(EVP_MD_CTX_new(), [](void* closed) { EVP_MD_CTX_free(static_cast<EVP_MD_CTX*>(closed)); }) {
    EVP_DigestInit_ex(static_cast<EVP_MD_CTX*>(context_.get()), EVP_sha256(), nullptr);
}

void Sha256::add(std::string_view bytes) {
    EVP_DigestUpdate(static_cast<EVP_MD_CTX*>(context_.get()), bytes.data(), bytes.size());
}

std::string Sha256::hex() {
    unsigned char sum[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    EVP_DigestFinal_ex(static_cast<EVP_MD_CTX*>(context_.get()), sum, &length);
    std::string text;
    for (unsigned int i = 0; i < length; ++i) text += fmt::format("{:02x}", sum[i]);
    return text;
}

// For its owner alone: what may be read in the directory by whom is not for the archive to change.
ArchiveWriter::ArchiveWriter(fs::path file, std::function<void()> goeson)
    : file_(checked(std::move(file))),
      part_(partbeside(file_)),
      goeson_(std::move(goeson)),
      out_(makepart(part_)),
      archive_(archive_write_new()),
      buffer_(chunk, '\0') {
    if (!out_.isopen()) fail(errno == EWOULDBLOCK ? "another backup is writing it" : std::strerror(errno));
    demand(archive_write_set_format_pax_restricted(archive_.get()));
    if (const auto filter = endingof(file_.filename())->filter) demand(filter(archive_.get()));
    demand(archive_write_set_bytes_in_last_block(archive_.get(), 1));
    // The library loses a part of itself when it is told that a write has failed, and is not told.
    demand(archive_write_open(
        archive_.get(), this, nullptr,
        [](struct archive*, void* self, const void* bytes, std::size_t size) {
            static_cast<ArchiveWriter*>(self)->take({static_cast<const char*>(bytes), size});
            return static_cast<la_ssize_t>(size);
        },
        nullptr));
}

void ArchiveWriter::take(std::string_view bytes) {
    if (failure_ == 0 && !out_.write(bytes)) failure_ = errno != 0 ? errno : EIO;
}

ArchiveWriter::~ArchiveWriter() {
    if (archive_ == nullptr) return;
    failure_ = ECANCELED;  // what is still in the library's buffer goes nowhere
    ::unlink(part_.c_str());
}

void ArchiveWriter::fail(const std::string& why) const {
    throw BackupError(fmt::format("{}: it cannot be written: {}", file_.string(), why));
}

void ArchiveWriter::demand(int result) const {
    if (failure_ != 0) fail(std::strerror(failure_));
    if (result >= ARCHIVE_WARN) return;
    const int error = archive_errno(archive_.get());
    const char* const text = archive_error_string(archive_.get());
    fail(error > 0 ? std::strerror(error) : text != nullptr ? text : "unknown error");
}

void ArchiveWriter::addheader(const std::string& name, const struct stat& status) {
    const std::unique_ptr<struct archive_entry, EntryCloser> entry(archive_entry_new());
    archive_entry_set_pathname(entry.get(), name.c_str());
    archive_entry_set_filetype(entry.get(), status.st_mode & S_IFMT);
    archive_entry_set_perm(entry.get(), status.st_mode & 0777);
    archive_entry_set_size(entry.get(), status.st_size);
    archive_entry_set_mtime(entry.get(), status.st_mtim.tv_sec, status.st_mtim.tv_nsec);
    demand(archive_write_header(archive_.get(), entry.get()));
}

void ArchiveWriter::write(std::string_view bytes) {
    demand(archive_write_data(archive_.get(), bytes.data(), bytes.size()) < 0 ? ARCHIVE_FATAL : ARCHIVE_OK);
}

void ArchiveWriter::adddirectory(const std::string& name, const struct stat& status) {
    struct stat empty = status;
    empty.st_size = 0;
    addheader(name, empty);
}

void ArchiveWriter::add(const FrozenFiles::Piece& piece) {
    addheader(piece.name, piece.status);
    Sha256 sum;
    for (off_t at = 0; at < piece.status.st_size;) {
        goeson_();
        const auto wanted = std::min<std::size_t>(chunk, static_cast<std::size_t>(piece.status.st_size - at));
        const auto got = ::pread(piece.file.number(), buffer_.data(), wanted, at);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) throw BackupError(fmt::format("{}: it cannot be read: {}", piece.name, std::strerror(errno)));
        if (got == 0) throw BackupError(fmt::format("{}: it became shorter during the backup", piece.name));
        const std::string_view bytes(buffer_.data(), static_cast<std::size_t>(got));
        sum.add(bytes);
        write(bytes);
        at += got;
    }
    sums_ += sumline(sum.hex(), piece.name);
    ++count_;
}

void ArchiveWriter::finish() {
    struct stat status {};
    status.st_mode = S_IFREG | 0600;
    status.st_size = static_cast<off_t>(sums_.size());
    status.st_mtim.tv_sec = std::time(nullptr);
    addheader(std::string(sumsname), status);
    write(sums_);
    demand(archive_write_close(archive_.get()));
    goeson_();
    if (::fsync(out_.number()) != 0 || ::fstat(out_.number(), &status) != 0) fail(std::strerror(errno));
    size_ = static_cast<std::uint64_t>(status.st_size);
    rename();
    archive_.reset();
    const Descriptor directory(file_.parent_path().c_str(), O_RDONLY | O_DIRECTORY);
    if (directory.isopen()) ::fsync(directory.number());
}

// Some file systems of removable disks cannot rename and spare what is there in one step.
void ArchiveWriter::rename() {
    if (::renameat2(AT_FDCWD, part_.c_str(), AT_FDCWD, file_.c_str(), RENAME_NOREPLACE) == 0) return;
    if (errno == EINVAL || errno == ENOSYS) {
        checked(file_);
        if (::rename(part_.c_str(), file_.c_str()) == 0) return;
    }
    fail(std::strerror(errno));
}

}  // namespace host
