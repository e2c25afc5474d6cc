// A server directory of one instant in one file: the world and the money, the shops' files, the settings and the logs.
// Left out: what belongs to a running server alone (the API's address and token), what is half written, and archives.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "host/backup/archive.h"
#include "host/backup/backuperror.h"
#include "host/backup/frozenfiles.h"
#include "host/backup/snapshot.h"

namespace host {

struct BackupReport {
    std::string file;
    std::size_t files = 0;
    std::uint64_t bytes = 0;              // of the archive
    std::chrono::microseconds stopped{};  // how long the server thread stood still
    [[nodiscard]] std::string text() const;
};

// All of it throws BackupError.
class Backup {
public:
    // What may take its time before the instant. `goeson` is called now and then, and throws when to break off.
    Backup(std::filesystem::path directory, FrozenFiles& files, const std::filesystem::path& target,
           std::function<void()> goeson);
    ~Backup();
    Backup(const Backup&) = delete;
    Backup& operator=(const Backup&) = delete;

    // The instant. The databases must be written up to it.
    void begin();
    BackupReport write();

private:
    struct Found {
        std::filesystem::path path;
        std::string name;
        std::uintmax_t size;
    };
    void copydatabases();
    void walk(const std::filesystem::path& directory, const std::string& prefix, std::vector<std::string>& above);
    void addfound();
    void addkept();
    void add(const FrozenFiles::Piece& piece);

    const std::filesystem::path directory_, target_;
    FrozenFiles& files_;
    const std::function<void()> goeson_;
    ArchiveWriter archive_;
    std::map<std::string, Snapshot> databases_;         // by name
    std::map<std::string, FrozenFiles::Piece> copies_;  // of them
    std::vector<Found> found_;
    std::set<std::string> added_;
};

// Of a directory in which no server runs, with its lock taken; nothing when one runs there.
[[nodiscard]] std::optional<BackupReport> backupstopped(const std::filesystem::path& directory,
                                                        const std::filesystem::path& target);

// What a backup that was killed has left in the directory goes. Before anything runs there.
void removeleftovers(const std::filesystem::path& directory);

}  // namespace host
