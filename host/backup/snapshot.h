// A SQLite file as it was at one instant, while others go on writing it.
#pragma once

#include <SQLiteCpp/SQLiteCpp.h>

#include <filesystem>
#include <functional>

namespace host {

class Snapshot {
public:
    // Opens the file. Throws SQLite::Exception, as all of it does.
    explicit Snapshot(const std::filesystem::path& file);
    // The instant, for a file in WAL mode: writers go on behind it. Readers of another would keep the writers out; it
    // is copied as it is later, whole all the same.
    void begin();
    // What a quick look at the whole finds wrong, or nothing.
    [[nodiscard]] std::string damage();
    // In steps, `between` them. The copy is empty.
    void copyto(const std::filesystem::path& copy, const std::function<void()>& between);
    [[nodiscard]] static bool isdatabase(const std::filesystem::path& file);

private:
    SQLite::Database file_;
    bool wal_;
};

}  // namespace host
