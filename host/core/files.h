// Files below the server directory, as platform/files.h promises them. A file is replaced by way of a file beside it
// that is renamed, so that a reader and a crash see the old content or the new one. Paths that leave the directory are
// refused; a symbolic link is the operator's word that its target belongs here, wherever it lies. Any thread.
#pragma once

#include <array>
#include <filesystem>
#include <mutex>

#include "host/backup/frozenfiles.h"
#include "platform/files.h"

namespace host {

class DiskFiles : public platform::Files {
public:
    // `frozen` hears of each file before it changes.
    explicit DiskFiles(std::filesystem::path root, FrozenFiles* frozen = nullptr)
        : root_(std::move(root)), frozen_(frozen) {}
    [[nodiscard]] bool exists(const std::string& path) const override;
    [[nodiscard]] std::optional<platform::FileStamp> stamp(const std::string& path) const override;
    bool makeDirectory(const std::string& path) override;  // with the directories above it
    [[nodiscard]] std::optional<std::string> read(const std::string& path) const override;
    [[nodiscard]] std::optional<std::string> readpart(const std::string& path, std::uint64_t from,
                                                      std::size_t most) const override;
    [[nodiscard]] std::optional<std::string> readtail(const std::string& path, std::size_t most) const override;
    bool replace(const std::string& path, std::string_view content) override;
    [[nodiscard]] std::unique_ptr<platform::NewFile> make(const std::string& path) override;
    bool remove(const std::string& path) override;
    [[nodiscard]] std::vector<std::string> list(const std::string& directory) const override;
    [[nodiscard]] std::unique_ptr<platform::DirectoryWatch> watch(const std::string& directory) override;

private:
    class Making;
    [[nodiscard]] FrozenFiles::Change changing(const std::filesystem::path& file, const std::string& path);

    std::filesystem::path root_;
    FrozenFiles* const frozen_;
    // Two writers of one file take turns, since they share the name beside it.
    std::array<std::mutex, 16> writing_;
};

// Replaces a file that is its owner's alone: nobody else can open it at any moment. False, with errno, when it cannot.
[[nodiscard]] bool writeprivately(const std::filesystem::path& file, std::string_view content);

}  // namespace host
