// Files below the server directory. Paths are relative to it, with forward slashes. Any thread.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

// By which a file that has changed is known without reading it, as well as its file system can tell.
struct FileStamp {
    std::uint64_t file = 0, size = 0;  // which file has the name, and its length
    std::int64_t modified = 0, changed = 0;
    bool operator==(const FileStamp&) const = default;
};

// Which files of a directory have changed since one asked last. One thread at a time.
class DirectoryWatch {
public:
    virtual ~DirectoryWatch() = default;
    struct Changes {
        bool all = false;                // anything may have changed: look at every file
        std::vector<std::string> names;  // else these, sorted, each once; made, changed, replaced or gone
    };
    // The first answer is `all`. What was written before the call is in this answer or was in one before.
    virtual Changes take() = 0;
};

// A file in the making. Dropped unfinished, there is nothing of it.
class NewFile {
public:
    virtual ~NewFile() = default;
    virtual bool write(std::string_view piece) = 0;
    // Gives it its name, with everything flushed to the disk. False, and nothing is left, when that fails, a piece was
    // not written, or something has the name by now.
    virtual bool finish() = 0;
};

class Files {
public:
    virtual ~Files() = default;
    [[nodiscard]] virtual bool exists(const std::string& path) const = 0;
    // Nothing when there is no such file, and from a host that has no stamps.
    [[nodiscard]] virtual std::optional<FileStamp> stamp(const std::string&) const { return std::nullopt; }
    virtual bool makeDirectory(const std::string& path) = 0;  // true when it is there afterwards
    // The whole content, or nothing when the file cannot be read. What is no plain file or absurdly large cannot.
    [[nodiscard]] virtual std::optional<std::string> read(const std::string& path) const = 0;
    // So many bytes from a place on, fewer at the end: of a file of any size. Nothing when it cannot be read.
    [[nodiscard]] virtual std::optional<std::string> readpart(const std::string& path, std::uint64_t from,
                                                              std::size_t most) const;
    // The last `most` bytes (all of a shorter file), or nothing when it cannot be opened.
    [[nodiscard]] virtual std::optional<std::string> readtail(const std::string& path, std::size_t most) const = 0;
    // Replaces the file as a whole or not at all: written beside under a name without ".json", flushed to the disk,
    // renamed. False, with the old content untouched, when any of that fails. A symbolic link stays one: the file that
    // it leads to is replaced, there where it lies.
    virtual bool replace(const std::string& path, std::string_view content) = 0;
    // A new file, written piece by piece, of any size. Null when it cannot be made, or something has the name.
    [[nodiscard]] virtual std::unique_ptr<NewFile> make(const std::string& path);
    // True when there is no such file afterwards. A directory stays.
    virtual bool remove(const std::string& path) = 0;
    // Names (not paths) of the plain files in a directory, sorted; empty when it is missing.
    [[nodiscard]] virtual std::vector<std::string> list(const std::string& directory) const = 0;
    // Null where the host has none for this directory: watchDirectory() (directorywatch.h) then does without.
    [[nodiscard]] virtual std::unique_ptr<DirectoryWatch> watch(const std::string&) { return nullptr; }
};

[[nodiscard]] std::vector<std::string> GetFileNameList(const std::string& directory);

}  // namespace platform
