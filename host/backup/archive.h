// The one file that a backup is: a tar archive, compressed if its name says so. Its last entry lists the SHA-256 sums
// of all others in the form that `sha256sum -c` reads, so that an archive that was cut short or damaged is known.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "host/backup/frozenfiles.h"
#include "host/core/descriptor.h"

struct archive;

namespace host {

inline constexpr std::string_view sumsname = "SHA256SUMS";
// What a backup writes while it is under way bears this behind the name that it is for, and a dot before it.
inline constexpr std::string_view partending = ".backup.part";

[[nodiscard]] std::filesystem::path partbeside(const std::filesystem::path& file);
// A new one, locked as long as it is open, for its owner alone; what a backup that was killed has left there goes. Not
// open when that is refused, with errno; EWOULDBLOCK when another backup is writing it.
[[nodiscard]] Descriptor makepart(const std::filesystem::path& part);
// Whether a backup may be written under such a name.
[[nodiscard]] bool isarchivename(const std::string& name);
// A line of the list of sums.
[[nodiscard]] std::string sumline(std::string_view sum, const std::string& name);

struct ArchiveCloser {
    void operator()(struct archive* closed) const;
};
using ArchiveHandle = std::unique_ptr<struct archive, ArchiveCloser>;

class Sha256 {
public:
    Sha256();
    void add(std::string_view bytes);
    [[nodiscard]] std::string hex();

private:
    std::shared_ptr<void> context_;
};

// Written beside under another name, and renamed when it is complete and flushed. Everything throws BackupError.
class ArchiveWriter {
public:
    // `goeson` is called now and then, and throws when to break off.
    ArchiveWriter(std::filesystem::path file, std::function<void()> goeson);
    ~ArchiveWriter();
    ArchiveWriter(const ArchiveWriter&) = delete;
    ArchiveWriter& operator=(const ArchiveWriter&) = delete;

    void adddirectory(const std::string& name, const struct stat& status);
    void add(const FrozenFiles::Piece& piece);
    // From here on there is a file of that name.
    void finish();

    [[nodiscard]] std::size_t count() const { return count_; }
    [[nodiscard]] std::uint64_t size() const { return size_; }  // of the archive

private:
    void addheader(const std::string& name, const struct stat& status);
    void write(std::string_view bytes);
    void take(std::string_view bytes);  // of the archive
    void rename();
    [[noreturn]] void fail(const std::string& why) const;
    void demand(int result) const;

    const std::filesystem::path file_, part_;
    const std::function<void()> goeson_;
    Descriptor out_;
    int failure_ = 0;  // of the first write that failed, from which on nothing is written
    ArchiveHandle archive_;
    std::string sums_, buffer_;
    std::size_t count_ = 0;
    std::uint64_t size_ = 0;
};

}  // namespace host
