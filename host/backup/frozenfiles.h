// The files of a server directory as they were at one instant, for one reader, while the server goes on replacing,
// removing and appending. Nothing is copied at the instant. Whoever is about to change a file that the reader has not
// taken yet has it opened first, as it is and as long as it is: the old content can be read through that, whatever
// becomes of its name. So nothing of it lies on the disk, and a kill leaves nothing behind. Any thread.
#pragma once

#include <sys/stat.h>

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <list>
#include <map>
#include <mutex>
#include <optional>
#include <string>

#include "host/core/descriptor.h"

namespace host {

class FrozenFiles {
public:
    // A file's content at the instant: so many bytes from the start of what is open.
    struct Piece {
        std::string key, name;
        Descriptor file;
        struct stat status {};
    };
    // Held until a change is done.
    class Change {
    public:
        explicit Change(FrozenFiles* counting = nullptr) : counting_(counting) {}
        ~Change();
        Change(const Change&) = delete;
        Change& operator=(const Change&) = delete;

    private:
        FrozenFiles* const counting_;
    };

    // Who changes: before the file gets other content by a rename, or goes. `name` is its path below the directory.
    [[nodiscard]] Change changing(const std::filesystem::path& path, const std::string& name);
    // Before it is written to in place: appended to, or begun anew.
    void appending(const std::filesystem::path& path, const std::string& name);
    void emptying(const std::filesystem::path& path);

    // The instant; waits for nobody. There is one at a time.
    void freeze();
    void thaw();
    // The reader. A change that was under way at the instant counts as one before it; this waits until it is done.
    void awaitchanges();
    // The file as it was; nothing when there was none. Throws BackupError when it cannot be had.
    [[nodiscard]] std::optional<Piece> take(const std::filesystem::path& path, const std::string& name);
    // A file that was kept open because it has changed since. Better taken soon: a process may not open very many.
    [[nodiscard]] std::optional<Piece> takekept();

private:
    struct Known {
        bool wasthere = false;
        struct stat status {};
    };
    void keep(const std::filesystem::path& path, const std::string& name);
    std::optional<Piece> takekeptof(const std::string& key);
    void throwtrouble() const;

    std::mutex mutex_;
    std::condition_variable done_;
    int underway_ = 0;  // changes that began before the instant
    std::atomic<bool> frozen_ = false;
    std::map<std::string, Known> known_;  // by key: what has changed or was taken since the instant
    std::list<Piece> kept_;
    std::string trouble_;  // why the instant cannot be read as a whole any more
};

}  // namespace host
