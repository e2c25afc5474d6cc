// Files of lines below plugins/Ordomart/exports/, of any size: written and read piece by piece. The last line holds the
// sum over all before it, so that a file that has changed on its way is known. Background threads.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/files.h"

namespace handover {

// The path of a file by the name that somebody typed; empty for one that may lead elsewhere or is none.
[[nodiscard]] std::string pathof(const std::string& name);
[[nodiscard]] std::string nameof(const std::string& path);

// FNV-1a over bytes that come in pieces.
class runningsum {
public:
    void add(std::string_view bytes) {
        for (const char c : bytes) sum_ = (sum_ ^ static_cast<unsigned char>(c)) * 1099511628211ULL;
    }
    [[nodiscard]] std::uint64_t value() const { return sum_; }

private:
    std::uint64_t sum_ = 14695981039346656037ULL;
};

class linewriter {
public:
    // Throws std::runtime_error, as all of it, when the file cannot be written or there is one of that name.
    explicit linewriter(const std::string& path);
    void add(const std::string& line);
    void finish();
    [[nodiscard]] std::uint64_t sum() const { return sum_.value(); }  // over the lines so far

private:
    void flush();
    const std::string path_;
    std::unique_ptr<platform::NewFile> file_;
    std::string buffer_;
    runningsum sum_;
};

class linereader {
public:
    explicit linereader(std::string path) : path_(std::move(path)) {}
    // Nothing at the end. Throws std::runtime_error for a file that cannot be read, and a line that cannot be meant.
    std::optional<std::string> next();
    [[nodiscard]] std::uint64_t number() const { return number_; }             // of the last line
    [[nodiscard]] std::uint64_t sumbefore() const { return before_.value(); }  // over all lines in front of it
    [[nodiscard]] std::uint64_t sum() const { return sum_.value(); }

private:
    const std::string path_;
    std::string buffer_;
    std::size_t at_ = 0;  // in the buffer
    std::uint64_t from_ = 0, number_ = 0;
    bool isend_ = false;
    runningsum before_, sum_;
};

}  // namespace handover
