// The one SQLite file of a server directory: opened, tested and given its tables here; every store reads and writes its
// own rows through it. Nothing is written to a file that is broken or was made by a newer version.
#pragma once

#include <SQLiteCpp/SQLiteCpp.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <span>
#include <string>

#include "host/sqlite/checkpoints.h"
#include "platform/llmoney.h"

namespace host {

// Bytes that are no text.
struct Blob {
    const std::string& bytes;
};

class Database {
public:
    // Opens the file, or makes it unless it must exist. Throws StartError that names it.
    Database(const std::string& path, bool mustexist);

    [[nodiscard]] const std::string& path() const { return path_; }
    [[nodiscard]] bool hastable(const std::string& name) const { return file_.tableExists(name); }

    template <class... A>
    void run(const std::string& sql, const A&... arguments) {
        execute(prepared(sql, arguments...));
    }
    void runvalues(const std::string& sql, std::span<const platform::llmoney::Value> values);
    template <class F, class... A>
    void rows(const std::string& sql, F&& each, const A&... arguments) {
        SQLite::Statement& statement = prepared(sql, arguments...);
        while (statement.executeStep()) each(statement);
        statement.reset();
    }
    // All of it or nothing; what the work throws goes on to the caller. Somebody else's lock is waited for a moment
    // only.
    void transaction(const std::function<void()>& work);
    // Every transaction also outlives a loss of power, for the price of a flush to the disk.
    void setdurable() { file_.exec("PRAGMA synchronous = FULL"); }
    void setpatience(std::chrono::milliseconds patience) { file_.setBusyTimeout(static_cast<int>(patience.count())); }
    // For a file that cannot be written any more before the end: what the work would run goes into a script beside it,
    // which the next one that opens the file runs first. False when that cannot be written either.
    bool keepaside(const std::function<void()>& work);
    [[nodiscard]] std::string aside() const { return aside_.string(); }

private:
    template <class... A>
    SQLite::Statement& prepared(const std::string& sql, const A&... arguments) {
        SQLite::Statement& statement = cached(sql);
        int place = 0;
        (bind(statement, ++place, arguments), ...);
        return statement;
    }
    SQLite::Statement& cached(const std::string& sql);
    void execute(SQLite::Statement& statement);
    void takein();
    static void bind(SQLite::Statement& s, int place, const Blob& v) {
        s.bind(place, v.bytes.data(), static_cast<int>(v.bytes.size()));
    }
    template <class T>
    static void bind(SQLite::Statement& s, int place, const T& v) {
        s.bind(place, v);
    }

    std::string path_;
    std::filesystem::path aside_;
    SQLite::Database file_;
    Checkpoints checkpoints_{file_};
    std::map<std::string, SQLite::Statement> statements_;
    std::string* script_ = nullptr;  // while it is being made
};

// A part of the world that has rows of its own. Changes are gathered and go to the file together, in one transaction
// for everything that changed in a pass; they stay marked until that has worked.
class Store {
public:
    virtual ~Store() = default;
    [[nodiscard]] virtual bool changed() const = 0;
    virtual void write(Database& file) = 0;  // inside the transaction
    virtual void written() = 0;              // it is on the disk
};

}  // namespace host
