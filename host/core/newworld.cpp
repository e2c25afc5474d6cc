// A server leaves these in its directory once a world was open there. Shop files do not count: who moves to this server
// brings them along.
#include "host/core/newworld.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <vector>

#include "host/server.h"

namespace host {

namespace fs = std::filesystem;

namespace {

bool isempty(const fs::path& file) {
    std::error_code missing;
    const auto size = fs::file_size(file, missing);
    return missing || size == 0;
}

fs::path besideworld(const fs::path& world, const char* ending) { return fs::path(world) += ending; }

// Parts of the world itself, which do not fit a new one.
std::vector<fs::path> remains(const fs::path& world) {
    return {besideworld(world, "-wal"), besideworld(world, "-shm"), fs::path(world).replace_extension("unsaved.sql")};
}

std::vector<fs::path> companions(const fs::path& world) {
    return {world.parent_path() / "money.sqlite", world.parent_path() / "server.log"};
}

void addtraces(std::vector<std::string>& found, const std::vector<fs::path>& files) {
    for (const auto& file : files)
        if (!isempty(file)) found.push_back(file.filename().string());
}

void rename(const fs::path& file) {
    for (int number = 1;; ++number) {
        const auto kept = besideworld(file, fmt::format(".old{}", number).c_str());
        if (fs::exists(kept)) continue;
        return fs::rename(file, kept);
    }
}

}  // namespace

bool mustexist(const fs::path& world, bool anew) {
    std::vector<std::string> traces;
    addtraces(traces, companions(world));
    // A first start that was cut short leaves a file without a world, with parts of it and no companions.
    if (!isempty(world)) return !traces.empty() && !anew;
    addtraces(traces, remains(world));
    if (!traces.empty() && !anew)
        throw StartError(fmt::format(
            "{}: the world is {}, but {} shows that there has been one; bring it back, or start anew with --new-world",
            world.string(), fs::exists(world) ? "empty" : "missing", fmt::join(traces, ", ")));
    for (const auto& file : remains(world))
        if (fs::exists(file)) rename(file);
    return false;
}

}  // namespace host
