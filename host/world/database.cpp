#include "host/world/database.h"

#include <fmt/format.h>

#include "host/core/files.h"
#include "host/server.h"
#include "platform/logger.h"

namespace host {

namespace fs = std::filesystem;

namespace {

constexpr int fileversion = 2;  // 1 had no records, and the money lay in a file of its own
// For somebody else's lock on the file. What is not written in a pass is written in a later one.
constexpr int patienceatstart = 2000, patience = 20;  // milliseconds

// Stacks are item compounds in the little-endian binary form. Slots: 0 to 35 inventory, 36 to 39 armour, 40 offhand,
// 41 cursor. A score id belongs to a player (by key) or to a fake player (by name).
constexpr const char* tables = R"(
CREATE TABLE IF NOT EXISTS players(
  key TEXT PRIMARY KEY, name TEXT NOT NULL, xuid TEXT NOT NULL, language TEXT NOT NULL, device INTEGER NOT NULL,
  permission INTEGER NOT NULL, alive INTEGER NOT NULL, x REAL NOT NULL, y REAL NOT NULL, z REAL NOT NULL,
  dimension INTEGER NOT NULL, gametype INTEGER NOT NULL);
CREATE TABLE IF NOT EXISTS slots(
  player TEXT NOT NULL, slot INTEGER NOT NULL, stack BLOB NOT NULL, PRIMARY KEY(player, slot)) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS droppeditems(
  id INTEGER PRIMARY KEY, stack BLOB NOT NULL, x REAL NOT NULL, y REAL NOT NULL, z REAL NOT NULL,
  dimension INTEGER NOT NULL);
CREATE TABLE IF NOT EXISTS objectives(name TEXT PRIMARY KEY, displayname TEXT NOT NULL);
CREATE TABLE IF NOT EXISTS scoreids(
  id INTEGER PRIMARY KEY, player INTEGER NOT NULL, name TEXT NOT NULL, UNIQUE(player, name));
CREATE TABLE IF NOT EXISTS scores(
  objective TEXT NOT NULL, id INTEGER NOT NULL, value INTEGER NOT NULL, PRIMARY KEY(objective, id)) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS knownnames(xuid TEXT PRIMARY KEY, name TEXT NOT NULL);
CREATE TABLE IF NOT EXISTS records(
  tablename TEXT NOT NULL, key TEXT NOT NULL, bytes BLOB NOT NULL, PRIMARY KEY(tablename, key)) WITHOUT ROWID;
)";

// Tested before the first write, so that a file that is not ours or is damaged stays as it is.
void prepare(SQLite::Database& file, const std::string& path, bool mustexist) {
    const int version = file.execAndGet("PRAGMA user_version").getInt();
    if (version > fileversion)
        throw StartError(
            fmt::format("{}: made by a newer version (format {}, this one reads {})", path, version, fileversion));
    if (version == 0 && file.execAndGet("SELECT count(*) FROM sqlite_master").getInt() != 0)
        throw StartError(fmt::format("{}: a database of something else", path));
    if (version == 0 && mustexist)
        throw StartError(fmt::format(
            "{}: the world is empty, and there has been one; bring it back, or start anew with --new-world", path));
    const std::string check = file.execAndGet("PRAGMA quick_check(1)").getString();
    if (check != "ok") throw StartError(fmt::format("{}: the file is damaged: {}", path, check));
    // NORMAL: a commit outlives a crash of the program; a loss of power may cost the last ones, but never the file.
    // setdurable() asks for more.
    file.exec("PRAGMA journal_mode = WAL");
    file.exec("PRAGMA synchronous = NORMAL");
    SQLite::Transaction transaction(file);
    file.exec(tables);
    file.exec(fmt::format("PRAGMA user_version = {}", fileversion));
    transaction.commit();
}

SQLite::Database opened(const std::string& path, bool mustexist) {
    try {
        SQLite::Database file(path, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE, patienceatstart);
        prepare(file, path, mustexist);
        file.setBusyTimeout(patience);
        return file;
    } catch (const SQLite::Exception& e) {
        throw StartError(fmt::format("{}: {}", path, e.what()));
    }
}

}  // namespace

Database::Database(const std::string& path, bool mustexist)
    : path_(path), aside_(fs::absolute(path).replace_extension("unsaved.sql")), file_(opened(path, mustexist)) {
    takein();
}

SQLite::Statement& Database::cached(const std::string& sql) {
    auto found = statements_.find(sql);
    if (found == statements_.end()) found = statements_.emplace(sql, SQLite::Statement(file_, sql)).first;
    // A statement whose last use threw is still in the middle of it.
    found->second.tryReset();
    found->second.clearBindings();
    return found->second;
}

void Database::transaction(const std::function<void()>& work) {
    // As a writer from the start: the only place that waits for a lock.
    SQLite::Transaction transaction(file_, SQLite::TransactionBehavior::IMMEDIATE);
    work();
    transaction.commit();
}

bool Database::keepaside(const std::function<void()>& work) {
    std::string script;
    {
        struct Recording {
            std::string*& place;
            ~Recording() { place = nullptr; }
        } const recording{script_ = &script};
        work();
    }
    return DiskFiles(aside_.parent_path()).replace(aside_.filename(), script);
}

void Database::takein() {
    const auto script = DiskFiles(aside_.parent_path()).read(aside_.filename());
    if (!script) return;
    try {
        transaction([&] { file_.exec(*script); });
    } catch (const SQLite::Exception& e) {
        throw StartError(
            fmt::format("{}: what the last stop left unsaved cannot be taken in: {}", aside_.string(), e.what()));
    }
    fs::remove(aside_);
    platform::Logger("Server").info("{}: what the last stop left unsaved is taken in", aside_.string());
}

void Database::runvalues(const std::string& sql, std::span<const platform::llmoney::Value> values) {
    SQLite::Statement& statement = cached(sql);
    int place = 0;
    for (const auto& [text, size, number] : values) {
        if (text != nullptr)
            statement.bind(++place, std::string(text, size));
        else
            statement.bind(++place, static_cast<std::int64_t>(number));
    }
    execute(statement);
}

void Database::execute(SQLite::Statement& statement) {
    if (script_ != nullptr)
        *script_ += statement.getExpandedSQL() + ";\n";
    else
        statement.exec();
    statement.reset();
}

}  // namespace host
