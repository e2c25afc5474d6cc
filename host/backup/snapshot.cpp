#include "host/backup/snapshot.h"

#include <SQLiteCpp/Backup.h>
#include <sqlite3.h>

#include <chrono>
#include <string>
#include <thread>

namespace host {

namespace {

constexpr int patience = 20;  // milliseconds, since the server thread waits, too
constexpr int pagesinastep = 500;
constexpr auto pause = std::chrono::milliseconds(20);

}  // namespace

Snapshot::Snapshot(const std::filesystem::path& file)
    : file_(file.string(), SQLite::OPEN_READWRITE, patience),
      wal_(file_.execAndGet("PRAGMA journal_mode").getString() == "wal") {}

bool Snapshot::isdatabase(const std::filesystem::path& file) {
    std::error_code missing;
    if (!std::filesystem::is_regular_file(file, missing)) return false;
    try {
        SQLite::Database(file.string(), SQLite::OPEN_READONLY, patience).execAndGet("PRAGMA schema_version");
        return true;
    } catch (const SQLite::Exception& e) {
        if (e.getErrorCode() != SQLITE_NOTADB) throw;
        return false;
    }
}

void Snapshot::begin() {
    if (!wal_) return;
    file_.exec("BEGIN");
    static_cast<void>(file_.execAndGet("SELECT count(*) FROM (SELECT 1 FROM sqlite_schema LIMIT 1)"));
}

std::string Snapshot::damage() {
    const auto found = file_.execAndGet("PRAGMA quick_check(1)").getString();
    return found == "ok" ? std::string() : found;
}

void Snapshot::copyto(const std::filesystem::path& copy, const std::function<void()>& between) {
    SQLite::Database written(copy.string(), SQLite::OPEN_READWRITE);
    // One that is not finished is thrown away.
    written.exec("PRAGMA journal_mode = OFF");
    written.exec("PRAGMA synchronous = OFF");
    SQLite::Backup backup(written, file_);
    for (int result = SQLITE_OK; result != SQLITE_DONE;) {
        between();
        result = backup.executeStep(pagesinastep);
        if (result == SQLITE_BUSY || result == SQLITE_LOCKED) std::this_thread::sleep_for(pause);
    }
}

}  // namespace host
