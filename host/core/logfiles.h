// The files behind the log, kept open from line to line. There may be one for each shop, so only the last used are
// open; a file that an operator has moved away is begun anew. Not locked.
#pragma once

#include <filesystem>
#include <list>
#include <string>
#include <unordered_map>

#include "host/backup/frozenfiles.h"
#include "host/core/descriptor.h"

namespace host {

class LogFiles {
public:
    // `frozen` hears of each file before it changes.
    explicit LogFiles(std::filesystem::path root, FrozenFiles* frozen = nullptr)
        : root_(std::move(root)), frozen_(frozen) {}
    // False when it cannot be opened. Directories are not made.
    bool open(const std::string& path, bool append);
    // One line, with its end. A file that cannot be opened loses it.
    void write(const std::string& path, std::string_view line);
    void close();

private:
    static constexpr std::size_t mostopen = 32;
    using Order = std::list<std::string>;  // last used first
    struct File {
        Descriptor descriptor;
        Order::iterator place;
    };
    [[nodiscard]] const Descriptor* find(const std::string& path, int flags);

    std::filesystem::path root_;
    FrozenFiles* const frozen_;
    std::unordered_map<std::string, File> open_;
    Order order_;
};

}  // namespace host
